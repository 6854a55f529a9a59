// The Apple backends against the real system, on Macs only: where a wrong unit, a swapped argument
// or a missed ownership rule in src/platform/mac shows before a user sees it.
#include "platform/Accessibility.h"
#include "platform/Metadata.h"
#include "platform/ProcessTable.h"
#include "platform/SymbolImages.h"
#include "platform/VolumeCapacity.h"
#include "platform/Workspace.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QImage>

#include <algorithm>
#include <unistd.h>
#include <vector>

using namespace nubo;

TEST(MacBackends, ProcessTableSeesThisProcessInHostTicksAndBytes)
{
    const auto table = makeProcessTable();
    const ProcessTable::Timebase timebase = table->timebase();
    ASSERT_TRUE(timebase.denom > 0 && timebase.numer > 0);
    std::vector<qint32> pids(4096);
    const qsizetype listed = table->listPids(pids);
    ASSERT_GT(listed, 0);
    const auto end = pids.begin() + std::min<qsizetype>(listed, qsizetype(pids.size()));
    EXPECT_NE(std::find(pids.begin(), end, qint32(getpid())), end);

    std::vector<char> path(4096);
    const qsizetype length = table->executablePath(getpid(), path);
    ASSERT_GT(length, 0);
    EXPECT_EQ(QFileInfo(QString::fromUtf8(path.data(), length)).canonicalFilePath(),
              QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath());

    // Processor time and the clock share the host tick: a busy loop shows, but no more than one thread.
    const auto before = table->usage(getpid());
    const quint64 start = table->now();
    volatile quint64 sink = 0;
    for (quint64 i = 0; i < 50'000'000; ++i)
        sink = sink + i;
    const auto after = table->usage(getpid());
    const quint64 stop = table->now();
    ASSERT_TRUE(before && after);
    EXPECT_GT(after->cpuTime, before->cpuTime);
    EXPECT_LE(after->cpuTime - before->cpuTime, (stop - start) * 2);
    EXPECT_GT(after->footprint, 0u);

    EXPECT_FALSE(table->usage(-1) || table->executablePath(-1, path) >= 0);
    EXPECT_GT(table->physicalMemory(), qint64(1) << 30);
    const auto pages = table->memoryPages();
    ASSERT_TRUE(pages);
    EXPECT_TRUE((pages->pageSize == 4096 || pages->pageSize == 16384) && pages->internal > 0) << pages->pageSize;
}

// A template image is black with its shape in the alpha channel; an unknown name draws the ring.
TEST(MacBackends, SymbolsDrawAsOneColourTemplatesAndUnknownNamesAsTheRing)
{
    const auto images = makeSymbolImages();
    for (const QSize size : {QSize(16, 16), QSize(32, 32), QSize(64, 40)}) {
        const QImage wind = images->render(QStringLiteral("wind"), size);
        ASSERT_EQ(wind.size(), size);
        int inked = 0;
        for (int y = 0; y < wind.height(); ++y) {
            for (int x = 0; x < wind.width(); ++x) {
                const QRgb pixel = wind.pixel(x, y);
                inked += qAlpha(pixel) > 0 ? 1 : 0;
                ASSERT_EQ(qRed(pixel) | qGreen(pixel) | qBlue(pixel), 0) << x << "," << y;
            }
        }
        EXPECT_GT(inked, size.width() * size.height() / 20);
    }
    EXPECT_EQ(images->render(QStringLiteral("no.such.symbol.anywhere"), {24, 24}),
              neutralSymbolImage({24, 24}));
    EXPECT_EQ(images->render(QString(), {24, 24}), neutralSymbolImage({24, 24}));
}

// Actions on a process that does not exist, and questions about nothing, are answered without harm.
TEST(MacBackends, WorkspaceMetadataAccessibilityAndVolumesFindWhatIsThereAndNothingElse)
{
    const auto workspace = makeWorkspace();
    const auto finder = workspace->applicationLocation(QStringLiteral("com.apple.finder"));
    ASSERT_TRUE(finder);
    EXPECT_TRUE(finder->endsWith(QStringLiteral("/Finder.app"))) << finder->toStdString();
    EXPECT_FALSE(workspace->applicationLocation(QStringLiteral("app.nubo.no-such-application")));
    const QList<RunningApplication> running = workspace->runningApplications();
    EXPECT_TRUE(std::any_of(running.begin(), running.end(), [](const RunningApplication& app) {
        return app.bundlePath.endsWith(QStringLiteral("/Finder.app"));
    }));
    RunningApplication gone;
    gone.pid = 999'999;
    workspace->hide(gone);
    workspace->terminate(gone);

    EXPECT_FALSE(makeMetadata()->lastUsedDate(QStringLiteral("/no/such/App.app")));
    const auto accessibility = makeAccessibility();
    EXPECT_TRUE(accessibility->isSupported());
    accessibility->minimizeWindows(0);
    accessibility->minimizeWindows(999'999);

    const VolumeFigures figures = makeVolumeCapacity()->figures(QStringLiteral("/"));
    ASSERT_TRUE(figures.total && figures.available);
    EXPECT_TRUE(*figures.total > 0 && *figures.available <= *figures.total);
    EXPECT_LE(figures.importantUsage.value_or(0), *figures.total);
    EXPECT_FALSE(makeVolumeCapacity()->figures(QStringLiteral("/no/such/volume/here")).total);
}
