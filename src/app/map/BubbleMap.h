#pragma once

#include "BubblePainter.h"
#include "MapPicture.h"
#include "core/layout/BubbleLayout.h"
#include "models/app/Jobs.h"
#include "models/map/MapModel.h"
#include "models/map/MapScene.h"

#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>

#include <array>
#include <atomic>
#include <memory>
#include <utility>
#include <vector>

class QPainter;
class QSGNode;

namespace nubo {

class FileNode;

/// The bubble map: the folder on show as a large circle, its children packed inside it and the
/// children of every child that opens inside those. The map at rest is painted into a picture
/// off the interface thread, from values copied off the tree, while the screen keeps the previous
/// picture; the hovered child repaints only its own circle, on the interface thread.
/// Opening a folder zooms into its circle and leaving it zooms out: the zoom moves and scales the
/// pictures of the two levels and crossfades them, so no frame of it paints a bubble; a new tree
/// fades in over the old one's picture the same way. After a deletion the bubbles that stay glide
/// to their new places, painted frame by frame. A tap opens
/// a folder or marks anything else; the pointer over a child makes it the model's hovered node; a
/// right click asks for the node menu. Nothing is ever drawn outside the item.
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
    /// How far the running zoom has come, 0 to 1 (1 at rest). Benchmarks drive it by hand, which
    /// stops the animation.
    Q_PROPERTY(qreal zoomProgress READ zoomProgress WRITE setZoomProgress NOTIFY zoomProgressChanged)
    Q_PROPERTY(int bubbleCount READ bubbleCount NOTIFY sceneChanged)
    /// The name of the child under the pointer, for the tooltip; empty over nothing.
    Q_PROPERTY(QString toolTip READ toolTip NOTIFY toolTipChanged)
    Q_PROPERTY(QPointF pointer READ pointer NOTIFY toolTipChanged)
    /// Whether the picture on screen is behind what the map shows: a new one is being painted
    /// (off the interface thread, while the screen keeps the one before). For tests and benchmarks.
    Q_PROPERTY(bool painting READ painting NOTIFY paintingChanged)

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
    [[nodiscard]] bool painting() const { return m_stale; }
    /// How long the item itself took to prepare its latest frame on the user-interface thread
    /// (painting, if anything needed it, and handing the pictures over), for the benchmark; the
    /// scene graph's render comes on top.
    [[nodiscard]] qint64 workNanoseconds() const { return m_workNanoseconds.load(); }

    /// Where the child bubble named `name` sits in this item (its centre and radius as x, y,
    /// width); an empty rectangle when no child has that name. For tests and tools.
    Q_INVOKABLE QRectF childBubble(const QString& name) const;

    /// Paints the bubbles and their labels as they stand over a view of `size`, for the benchmark.
    void paintBubbles(QPainter& painter, QSizeF size);

signals:
    void modelChanged();
    void styleChanged();
    void zoomProgressChanged();
    void sceneChanged();
    void toolTipChanged();
    void paintingChanged();
    /// A right click on a child: the model's menu node is set; the view opens the menu at (x, y).
    void menuRequested(qreal x, qreal y);

protected:
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void hoverEnterEvent(QHoverEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    struct Worker;

    void step(qreal progress);
    void rebuild();
    void setScene(std::vector<MapScene::Bubble> scene);
    void refreshLooks();
    void animate(int duration, QEasingCurve::Type easing);
    void loadIcons();
    void currentMoved();
    // Shows `leaving` (what the screen showed) giving way to the new scene's picture.
    void crossfade(MapPicture leaving, bool leavingOnTop, int duration, QEasingCurve::Type easing);
    void treeChanged();
    void hoverMoved();
    void repaintAll();
    void repaint(const QRectF& region);
    void paintShown();
    void order();
    void setStale(bool stale);
    void pointAt(QPointF position);
    [[nodiscard]] int childAt(QPointF position) const;
    [[nodiscard]] PackedCircle camera() const;
    [[nodiscard]] MapTransform transform() const;
    [[nodiscard]] QRectF bubbleRect(const FileNode* node, const PackedCircle& camera) const;
    // The pictures a frame shows, bottom first, each with its opacity.
    [[nodiscard]] std::array<std::pair<const MapPicture*, double>, 2> layers() const;
    // What the screen shows now, as one picture (a crossfade in progress painted into one).
    [[nodiscard]] MapPicture onScreen();

    QPointer<MapModel> m_model;
    BubbleLayout m_layout;
    BubblePainter m_painter; // this thread's; the worker has its own
    std::shared_ptr<Worker> m_worker;
    Jobs m_jobs{this};
    const FileNode* m_root = nullptr;
    const FileNode* m_shownRoot = nullptr; // the root of the tree at the last change of revision
    const FileNode* m_current = nullptr;
    std::vector<MapScene::Bubble> m_scene;
    // The bubbles as they are painted, parents first, and the node of each.
    std::vector<BubblePainter::Bubble> m_bubbles;
    std::vector<const FileNode*> m_nodes;
    PackedCircle m_from{0, 0, 1};
    PackedCircle m_to{0, 0, 1};
    QVariantAnimation m_zoom;
    qreal m_progress = 1;
    // A zoom and a new tree's arrival crossfade two pictures; a deletion's glide paints every
    // frame.
    bool m_crossfading = false;

    // The current folder's picture, and during a zoom the one it replaces.
    MapPicture m_shown;
    MapPicture m_leaving;
    bool m_leavingOnTop = false; // zooming out: the deeper level shrinks into place above
    quint64 m_lastPicture = 0;
    // What the shown picture still lacks: all of it, or the region (view coordinates). Every
    // change that needs a whole new picture counts a new state; the picture ordered for an
    // older one is dropped when it lands.
    bool m_stale = true;
    QRectF m_staleRegion;
    quint64 m_state = 1;
    quint64 m_ordered = 0;
    const FileNode* m_hoverPainted = nullptr;

    int m_pressed = -1;
    const FileNode* m_pointed = nullptr;
    QString m_toolTip;
    QPointF m_pointer;

    QColor m_frameColor = BubblePainter::Style{}.frame;
    QColor m_strokeColor = BubblePainter::Style{}.stroke;
    QColor m_markColor = BubblePainter::Style{}.mark;
    QColor m_hoverColor = BubblePainter::Style{}.hover;
    QColor m_textColor = BubblePainter::Style{}.text;
    QString m_fontFamily;
    int m_zoomDuration = 520;
    int m_reflowDuration = 450;
    std::atomic<qint64> m_workNanoseconds{0};
    qint64 m_polishNanoseconds = 0;
};

} // namespace nubo
