#include "platform/SymbolGeometry.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

using namespace nubo;

namespace {

constexpr qreal kTolerance = 1e-9;

} // namespace

TEST(SymbolGeometry, EverySymbolLandsInsideItsBoxCentredWithItsShapeKept)
{
    struct Case
    {
        QSizeF natural;
        QSize box;
    };
    // Wide and tall symbols, ones smaller and larger than the box, boxes that are not square
    // (a toolbar asks 24×16), and the one-pixel box a view can ask for while it lays out.
    const Case cases[] = {{{40, 20}, {32, 32}}, {{20, 40}, {32, 32}}, {{10, 12}, {32, 32}},
                          {{300, 280}, {16, 16}}, {{30, 30}, {24, 16}}, {{30, 30}, {16, 24}},
                          {{0.5, 0.25}, {1, 1}}, {{1000, 1}, {64, 64}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.natural.width() << "x" << c.natural.height() << " in "
                                        << c.box.width() << "x" << c.box.height());
        const QRectF r = SymbolGeometry::placement(c.natural, c.box);
        ASSERT_FALSE(r.isEmpty());
        EXPECT_GE(r.left(), -kTolerance);
        EXPECT_GE(r.top(), -kTolerance);
        EXPECT_LE(r.right(), c.box.width() + kTolerance);
        EXPECT_LE(r.bottom(), c.box.height() + kTolerance);
        EXPECT_NEAR(r.width() / r.height(), c.natural.width() / c.natural.height(), 1e-9);
        EXPECT_NEAR(r.center().x(), c.box.width() / 2.0, kTolerance);
        EXPECT_NEAR(r.center().y(), c.box.height() / 2.0, kTolerance);
        // Never drawn larger than the symbol came: an enlarged bitmap would blur thin strokes.
        EXPECT_LE(r.width(), c.natural.width() + kTolerance);
        // One side touches the box exactly when the symbol had to shrink.
        const bool shrunk = c.natural.width() > c.box.width() || c.natural.height() > c.box.height();
        const bool touches = std::abs(r.width() - c.box.width()) < 1e-9 || std::abs(r.height() - c.box.height()) < 1e-9;
        EXPECT_EQ(shrunk, touches);
    }
}

TEST(SymbolGeometry, NothingToDrawGivesAnEmptyPlacement)
{
    const qreal nan = std::numeric_limits<qreal>::quiet_NaN();
    const qreal infinity = std::numeric_limits<qreal>::infinity();
    // AppKit answers a zero size for an image it could not measure; a box can be empty while a
    // view is being laid out. Neither may turn into a division by zero or an endless image.
    for (const auto& [natural, box] : {std::pair<QSizeF, QSize>{{0, 20}, {32, 32}}, {{20, -1}, {32, 32}},
                                       {{nan, 20}, {32, 32}}, {{20, infinity}, {32, 32}}, {{20, 20}, {0, 32}},
                                       {{20, 20}, {32, -5}}})
        EXPECT_TRUE(SymbolGeometry::placement(natural, box).isEmpty()) << natural.width() << "x" << box.width();
}

TEST(SymbolGeometry, PointSizeFollowsTheShorterSideOfTheBox)
{
    EXPECT_DOUBLE_EQ(SymbolGeometry::pointSize({32, 32}), SymbolGeometry::pointSize({32, 64}));
    EXPECT_DOUBLE_EQ(SymbolGeometry::pointSize({64, 32}), SymbolGeometry::pointSize({32, 32}));
    EXPECT_LT(SymbolGeometry::pointSize({32, 32}), 32.0);
    EXPECT_GT(SymbolGeometry::pointSize({32, 32}), 16.0);
    EXPECT_EQ(SymbolGeometry::pointSize({0, 32}), 0.0);
    EXPECT_EQ(SymbolGeometry::pointSize({-1, -1}), 0.0);
}
