#include "core/layout/CirclePack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

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

TEST(CirclePack, OneTwoAndThreeCircles)
{
    EXPECT_TRUE(CirclePack::pack({}).circles.empty());
    EXPECT_EQ(CirclePack::pack({}).radius, 0);

    const auto one = CirclePack::pack({5});
    EXPECT_EQ(one.circles[0], (PackedCircle{0, 0, 5}));
    EXPECT_EQ(one.radius, 5);

    // Two: side by side, touching, centred on x.
    const auto two = CirclePack::pack({3, 1});
    expectValidPacking({3, 1}, two);
    EXPECT_DOUBLE_EQ(distance(two.circles[0], two.circles[1]), 4);
    EXPECT_DOUBLE_EQ(two.circles[0].y, 0);
    EXPECT_DOUBLE_EQ(two.circles[0].x, -1);
    EXPECT_DOUBLE_EQ(two.circles[1].x, 3);
    EXPECT_DOUBLE_EQ(two.radius, 4);

    // Three: every pair touches.
    const std::vector<double> radii{3, 2, 1};
    const auto three = CirclePack::pack(radii);
    expectValidPacking(radii, three);
    for (int i = 0; i < 3; ++i) {
        for (int j = i + 1; j < 3; ++j)
            EXPECT_NEAR(distance(three.circles[i], three.circles[j]), radii[i] + radii[j], 1e-12);
    }
}

TEST(CirclePack, ZeroAndBadRadiiStillGiveCircles)
{
    const std::vector<double> radii{0, 0, 4, 0, -3, std::nan(""), 2};
    const auto result = CirclePack::pack(radii);
    expectValidPacking(radii, result);
    EXPECT_EQ(result.circles[0].r, 1e-9);
    EXPECT_EQ(result.circles[5].r, 1e-9);

    const auto zeros = CirclePack::pack({0, 0, 0, 0});
    expectValidPacking({0, 0, 0, 0}, zeros);
    EXPECT_GT(zeros.radius, 0);
}

TEST(CirclePack, RandomInputsNeverOverlapAndStayInside)
{
    std::mt19937 random(20261121);
    std::uniform_int_distribution<int> count(1, 300);
    // Sizes like a folder's: spread over many orders of magnitude, many small ones.
    std::lognormal_distribution<double> size(10, 3);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> radii(static_cast<size_t>(count(random)));
        for (double& r : radii)
            r = std::sqrt(size(random));
        if (round % 2 == 0)
            std::sort(radii.begin(), radii.end(), std::greater<>()); // as the map sends them
        if (round % 10 == 1)
            std::fill(radii.begin(), radii.begin() + static_cast<long>(radii.size() / 2), 1.0); // many equal
        SCOPED_TRACE(round);
        expectValidPacking(radii, CirclePack::pack(radii));
        if (HasFatalFailure())
            return;
    }
}
