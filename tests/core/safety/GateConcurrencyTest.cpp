#include "SafetyFixture.h"

#include "core/privacy/Privacy.h"

#include <atomic>
#include <thread>
#include <vector>

using namespace nubo;
using GateConcurrencyTest = nubo::testing::SafetyFixture;

// Scanners ask the gate from many threads while the window re-probes access: every answer must
// be one of the two consistent ones, and the first use must build the tables exactly once.
TEST_F(GateConcurrencyTest, ChecksAndGateQueriesRaceARefreshingProbe)
{
    std::atomic<bool> grant = false;
    std::atomic<int> probes = 0;
    Privacy privacy(m_roots.home, [&] {
        ++probes;
        return grant.load();
    });
    Safety fresh(m_roots, SafetyRules::forMac()); // its tables are built by whichever thread comes first

    const QString gatedPath = home(QStringLiteral("Library/Mail/V10"));
    const QString openPath = home(QStringLiteral("Projects/app"));
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::atomic<long> answers = 0;
    std::vector<std::thread> workers;
    for (int t = 0; t < 6; ++t) {
        workers.emplace_back([&] {
            for (; !stop; ++answers) {
                (void)privacy.isGated(gatedPath); // either answer is right while access flips
                wrong +=
                    privacy.isGated(openPath) || fresh.isAllowed(gatedPath) || !fresh.isAllowed(openPath);
            }
        });
    }
    while (answers < 100) // the workers are under way before access starts flipping
        std::this_thread::yield();
    for (int i = 0; i < 300; ++i) {
        grant = !grant;
        privacy.refresh();
    }
    stop = true;
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_LE(probes, 301); // at most one first-use probe besides the refreshes
    grant = false;
    privacy.refresh();
    EXPECT_TRUE(privacy.isGated(gatedPath));
}
