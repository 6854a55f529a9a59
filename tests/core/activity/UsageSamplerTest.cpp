#include "core/activity/UsageSampler.h"

#include "platform/fake/FakeProcessTable.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QMap>

#include <limits>
#include <optional>
#include <tuple>

using namespace nubo;

namespace {

// The Apple-silicon host clock: 24 MHz, 125/3 nanoseconds per tick.
constexpr quint64 kSecond = 24'000'000;

const QByteArray kFoo = "/Applications/Foo.app";
const QList<UsageSampler::App> kFooApp = {{100, QString::fromLatin1(kFoo)}};

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
    double fooCpu(UsageSampler& sampler) { return sampler.sample(kFooApp).value(100).cpu; }

    FakeProcessTable table;
};

} // namespace

// Rows: processes (id, executable bytes, memory or none when unreadable), the applications asked
// about, and the memory of each measurable one (the others are left out); asked in both orders.
TEST(UsageSamplerAttribution, EachApplicationGetsTheProcessesOfItsOwnBundleOnly)
{
    const QByteArray foo = kFoo;
    const QString fooText = QString::fromLatin1(kFoo);
    const QByteArray inner = foo + "/Contents/Applications/Inner.app";
    const QByteArray latin1 = "/Applications/Caf\xff.app";
    const QByteArray other = "/Applications/Caf\xfe.app";
    ASSERT_EQ(QFile::decodeName(latin1), QFile::decodeName(other)); // the workspace hands both over alike
    const QString composed = QStringLiteral("/Applications/Caf\u00e9.app");
    const QString decomposed = QStringLiteral("/Applications/Cafe\u0301.app");
    const QByteArray cafe = "/Contents/MacOS/Cafe";
    struct Row
    {
        const char* why;
        QList<std::tuple<qint32, QByteArray, std::optional<quint64>>> processes;
        QList<UsageSampler::App> apps;
        QMap<qint32, qint64> memory;
    };
    const Row rows[] = {
        {"an application inside another keeps its own processes",
         {{100, foo + "/Contents/MacOS/Foo", 10}, {300, inner + "/Contents/MacOS/In", 7}, {301, inner + "/Contents/h/x", 3}},
         {{100, fooText}, {300, QString::fromLatin1(inner)}}, {{100, 10}, {300, 10}}},
        {"whole folder names only; an empty bundle, the root or a relative path match nothing",
         {{100, foo + "/Contents/MacOS/Foo", 1}, {200, foo + "2/Contents/MacOS/Foo2", 2}, {300, "/usr/bin/other", 4},
          {700, "/Applications/Foo.appendix/Contents/MacOS/agent", 8}},
         {{100, fooText}, {200, QStringLiteral("/Applications/Foo.app2/")}, {400, QString()}, {500, QStringLiteral("/")},
          {600, QStringLiteral("usr")}},
         {{100, 1}, {200, 2}}},
        {"names that differ only in bytes that are not UTF-8 are not measurable; a path is judged up to a zero byte",
         {{100, latin1 + "/Contents/MacOS/app", 1}, {200, other + "/Contents/MacOS/app", 2},
          {300, QByteArray("/Applications/Plain.app\0/Contents/MacOS/x", 41), 4},
          {301, QByteArray("/Applications/Plain.app/Contents/MacOS/y\0junk", 45), 8}},
         {{100, QFile::decodeName(latin1)}, {200, QFile::decodeName(other)},
          {300, QStringLiteral("/Applications/Plain.app")}},
         {{300, 8}}},
        {"the workspace spells an accent composed, the kernel decomposed",
         {{100, QFile::encodeName(decomposed) + cafe, 1}}, {{100, composed}}, {{100, 1}}},
        {"two folders, one spelt each way: the exact spelling wins",
         {{100, QFile::encodeName(decomposed) + cafe, 1}, {200, QFile::encodeName(composed) + cafe, 2}},
         {{100, decomposed}, {200, composed}}, {{100, 1}, {200, 2}}},
        {"unreadable paths or accounting and ids the kernel never hands out are skipped; an application with nothing "
         "readable is left out",
         {{100, foo + "/Contents/MacOS/Foo", 1}, {101, foo + "/Contents/MacOS/gone", {}}, {102, QByteArray(), 64},
          {0, foo + "/Contents/MacOS/zero", 128}, {-5, foo + "/Contents/MacOS/negative", 256},
          {300, "/Applications/Locked.app/Contents/MacOS/Locked", {}}},
         {{100, fooText}, {300, QStringLiteral("/Applications/Locked.app")}}, {{100, 1}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        FakeProcessTable table;
        for (const auto& [pid, executable, memory] : row.processes)
            table.processes.insert(
                pid, {executable, memory ? std::optional(ProcessTable::Usage{0, *memory}) : std::nullopt});
        for (const QList<UsageSampler::App>& apps : {row.apps, QList(row.apps.rbegin(), row.apps.rend())}) {
            UsageSampler sampler(table);
            QMap<qint32, qint64> memory;
            for (const auto& [pid, usage] : sampler.sample(apps).asKeyValueRange())
                memory.insert(pid, usage.memory);
            EXPECT_EQ(memory, row.memory);
        }
    }
}

// A bundle's share counts only processes the previous sample saw, over the time that passed.
TEST_F(UsageSamplerTest, ProcessorShareAddsUpTheBundleOverTheIntervalForProcessesSeenBefore)
{
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    table.add(101, kFoo + "/Contents/Frameworks/Foo Helper.app/Contents/MacOS/Foo Helper", 0, 1);
    table.add(102, kFoo + "/Contents/XPCServices/Render.xpc/Contents/MacOS/Render", 0, 1);
    table.add(200, "/usr/libexec/unrelated", 0, 1);
    UsageSampler sampler(table);
    EXPECT_EQ(fooCpu(sampler), 0.0);
    advance(2 * kSecond, {{100, kSecond / 10}, {101, kSecond}, {102, kSecond / 2}, {200, kSecond}});
    EXPECT_NEAR(fooCpu(sampler), 5.0 + 50.0 + 25.0, 1e-9);

    // A helper restarted under a new id, having run longer than before, counts from the next sample.
    advance(kSecond, {{100, kSecond / 4}});
    table.processes.insert(103, table.processes.take(101));
    table.processes[103].usage->cpuTime += kSecond;
    EXPECT_NEAR(fooCpu(sampler), 25.0, 1e-9);
    advance(kSecond, {{103, kSecond / 2}});
    EXPECT_NEAR(fooCpu(sampler), 50.0, 1e-9);

    // An id reused by a process that has run for less time than the one before it.
    advance(kSecond);
    table.processes[103].usage->cpuTime = 1;
    EXPECT_EQ(fooCpu(sampler), 0.0);

    // A sample about no application reads no process; those left out start again at zero.
    const int queries = table.pathQueries;
    advance(kSecond, {{100, kSecond}});
    EXPECT_TRUE(sampler.sample({}).isEmpty());
    EXPECT_EQ(table.pathQueries, queries);
    advance(kSecond, {{100, kSecond}});
    EXPECT_EQ(fooCpu(sampler), 0.0);
    advance(kSecond, {{100, kSecond}});
    EXPECT_NEAR(fooCpu(sampler), 100.0, 1e-9);
}

// One tick is a third of a nanosecond: no share is divided by less, and one may exceed a core.
TEST_F(UsageSamplerTest, AnIntervalUnderOneNanosecondGivesZeroInsteadOfDividing)
{
    table.base = {1, 3};
    table.add(100, kFoo + "/Contents/MacOS/Foo", 0, 1);
    UsageSampler sampler(table);
    fooCpu(sampler);
    for (const auto& [ticks, share] : {std::pair<quint64, double>{0, 0.0}, {2, 0.0}, {3, 200.0}}) {
        advance(ticks, {{100, 6}});
        EXPECT_DOUBLE_EQ(fooCpu(sampler), share) << ticks;
    }
}

TEST_F(UsageSamplerTest, AtMostTheFirst4096ProcessesAreConsideredAndAnUnreadableListMeasuresNothing)
{
    // More processes than the buffer holds, all in one bundle, and a kernel that reports even more.
    for (qint32 pid = 1; pid <= 5000; ++pid)
        table.add(pid, kFoo + "/Contents/MacOS/worker", 0, 1);
    table.overReport = 100'000;
    UsageSampler sampler(table);
    EXPECT_EQ(sampler.sample({{1, QString::fromLatin1(kFoo)}}).value(1).memory, UsageSampler::kMaxProcesses);
    EXPECT_EQ(table.pathQueries, UsageSampler::kMaxProcesses);

    table.listFails = true;
    EXPECT_TRUE(sampler.sample({{1, QString::fromLatin1(kFoo)}}).isEmpty());
}

// Counts no kernel could report, more purgeable than held, or none at all give 0 used memory.
TEST(UsageSamplerSystemMemory, UsedIsHeldMemoryLessPurgeableAndNeverWrapsOrGoesNegative)
{
    const quint64 max = std::numeric_limits<quint64>::max();
    using Pages = ProcessTable::MemoryPages;
    const std::pair<std::optional<Pages>, qint64> rows[] = {
        {Pages{16384, 100'000, 20'000, 30'000, 10'000}, 140'000LL * 16384},
        {Pages{16384, 100'000, 20'000, 30'000, 500'000}, 0},
        {Pages{16384, max - 5, 20'000, 30'000, 0}, 0},
        {Pages{16384, quint64(1) << 60, 20'000, 30'000, 0}, 0},
        {std::nullopt, 0},
    };
    FakeProcessTable table;
    table.physical = 8LL << 30;
    for (const auto& [pages, used] : rows) {
        table.pages = pages;
        EXPECT_EQ(UsageSampler::systemMemory(table), (UsageSampler::SystemMemory{used, 8LL << 30}));
    }
}

TEST(UsageSamplerDeathTest, AClockThatRunsBackwardsOrAZeroTimebaseStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    FakeProcessTable table;
    UsageSampler sampler(table);
    table.clock -= 1;
    EXPECT_DEATH((void)sampler.sample({}), "backwards");
    table.base.denom = 0;
    EXPECT_DEATH(UsageSampler{table}, "zero denominator");
}
