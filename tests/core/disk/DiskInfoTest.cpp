#include "core/disk/DiskInfo.h"
#include "platform/fake/FakeVolumeCapacity.h"

#include <gtest/gtest.h>

using namespace nubo;

namespace {

constexpr qint64 kGiB = 1024LL * 1024 * 1024;

TEST(DiskInfoTest, ImportantUsageFigureWinsOverPlainFreeSpace)
{
    FakeVolumeCapacity volume;
    volume.answer = {500 * kGiB, 200 * kGiB, 150 * kGiB};
    const DiskInfo info = DiskInfo::current(volume);
    EXPECT_EQ(info.total, 500 * kGiB);
    EXPECT_EQ(info.available, 200 * kGiB);
    EXPECT_EQ(info.used(), 300 * kGiB);
    EXPECT_DOUBLE_EQ(info.fraction(), 0.6);
}

TEST(DiskInfoTest, MissingFiguresFallBackAndThenReadZero)
{
    EXPECT_EQ(DiskInfo::fromFigures({500 * kGiB, std::nullopt, 150 * kGiB}), (DiskInfo{500 * kGiB, 150 * kGiB}));
    EXPECT_EQ(DiskInfo::fromFigures({std::nullopt, std::nullopt, 150 * kGiB}), (DiskInfo{0, 150 * kGiB}));
    EXPECT_EQ(DiskInfo::fromFigures({}), (DiskInfo{0, 0}));
    // A broken reader's negative figures are treated as unreadable.
    EXPECT_EQ(DiskInfo::fromFigures({-5, -1, 10}), (DiskInfo{0, 0}));
}

TEST(DiskInfoTest, UsedAndFractionStayInRange)
{
    // Purgeable space can make the free figure exceed what the total leaves.
    const DiskInfo overfull{100, 250};
    EXPECT_EQ(overfull.used(), 0);
    EXPECT_DOUBLE_EQ(overfull.fraction(), 0.0);

    const DiskInfo unreadable{0, 0};
    EXPECT_DOUBLE_EQ(unreadable.fraction(), 0.0);
    EXPECT_DOUBLE_EQ((DiskInfo{0, 0}.fraction()), 0.0);
    EXPECT_DOUBLE_EQ((DiskInfo{10, 0}).fraction(), 1.0);
    const qint64 huge = std::numeric_limits<qint64>::max();
    EXPECT_DOUBLE_EQ((DiskInfo{huge, 0}).fraction(), 1.0);
}

} // namespace
