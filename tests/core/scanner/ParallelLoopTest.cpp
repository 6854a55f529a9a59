#include "core/scanner/ParallelLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using nubo::ParallelLoop;

namespace {

// Counts how many items run at the same moment, across every level of nesting.
struct Concurrency
{
    std::atomic<int> running{0};
    std::atomic<int> peak{0};

    void enter()
    {
        const int now = ++running;
        int seen = peak.load();
        while (now > seen && !peak.compare_exchange_weak(seen, now)) {
        }
    }
    void leave() { --running; }
};

} // namespace

TEST(ParallelLoop, NestedLoopsRunEveryItemOnceWithoutOversubscribing)
{
    for (int helpers : {0, 1, 3}) {
        ParallelLoop loop(helpers);
        Concurrency concurrency;
        std::vector<std::atomic<int>> hits(8 * 8 * 8);
        // Three levels, like the scanner's root, its folders and theirs; the leaves sleep so that
        // items overlap and a missing thread or a deadlock would show.
        loop.forEach(8, [&](qsizetype i) {
            loop.forEach(8, [&](qsizetype j) {
                loop.forEach(8, [&](qsizetype k) {
                    concurrency.enter();
                    std::this_thread::sleep_for(std::chrono::microseconds(200));
                    ++hits[static_cast<size_t>((i * 8 + j) * 8 + k)];
                    concurrency.leave();
                });
            });
        });
        for (const auto& hit : hits)
            ASSERT_EQ(hit.load(), 1) << "helpers " << helpers;
        EXPECT_LE(concurrency.peak.load(), helpers + 1) << "helpers " << helpers;
        if (helpers > 0) {
            EXPECT_GT(concurrency.peak.load(), 1) << "helpers never joined in";
        }
    }
}

TEST(ParallelLoop, OneSlowItemDoesNotHoldUpTheOthers)
{
    // The slow first item runs a nested loop of its own; idle helpers take part in that loop
    // once the outer items are done, instead of waiting for the slow one.
    ParallelLoop loop(2);
    std::vector<std::thread::id> seen(100);
    loop.forEach(4, [&](qsizetype i) {
        if (i != 0)
            return;
        loop.forEach(100, [&](qsizetype k) {
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
            seen[static_cast<size_t>(k)] = std::this_thread::get_id();
        });
    });
    std::sort(seen.begin(), seen.end());
    EXPECT_GE(std::unique(seen.begin(), seen.end()) - seen.begin(), 2);
}

TEST(ParallelLoop, EmptyAndSingleLoopsAndConcurrentCallers)
{
    ParallelLoop loop(2);
    int calls = 0;
    loop.forEach(0, [&](qsizetype) { ++calls; });
    loop.forEach(1, [&](qsizetype) { ++calls; });
    EXPECT_EQ(calls, 1);

    // Two outside threads share the helpers; both finish and every item runs once.
    std::atomic<int> total{0};
    std::thread other([&] { loop.forEach(100, [&](qsizetype) { ++total; }); });
    loop.forEach(100, [&](qsizetype) { ++total; });
    other.join();
    EXPECT_EQ(total.load(), 200);
}
