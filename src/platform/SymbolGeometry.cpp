#include "platform/SymbolGeometry.h"

#include <algorithm>
#include <cmath>

namespace nubo::SymbolGeometry {

namespace {

// A symbol's image at point size p is taller than p (it carries the font's line height, like a
// letter); three quarters of the box keeps most symbols at their natural size, and the
// placement shrinks the few that still do not fit instead of cutting them.
constexpr qreal kPointsPerPixel = 0.75;

bool usable(qreal value)
{
    return std::isfinite(value) && value > 0;
}

} // namespace

qreal pointSize(const QSize& box)
{
    const int side = std::min(box.width(), box.height());
    return side > 0 ? side * kPointsPerPixel : 0.0;
}

QRectF placement(const QSizeF& natural, const QSize& box)
{
    if (!usable(natural.width()) || !usable(natural.height()) || box.width() <= 0 || box.height() <= 0)
        return {};
    const qreal scale = std::min({1.0, box.width() / natural.width(), box.height() / natural.height()});
    const QSizeF drawn = natural * scale;
    return {QPointF((box.width() - drawn.width()) / 2, (box.height() - drawn.height()) / 2), drawn};
}

} // namespace nubo::SymbolGeometry
