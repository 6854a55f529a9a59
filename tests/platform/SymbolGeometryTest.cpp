#include "platform/SymbolGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

using namespace nubo;

// Each lands inside its box, centred, its shape kept, never enlarged (thin strokes would blur), and
// touching the box exactly when it had to shrink.
TEST(SymbolGeometry, EverySymbolLandsInsideItsBoxCentredWithItsShapeKept)
{
    const std::pair<QSizeF, QSize> cases[] = {
        {{40, 20}, {32, 32}}, {{20, 40}, {32, 32}}, {{10, 12}, {32, 32}},  {{300, 280}, {16, 16}},
        {{30, 30}, {24, 16}}, {{30, 30}, {16, 24}}, {{0.5, 0.25}, {1, 1}}, {{1000, 1}, {64, 64}}};
    constexpr qreal tolerance = 1e-9;
    for (const auto& [natural, box] : cases) {
        SCOPED_TRACE(testing::Message() << natural.width() << "x" << natural.height() << " in " << box.width()
                                        << "x" << box.height());
        const QRectF r = SymbolGeometry::placement(natural, box);
        const QRectF whole(0, 0, box.width(), box.height());
        ASSERT_FALSE(r.isEmpty());
        EXPECT_TRUE(whole.adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(r));
        EXPECT_NEAR(r.width() / r.height(), natural.width() / natural.height(), tolerance);
        EXPECT_NEAR((r.center() - whole.center()).manhattanLength(), 0, tolerance);
        EXPECT_LE(r.width(), natural.width() + tolerance);
        const bool shrunk = natural.width() > box.width() || natural.height() > box.height();
        EXPECT_EQ(shrunk, std::abs(r.width() - box.width()) < tolerance ||
                              std::abs(r.height() - box.height()) < tolerance);
    }
}

// An unmeasurable image or an empty box divides by nothing; a glyph box is taller than its point size.
TEST(SymbolGeometry, NothingToDrawGivesAnEmptyPlacementAndPointSizeFollowsTheShorterSide)
{
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const qreal infinity = std::numeric_limits<qreal>::infinity();
    const std::pair<QSizeF, QSize> nothing[] = {{{0, 20}, {32, 32}},   {{20, -1}, {32, 32}},
                                                {{nan, 20}, {32, 32}}, {{20, infinity}, {32, 32}},
                                                {{20, 20}, {0, 32}},   {{20, 20}, {32, -5}}};
    for (const auto& [natural, box] : nothing)
        EXPECT_TRUE(SymbolGeometry::placement(natural, box).isEmpty()) << natural.width() << "x" << box.width();
    using SymbolGeometry::pointSize;
    EXPECT_EQ(std::pair(pointSize({0, 32}), pointSize({-1, -1})), std::pair(0.0, 0.0));
    const qreal square = pointSize({32, 32});
    EXPECT_TRUE(square > 16.0 && square < 32.0) << square;
    EXPECT_EQ(std::pair(pointSize({32, 64}), pointSize({64, 32})), std::pair(square, square));
}
