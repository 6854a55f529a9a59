#include "core/layout/CirclePack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <utility>
#include <vector>

using nubo::PackedCircle;
namespace CirclePack = nubo::CirclePack;

namespace {

double distance(const PackedCircle& a, const PackedCircle& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

// No two circles overlap beyond the tolerance, all lie inside the enclosing radius, the group is
// centred on its bounding box and the radii are the ones asked for.
void expectValidPacking(const std::vector<double>& radii, const CirclePack::Result& result)
{
    ASSERT_EQ(result.circles.size(), radii.size());
    double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300, outer = 0;
    for (size_t i = 0; i < radii.size(); ++i) {
        const PackedCircle& c = result.circles[i];
        ASSERT_TRUE(std::isfinite(c.x) && std::isfinite(c.y)) << i;
        EXPECT_DOUBLE_EQ(c.r, radii[i] > 1e-9 ? radii[i] : 1e-9);
        for (size_t j = i + 1; j < radii.size(); ++j) {
            const PackedCircle& d = result.circles[j];
            ASSERT_GE(distance(c, d), c.r + d.r - 1e-6 * std::max(1.0, c.r + d.r))
                << "circles " << i << " and " << j << " of " << radii.size();
        }
        minX = std::min(minX, c.x - c.r);
        maxX = std::max(maxX, c.x + c.r);
        minY = std::min(minY, c.y - c.r);
        maxY = std::max(maxY, c.y + c.r);
        outer = std::max(outer, std::hypot(c.x, c.y) + c.r);
        EXPECT_LE(std::hypot(c.x, c.y) + c.r, result.radius + 1e-9);
    }
    EXPECT_NEAR(minX + maxX, 0, 1e-9 * (maxX - minX));
    EXPECT_NEAR(minY + maxY, 0, 1e-9 * (maxY - minY));
    EXPECT_DOUBLE_EQ(outer, result.radius); // the enclosing radius is attained, not just an upper bound
}

} // namespace

// Fixed radii, fixed centres: the first two circles sit side by side on the x axis, each next one
// goes against the chain pair whose weighted middle is nearest the origin (the first such pair on
// a tie), counter-clockwise, and the group is centred on its bounding box. Any other packing, even
// a valid one such as the mirror image, would move every bubble the user knows.
TEST(CirclePack, KnownRadiiGiveKnownCentres)
{
    const double root3 = std::sqrt(3.0);
    const struct
    {
        std::vector<double> radii;
        std::vector<std::pair<double, double>> centres;
        double radius;
    } cases[] = {
        {{}, {}, 0},
        {{5}, {{0, 0}}, 5},
        {{3, 1}, {{-1, 0}, {3, 0}}, 4},
        // A 3-4-5 triangle of centres, moved down by 0.2 so that its box is centred.
        {{3, 2, 1}, {{-2, -0.2}, {3, -0.2}, {1.2, 2.2}}, 3 + std::sqrt(4.04)},
        // Unit circles on the hexagonal grid: the fifth goes against the first and the fourth.
        {{1, 1, 1, 1, 1},
         {{-0.5, 0}, {1.5, 0}, {0.5, root3}, {0.5, -root3}, {-1.5, -root3}},
         1 + std::sqrt(5.25)},
        // The fourth circle mirrors the third below the axis, the fifth touches the first and the
        // fourth, the sixth the third and the first.
        {{3, 2, 1, 1, 2, 2},
         {{-2, 0}, {3, 0}, {1.2, 2.4}, {1.2, -2.4}, {-0.6, -4.8}, {-0.6, 4.8}},
         2 + std::sqrt(23.4)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.radii.size() << " circles");
        const CirclePack::Result result = CirclePack::pack(c.radii);
        ASSERT_EQ(result.circles.size(), c.centres.size());
        for (size_t i = 0; i < c.centres.size(); ++i) {
            EXPECT_NEAR(result.circles[i].x, c.centres[i].first, 1e-9) << "circle " << i;
            EXPECT_NEAR(result.circles[i].y, c.centres[i].second, 1e-9) << "circle " << i;
        }
        EXPECT_NEAR(result.radius, c.radius, 1e-9);
        if (!c.radii.empty())
            expectValidPacking(c.radii, result);
    }
}

// Sizes like a folder's, spread over many orders of magnitude with many small ones, sorted as the
// map sends them or not, many equal, some zero, negative or not a number, or all zero.
TEST(CirclePack, RandomInputsNeverOverlapAndStayInside)
{
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> count(1, 300);
    std::lognormal_distribution<double> size(10, 3);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> radii(static_cast<size_t>(count(random)));
        for (double& r : radii)
            r = round == 7 ? 0 : std::sqrt(size(random));
        if (round % 2 == 0)
            std::sort(radii.begin(), radii.end(), std::greater<>());
        if (round % 10 == 1)
            std::fill(radii.begin(), radii.begin() + static_cast<long>(radii.size() / 2), 1.0);
        if (round % 10 == 3)
            radii.insert(radii.begin() + static_cast<long>(radii.size() / 2), {0, 0, -3, std::nan("")});
        SCOPED_TRACE(round);
        expectValidPacking(radii, CirclePack::pack(radii));
        if (HasFatalFailure())
            return;
    }
}
