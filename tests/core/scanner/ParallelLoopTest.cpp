#include "core/scanner/ParallelLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using nubo::ParallelLoop;

// Three nested levels, like the scanner's root, its folders and theirs: every item runs once, never
// more at once than the helpers and the caller, and the helpers do join in (the leaves sleep so
// that items overlap and a missing thread or a deadlock would show). Empty and single loops run
// as many items as they hold, and two outside threads may share the helpers.
TEST(ParallelLoop, NestedAndConcurrentLoopsRunEveryItemOnceWithoutOversubscribing)
{
    for (int helpers : {0, 1, 3}) {
        SCOPED_TRACE(testing::Message() << "helpers " << helpers);
        ParallelLoop loop(helpers);
        std::atomic<int> running{0};
        std::atomic<int> peak{0};
        std::vector<std::atomic<int>> hits(8 * 8 * 8);
        loop.forEach(8, [&](qsizetype i) {
            loop.forEach(8, [&](qsizetype j) {
                loop.forEach(8, [&](qsizetype k) {
                    const int now = ++running;
                    for (int seen = peak; now > seen && !peak.compare_exchange_weak(seen, now);) {
                    }
                    std::this_thread::sleep_for(std::chrono::microseconds(200));
                    ++hits[static_cast<size_t>((i * 8 + j) * 8 + k)];
                    --running;
                });
            });
        });
        EXPECT_TRUE(std::all_of(hits.begin(), hits.end(), [](const auto& hit) { return hit == 1; }));
        EXPECT_LE(peak.load(), helpers + 1);
        EXPECT_GT(peak.load(), helpers > 0 ? 1 : 0) << "helpers never joined in";

        std::atomic<int> total{0};
        loop.forEach(0, [&](qsizetype) { total += 1000; });
        loop.forEach(1, [&](qsizetype) { ++total; });
        std::thread other([&] { loop.forEach(100, [&](qsizetype) { ++total; }); });
        loop.forEach(100, [&](qsizetype) { ++total; });
        other.join();
        EXPECT_EQ(total.load(), 201);
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
