#include "BubblePainter.h"

#include "core/format/Bytes.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace nubo {

namespace {

// Bubbles smaller than this radius (in pixels) cannot be seen and are not drawn.
constexpr double Smallest = 0.35;
// A child carries its name from this radius, its size from the next, its kind's icon from the last.
constexpr double NameRadius = 26;
constexpr double SizeRadius = 40;
constexpr double IconRadius = 60;
// Below this radius (in pixels) the painter stamps cached discs instead of drawing ellipses.
constexpr double SpriteRadius = 24;
// How far a disc's stamp (rounded to whole pixels) and a label's pill and badge can reach beyond
// the circle: what meets a region is painted whole, so a region painted again matches.
constexpr double DiscReach = 2;
constexpr double LabelReach = 12;

QColor withAlpha(QColor colour, double alpha)
{
    colour.setAlphaF(float(std::clamp(colour.alphaF() * alpha, 0.0, 1.0)));
    return colour;
}

QColor mix(const QColor& a, const QColor& b, double t)
{
    const auto lerp = [t](float x, float y) { return float(x + (y - x) * t); };
    return QColor::fromRgbF(lerp(a.redF(), b.redF()), lerp(a.greenF(), b.greenF()),
                            lerp(a.blueF(), b.blueF()), lerp(a.alphaF(), b.alphaF()));
}

QRectF square(QPointF centre, double r)
{
    return {centre.x() - r, centre.y() - r, 2 * r, 2 * r};
}

} // namespace

PackedCircle BubblePainter::Bubble::at(double t) const
{
    if (!moved || t >= 1)
        return circle;
    const auto lerp = [t](double a, double b) { return a + (b - a) * t; };
    return {lerp(before.x, circle.x), lerp(before.y, circle.y), lerp(before.r, circle.r)};
}

BubblePainter::Look BubblePainter::look(const Bubble& bubble, int role) const
{
    const QColor& kind = bubble.kind;
    Look result;
    switch (role) {
    case Bubble::Context:
        return {style.frame, style.stroke, 1};
    case Bubble::Child:
        result = bubble.folder ? Look{withAlpha(kind, 0.16), withAlpha(kind, 0.9), 1.5}
                               : Look{withAlpha(kind, 0.85), withAlpha(kind.lighter(125), 0.9), 1};
        break;
    default:
        result = {withAlpha(kind, 0.72), withAlpha(style.frame, 0.55), 0.75};
        break;
    }
    if (bubble.marked) {
        result.fill = mix(result.fill, withAlpha(style.mark, 0.9), 0.8);
        result.stroke = style.mark;
        result.strokeWidth = role == Bubble::Child ? 2.5 : 1.5;
    } else if (role == Bubble::Child && bubble.hovered) {
        result.fill = withAlpha(result.fill, bubble.folder ? 1.9 : 1.15);
        result.stroke = style.hover;
        result.strokeWidth = 2;
    }
    return result;
}

BubblePainter::Look BubblePainter::blended(const Bubble& bubble, double t) const
{
    // A bubble on its way out is gone once the animation ends, and one on its way in starts
    // from nothing.
    if (t >= 1 && bubble.roleTo < 0)
        return {};
    if (bubble.roleFrom < 0 || t >= 1) {
        Look to = look(bubble, bubble.roleTo);
        if (bubble.roleFrom < 0 && t < 1) {
            to.fill = withAlpha(to.fill, t);
            to.stroke = withAlpha(to.stroke, t);
        }
        return to;
    }
    Look from = look(bubble, bubble.roleFrom);
    if (bubble.roleTo < 0) {
        from.fill = withAlpha(from.fill, 1 - t);
        from.stroke = withAlpha(from.stroke, 1 - t);
        return from;
    }
    const Look to = look(bubble, bubble.roleTo);
    return {mix(from.fill, to.fill, t), mix(from.stroke, to.stroke, t),
            from.strokeWidth + (to.strokeWidth - from.strokeWidth) * t};
}

void BubblePainter::paint(QPainter& painter, const std::vector<Bubble>& bubbles, const MapTransform& place,
                          double t, const QRectF& region)
{
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Bubble& bubble : bubbles) {
        const PackedCircle circle = bubble.at(t);
        const double r = place.toView(circle.r);
        const QPointF centre = place.toView(circle.x, circle.y);
        if (r < Smallest || !region.intersects(square(centre, r + DiscReach)))
            continue;
        const Look look = blended(bubble, t);
        if (look.fill.alpha() == 0 && look.stroke.alpha() == 0)
            continue;
        if (r < SpriteRadius) {
            // Thousands of small discs: each is stamped from a cached image of its colour and
            // size, which is many times faster than filling an antialiased ellipse.
            const QImage& disc = sprite(look, r, painter.device()->devicePixelRatioF());
            const double half = std::ceil(r) + 1;
            // Whole pixels keep the stamp on the painter's fast path (no resampling).
            painter.drawImage(QPointF(std::round(centre.x() - half), std::round(centre.y() - half)), disc);
            continue;
        }
        painter.setBrush(look.fill);
        // A border on a small bubble costs a stroked path and shows as a smudge: small ones
        // are filled only.
        if (look.strokeWidth > 0 && r > 8 && look.stroke.alpha() > 0)
            painter.setPen(QPen(look.stroke, look.strokeWidth));
        else
            painter.setPen(Qt::NoPen);
        const double inset = painter.pen().style() == Qt::NoPen ? 0 : look.strokeWidth / 2;
        painter.drawEllipse(centre, r - inset, r - inset);
    }
    for (const Bubble& bubble : bubbles) {
        const double shown =
            (bubble.roleTo == Bubble::Child ? t : 0) + (bubble.roleFrom == Bubble::Child ? 1 - t : 0);
        if (shown <= 0.01)
            continue;
        const PackedCircle circle = bubble.at(t);
        const double r = place.toView(circle.r);
        const QPointF centre = place.toView(circle.x, circle.y);
        if (!region.intersects(square(centre, r + LabelReach)))
            continue;
        painter.setOpacity(std::min(1.0, shown));
        paintLabel(painter, bubble, centre, r);
    }
    painter.setOpacity(1);
}

void BubblePainter::paintLabel(QPainter& painter, const Bubble& bubble, QPointF centre, double r)
{
    if (bubble.marked && r >= 12) {
        // A check badge on the rim, up and to the right.
        const double b = std::clamp(r * 0.22, 7.0, 11.0);
        const QPointF at = centre + QPointF(r * 0.7071, -r * 0.7071);
        painter.setPen(QPen(Qt::white, 1.5));
        painter.setBrush(style.mark);
        painter.drawEllipse(at, b, b);
        QPainterPath check;
        check.moveTo(at + QPointF(-b * 0.45, 0));
        check.lineTo(at + QPointF(-b * 0.1, b * 0.35));
        check.lineTo(at + QPointF(b * 0.45, -b * 0.35));
        painter.setPen(QPen(Qt::white, std::max(1.5, b * 0.22), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(check);
    }
    if (r < NameRadius)
        return;
    QFont font(style.fontFamily.isEmpty() ? QFont().family() : style.fontFamily);
    font.setPixelSize(int(std::clamp(r * 0.2, 11.0, 15.0)));
    font.setWeight(QFont::DemiBold);
    const QFontMetricsF nameMetrics(font);
    const QString name = fittedName(bubble.name, nameMetrics, r * 1.6);
    if (name.isEmpty())
        return;
    QFont small = font;
    small.setPixelSize(std::max(10, font.pixelSize() - 2));
    small.setWeight(QFont::Normal);
    const QFontMetricsF sizeMetrics(small);
    const bool withSize = r >= SizeRadius;
    const QString bytes = withSize ? Bytes::string(bubble.size) : QString();
    const auto symbol = size_t(bubble.icon);
    const bool withIcon =
        !bubble.folder && r >= IconRadius && symbol < icons.size() && !icons[symbol].isNull();
    const double icon = withIcon ? std::clamp(r * 0.28, 18.0, 28.0) : 0;

    const double textWidth =
        std::max(nameMetrics.horizontalAdvance(name), withSize ? sizeMetrics.horizontalAdvance(bytes) : 0.0);
    const double textHeight = nameMetrics.height() + (withSize ? sizeMetrics.height() : 0);
    const double blockHeight = textHeight + (withIcon ? icon + 4 : 0);
    double top = centre.y() - blockHeight / 2;
    if (bubble.folder) {
        // A folder's label sits on a dark pill so that it reads over the bubbles inside it.
        const QRectF pill(centre.x() - textWidth / 2 - 8, top - 3, textWidth + 16, textHeight + 6);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 115));
        painter.drawRoundedRect(pill, 7, 7);
    }
    if (withIcon) {
        painter.drawImage(QRectF(centre.x() - icon / 2, top, icon, icon), icons[symbol]);
        top += icon + 4;
    }
    painter.setFont(font);
    const QRectF nameBox(centre.x() - textWidth / 2 - 2, top, textWidth + 4, nameMetrics.height());
    // White reads on the deep colours; the light ones (yellow, sky blue) take dark text.
    const QColor& kind = bubble.kind;
    const double luminance = 0.299 * kind.redF() + 0.587 * kind.greenF() + 0.114 * kind.blueF();
    const bool lightFill = !bubble.folder && !bubble.marked && luminance > 0.68;
    const QColor ink = lightFill ? QColor(0x1D, 0x1D, 0x1F) : style.text;
    if (!bubble.folder && !lightFill) {
        painter.setPen(QColor(0, 0, 0, 70));
        painter.drawText(nameBox.translated(0, 1), Qt::AlignCenter, name);
    }
    painter.setPen(ink);
    painter.drawText(nameBox, Qt::AlignCenter, name);
    if (withSize) {
        painter.setFont(small);
        painter.setPen(withAlpha(ink, 0.85));
        painter.drawText(QRectF(centre.x() - textWidth / 2 - 2, top + nameMetrics.height(), textWidth + 4,
                                sizeMetrics.height()),
                         Qt::AlignCenter, bytes);
    }
}

QString BubblePainter::fittedName(const QString& name, const QFontMetricsF& metrics, double width)
{
    if (metrics.horizontalAdvance(name) <= width)
        return name;
    // The start of a name is what people recognise it by; a middle cut ("Do…ts") reads as
    // neither end.
    const QString cut = metrics.elidedText(name, Qt::ElideRight, width);
    constexpr qsizetype fewestLetters = 3;
    return cut.size() - 1 >= fewestLetters ? cut : QString();
}

const QImage& BubblePainter::sprite(const Look& look, double r, qreal ratio)
{
    // Half-pixel sizes and colours rounded to what the eye cannot tell apart keep the cache small
    // while an animation fades bubbles in and out.
    const int halfPixels = std::max(1, int(std::lround(r * 2)));
    const auto quantise = [](const QColor& c) {
        const QRgb rgba = c.rgba();
        return (quint64(qRed(rgba)) << 24) | (quint64(qGreen(rgba)) << 16) | (quint64(qBlue(rgba)) << 8) |
               quint64(qAlpha(rgba) & 0xF8);
    };
    const bool stroked = r > 8 && look.strokeWidth > 0 && look.stroke.alpha() > 0;
    const quint64 first = (quantise(look.fill) << 8) | quint64(halfPixels);
    const quint64 second =
        stroked ? (quantise(look.stroke) << 8) | quint64(std::lround(look.strokeWidth * 4)) : 0;
    const auto key = std::make_pair(first, second);
    if (ratio != m_spriteRatio) {
        m_sprites.clear(); // the window moved to a screen of another density
        m_spriteRatio = ratio;
    }
    if (const auto found = m_sprites.find(key); found != m_sprites.end())
        return found->second;
    if (m_sprites.size() > 6000)
        m_sprites.clear();

    const double radius = halfPixels / 2.0;
    const double half = std::ceil(r) + 1;
    const int side = int(std::ceil(2 * half * ratio));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(look.fill);
        double inset = 0;
        if (stroked) {
            painter.setPen(QPen(look.stroke, look.strokeWidth));
            inset = look.strokeWidth / 2;
        } else {
            painter.setPen(Qt::NoPen);
        }
        painter.drawEllipse(QPointF(half, half), radius - inset, radius - inset);
    }
    return m_sprites.emplace(key, std::move(image)).first->second;
}

} // namespace nubo
