#pragma once

#include "core/layout/CirclePack.h"
#include "models/map/MapScene.h"

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

class FileNode;
class MapModel;

/// One bubble the map draws, with its role before and after the running animation (-1: absent)
/// and, after a deletion, where it stood before the tree changed under it.
struct DrawnBubble
{
    static constexpr int Context = 0;
    static constexpr int Child = 1;
    static constexpr int Grandchild = 2;

    const FileNode* node = nullptr;
    PackedCircle circle;
    int depth = 0;
    int roleFrom = -1;
    int roleTo = -1;
    PackedCircle before;
    bool moved = false;

    /// Where the bubble stands `t` (0 to 1) of the way through the animation.
    [[nodiscard]] PackedCircle at(double t) const;
    /// The bubbles of a scene, parents before what they hold, every one at rest in its role.
    [[nodiscard]] static std::vector<DrawnBubble> fromScene(const std::vector<MapScene::Bubble>& scene);
};

/// Paints bubbles and their labels with QPainter: the colours of their kinds and roles, marks and
/// the hovered child, names that fit, and cached discs for the thousands of small bubbles. Owns
/// nothing of the tree; the map item hands it the bubbles and the model to ask about marks.
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
    using Icons = std::array<QImage, 11>;

    /// Paints `bubbles` placed by `place`, `t` of the way through their animation, into
    /// `painter`; only what meets `region` (view coordinates) is painted.
    void paint(QPainter& painter, const std::vector<DrawnBubble>& bubbles, const MapTransform& place, double t,
               const QRectF& region, const MapModel* model, bool circles, bool labels);

    /// The name a bubble shows in `width`: whole, cut at its end with "…", or nothing when the cut
    /// would leave fewer than a few letters, which nobody could read.
    [[nodiscard]] static QString fittedName(const QString& name, const QFontMetricsF& metrics, double width);

    /// Forgets the kinds' colours kept per node: a new tree may reuse the old one's addresses.
    void forgetNodes() { m_kinds.clear(); }

    Style style;
    Icons icons;

private:
    struct Look
    {
        QColor fill;
        QColor stroke;
        double strokeWidth = 0;
    };

    [[nodiscard]] QColor kindColor(const FileNode* node);
    [[nodiscard]] Look look(const DrawnBubble& drawn, int role, QColor kind, const MapModel* model) const;
    [[nodiscard]] Look blended(const DrawnBubble& drawn, double t, QColor kind, const MapModel* model) const;
    void paintLabel(QPainter& painter, const DrawnBubble& drawn, QPointF centre, double r, bool marked);
    const QImage& sprite(const Look& look, double r, qreal ratio);

    struct PairHash
    {
        size_t operator()(const std::pair<quint64, quint64>& key) const
        {
            return std::hash<quint64>()(key.first) ^
                   (std::hash<quint64>()(key.second) * 0x9E3779B97F4A7C15ULL);
        }
    };
    std::unordered_map<const FileNode*, QColor> m_kinds;
    std::unordered_map<std::pair<quint64, quint64>, QImage, PairHash> m_sprites;
    qreal m_spriteRatio = 0;
};

} // namespace nubo
