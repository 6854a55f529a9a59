#include "platform/SymbolGeometry.h"

#include <algorithm>
#include <cmath>

namespace nubo::SymbolGeometry {

namespace {

// SF Symbols at point size p draw about 1.2 p tall with their padding; 0.75 of the box leaves
// the tallest ones ("exclamationmark.triangle.fill") whole in a square box.
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
