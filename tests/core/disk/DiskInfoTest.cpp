#include "core/disk/DiskInfo.h"
#include "platform/fake/FakeVolumeCapacity.h"

#include <gtest/gtest.h>

#include <limits>

using namespace nubo;

namespace {

constexpr qint64 kHuge = std::numeric_limits<qint64>::max();

TEST(DiskInfoTest, FiguresGiveFreeSpaceUsedSpaceAndAShareThatStaysInRange)
{
    struct Case
    {
        VolumeFigures figures; // total, free counting purgeable space, plain free
        qint64 total, available, used;
        double fraction;
    };
    // The free figure counting purgeable space wins over the plain one, and may exceed what the
    // total leaves; a broken reader's negative figures read as unreadable.
    const Case cases[] = {
        {{500, 200, 150}, 500, 200, 300, 0.6},
        {{500, std::nullopt, 150}, 500, 150, 350, 0.7},
        {{std::nullopt, std::nullopt, 150}, 0, 150, 0, 0.0},
        {{}, 0, 0, 0, 0.0},
        {{-5, -1, 10}, 0, 0, 0, 0.0},
        {{100, 250, std::nullopt}, 100, 250, 0, 0.0},
        {{10, 0, 7}, 10, 0, 10, 1.0},
        {{kHuge, std::nullopt, 0}, kHuge, 0, kHuge, 1.0},
    };
    for (const Case& c : cases) {
        FakeVolumeCapacity volume;
        volume.answer = c.figures;
        const DiskInfo info = DiskInfo::current(volume);
        SCOPED_TRACE(testing::Message() << c.total << " " << c.available);
        EXPECT_EQ(info, (DiskInfo{c.total, c.available}));
        EXPECT_EQ(info.used(), c.used);
        EXPECT_DOUBLE_EQ(info.fraction(), c.fraction);
    }
}

} // namespace
