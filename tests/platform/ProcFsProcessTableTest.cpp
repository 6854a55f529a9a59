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

// A shell spinning inside X.app: 0 % first, then busy (far below a core on a crowded machine, never
// much above: one thread), with memory both times; forgotten once it ends.
TEST(ProcFsProcessTable, TheRealMachineCreditsABusyProcessToItsBundleAndForgetsItWhenItEnds)
{
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
    const UsageSampler::Usage first = sampler.sample(apps).value(pid);
    QThread::msleep(500);
    const UsageSampler::Usage second = sampler.sample(apps).value(pid);
    EXPECT_EQ(first.cpu, 0.0);
    EXPECT_TRUE(second.cpu > 8.0 && second.cpu < 110.0) << second.cpu;
    EXPECT_GT(std::min(first.memory, second.memory), 0);

    child.kill();
    ASSERT_TRUE(child.waitForFinished());
    EXPECT_FALSE(sampler.sample(apps).contains(pid));
    const UsageSampler::SystemMemory memory = UsageSampler::systemMemory(table);
    EXPECT_TRUE(memory.used > 0 && memory.used <= memory.total);
}

// Entries that are not processes, and an executable link whose bytes are not UTF-8 and hold quotes,
// a backslash and a newline.
TEST(ProcFsProcessTable, ReadsAProcTreeByteForByteAndAMissingOneAsNothing)
{
    QTemporaryDir root;
    const QDir proc(root.path());
    for (const char* name : {"1", "42", "12abc", "99999999999", "sys", "self"})
        ASSERT_TRUE(proc.mkdir(QString::fromLatin1(name)));
    const QByteArray target = "/opt/Caf\xff.app/Contents/MacOS/-x \"\\\n";
    test::makeLink(target, QFile::encodeName(proc.filePath(QStringLiteral("42/exe"))));
    test::writeBytes(proc.filePath(QStringLiteral("42/stat")), kStat);
    test::writeBytes(proc.filePath(QStringLiteral("42/status")),
                     "Name:\tx\nVmRSS:\t  9000 kB\nRssAnon:\t    3000 kB\nRssFile:\t 6000 kB\nVmSwap:\t     100 kB\n");
    test::writeBytes(proc.filePath(QStringLiteral("meminfo")),
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
    std::vector<char> small(8);
    ASSERT_EQ(table.executablePath(42, path), target.size());
    EXPECT_EQ(QByteArray(path.data()), target);
    EXPECT_EQ(table.executablePath(42, small), 7);
    EXPECT_EQ(QByteArray(small.data()), target.left(7));
    EXPECT_LT(std::max(table.executablePath(1, path), table.executablePath(7, path)), 0);

    // 250 + 50 ticks after a command name holding ") ("; anonymous plus swapped; total less available.
    const std::optional<ProcessTable::Usage> usage = table.usage(42);
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->cpuTime, 300'000'000'000u / quint64(::sysconf(_SC_CLK_TCK)));
    EXPECT_EQ(usage->footprint, 3100u * 1024);
    EXPECT_FALSE(table.usage(1));
    EXPECT_EQ(UsageSampler::systemMemory(table).used, 10'000'000LL * 1024);

    const ProcFsProcessTable missing("/nonexistent/proc");
    EXPECT_LT(missing.listPids(pids), 0);
    EXPECT_FALSE(missing.usage(1) || missing.memoryPages());
    EXPECT_GT(missing.physicalMemory(), 0);
}

// Fields count from after a command name that may imitate them; a figure that is missing, blank,
// signed, not a number or past 64 bits gives nothing rather than a wrong figure.
TEST(ProcFsProcessTable, ProcFilesAndClockTicksGiveExactFiguresAndMalformedOnesNothing)
{
    using P = ProcFsProcessTable;
    const auto nothingFrom = [](auto parse, std::initializer_list<QByteArray> inputs) {
        for (const QByteArray& input : inputs)
            EXPECT_FALSE(parse(input)) << input.toStdString();
    };
    EXPECT_EQ(P::parseCpuTicks("7 (x) S 1 1 1 0 -1 0 0 0 0 0 999 999) R 1 7 7 0 -1 4 1 0 0 0 5 6 0\n"), 11u);
    const QByteArray stat = "42 (a) S 1 42 42 0 -1 4194560 100 0 0 0 ";
    nothingFrom(P::parseCpuTicks, {QByteArray(), "42 no name S 1", stat + "250", stat + "250 x5 0", stat + "-250 50 0",
                                   stat + " 250 50 0", stat + "18446744073709551615 1 0", stat + "99999999999999999999 1 0"});

    EXPECT_EQ(P::parseFootprint("RssAnonX:\t 99 kB\nRssAnon:\t 12 kB\nVmSwap:\t 3 kB"), 15u * 1024);
    nothingFrom(P::parseFootprint, {QByteArray(), "VmSwap:\t 3 kB\n", "RssAnon:\t 12\n", "RssAnon:\t 12 MB\n",
                                    "RssAnon:\t kB\n", "RssAnon:\t 12 kB\nVmSwap:\t lots kB\n",
                                    "RssAnon:\t 18014398509481984 kB\n"});
    nothingFrom(P::parseMeminfo, {"MemTotal: 2000 kB\nMemFree: 500 kB\n", "MemTotal: 2000 kB\nMemAvailable: -500 kB\n"});

    // Clock ticks become nanoseconds even past where ticks × 10⁹ would wrap, or nothing.
    EXPECT_EQ(P::ticksToNanoseconds(250, 100), 2'500'000'000u);
    EXPECT_EQ(P::ticksToNanoseconds(1, 300), 3'333'333u);
    EXPECT_EQ(P::ticksToNanoseconds(20'000'000'000u, 100), 200'000'000'000'000'000u);
    EXPECT_FALSE(P::ticksToNanoseconds(std::numeric_limits<quint64>::max(), 100));
    EXPECT_FALSE(P::ticksToNanoseconds(5, 0));
}
