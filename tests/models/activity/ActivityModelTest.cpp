#include "models/activity/ActivityModel.h"
#include "models/app/Jobs.h"
#include "support/Eventually.h"

#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakeProcessTable.h"
#include "platform/fake/FakeWorkspace.h"

#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace nubo;
using nubo::test::eventually;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kOwnPid = 10;

RunningApplication regularApp(qint64 pid, const QString& name)
{
    RunningApplication app;
    app.pid = pid;
    app.name = name;
    app.bundlePath = QStringLiteral("/Applications/") + name + QStringLiteral(".app");
    app.regular = true;
    return app;
}

// A process table that takes a while to list and remembers how many listings ever overlapped.
class SlowProcessTable final : public ProcessTable
{
public:
    quint64 now() const override { return inner.now(); }
    Timebase timebase() const override { return inner.timebase(); }
    qsizetype listPids(std::span<qint32> pids) const override
    {
        const int inside = ++m_inside;
        int seen = overlap.load();
        while (inside > seen && !overlap.compare_exchange_weak(seen, inside)) {
        }
        ++listings;
        std::this_thread::sleep_for(40ms);
        --m_inside;
        return inner.listPids(pids);
    }
    qsizetype executablePath(qint32 pid, std::span<char> buffer) const override
    {
        return inner.executablePath(pid, buffer);
    }
    std::optional<Usage> usage(qint32 pid) const override { return inner.usage(pid); }
    qint64 physicalMemory() const override { return inner.physicalMemory(); }
    std::optional<MemoryPages> memoryPages() const override { return inner.memoryPages(); }

    FakeProcessTable inner;
    mutable std::atomic<int> overlap = 0;
    mutable std::atomic<int> listings = 0;

private:
    mutable std::atomic<int> m_inside = 0;
};

class ActivityModelTest : public ::testing::Test
{
protected:
    // A sample still being taken when a test's model went reads this fixture's services.
    void TearDown() override { EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10))); }

    // GIVEN three regular apps (our own among them), a menu-bar agent and an ended app; the
    // first two regular apps hold the same memory.
    void SetUp() override
    {
        RunningApplication agent = regularApp(40, QStringLiteral("Agent"));
        agent.regular = false;
        RunningApplication ended = regularApp(50, QStringLiteral("Ended"));
        ended.terminated = true;
        m_workspace.running = {regularApp(20, QStringLiteral("Zeta")),
                               regularApp(30, QStringLiteral("Alpha")), agent, ended,
                               regularApp(kOwnPid, QStringLiteral("Nubo"))};
        for (const RunningApplication& app : m_workspace.running)
            m_table.inner.add(qint32(app.pid),
                              (app.bundlePath + QStringLiteral("/Contents/MacOS/x")).toUtf8(), 0,
                              app.pid == kOwnPid ? 1000 : 5000);
        m_table.inner.pages = ProcessTable::MemoryPages{4096, 100, 0, 0, 0};
    }

    ActivityModel::Services services()
    {
        return {m_workspace, m_table, m_accessibility, m_login, kOwnPid, 1h, 20ms};
    }

    static void refreshed(ActivityModel& model)
    {
        QSignalSpy spy(&model, &ActivityModel::refreshed);
        model.refresh();
        ASSERT_TRUE(spy.wait(5000));
    }

    static QList<qint32> pids(const QList<AppUsage>& apps)
    {
        QList<qint32> list;
        for (const AppUsage& app : apps)
            list << app.pid;
        return list;
    }

    FakeWorkspace m_workspace;
    SlowProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
};

TEST_F(ActivityModelTest, RefreshListsRegularRunningAppsAndSortsStably)
{
    ActivityModel model(services());
    EXPECT_FALSE(model.hasSampled());
    refreshed(model);
    EXPECT_TRUE(model.hasSampled());
    EXPECT_EQ(pids(model.apps()), (QList<qint32>{20, 30, kOwnPid}));
    EXPECT_EQ(model.apps().at(0).memory, 5000);
    EXPECT_EQ(model.memoryUsed(), 409600); // 100 pages of 4 KiB
    EXPECT_EQ(model.memoryTotal(), m_table.inner.physical);

    // WHEN sorted by memory: Zeta and Alpha tie and keep the workspace's order.
    model.setSortLabel(QStringLiteral("Memoria"));
    EXPECT_EQ(model.sort(), ActivityModel::Sort::memory);
    EXPECT_EQ(pids(model.sorted()), (QList<qint32>{20, 30, kOwnPid}));
    model.setSortLabel(QStringLiteral("memoria"));
    EXPECT_EQ(model.sortLabel(), QStringLiteral("Memoria"));

    // A second sample measures processor time: Alpha was busy (how helpers add to it is
    // UsageSamplerTest's).
    m_table.inner.clock += 1'000'000'000;
    m_table.inner.processes[30].usage->cpuTime = 500'000'000;
    refreshed(model);
    model.setSort(ActivityModel::Sort::cpu);
    EXPECT_EQ(pids(model.sorted()), (QList<qint32>{30, 20, kOwnPid}));
    EXPECT_DOUBLE_EQ(model.totalCPU(), 50.0);
}

TEST_F(ActivityModelTest, RefreshesNeverOverlapAndStartingTwiceRunsOneLoop)
{
    ActivityModel model(services());
    QSignalSpy spy(&model, &ActivityModel::refreshed);
    model.start();
    model.start();
    model.refresh();
    model.refresh();
    model.bump();
    // The first refresh, one that follows it for everything asked meanwhile, and the bump's.
    ASSERT_TRUE(eventually([&] { return spy.count() == 2; }, 5000));
    QTest::qWait(200);
    EXPECT_LE(spy.count(), 3);
    EXPECT_EQ(m_table.overlap.load(), 1);
}

TEST_F(ActivityModelTest, ActionsFindTheAppAgainAndIgnoreOneThatIsGone)
{
    ActivityModel model(services());
    refreshed(model);
    QSignalSpy spy(&model, &ActivityModel::refreshed);

    model.quit(20);
    model.forceQuit(30);
    model.hide(30);
    model.unhide(30);
    model.activate(20);
    EXPECT_EQ(
        m_workspace.actions,
        (QStringList{QStringLiteral("terminate 20"), QStringLiteral("forceTerminate 30"),
                     QStringLiteral("hide 30"), QStringLiteral("unhide 30"), QStringLiteral("activate 20")}));
    EXPECT_TRUE(spy.wait(2000)); // the bump

    // Zeta has quit and its id now belongs to something else; Alpha is gone altogether.
    m_workspace.actions.clear();
    RunningApplication impostor = regularApp(20, QStringLiteral("Other"));
    m_workspace.running = {impostor};
    model.quit(model.apps().at(0));
    model.forceQuit(model.apps().at(1));
    model.quit(999); // never listed
    EXPECT_TRUE(m_workspace.actions.isEmpty());
}

TEST_F(ActivityModelTest, MinimisingWithoutTrustAsksAndDoesNothingAndTheAllActionsLeaveTheProgramItself)
{
    ActivityModel model(services());
    refreshed(model);
    QSignalSpy trust(&model, &ActivityModel::hasAccessibilityChanged);
    model.minimizeAll();
    model.minimize(20);
    EXPECT_EQ(m_accessibility.requests.load(), 2);
    QTest::qWait(100);
    EXPECT_TRUE(m_accessibility.minimized().isEmpty());
    EXPECT_FALSE(model.hasAccessibility());

    // Trust granted at the prompt: the same call goes ahead and the property says so.
    m_accessibility.grantOnRequest = true;
    model.minimize(20);
    ASSERT_TRUE(eventually([&] { return m_accessibility.minimized() == (QList<qint64>{20}); }, 5000));
    EXPECT_TRUE(model.hasAccessibility());
    EXPECT_EQ(trust.count(), 1);

    model.hideAll();
    EXPECT_EQ(m_workspace.actions, (QStringList{QStringLiteral("hide 20"), QStringLiteral("hide 30")}));
    model.minimizeAll();
    ASSERT_TRUE(eventually([&] { return m_accessibility.minimized().size() == 3; }, 5000));
    EXPECT_EQ(m_accessibility.minimized(), (QList<qint64>{20, 20, 30}));
    EXPECT_EQ(m_accessibility.requests.load(), 3);
}

TEST_F(ActivityModelTest, UnsupportedActionsDoNothing)
{
    m_workspace.windowActions = false;
    m_accessibility.supported = false;
    ActivityModel model(services());
    refreshed(model);
    EXPECT_FALSE(model.canHide());
    EXPECT_FALSE(model.canActivate());
    EXPECT_FALSE(model.canMinimize());

    model.hide(20);
    model.unhide(20);
    model.activate(20);
    model.hideAll();
    model.minimizeAll();
    model.ensureAccessibility();
    model.quit(20); // quitting is always possible
    EXPECT_EQ(m_workspace.actions, QStringList{QStringLiteral("terminate 20")});
    EXPECT_EQ(m_accessibility.requests.load(), 0);
}

TEST_F(ActivityModelTest, TheLoginSwitchShowsWhatTheSystemSays)
{
    m_login.registered = true;
    ActivityModel model(services());
    EXPECT_TRUE(model.launchAtLogin());
    QSignalSpy spy(&model, &ActivityModel::launchAtLoginChanged);

    model.setLaunchAtLogin(false);
    EXPECT_FALSE(model.launchAtLogin());

    // A refused registration leaves the switch off, and says so to a view that flipped it.
    m_login.refuse = true;
    model.setLaunchAtLogin(true);
    EXPECT_FALSE(model.launchAtLogin());
    EXPECT_EQ(spy.count(), 2);

    m_login.refuse = false;
    model.setLaunchAtLogin(true);
    EXPECT_TRUE(model.launchAtLogin());
}

} // namespace
