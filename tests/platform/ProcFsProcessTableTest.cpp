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
    // A copy of the shell inside X.app/Contents/MacOS, spinning in a loop.
    QTemporaryDir dir;
    const QString bundle = dir.filePath(QStringLiteral("X.app"));
    QProcess child;
    child.start(test::copyProgram(QStringLiteral("/bin/sh"), bundle + QStringLiteral("/Contents/MacOS/busy")),
                {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
    ASSERT_TRUE(child.waitForStarted());
    const qint32 pid = qint32(child.processId());
    ProcFsProcessTable table;
    UsageSampler sampler(table);
    const QList<UsageSampler::App> apps = {{pid, bundle}};

    // Half a second apart: 0 % first, then about one core (much less when builds crowd the two
    // cores, but clearly busy; never much more: the loop has one thread), with memory both times.
    const auto first = sampler.sample(apps);
    QThread::msleep(500);
    const auto second = sampler.sample(apps);
    ASSERT_TRUE(first.contains(pid) && second.contains(pid));
    EXPECT_EQ(first.value(pid).cpu, 0.0);
    EXPECT_GT(second.value(pid).cpu, 8.0);
    EXPECT_LT(second.value(pid).cpu, 110.0);
    EXPECT_GT(std::min(first.value(pid).memory, second.value(pid).memory), 0);

    child.kill();
    ASSERT_TRUE(child.waitForFinished());
    EXPECT_FALSE(sampler.sample(apps).contains(pid));
    const UsageSampler::SystemMemory memory = UsageSampler::systemMemory(table);
    EXPECT_GT(memory.used, 0);
    EXPECT_LE(memory.used, memory.total);
}

// Two processes among entries that are not processes, an executable link whose bytes are not
// UTF-8 and hold quotes, a backslash and a newline, and status files with every figure.
TEST(ProcFsProcessTable, ReadsAProcTreeByteForByteAndAMissingOneAsNothing)
{
    QTemporaryDir root;
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

    // Only process ids are listed, and never more than the buffer holds.
    std::vector<qint32> pids(3, -7);
    EXPECT_EQ(table.listPids(pids), 2);
    std::sort(pids.begin(), pids.begin() + 2);
    EXPECT_EQ(pids, (std::vector<qint32>{1, 42, -7}));
    std::fill(pids.begin(), pids.end(), -7);
    EXPECT_EQ(table.listPids(std::span(pids).first(1)), 2);
    EXPECT_EQ(pids[1], -7);

    // The executable path keeps its exact bytes, cut short when the buffer is.
    std::vector<char> path(4096);
    ASSERT_EQ(table.executablePath(42, path), target.size());
    EXPECT_EQ(QByteArray(path.data()), target);
    std::vector<char> small(8);
    EXPECT_EQ(table.executablePath(42, small), 7);
    EXPECT_EQ(QByteArray(small.data()), target.left(7));
    EXPECT_LT(table.executablePath(1, path), 0);
    EXPECT_LT(table.executablePath(7, path), 0);

    // Processor time in nanoseconds (300 ticks), the footprint anonymous plus swapped memory, and
    // used memory what is not available.
    const std::optional<ProcessTable::Usage> usage = table.usage(42);
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->cpuTime, 300'000'000'000u / quint64(::sysconf(_SC_CLK_TCK)));
    EXPECT_EQ(usage->footprint, 3100u * 1024);
    EXPECT_FALSE(table.usage(1));
    EXPECT_EQ(UsageSampler::systemMemory(table).used, 10'000'000LL * 1024);

    const ProcFsProcessTable missing("/nonexistent/proc");
    EXPECT_LT(missing.listPids(pids), 0);
    EXPECT_FALSE(missing.usage(1));
    EXPECT_FALSE(missing.memoryPages());
    EXPECT_GT(missing.physicalMemory(), 0);
}

// Fields are counted from after the command name, which may imitate them; a figure that is missing,
// blank, signed, not a number or past 64 bits gives nothing rather than a wrong figure.
TEST(ProcFsProcessTable, ProcFilesAndClockTicksGiveExactFiguresAndMalformedOnesNothing)
{
    using P = ProcFsProcessTable;
    EXPECT_EQ(P::parseCpuTicks(kStat), 300u);
    EXPECT_EQ(P::parseCpuTicks("7 (x) S 1 1 1 0 -1 0 0 0 0 0 999 999) R 1 7 7 0 -1 4 1 0 0 0 5 6 0\n"), 11u);
    const QByteArray stat = "42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 ";
    for (const QByteArray& bad :
         {QByteArray(), QByteArray("42 no name S 1"), stat + "250", stat + "250 x5 0", stat + "-250 50 0",
          stat + " 250 50 0", stat + "18446744073709551615 1 0", stat + "99999999999999999999 1 0"})
        EXPECT_FALSE(P::parseCpuTicks(bad)) << bad.toStdString();

    EXPECT_EQ(P::parseFootprint("RssAnon:\t 12 kB\n"), 12u * 1024);
    EXPECT_EQ(P::parseFootprint("RssAnonX:\t 99 kB\nRssAnon:\t 12 kB\nVmSwap:\t 3 kB"), 15u * 1024);
    for (const QByteArray& bad : {QByteArray(), QByteArray("VmSwap:\t 3 kB\n"), QByteArray("RssAnon:\t 12\n"),
                                  QByteArray("RssAnon:\t 12 MB\n"), QByteArray("RssAnon:\t kB\n"),
                                  QByteArray("RssAnon:\t 12 kB\nVmSwap:\t lots kB\n"),
                                  QByteArray("RssAnon:\t 18014398509481984 kB\n")})
        EXPECT_FALSE(P::parseFootprint(bad)) << bad.toStdString();

    const auto pages = P::parseMeminfo("MemTotal: 2000 kB\nMemAvailable: 500 kB\n");
    ASSERT_TRUE(pages);
    EXPECT_EQ(pages->pageSize * (pages->internal - pages->purgeable), 1500u * 1024);
    EXPECT_FALSE(P::parseMeminfo("MemTotal: 2000 kB\nMemFree: 500 kB\n"));
    EXPECT_FALSE(P::parseMeminfo("MemTotal: 2000 kB\nMemAvailable: -500 kB\n"));

    // Clock ticks become nanoseconds even past where ticks × 10⁹ would wrap, or nothing.
    EXPECT_EQ(P::ticksToNanoseconds(250, 100), 2'500'000'000u);
    EXPECT_EQ(P::ticksToNanoseconds(1, 300), 3'333'333u);
    EXPECT_EQ(P::ticksToNanoseconds(20'000'000'000u, 100), 200'000'000'000'000'000u);
    EXPECT_FALSE(P::ticksToNanoseconds(std::numeric_limits<quint64>::max(), 100));
    EXPECT_FALSE(P::ticksToNanoseconds(5, 0));
}
