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

using namespace nubo;
using namespace std::chrono_literals;

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

    // GIVEN an older read still under way when a newer one of the same lane starts
    jobs.start(
        QStringLiteral("list"), [&older](StopToken) { return older.try_acquire_for(5s) ? 1 : -1; },
        [&landed](int value) { landed << QStringLiteral("older %1").arg(value); });
    jobs.start(
        QStringLiteral("list"), [](StopToken) { return 2; },
        [&landed](int value) { landed << QStringLiteral("newer %1").arg(value); });
    // and a job of another lane that throws
    bool failed = false;
    jobs.start(
        QStringLiteral("other"), [](StopToken) -> int { throw std::runtime_error("disk gone"); },
        [&landed](int) { landed << QStringLiteral("thrower"); }, [&failed] { failed = true; });
    older.release();
    settle();

    // THEN only the newer read landed, and the thrower reached its failure and left its lane
    EXPECT_EQ(landed, QStringList{QStringLiteral("newer 2")});
    EXPECT_TRUE(failed);
    EXPECT_FALSE(jobs.isRunning(QStringLiteral("list")));
    EXPECT_FALSE(jobs.isRunning(QStringLiteral("other")));
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
            QStringLiteral("batch"),
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
            jobs.interrupt(QStringLiteral("batch"));
        else
            jobs.stop(QStringLiteral("batch"));
        settle();
        EXPECT_EQ(landed, interrupt ? std::optional<bool>(true) : std::nullopt);
        EXPECT_FALSE(jobs.isRunning(QStringLiteral("batch")));
    }
}

TEST(JobsTest, AnOwnerThatGoesNeitherWaitsForItsJobsNorHearsFromThem)
{
    // GIVEN a job that pays no attention to being stopped, held until after its owner is gone
    std::binary_semaphore release{0};
    std::atomic<bool> finished = false;
    bool landed = false;
    {
        auto owner = std::make_unique<QObject>();
        auto jobs = std::make_unique<Jobs>(owner.get());
        jobs->start(
            QStringLiteral("slow"),
            [&release, &finished](StopToken) {
                (void)release.try_acquire_for(5s);
                finished = true;
                return 1;
            },
            [&landed](int) { landed = true; });
        // WHEN the owner goes while the job runs
        jobs.reset();
        owner.reset();
    }
    // THEN it went without waiting, and the end of the program can tell the job is still there
    EXPECT_FALSE(finished.load());
    EXPECT_FALSE(Jobs::waitForAll(50ms));
    release.release();
    settle();
    EXPECT_TRUE(finished.load());
    EXPECT_FALSE(landed);
}

} // namespace
