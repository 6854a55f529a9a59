// The Apple backends against the real system. Built and run on Macs only (the CI's macOS job):
// they are the one place where a wrong unit, a swapped argument or a missed ownership rule in
// src/platform/mac shows before a user sees it.
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

namespace {

int inkedPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    return count;
}

} // namespace

TEST(MacBackends, ProcessTableSeesThisProcessInHostTicksAndBytes)
{
    const auto table = makeProcessTable();
    const ProcessTable::Timebase timebase = table->timebase();
    ASSERT_GT(timebase.denom, 0u);
    ASSERT_GT(timebase.numer, 0u);

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

    // Burn a little processor time so that two readings must differ.
    const auto before = table->usage(getpid());
    ASSERT_TRUE(before.has_value());
    const quint64 start = table->now();
    volatile quint64 sink = 0;
    for (quint64 i = 0; i < 50'000'000; ++i)
        sink = sink + i;
    const auto after = table->usage(getpid());
    const quint64 stop = table->now();
    ASSERT_TRUE(after.has_value());
    EXPECT_GT(after->cpuTime, before->cpuTime);
    EXPECT_GT(after->footprint, 0u);
    // Processor time and the clock share the host tick: the busy loop cannot have used more
    // processor time than the wall clock allowed (one thread), give or take scheduling.
    EXPECT_LE(after->cpuTime - before->cpuTime, (stop - start) * 2);

    EXPECT_FALSE(table->usage(-1).has_value());
    EXPECT_LT(table->executablePath(-1, path), 0);
    EXPECT_GT(table->physicalMemory(), qint64(1) << 30);
    const auto pages = table->memoryPages();
    ASSERT_TRUE(pages.has_value());
    EXPECT_TRUE(pages->pageSize == 4096 || pages->pageSize == 16384) << pages->pageSize;
    EXPECT_GT(pages->internal, 0u);
}

TEST(MacBackends, StartupVolumeHasSensibleFigures)
{
    const VolumeFigures figures = makeVolumeCapacity()->figures(QStringLiteral("/"));
    ASSERT_TRUE(figures.total.has_value());
    ASSERT_TRUE(figures.available.has_value());
    EXPECT_GT(*figures.total, 0);
    EXPECT_LE(*figures.available, *figures.total);
    if (figures.importantUsage) {
        EXPECT_LE(*figures.importantUsage, *figures.total);
    }
    EXPECT_FALSE(makeVolumeCapacity()->figures(QStringLiteral("/no/such/volume/here")).total.has_value());
}

TEST(MacBackends, SymbolsDrawAsOneColourTemplatesAndUnknownNamesAsTheRing)
{
    const auto images = makeSymbolImages();
    for (const QSize size : {QSize(16, 16), QSize(32, 32), QSize(64, 40)}) {
        const QImage wind = images->render(QStringLiteral("wind"), size);
        ASSERT_EQ(wind.size(), size);
        EXPECT_GT(inkedPixels(wind), size.width() * size.height() / 20);
        for (int y = 0; y < wind.height(); ++y) {
            for (int x = 0; x < wind.width(); ++x) {
                const QRgb pixel = wind.pixel(x, y);
                ASSERT_EQ(qRed(pixel) | qGreen(pixel) | qBlue(pixel), 0) << "template pixels are black";
            }
        }
    }
    const QSize size(24, 24);
    EXPECT_EQ(images->render(QStringLiteral("no.such.symbol.anywhere"), size), neutralSymbolImage(size));
    EXPECT_EQ(images->render(QString(), size), neutralSymbolImage(size));
}

TEST(MacBackends, WorkspaceFindsFinderAndNothingForAnUnknownIdentifier)
{
    const auto workspace = makeWorkspace();
    const auto finder = workspace->applicationLocation(QStringLiteral("com.apple.finder"));
    ASSERT_TRUE(finder.has_value());
    EXPECT_TRUE(finder->endsWith(QStringLiteral("/Finder.app"))) << finder->toStdString();
    EXPECT_FALSE(workspace->applicationLocation(QStringLiteral("app.nubo.no-such-application")).has_value());

    bool sawFinder = false;
    for (const RunningApplication& app : workspace->runningApplications())
        sawFinder = sawFinder || app.bundlePath.endsWith(QStringLiteral("/Finder.app"));
    EXPECT_TRUE(sawFinder);

    // Actions on a process that does not exist are ignored.
    RunningApplication gone;
    gone.pid = 999'999;
    workspace->hide(gone);
    workspace->terminate(gone);
}

TEST(MacBackends, MetadataAndAccessibilityAnswerForNothingWithoutHarm)
{
    EXPECT_FALSE(makeMetadata()->lastUsedDate(QStringLiteral("/no/such/App.app")).has_value());
    const auto accessibility = makeAccessibility();
    EXPECT_TRUE(accessibility->isSupported());
    accessibility->minimizeWindows(0);
    accessibility->minimizeWindows(999'999);
}
