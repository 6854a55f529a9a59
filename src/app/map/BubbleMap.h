#pragma once

#include "core/layout/BubbleLayout.h"
#include "models/map/MapModel.h"
#include "models/map/MapScene.h"

#include <QColor>
#include <QImage>
#include <QPointer>
#include <QQuickItem>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

#include <atomic>
#include <unordered_map>
#include <vector>

class QFontMetricsF;
class QPainter;
class QSGNode;

namespace nubo {

class FileNode;

/// The bubble map: the folder on show as a large circle, its children packed inside it and the
/// children of every child that opens inside those, drawn as one batch of scene-graph geometry
/// (or, where the scene graph draws in software, painted into one image). Opening a folder zooms
/// into its circle and leaving it zooms out. A tap opens a folder or marks anything else; the
/// pointer over a child makes it the model's hovered node; a right click asks for the node menu.
class BubbleMap : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_DISABLE_COPY_MOVE(BubbleMap)
    Q_PROPERTY(MapModel* model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(QColor frameColor MEMBER m_frameColor NOTIFY styleChanged)
    Q_PROPERTY(QColor strokeColor MEMBER m_strokeColor NOTIFY styleChanged)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY styleChanged)
    Q_PROPERTY(QColor hoverColor MEMBER m_hoverColor NOTIFY styleChanged)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY styleChanged)
    Q_PROPERTY(QString fontFamily MEMBER m_fontFamily NOTIFY styleChanged)
    Q_PROPERTY(int zoomDuration MEMBER m_zoomDuration NOTIFY styleChanged)
    Q_PROPERTY(int reflowDuration MEMBER m_reflowDuration NOTIFY styleChanged)
    /// How far the running zoom has come, 0 to 1 (1 at rest). Benchmarks drive it by hand.
    Q_PROPERTY(qreal zoomProgress READ zoomProgress WRITE setZoomProgress NOTIFY zoomProgressChanged)
    Q_PROPERTY(int bubbleCount READ bubbleCount NOTIFY sceneChanged)
    /// The name of the child under the pointer, for the tooltip; empty over nothing.
    Q_PROPERTY(QString toolTip READ toolTip NOTIFY toolTipChanged)
    Q_PROPERTY(QPointF pointer READ pointer NOTIFY toolTipChanged)

public:
    explicit BubbleMap(QQuickItem* parent = nullptr);
    ~BubbleMap() override;

    [[nodiscard]] MapModel* model() const { return m_model; }
    void setModel(MapModel* model);
    [[nodiscard]] qreal zoomProgress() const { return m_progress; }
    void setZoomProgress(qreal progress);
    [[nodiscard]] int bubbleCount() const { return int(m_scene.size()); }
    [[nodiscard]] QString toolTip() const { return m_toolTip; }
    [[nodiscard]] QPointF pointer() const { return m_pointer; }
    /// How long the item itself took to prepare its latest frame (geometry, labels, image), for
    /// the benchmark; the scene graph's render comes on top.
    [[nodiscard]] qint64 syncNanoseconds() const { return m_syncNanoseconds.load(); }

    /// Where the child bubble named `name` sits in this item (its centre and radius as x, y,
    /// width); an empty rectangle when no child has that name. For tests and tools.
    Q_INVOKABLE QRectF childBubble(const QString& name) const;
    /// Starts the zoom from the previous folder again, from its first frame.
    Q_INVOKABLE void restartZoom();

    /// The name a bubble shows in `width`: whole, cut at its end with "…", or nothing when the cut
    /// would leave fewer than a few letters, which nobody could read.
    [[nodiscard]] static QString fittedName(const QString& name, const QFontMetricsF& metrics, double width);

    /// Paints the bubbles and labels into `painter` over a view of `size`; the software path
    /// and the label layer of the geometry path both come here.
    void paintBubbles(QPainter& painter, QSizeF size, bool circles, bool labels);

signals:
    void modelChanged();
    void styleChanged();
    void zoomProgressChanged();
    void sceneChanged();
    void toolTipChanged();
    /// A right click on a child: the model's menu node is set; the view opens the menu at (x, y).
    void menuRequested(qreal x, qreal y);

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Look
    {
        QColor fill;
        QColor stroke;
        double strokeWidth = 0;
    };
    // One bubble of the picture, with its role before and after the running zoom (-1: absent).
    struct Drawn
    {
        const FileNode* node = nullptr;
        PackedCircle circle;
        int depth = 0;
        int roleFrom = -1;
        int roleTo = -1;
        // Where a bubble stood before the tree changed under it (a deletion), so that it moves.
        PackedCircle before;
        bool moved = false;

        [[nodiscard]] PackedCircle at(double t) const;
    };

    void rebuild();
    void animate(int duration, QEasingCurve::Type easing);
    void loadIcons();
    void currentMoved();
    void treeChanged();
    void compose(const std::vector<MapScene::Bubble>* from);
    void pointAt(QPointF position);
    [[nodiscard]] int childAt(QPointF position) const;
    [[nodiscard]] MapTransform transform() const;
    [[nodiscard]] QColor kindColor(const FileNode* node);
    [[nodiscard]] Look look(const Drawn& drawn, int role, QColor kind) const;
    [[nodiscard]] Look blended(const Drawn& drawn, QColor kind) const;
    QSGNode* buildGeometry(QSGNode* node);
    const QImage& sprite(const Look& style, double r, qreal ratio);

    struct PairHash
    {
        size_t operator()(const std::pair<quint64, quint64>& key) const
        {
            return std::hash<quint64>()(key.first) ^
                   (std::hash<quint64>()(key.second) * 0x9E3779B97F4A7C15ULL);
        }
    };

    QPointer<MapModel> m_model;
    BubbleLayout m_layout;
    const FileNode* m_root = nullptr;
    const FileNode* m_shownRoot = nullptr; // the root of the tree at the last change of revision
    const FileNode* m_current = nullptr;
    std::vector<MapScene::Bubble> m_scene;
    std::vector<Drawn> m_drawn;
    std::unordered_map<const FileNode*, QColor> m_kinds;
    PackedCircle m_from{0, 0, 1};
    PackedCircle m_to{0, 0, 1};
    QVariantAnimation m_zoom;
    qreal m_progress = 1;
    int m_pressed = -1;
    const FileNode* m_pointed = nullptr;
    QString m_toolTip;
    QPointF m_pointer;

    QColor m_frameColor{0xF5, 0xF5, 0xF7};
    QColor m_strokeColor{0, 0, 0, 26};
    QColor m_markColor{0xE0, 0x35, 0x2B};
    QColor m_hoverColor{0x1D, 0x1D, 0x1F};
    QColor m_textColor{0xFF, 0xFF, 0xFF};
    QString m_fontFamily;
    int m_zoomDuration = 520;
    int m_reflowDuration = 450;
    QImage m_icons[11];
    std::atomic<qint64> m_syncNanoseconds{0};
    std::unordered_map<std::pair<quint64, quint64>, QImage, PairHash> m_sprites;
};

} // namespace nubo
