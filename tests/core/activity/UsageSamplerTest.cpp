#include "core/activity/UsageSampler.h"

#include "platform/fake/FakeProcessTable.h"

#include <gtest/gtest.h>

#include <QFile>

#include <limits>

using namespace nubo;

namespace {

// The Apple-silicon host clock: 24 MHz, 125/3 nanoseconds per tick.
constexpr quint64 kSecond = 24'000'000;
constexpr quint64 kMiB = 1024 * 1024;

const QByteArray kFoo = "/Applications/Foo.app";

class UsageSamplerTest : public ::testing::Test
{
protected:
    void SetUp() override { table.base = {125, 3}; }

    // Moves the fake clock on and charges each listed process `busy` ticks of processor time.
    void advance(quint64 ticks, std::initializer_list<std::pair<qint32, quint64>> busy = {})
    {
        table.clock += ticks;
        for (const auto& [pid, extra] : busy)
            table.processes[pid].usage->cpuTime += extra;
    }

    FakeProcessTable table;
};

} // namespace

TEST_F(UsageSamplerTest, HelpersInsideTheBundleCountTowardsTheirApplication)
{
    // GIVEN an application, a helper application among its frameworks and an XPC service
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 100 * kMiB);
    table.add(101, kFoo + "/Contents/Frameworks/Foo Helper.app/Contents/MacOS/Foo Helper", 0, 50 * kMiB);
    table.add(102, kFoo + "/Contents/XPCServices/Render.xpc/Contents/MacOS/Render", 0, 25 * kMiB);
    table.add(200, "/usr/libexec/unrelated", 0, 999 * kMiB);
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{100, QString::fromLatin1(kFoo)}};

    // WHEN sampled twice, two seconds apart, with the helpers busy for 1 s and 0.5 s
    const auto first = sampler.sample(apps);
    advance(2 * kSecond, {{100, kSecond / 10}, {101, kSecond}, {102, kSecond / 2}});
    const auto second = sampler.sample(apps);

    // THEN the first shows no processor use, and both show the memory of all three processes
    EXPECT_EQ(first.value(100), (UsageSampler::Usage{0, 175 * kMiB}));
    ASSERT_EQ(second.size(), 1);
    EXPECT_NEAR(second.value(100).cpu, 5.0 + 50.0 + 25.0, 1e-9);
    EXPECT_EQ(second.value(100).memory, qint64(175 * kMiB));
}

TEST_F(UsageSamplerTest, AnApplicationInsideAnotherKeepsItsOwnProcessesInEitherOrder)
{
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 10);
    table.add(300, kFoo + "/Contents/Applications/Inner.app/Contents/MacOS/Inner", 0, 7);
    table.add(301, kFoo + "/Contents/Applications/Inner.app/Contents/Helpers/inner-helper", 0, 3);
    const UsageSampler::App outer{100, QString::fromLatin1(kFoo)};
    const UsageSampler::App inner{300, QString::fromLatin1(kFoo + "/Contents/Applications/Inner.app")};

    for (const QList<UsageSampler::App>& apps : {QList{outer, inner}, QList{inner, outer}}) {
        UsageSampler sampler(table);
        const auto usage = sampler.sample(apps);
        EXPECT_EQ(usage.value(100).memory, 10);
        EXPECT_EQ(usage.value(300).memory, 10);
    }
}

TEST_F(UsageSamplerTest, BundlesMatchWholeFolderNamesOnly)
{
    // GIVEN Foo.app and Foo.app2 side by side, one listed with a trailing slash, and entries that
    // must never match everything (an empty bundle, the root, a relative path)
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    table.add(200, kFoo + "2/Contents/MacOS/Foo2", 0, 2);
    table.add(300, "/usr/bin/other", 0, 4);
    // and a background tool beside Foo.app that is no listed application
    table.add(700, "/Applications/Foo.appendix/Contents/MacOS/agent", 0, 8);
    UsageSampler sampler(table);

    const auto usage = sampler.sample({{100, QString::fromLatin1(kFoo)},
                                       {200, QString::fromLatin1(kFoo + "2/")},
                                       {400, QString()},
                                       {500, QStringLiteral("/")},
                                       {600, QStringLiteral("usr")}});

    EXPECT_EQ(usage.value(100).memory, 1);
    EXPECT_EQ(usage.value(200).memory, 2);
    EXPECT_FALSE(usage.contains(400));
    EXPECT_FALSE(usage.contains(500));
    EXPECT_FALSE(usage.contains(600));
}

TEST_F(UsageSamplerTest, NamesThatAreNotUtf8AreNeverCreditedToTheWrongApplication)
{
    // GIVEN two bundles whose names differ only in bytes that are not UTF-8: both decode to the
    // same text, as the workspace would hand them over
    const QByteArray a = "/Applications/Caf\xff.app";
    const QByteArray b = "/Applications/Caf\xfe.app";
    table.add(100, a + "/Contents/MacOS/app", 0, 1);
    table.add(200, b + "/Contents/MacOS/app", 0, 2);
    // and a path cut short by a zero byte, which must be judged by what comes before it
    table.add(300, QByteArray("/Applications/Plain.app\0/Contents/MacOS/x", 41), 0, 4);
    table.add(301, QByteArray("/Applications/Plain.app/Contents/MacOS/y\0junk", 45), 0, 8);
    ASSERT_EQ(QFile::decodeName(a), QFile::decodeName(b));
    UsageSampler sampler(table);

    const auto usage = sampler.sample({{100, QFile::decodeName(a)},
                                       {200, QFile::decodeName(b)},
                                       {300, QStringLiteral("/Applications/Plain.app")}});

    // THEN neither takes the other's processes (both are simply not measurable)
    EXPECT_FALSE(usage.contains(100));
    EXPECT_FALSE(usage.contains(200));
    EXPECT_EQ(usage.value(300).memory, 8);
}

TEST_F(UsageSamplerTest, AccentedNamesMatchComposedOrDecomposedButTheExactSpellingWins)
{
    const QString composed = QStringLiteral("/Applications/Caf\u00e9.app");
    const QString decomposed = QStringLiteral("/Applications/Cafe\u0301.app");
    table.add(100, QFile::encodeName(decomposed) + "/Contents/MacOS/Cafe", 0, 1);

    // GIVEN the workspace spells the bundle composed while the kernel spells it decomposed
    {
        UsageSampler sampler(table);
        EXPECT_EQ(sampler.sample({{100, composed}}).value(100).memory, 1);
    }

    // GIVEN two distinct folders, one spelt each way, both running (possible where names are bytes)
    table.add(200, QFile::encodeName(composed) + "/Contents/MacOS/Cafe", 0, 2);
    for (const QList<UsageSampler::App>& apps : {QList<UsageSampler::App>{{100, decomposed}, {200, composed}},
                                                 {{200, composed}, {100, decomposed}}}) {
        UsageSampler sampler(table);
        const auto usage = sampler.sample(apps);
        EXPECT_EQ(usage.value(100).memory, 1);
        EXPECT_EQ(usage.value(200).memory, 2);
    }
}

TEST_F(UsageSamplerTest, ProcessorShareNeedsAPreviousSightingOfTheSameProcess)
{
    // GIVEN an application with a helper, sampled once
    table.add(100, kFoo + "/Contents/MacOS/Foo", 5 * kSecond, 1);
    table.add(101, kFoo + "/Contents/MacOS/helper", 5 * kSecond, 1);
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{100, QString::fromLatin1(kFoo)}};
    EXPECT_EQ(sampler.sample(apps).value(100).cpu, 0.0);

    // WHEN the helper restarts under a new id, having run as long as before in a fraction of the time
    advance(kSecond, {{100, kSecond / 4}});
    const FakeProcessTable::Process helper = table.processes.take(101);
    table.processes.insert(102, helper);
    table.processes[102].usage->cpuTime += kSecond;
    const auto restarted = sampler.sample(apps);

    // THEN only the main process counts this time; the new helper counts from the next sample
    EXPECT_NEAR(restarted.value(100).cpu, 25.0, 1e-9);
    advance(kSecond, {{100, 0}, {102, kSecond / 2}});
    EXPECT_NEAR(sampler.sample(apps).value(100).cpu, 50.0, 1e-9);

    // WHEN an id is reused by a process that has run for less time than the one before it
    advance(kSecond);
    table.processes[102].usage->cpuTime = 1;
    EXPECT_EQ(sampler.sample(apps).value(100).cpu, 0.0);
}

TEST_F(UsageSamplerTest, AProcessLeftOutOfOneSampleStartsAgainAtZero)
{
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{100, QString::fromLatin1(kFoo)}};
    sampler.sample(apps);

    advance(kSecond, {{100, kSecond}});
    EXPECT_TRUE(sampler.sample({}).isEmpty());
    advance(kSecond, {{100, kSecond}});
    EXPECT_EQ(sampler.sample(apps).value(100).cpu, 0.0);
    advance(kSecond, {{100, kSecond}});
    EXPECT_NEAR(sampler.sample(apps).value(100).cpu, 100.0, 1e-9);
}

TEST_F(UsageSamplerTest, AnIntervalUnderOneNanosecondGivesZeroInsteadOfDividing)
{
    // One tick is a third of a nanosecond.
    table.base = {1, 3};
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{100, QString::fromLatin1(kFoo)}};
    sampler.sample(apps);

    advance(0, {{100, 30}});
    EXPECT_EQ(sampler.sample(apps).value(100).cpu, 0.0);
    advance(2, {{100, 30}});
    EXPECT_EQ(sampler.sample(apps).value(100).cpu, 0.0);
    // Three ticks are one nanosecond: the share is measured again (and may exceed one core).
    advance(3, {{100, 6}});
    EXPECT_NEAR(sampler.sample(apps).value(100).cpu, 200.0, 1e-9);
}

TEST_F(UsageSamplerTest, UnreadableProcessesAreSkippedAndTheirApplicationsLeftOut)
{
    // GIVEN processes whose path or accounting cannot be read, and ids the kernel never hands out
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    table.processes.insert(101, {kFoo + "/Contents/MacOS/gone", std::nullopt});
    table.processes.insert(102, {QByteArray(), ProcessTable::Usage{0, 64}});
    table.add(0, kFoo + "/Contents/MacOS/zero", 0, 128);
    table.add(-5, kFoo + "/Contents/MacOS/negative", 0, 256);
    table.processes.insert(300, {"/Applications/Locked.app/Contents/MacOS/Locked", std::nullopt});
    UsageSampler sampler(table);

    const auto usage =
        sampler.sample({{100, QString::fromLatin1(kFoo)}, {300, QStringLiteral("/Applications/Locked.app")}});

    EXPECT_EQ(usage.value(100).memory, 1);
    EXPECT_FALSE(usage.contains(300));

    // WHEN the process list itself cannot be read, nothing is measured
    table.listFails = true;
    EXPECT_TRUE(sampler.sample({{100, QString::fromLatin1(kFoo)}}).isEmpty());
}

TEST_F(UsageSamplerTest, AtMostTheFirst4096ProcessesAreConsidered)
{
    // GIVEN more processes than the buffer holds, all in one bundle, and a kernel that reports
    // even more than it has
    for (qint32 pid = 1; pid <= 5000; ++pid)
        table.add(pid, kFoo + "/Contents/MacOS/worker", 0, 1);
    table.overReport = 100'000;
    UsageSampler sampler(table);

    const auto usage = sampler.sample({{1, QString::fromLatin1(kFoo)}});

    EXPECT_EQ(usage.value(1).memory, UsageSampler::kMaxProcesses);
    EXPECT_EQ(table.pathQueries, UsageSampler::kMaxProcesses);
}

TEST_F(UsageSamplerTest, NoApplicationsMeansNoProcessQueries)
{
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    UsageSampler sampler(table);
    EXPECT_TRUE(sampler.sample({}).isEmpty());
    EXPECT_EQ(table.pathQueries, 0);
}

TEST(UsageSamplerSystemMemory, UsedIsHeldMemoryLessPurgeableTimesThePageSize)
{
    FakeProcessTable table;
    table.physical = 8LL * 1024 * kMiB;
    ProcessTable::MemoryPages pages;
    pages.pageSize = 16384;
    pages.internal = 100'000;
    pages.compressed = 20'000;
    pages.wired = 30'000;
    pages.purgeable = 10'000;
    table.pages = pages;
    EXPECT_EQ(UsageSampler::systemMemory(table),
              (UsageSampler::SystemMemory{140'000LL * 16384, table.physical}));

    // More purgeable than held is never negative.
    pages.purgeable = 500'000;
    table.pages = pages;
    EXPECT_EQ(UsageSampler::systemMemory(table).used, 0);

    // Counts no kernel could report are treated as unreadable rather than wrapped.
    pages.purgeable = 0;
    pages.internal = std::numeric_limits<quint64>::max() - 5;
    table.pages = pages;
    EXPECT_EQ(UsageSampler::systemMemory(table), (UsageSampler::SystemMemory{0, table.physical}));
    pages.internal = quint64(1) << 60;
    table.pages = pages;
    EXPECT_EQ(UsageSampler::systemMemory(table).used, 0);
}

TEST(UsageSamplerSystemMemory, FailedStatisticsGiveZeroUsedAndThePhysicalTotal)
{
    FakeProcessTable table;
    table.physical = 4LL * 1024 * kMiB;
    table.pages.reset();
    EXPECT_EQ(UsageSampler::systemMemory(table), (UsageSampler::SystemMemory{0, 4LL * 1024 * kMiB}));
}

TEST(UsageSamplerDeathTest, AClockThatRunsBackwardsOrAZeroTimebaseStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto zeroDenominator = [] {
        FakeProcessTable table;
        table.base = ProcessTable::Timebase{125, 0};
        UsageSampler sampler(table);
    };
    const auto clockBackwards = [] {
        FakeProcessTable table;
        UsageSampler sampler(table);
        table.clock -= 1;
        (void)sampler.sample({});
    };
    EXPECT_DEATH(zeroDenominator(), "zero denominator");
    EXPECT_DEATH(clockBackwards(), "backwards");
}
