#include "core/disk/DiskInfo.h"
#include "platform/fake/FakeVolumeCapacity.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

using namespace nubo;

namespace {

constexpr qint64 kHuge = std::numeric_limits<qint64>::max();

// Each row: total, free counting purgeable space, plain free; then the figures, the used bytes and
// the share. The free figure counting purgeable space wins over the plain one, and may exceed what
// the total leaves; a broken reader's negative figures read as unreadable. The volume's name comes
// without the spaces around it, and a blank one is no name.
TEST(DiskInfoTest, FiguresGiveFreeSpaceUsedSpaceAndAShareThatStaysInRange)
{
    const std::tuple<VolumeFigures, DiskInfo, qint64, double> cases[] = {
        {{500, 200, 150}, {500, 200}, 300, 0.6},
        {{500, std::nullopt, 150}, {500, 150}, 350, 0.7},
        {{std::nullopt, std::nullopt, 150}, {0, 150}, 0, 0.0},
        {{}, {0, 0}, 0, 0.0},
        {{-5, -1, 10}, {0, 0}, 0, 0.0},
        {{100, 250, std::nullopt}, {100, 250}, 0, 0.0},
        {{10, 0, 7}, {10, 0}, 10, 1.0},
        {{kHuge, std::nullopt, 0}, {kHuge, 0}, kHuge, 1.0},
        {{500, 200, 150, QStringLiteral(" Datos ")}, {500, 200, QStringLiteral("Datos")}, 300, 0.6},
        {{500, 200, 150, QStringLiteral("  ")}, {500, 200}, 300, 0.6},
    };
    for (const auto& [figures, expected, used, fraction] : cases) {
        FakeVolumeCapacity volume;
        volume.answer = figures;
        const DiskInfo info = DiskInfo::current(volume);
        SCOPED_TRACE(testing::Message() << expected.total << " " << expected.available);
        EXPECT_EQ(info, expected);
        EXPECT_EQ(info.used(), used);
        EXPECT_DOUBLE_EQ(info.fraction(), fraction);
    }
}

} // namespace
