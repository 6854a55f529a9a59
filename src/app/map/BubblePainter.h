#pragma once

#include "core/format/FileKind.h"
#include "core/layout/CirclePack.h"
#include "models/map/MapScene.h" // MapTransform

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QString>

#include <array>
#include <unordered_map>
#include <utility>
#include <vector>

class QFontMetricsF;
class QPainter;

namespace nubo {

/// Paints bubbles and their labels with QPainter: the colours of their kinds and roles, marks and
/// the hovered child, names that fit, and cached discs for the thousands of small bubbles. It
/// reads nothing but the values it is given, so a picture can be painted on any thread; each
/// thread paints with its own painter, whose disc cache is its own.
class BubblePainter
{
public:
    struct Style
    {
        QColor frame{0xF5, 0xF5, 0xF7};
        QColor stroke{0, 0, 0, 26};
        QColor mark{0xE0, 0x35, 0x2B};
        QColor hover{0x1D, 0x1D, 0x1F};
        QColor text{0xFF, 0xFF, 0xFF};
        QString fontFamily;
    };

    /// The icon each file kind shows in a large bubble, indexed by the kind.
    using Icons = std::array<QImage, FileKinds::all.size()>;

    /// One bubble as it is painted: where it stands and stood, its roles, and what its look and
    /// label need to know. Only children carry a name.
    struct Bubble
    {
        static constexpr int Context = 0;
        static constexpr int Child = 1;
        static constexpr int Grandchild = 2;

        PackedCircle circle;
        PackedCircle before;
        bool moved = false;
        int roleFrom = -1;
        int roleTo = -1;
        QColor kind;
        int icon = 0; ///< the kind's index in `Icons`
        bool folder = false;
        bool marked = false;
        bool hovered = false;
        QString name;
        qint64 size = 0;

        /// Where the bubble stands `t` (0 to 1) of the way through the animation.
        [[nodiscard]] PackedCircle at(double t) const;
    };

    /// Paints `bubbles` (parents first) placed by `place`, `t` of the way through their
    /// animation; only what meets `region` (view coordinates) is painted.
    void paint(QPainter& painter, const std::vector<Bubble>& bubbles, const MapTransform& place, double t,
               const QRectF& region);

    /// The name a bubble shows in `width`: whole, cut at its end with "…", or nothing when the cut
    /// would leave fewer than a few letters, which nobody could read.
    [[nodiscard]] static QString fittedName(const QString& name, const QFontMetricsF& metrics, double width);

    Style style;
    Icons icons;

private:
    struct Look
    {
        QColor fill;
        QColor stroke;
        double strokeWidth = 0;
    };

    [[nodiscard]] Look look(const Bubble& bubble, int role) const;
    [[nodiscard]] Look blended(const Bubble& bubble, double t) const;
    void paintLabel(QPainter& painter, const Bubble& bubble, QPointF centre, double r);
    const QImage& sprite(const Look& look, double r, qreal ratio);

    struct PairHash
    {
        size_t operator()(const std::pair<quint64, quint64>& key) const
        {
            return std::hash<quint64>()(key.first) ^
                   (std::hash<quint64>()(key.second) * 0x9E3779B97F4A7C15ULL);
        }
    };
    std::unordered_map<std::pair<quint64, quint64>, QImage, PairHash> m_sprites;
    qreal m_spriteRatio = 0;
};

} // namespace nubo
