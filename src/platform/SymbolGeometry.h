#pragma once

#include <QRectF>
#include <QSize>
#include <QSizeF>

namespace nubo {

/// Where a drawn symbol goes inside the square of pixels a view asked for. The Mac draws SF
/// Symbols at a point size (like text), and a symbol's own shape decides its width: a wide one
/// ("rectangle.stack.badge.minus") at the same point size as a round one ("gearshape.fill") would
/// spill out of its box. These rules keep every symbol inside the box, centred, and never blown
/// up past the size it was drawn at, so thin strokes stay crisp.
namespace SymbolGeometry {

/// The point size to ask the symbol in for a box of `box` pixels: a little below the box's
/// shorter side, since a symbol's glyph box is taller than its point size.
[[nodiscard]] qreal pointSize(const QSize& box);

/// The rectangle, in the box's pixels, to draw an image of natural size `natural` into: scaled
/// down (never up) to fit, aspect kept, centred. Empty when there is nothing to draw.
[[nodiscard]] QRectF placement(const QSizeF& natural, const QSize& box);

} // namespace SymbolGeometry

} // namespace nubo
