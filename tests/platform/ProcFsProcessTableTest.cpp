#include "platform/linux/ProcFsProcessTable.h"

#include "core/activity/UsageSampler.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>
#include <vector>

using namespace nubo;

namespace {

const QByteArray kStat = "42 (a) (b c) S 1 42 42 0 -1 4194560 100 0 0 0 250 50 0 0 20 0 1 0 100 1000 10\n";

} // namespace

TEST(ProcFsProcessTable, TheRealMachineCreditsABusyProcessToItsBundleAndForgetsItWhenItEnds)
{
    // GIVEN a copy of the shell inside X.app/Contents/MacOS, spinning in a loop
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString bundle = dir.filePath(QStringLiteral("X.app"));
    const QString shell =
        test::copyProgram(QStringLiteral("/bin/sh"), bundle + QStringLiteral("/Contents/MacOS/busy"));
    QProcess child;
    child.start(shell, {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
    ASSERT_TRUE(child.waitForStarted());
    const qint32 pid = qint32(child.processId());

    ProcFsProcessTable table;
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{pid, bundle}};

    // WHEN sampled twice, about half a second apart
    const auto first = sampler.sample(apps);
    QThread::msleep(500);
    const auto second = sampler.sample(apps);

    // THEN the first shows 0 % and the second about one core (much less when parallel builds and
    // tests crowd the two cores, but clearly busy; never much more: the loop has one thread), with
    // memory both times
    ASSERT_TRUE(first.contains(pid));
    EXPECT_EQ(first.value(pid).cpu, 0.0);
    EXPECT_GT(first.value(pid).memory, 0);
    ASSERT_TRUE(second.contains(pid));
    EXPECT_GT(second.value(pid).cpu, 8.0);
    EXPECT_LT(second.value(pid).cpu, 110.0);
    EXPECT_GT(second.value(pid).memory, 0);

    // WHEN the process ends, the application has nothing left to measure
    child.kill();
    ASSERT_TRUE(child.waitForFinished());
    EXPECT_FALSE(sampler.sample(apps).contains(pid));

    const UsageSampler::SystemMemory memory = UsageSampler::systemMemory(table);
    EXPECT_GT(memory.used, 0);
    EXPECT_LE(memory.used, memory.total);
}

TEST(ProcFsProcessTable, ReadsAProcTreeByteForByte)
{
    // GIVEN a /proc-like tree with two processes among entries that are not processes
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    const QDir proc(root.path());
    for (const char* name : {"1", "42", "12abc", "99999999999", "sys", "self"})
        ASSERT_TRUE(proc.mkdir(QString::fromLatin1(name)));
    const QByteArray target = "/opt/Caf\xff.app/Contents/MacOS/-x \"\\\n";
    test::makeLink(target, QFile::encodeName(proc.filePath(QStringLiteral("42/exe"))));
    test::writeBytes(proc.filePath(QStringLiteral("42/stat")), kStat);
    test::writeBytes(
        proc.filePath(QStringLiteral("42/status")),
        "Name:\tx\nVmRSS:\t  9000 kB\nRssAnon:\t    3000 kB\nRssFile:\t 6000 kB\nVmSwap:\t     100 kB\n");
    test::writeBytes(
        proc.filePath(QStringLiteral("meminfo")),
        "MemTotal:       16000000 kB\nMemFree:         1000000 kB\nMemAvailable:    6000000 kB\n");
    const ProcFsProcessTable table(QFile::encodeName(root.path()));

    // THEN only the process ids are listed, and never more than the buffer holds
    std::vector<qint32> pids(3, -7);
    EXPECT_EQ(table.listPids(pids), 2);
    std::sort(pids.begin(), pids.begin() + 2);
    EXPECT_EQ(pids, (std::vector<qint32>{1, 42, -7}));
    std::fill(pids.begin(), pids.end(), -7);
    EXPECT_EQ(table.listPids(std::span(pids).first(1)), 2);
    EXPECT_EQ(pids[1], -7);

    // THEN the executable path comes back with its exact bytes, cut short when the buffer is
    std::vector<char> path(4096);
    ASSERT_EQ(table.executablePath(42, path), target.size());
    EXPECT_EQ(QByteArray(path.data()), target);
    std::vector<char> small(8);
    EXPECT_EQ(table.executablePath(42, small), 7);
    EXPECT_EQ(QByteArray(small.data()), target.left(7));
    EXPECT_LT(table.executablePath(1, path), 0);
    EXPECT_LT(table.executablePath(7, path), 0);

    // THEN processor time is in nanoseconds and the footprint is anonymous plus swapped memory
    const std::optional<ProcessTable::Usage> usage = table.usage(42);
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->cpuTime, *ProcFsProcessTable::ticksToNanoseconds(300, quint64(::sysconf(_SC_CLK_TCK))));
    EXPECT_EQ(usage->footprint, 3100u * 1024);
    EXPECT_FALSE(table.usage(1));

    // THEN used memory is what is not available
    EXPECT_EQ(UsageSampler::systemMemory(table).used, 10'000'000LL * 1024);
}

TEST(ProcFsProcessTable, AMissingProcTreeReadsAsNothing)
{
    const ProcFsProcessTable table("/nonexistent/proc");
    std::vector<qint32> pids(4);
    EXPECT_LT(table.listPids(pids), 0);
    EXPECT_FALSE(table.usage(1));
    EXPECT_FALSE(table.memoryPages());
    const UsageSampler::SystemMemory memory = UsageSampler::systemMemory(table);
    EXPECT_EQ(memory.used, 0);
    EXPECT_GT(memory.total, 0);
}

TEST(ProcFsProcessTable, StatLinesAreReadFromAfterTheCommandName)
{
    EXPECT_EQ(ProcFsProcessTable::parseCpuTicks(kStat), 300u);
    // A name that imitates the fields that follow it.
    EXPECT_EQ(ProcFsProcessTable::parseCpuTicks(
                  "7 (x) S 1 1 1 0 -1 0 0 0 0 0 999 999) R 1 7 7 0 -1 4 1 0 0 0 5 6 0\n"),
              11u);

    for (const QByteArray& bad :
         {QByteArray(), QByteArray("42 no name S 1"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 250"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 250 x5 0"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 -250 50 0"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0  250 50 0"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 18446744073709551615 1 0"),
          QByteArray("42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 99999999999999999999 1 0")})
        EXPECT_FALSE(ProcFsProcessTable::parseCpuTicks(bad)) << bad.toStdString();
}

TEST(ProcFsProcessTable, StatusAndMeminfoFiguresMustBeWellFormed)
{
    EXPECT_EQ(ProcFsProcessTable::parseFootprint("RssAnon:\t 12 kB\n"), 12u * 1024);
    EXPECT_EQ(ProcFsProcessTable::parseFootprint("RssAnonX:\t 99 kB\nRssAnon:\t 12 kB\nVmSwap:\t 3 kB"),
              15u * 1024);
    for (const QByteArray& bad : {QByteArray(), QByteArray("VmSwap:\t 3 kB\n"), QByteArray("RssAnon:\t 12\n"),
                                  QByteArray("RssAnon:\t 12 MB\n"), QByteArray("RssAnon:\t kB\n"),
                                  QByteArray("RssAnon:\t 12 kB\nVmSwap:\t lots kB\n"),
                                  QByteArray("RssAnon:\t 18014398509481984 kB\n")})
        EXPECT_FALSE(ProcFsProcessTable::parseFootprint(bad)) << bad.toStdString();

    const auto pages = ProcFsProcessTable::parseMeminfo("MemTotal: 2000 kB\nMemAvailable: 500 kB\n");
    ASSERT_TRUE(pages);
    EXPECT_EQ(pages->pageSize * (pages->internal - pages->purgeable), 1500u * 1024);
    EXPECT_FALSE(ProcFsProcessTable::parseMeminfo("MemTotal: 2000 kB\nMemFree: 500 kB\n"));
    EXPECT_FALSE(ProcFsProcessTable::parseMeminfo("MemTotal: 2000 kB\nMemAvailable: -500 kB\n"));
}

TEST(ProcFsProcessTable, ClockTicksBecomeNanosecondsWithoutOverflow)
{
    EXPECT_EQ(ProcFsProcessTable::ticksToNanoseconds(250, 100), 2'500'000'000u);
    EXPECT_EQ(ProcFsProcessTable::ticksToNanoseconds(1, 300), 3'333'333u);
    // Past where ticks × 10⁹ would wrap, but still a representable time.
    EXPECT_EQ(ProcFsProcessTable::ticksToNanoseconds(20'000'000'000u, 100), 200'000'000'000'000'000u);
    EXPECT_FALSE(ProcFsProcessTable::ticksToNanoseconds(std::numeric_limits<quint64>::max(), 100));
    EXPECT_FALSE(ProcFsProcessTable::ticksToNanoseconds(5, 0));
}
