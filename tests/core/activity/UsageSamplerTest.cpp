#include "core/activity/UsageSampler.h"

#include "platform/fake/FakeProcessTable.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QMap>

#include <limits>
#include <tuple>

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

// Each row: the running processes (id, executable as the kernel gives it, memory), the
// applications asked about, and the memory each measurable one must get; the others are left out.
// Every row is asked in both orders of its applications.
TEST(UsageSamplerAttribution, EachApplicationGetsTheProcessesOfItsOwnBundleOnly)
{
    const QByteArray foo = kFoo;
    const QString fooText = QString::fromLatin1(kFoo);
    const QByteArray latin1 = "/Applications/Caf\xff.app";
    const QByteArray other = "/Applications/Caf\xfe.app";
    ASSERT_EQ(QFile::decodeName(latin1), QFile::decodeName(other)); // the workspace hands both over alike
    const QString composed = QStringLiteral("/Applications/Caf\u00e9.app");
    const QString decomposed = QStringLiteral("/Applications/Cafe\u0301.app");
    struct Row
    {
        const char* why;
        QList<std::tuple<qint32, QByteArray, quint64>> processes;
        QList<UsageSampler::App> apps;
        QMap<qint32, qint64> memory;
    };
    const Row rows[] = {
        {"an application inside another keeps its own processes",
         {{100, foo + "/Contents/MacOS/Foo", 10},
          {300, foo + "/Contents/Applications/Inner.app/Contents/MacOS/Inner", 7},
          {301, foo + "/Contents/Applications/Inner.app/Contents/Helpers/inner-helper", 3}},
         {{100, fooText}, {300, fooText + QStringLiteral("/Contents/Applications/Inner.app")}},
         {{100, 10}, {300, 10}}},
        {"whole folder names only; an empty bundle, the root or a relative path match nothing",
         {{100, foo + "/Contents/MacOS/Foo", 1},
          {200, foo + "2/Contents/MacOS/Foo2", 2},
          {300, "/usr/bin/other", 4},
          {700, "/Applications/Foo.appendix/Contents/MacOS/agent", 8}},
         {{100, fooText},
          {200, fooText + QStringLiteral("2/")},
          {400, QString()},
          {500, QStringLiteral("/")},
          {600, QStringLiteral("usr")}},
         {{100, 1}, {200, 2}}},
        {"names that differ only in bytes that are not UTF-8 are not measurable; a path is judged up to "
         "a zero byte",
         {{100, latin1 + "/Contents/MacOS/app", 1},
          {200, other + "/Contents/MacOS/app", 2},
          {300, QByteArray("/Applications/Plain.app\0/Contents/MacOS/x", 41), 4},
          {301, QByteArray("/Applications/Plain.app/Contents/MacOS/y\0junk", 45), 8}},
         {{100, QFile::decodeName(latin1)},
          {200, QFile::decodeName(other)},
          {300, QStringLiteral("/Applications/Plain.app")}},
         {{300, 8}}},
        {"the workspace spells an accent composed, the kernel decomposed",
         {{100, QFile::encodeName(decomposed) + "/Contents/MacOS/Cafe", 1}},
         {{100, composed}},
         {{100, 1}}},
        {"two folders, one spelt each way: the exact spelling wins",
         {{100, QFile::encodeName(decomposed) + "/Contents/MacOS/Cafe", 1},
          {200, QFile::encodeName(composed) + "/Contents/MacOS/Cafe", 2}},
         {{100, decomposed}, {200, composed}},
         {{100, 1}, {200, 2}}},
    };
    for (const Row& row : rows) {
        FakeProcessTable table;
        for (const auto& [pid, executable, memory] : row.processes)
            table.add(pid, executable, 0, memory);
        for (const QList<UsageSampler::App>& apps : {row.apps, QList(row.apps.rbegin(), row.apps.rend())}) {
            UsageSampler sampler(table);
            QMap<qint32, qint64> memory;
            for (const auto& [pid, usage] : sampler.sample(apps).asKeyValueRange())
                memory.insert(pid, usage.memory);
            EXPECT_EQ(memory, row.memory) << row.why;
        }
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

    // WHEN a sample asks about no application THEN no process is asked about, and those left out
    // start again at zero
    const int queries = table.pathQueries;
    advance(kSecond, {{100, kSecond}});
    EXPECT_TRUE(sampler.sample({}).isEmpty());
    EXPECT_EQ(table.pathQueries, queries);
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

TEST(UsageSamplerSystemMemory, UsedIsHeldMemoryLessPurgeableAndNeverWrapsOrGoesNegative)
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

    // Failed statistics: nothing used, the physical total still shown.
    table.pages.reset();
    EXPECT_EQ(UsageSampler::systemMemory(table), (UsageSampler::SystemMemory{0, table.physical}));
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
