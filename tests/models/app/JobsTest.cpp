#include "models/app/Jobs.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTest>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <semaphore>
#include <stdexcept>
#include <thread>
#include <tuple>

using namespace nubo;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Lets every result that has arrived reach its owner.
void settle()
{
    ASSERT_TRUE(Jobs::waitForAll(10s));
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

TEST(JobsTest, OnlyTheNewestJobOfALaneLandsAndAFailureStillEndsIt)
{
    QObject owner;
    Jobs jobs(&owner);
    std::binary_semaphore older{0};
    QStringList landed;
    // An older read still under way when a newer one of the same lane starts, and a job of another
    // lane that throws: only the newer read lands, and the thrower reaches its failure and leaves.
    jobs.start(u"list"_s, [&older](StopToken) { return older.try_acquire_for(5s) ? 1 : -1; },
               [&landed](int value) { landed << u"older %1"_s.arg(value); });
    jobs.start(u"list"_s, [](StopToken) { return 2; }, [&landed](int value) { landed << u"newer %1"_s.arg(value); });
    bool failed = false;
    jobs.start(u"other"_s, [](StopToken) -> int { throw std::runtime_error("disk gone"); },
               [&landed](int) { landed << u"thrower"_s; }, [&failed] { failed = true; });
    older.release();
    settle();
    EXPECT_EQ(landed, QStringList{u"newer 2"_s});
    EXPECT_EQ(std::tuple(failed, jobs.isRunning(u"list"_s), jobs.isRunning(u"other"_s)),
              std::tuple(true, false, false));
}

TEST(JobsTest, StopAndInterruptionReachTheWorkButOnlyAnInterruptedJobLands)
{
    // A stop makes a read stale; an interruption is the user's "Cancelar", whose partial
    // result must still be reported.
    for (const bool interrupt : {false, true}) {
        SCOPED_TRACE(interrupt ? "interrupt" : "stop");
        QObject owner;
        Jobs jobs(&owner);
        std::binary_semaphore started{0};
        std::optional<bool> landed;
        jobs.start(
            u"batch"_s,
            [&started](StopToken stop) {
                started.release();
                int turns = 0;
                while (!stop.stopRequested() && turns++ < 500)
                    std::this_thread::sleep_for(10ms);
                return stop.stopRequested();
            },
            [&landed](bool sawStop) { landed = sawStop; });
        ASSERT_TRUE(started.try_acquire_for(10s));
        if (interrupt)
            (void)jobs.interrupt(u"batch"_s);
        else
            jobs.stop(u"batch"_s);
        settle();
        EXPECT_EQ(landed, interrupt ? std::optional<bool>(true) : std::nullopt);
        EXPECT_FALSE(jobs.isRunning(u"batch"_s));
    }
}

TEST(JobsTest, AnOwnerThatGoesNeitherWaitsForItsJobsNorHearsFromThem)
{
    // A job that pays no attention to being stopped, held until after its owner is gone: the owner
    // goes without waiting, and the end of the program can tell the job is still there.
    std::binary_semaphore release{0};
    std::atomic<bool> finished = false;
    bool landed = false;
    {
        auto owner = std::make_unique<QObject>();
        auto jobs = std::make_unique<Jobs>(owner.get());
        jobs->start(
            u"slow"_s,
            [&release, &finished](StopToken) {
                (void)release.try_acquire_for(5s);
                finished = true;
                return 1;
            },
            [&landed](int) { landed = true; });
        jobs.reset();
        owner.reset();
    }
    EXPECT_FALSE(finished.load());
    EXPECT_FALSE(Jobs::waitForAll(50ms));
    release.release();
    settle();
    EXPECT_EQ(std::tuple(finished.load(), landed), std::tuple(true, false));
}

} // namespace
