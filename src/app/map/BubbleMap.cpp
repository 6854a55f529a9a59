#include "BubbleMap.h"

#include "MapPictureNode.h"

#include "core/format/FileKind.h"
#include "core/scanner/FileNode.h"
#include "models/map/MapModel.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickWindow>

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace nubo {

namespace {

// Room left around the folder's circle, in pixels.
constexpr double Margin = 20;
// What a hovered child's new look can reach beyond its circle: its border and its check badge.
constexpr double HoverReach = 12;

int depthOf(const FileNode* node)
{
    int depth = 0;
    for (const FileNode* up = node ? node->parent() : nullptr; up; up = up->parent())
        ++depth;
    return depth;
}

int roleIndex(MapScene::Role role)
{
    switch (role) {
    case MapScene::Role::Child:
        return BubblePainter::Bubble::Child;
    case MapScene::Role::Grandchild:
        return BubblePainter::Bubble::Grandchild;
    case MapScene::Role::Context:
        break;
    }
    return BubblePainter::Bubble::Context;
}

} // namespace

// The painter of the pictures ordered off this thread. A superseded order may still be painting
// when the next one starts; the lock keeps them one after the other on the one disc cache.
struct BubbleMap::Worker
{
    std::mutex lock;
    BubblePainter painter;
};

BubbleMap::BubbleMap(QQuickItem* parent) : QQuickItem(parent), m_worker(std::make_shared<Worker>())
{
    setFlag(ItemHasContents);
    setAcceptHoverEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
    m_zoom.setStartValue(0.0);
    m_zoom.setEndValue(1.0);
    m_zoom.setEasingCurve(QEasingCurve::InOutCubic);
    connect(&m_zoom, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { step(value.toDouble()); });
    connect(this, &BubbleMap::styleChanged, this, [this] {
        m_painter.style = {m_frameColor, m_strokeColor, m_markColor, m_hoverColor, m_textColor, m_fontFamily};
        repaintAll();
    });
}

BubbleMap::~BubbleMap() = default;

void BubbleMap::setModel(MapModel* model)
{
    if (model == m_model)
        return;
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    if (m_model) {
        connect(m_model, &MapModel::currentChanged, this, &BubbleMap::currentMoved);
        connect(m_model, &MapModel::revisionChanged, this, &BubbleMap::treeChanged);
        connect(m_model, &MapModel::markedChanged, this, &BubbleMap::repaintAll);
        connect(m_model, &MapModel::hoveredChanged, this, &BubbleMap::hoverMoved);
        connect(m_model, &QObject::destroyed, this, [this] {
            m_scene.clear();
            m_bubbles.clear();
            m_nodes.clear();
            m_hoverPainted = nullptr;
        });
    }
    rebuild();
    emit modelChanged();
}

void BubbleMap::setZoomProgress(qreal progress)
{
    m_zoom.stop(); // a hand on the animation takes it over
    step(progress);
}

void BubbleMap::step(qreal progress)
{
    progress = std::clamp<qreal>(progress, 0, 1);
    if (qFuzzyCompare(progress, m_progress))
        return;
    m_progress = progress;
    if (!m_crossfading) {
        repaintAll(); // a glide or a fade paints every frame
    } else if (m_progress >= 1) {
        // The zoom has ended: the picture it replaced goes, and whatever changed during it (the
        // pointer over another child, say) is painted now.
        m_crossfading = false;
        m_leaving = {};
        polish();
    }
    emit zoomProgressChanged();
    update();
}

void BubbleMap::animate(int duration, QEasingCurve::Type easing)
{
    m_zoom.stop();
    m_progress = 0;
    m_zoom.setEasingCurve(easing);
    m_zoom.setDuration(std::max(1, duration));
    m_zoom.start();
    update();
}

void BubbleMap::rebuild()
{
    m_zoom.stop();
    m_progress = 1;
    m_crossfading = false;
    m_leaving = {};
    // A new tree may reuse the addresses of the old one's nodes: nothing cached may survive it.
    m_layout = BubbleLayout{};
    m_root = m_model ? m_model->root() : nullptr;
    m_current = m_model ? m_model->current() : nullptr;
    std::vector<MapScene::Bubble> scene;
    if (m_model && m_current) {
        m_layout.reset(m_model->revision());
        scene = MapScene::build(m_layout, *m_current);
        m_to = m_from = m_layout.circle(*m_current);
    }
    setScene(std::move(scene));
    loadIcons();
    m_pointed = nullptr;
    m_hoverPainted = nullptr;
    if (!m_toolTip.isEmpty()) {
        m_toolTip.clear();
        emit toolTipChanged();
    }
    emit sceneChanged();
    repaintAll();
}

void BubbleMap::loadIcons()
{
    // The kinds' icons come from the engine's symbol images, drawn once in the label colour on
    // this (the user-interface) thread, since the platform's icons are pixmaps.
    if (!m_painter.icons[0].isNull())
        return;
    QQmlEngine* engine = qmlEngine(this);
    auto* provider = engine
                         ? dynamic_cast<QQuickImageProvider*>(engine->imageProvider(QStringLiteral("symbol")))
                         : nullptr;
    if (!provider)
        return;
    const qreal ratio = window() ? window()->devicePixelRatio() : 2.0;
    const int px = int(std::ceil(28 * std::max<qreal>(ratio, 1)));
    for (FileKind kind : FileKinds::all) {
        QSize got;
        m_painter.icons[size_t(kind)] = provider->requestImage(
            FileKinds::symbol(kind) + QStringLiteral("?tint=") + m_textColor.name(), &got, QSize(px, px));
    }
}

void BubbleMap::treeChanged()
{
    // A deletion keeps the tree: the bubbles that stay glide to their new places. A new tree
    // fades in over the picture of the old one. Only the addresses of the old bubbles are read
    // here, never the nodes, since the deleted ones are already gone.
    const FileNode* root = m_model ? m_model->root() : nullptr;
    const bool sameTree = m_shownRoot && root == m_shownRoot;
    m_shownRoot = root;
    std::unordered_map<const FileNode*, PackedCircle> before;
    MapPicture old;
    if (sameTree) {
        for (size_t i = 0; i < m_bubbles.size(); ++i)
            before.emplace(m_nodes[i], m_bubbles[i].at(m_crossfading ? 1 : m_progress));
    } else {
        old = onScreen();
    }
    rebuild();
    if (m_bubbles.empty() || !isVisible())
        return;
    if (!sameTree) {
        old.camera = m_to; // the old picture stays where it is while it fades
        crossfade(std::move(old), false, m_reflowDuration, QEasingCurve::OutCubic);
        return;
    }
    for (size_t i = 0; i < m_bubbles.size(); ++i) {
        const auto found = before.find(m_nodes[i]);
        if (found == before.end())
            continue;
        BubblePainter::Bubble& bubble = m_bubbles[i];
        bubble.before = found->second;
        bubble.moved = true;
        bubble.roleFrom = bubble.roleTo;
    }
    animate(m_reflowDuration, QEasingCurve::OutCubic);
}

void BubbleMap::currentMoved()
{
    const FileNode* next = m_model ? m_model->current() : nullptr;
    const bool sameTree = m_model && m_model->root() == m_root && m_layout.revision() == m_model->revision();
    if (!next || !m_current || !sameTree || next == m_current) {
        rebuild();
        return;
    }
    if (m_pointed) {
        m_model->leave(m_pointed);
        m_pointed = nullptr;
        m_toolTip.clear();
        emit toolTipChanged();
    }
    // The zoom starts from what the screen shows now, also in the middle of another zoom.
    const PackedCircle from = camera();
    MapPicture leaving = onScreen();
    const bool zoomsOut = depthOf(m_current) > depthOf(next);
    m_current = next;
    setScene(MapScene::build(m_layout, *next));
    m_hoverPainted = nullptr;
    m_from = from;
    m_to = m_layout.circle(*next);
    emit sceneChanged();
    crossfade(std::move(leaving), zoomsOut, m_zoomDuration, QEasingCurve::InOutCubic);
}

void BubbleMap::crossfade(MapPicture leaving, bool leavingOnTop, int duration, QEasingCurve::Type easing)
{
    m_leaving = std::move(leaving);
    m_leavingOnTop = leavingOnTop;
    m_shown = {}; // the new scene's picture is painted from scratch
    m_crossfading = true;
    repaintAll();
    animate(duration, easing);
}

void BubbleMap::setScene(std::vector<MapScene::Bubble> scene)
{
    m_scene = std::move(scene);
    std::vector<std::pair<int, size_t>> order; // depth, index: parents paint before what they hold
    order.reserve(m_scene.size());
    for (size_t i = 0; i < m_scene.size(); ++i)
        order.emplace_back(depthOf(m_scene[i].node), i);
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::array<QColor, FileKinds::all.size()> colours;
    for (FileKind kind : FileKinds::all)
        colours[size_t(kind)] = QColor::fromString(FileKinds::color(kind));
    m_bubbles.clear();
    m_nodes.clear();
    m_bubbles.reserve(m_scene.size());
    m_nodes.reserve(m_scene.size());
    for (const auto& [depth, index] : order) {
        const MapScene::Bubble& from = m_scene[index];
        const FileNode* node = from.node;
        BubblePainter::Bubble bubble;
        bubble.circle = from.circle;
        bubble.roleTo = roleIndex(from.role); // arriving: a new tree fades in
        bubble.kind = colours[size_t(node->kind())];
        bubble.icon = int(node->kind());
        bubble.folder = node->canDrill();
        if (from.role == MapScene::Role::Child) {
            bubble.name = node->name();
            bubble.size = node->size();
        }
        m_bubbles.push_back(std::move(bubble));
        m_nodes.push_back(node);
    }
}

void BubbleMap::refreshLooks()
{
    const FileNode* hovered = m_model ? m_model->hovered() : nullptr;
    for (size_t i = 0; i < m_bubbles.size(); ++i) {
        m_bubbles[i].marked = m_model && m_model->isMarked(m_nodes[i]);
        m_bubbles[i].hovered = m_nodes[i] == hovered;
    }
}

void BubbleMap::hoverMoved()
{
    // Only the child that lost the pointer and the one that has it look different now.
    const PackedCircle at = m_shown.camera;
    repaint(bubbleRect(m_hoverPainted, at).united(bubbleRect(m_model ? m_model->hovered() : nullptr, at)));
}

void BubbleMap::repaintAll()
{
    ++m_state;
    setStale(true);
    polish();
    update();
}

void BubbleMap::repaint(const QRectF& region)
{
    if (region.isEmpty())
        return;
    m_staleRegion = m_staleRegion.united(region);
    polish();
    update();
}

PackedCircle BubbleMap::camera() const
{
    return MapTransform::between(m_from, m_to, m_progress);
}

MapTransform BubbleMap::transform() const
{
    return MapTransform(camera(), size(), Margin);
}

QRectF BubbleMap::bubbleRect(const FileNode* node, const PackedCircle& at) const
{
    if (!node)
        return {};
    const MapTransform place(at, size(), Margin);
    const auto found = std::find(m_nodes.begin(), m_nodes.end(), node);
    if (found == m_nodes.end())
        return {};
    const PackedCircle& circle = m_bubbles[size_t(found - m_nodes.begin())].circle;
    const QPointF centre = place.toView(circle.x, circle.y);
    const double r = place.toView(circle.r) + HoverReach;
    return {centre.x() - r, centre.y() - r, 2 * r, 2 * r};
}

int BubbleMap::childAt(QPointF position) const
{
    return MapScene::target(m_scene, MapScene::hit(m_scene, transform().toUnit(position)));
}

QRectF BubbleMap::childBubble(const QString& name) const
{
    const MapTransform place = transform();
    for (const MapScene::Bubble& bubble : m_scene) {
        if (bubble.role != MapScene::Role::Child || bubble.node->name() != name)
            continue;
        const QPointF centre = place.toView(bubble.circle.x, bubble.circle.y);
        const double r = place.toView(bubble.circle.r);
        return {centre.x() - r, centre.y() - r, 2 * r, 2 * r};
    }
    return {};
}

void BubbleMap::paintBubbles(QPainter& painter, QSizeF area)
{
    refreshLooks();
    m_painter.paint(painter, m_bubbles, MapTransform(camera(), area, Margin), m_progress,
                    QRectF(QPointF(0, 0), area));
}

void BubbleMap::paintShown()
{
    // On this thread: a frame of a glide, which changes every frame, and the patches the pointer
    // asks for, which are small.
    refreshLooks();
    const qreal ratio = window() ? window()->devicePixelRatio() : 1.0;
    const QSize pixels = MapPicture::pixelsFor(size(), ratio);
    const PackedCircle at = camera();
    const MapTransform place(at, size(), Margin);
    const bool patch = !m_stale && m_shown.image.size() == pixels &&
                       m_shown.image.devicePixelRatio() == ratio && m_shown.camera == at;
    if (patch) {
        // Everything that meets the region is painted again, in order, into an image of its own
        // that starts on whole pixels of the picture, and copied over: the very pixels a whole
        // painting gives there (a clip would blend the edges a shade differently).
        const QRect pixelRegion = QRectF(m_staleRegion.topLeft() * ratio, m_staleRegion.size() * ratio)
                                      .toAlignedRect()
                                      .intersected(m_shown.image.rect());
        if (!pixelRegion.isEmpty()) {
            const QPointF origin = QPointF(pixelRegion.topLeft()) / ratio;
            QImage patchImage = MapPicture::blank(pixelRegion.size(), ratio);
            {
                QPainter painter(&patchImage);
                painter.translate(-origin);
                m_painter.paint(painter, m_bubbles, place, m_progress,
                                QRectF(origin, patchImage.deviceIndependentSize()));
            }
            QPainter painter(&m_shown.image);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.drawImage(origin, patchImage);
        }
    } else {
        m_shown.image = MapPicture::blank(pixels, ratio);
        QPainter painter(&m_shown.image);
        m_painter.paint(painter, m_bubbles, place, m_progress, QRectF(QPointF(0, 0), size()));
    }
    m_shown.camera = at;
    m_shown.id = ++m_lastPicture;
    setStale(false);
    m_staleRegion = {};
    m_hoverPainted = m_model ? m_model->hovered() : nullptr;
}

void BubbleMap::order()
{
    // Everything the picture needs is copied here; the worker reads nothing else.
    refreshLooks();
    const qreal ratio = window() ? window()->devicePixelRatio() : 1.0;
    const QSizeF view = size();
    const PackedCircle at = m_to;
    const quint64 state = m_state;
    const FileNode* hovered = m_model ? m_model->hovered() : nullptr;
    m_ordered = state;
    m_jobs.start(
        QStringLiteral("picture"),
        [worker = m_worker, bubbles = m_bubbles, style = m_painter.style, icons = m_painter.icons, view,
         ratio, at](StopToken stop) {
            MapPicture picture{{}, at, 0};
            if (stop.stopRequested())
                return picture;
            picture.image = MapPicture::blank(MapPicture::pixelsFor(view, ratio), ratio);
            const std::lock_guard hold(worker->lock);
            worker->painter.style = style;
            worker->painter.icons = icons;
            QPainter painter(&picture.image);
            worker->painter.paint(painter, bubbles, MapTransform(at, view, Margin), 1.0,
                                  QRectF(QPointF(0, 0), view));
            return picture;
        },
        [this, state, hovered](MapPicture picture) {
            if (state != m_state)
                return; // a newer picture is on its way
            picture.id = ++m_lastPicture;
            m_shown = std::move(picture);
            setStale(false);
            m_staleRegion = {};
            m_hoverPainted = hovered;
            if (m_model && m_model->hovered() != hovered)
                hoverMoved(); // the pointer moved while it was painted
            update();
        },
        [this] { setStale(false); }); // the picture on screen stays; the next change asks again
}

void BubbleMap::setStale(bool stale)
{
    if (stale == m_stale)
        return;
    m_stale = stale;
    emit paintingChanged();
}

void BubbleMap::updatePolish()
{
    QElapsedTimer spent;
    spent.start();
    if (width() > 0 && height() > 0 && !m_bubbles.empty()) {
        const bool glide = !m_crossfading && m_progress < 1;
        if (glide)
            paintShown();
        else if (m_stale && m_ordered != m_state)
            order();
        // A patch waits for a whole picture on its way, and for the end of a crossfade.
        else if (!m_stale && !m_staleRegion.isEmpty() && !m_crossfading)
            paintShown();
    }
    m_polishNanoseconds = spent.nsecsElapsed();
}

MapPictureNode::Layers BubbleMap::layers() const
{
    if (!m_crossfading)
        return {{{nullptr, 0}, {&m_shown, 1}}};
    // The picture arriving appears over the first half of the animation; the one leaving fades
    // all the way. The deeper level lies on top, so that zooming out shows it shrinking into
    // its place.
    const std::pair<const MapPicture*, double> arriving{&m_shown, std::min(1.0, 2 * m_progress)};
    const std::pair<const MapPicture*, double> leaving{&m_leaving, 1 - m_progress};
    return m_leavingOnTop ? MapPictureNode::Layers{arriving, leaving}
                          : MapPictureNode::Layers{leaving, arriving};
}

MapPicture BubbleMap::onScreen()
{
    if (!m_crossfading)
        return m_shown;
    // Interrupted in the middle of a crossfade: the two pictures as they stand become one.
    if (m_shown.image.isNull() && m_leaving.image.isNull())
        return {};
    const qreal ratio = window() ? window()->devicePixelRatio() : 1.0;
    MapPicture picture{MapPicture::blank(MapPicture::pixelsFor(size(), ratio), ratio), camera(),
                       ++m_lastPicture};
    if (picture.image.isNull())
        return {};
    QPainter painter(&picture.image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const auto& [layer, opacity] : layers()) {
        const MapPicture::Placement placed =
            layer && opacity > 0 ? layer->placed(picture.camera, size(), Margin) : MapPicture::Placement{};
        if (placed.target.isEmpty())
            continue;
        painter.setOpacity(opacity);
        painter.drawImage(placed.target, layer->image, placed.source);
    }
    return picture;
}

QSGNode* BubbleMap::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    QQuickWindow* view = window();
    if (!view || width() <= 0 || height() <= 0 || m_bubbles.empty() ||
        (m_shown.image.isNull() && m_leaving.image.isNull())) {
        delete old;
        return nullptr;
    }
    QElapsedTimer spent;
    spent.start();
    auto* root = old ? static_cast<MapPictureNode*>(old) : new MapPictureNode;
    root->show(*view, layers(), camera(), size(), Margin);
    m_workNanoseconds = std::exchange(m_polishNanoseconds, 0) + spent.nsecsElapsed();
    return root;
}

void BubbleMap::pointAt(QPointF position)
{
    if (!m_model)
        return;
    const int index = childAt(position);
    const FileNode* node = index >= 0 ? m_scene[size_t(index)].node : nullptr;
    m_pointer = position;
    if (node != m_pointed) {
        // Enter the new bubble before leaving the old one, so that the old one's exit finds the
        // new one hovered and leaves it alone.
        const FileNode* old = std::exchange(m_pointed, node);
        if (node)
            m_model->setHovered(node);
        if (old)
            m_model->leave(old);
        m_toolTip = node ? node->name() : QString();
    }
    emit toolTipChanged();
}

void BubbleMap::hoverEnterEvent(QHoverEvent* event)
{
    pointAt(event->position());
}

void BubbleMap::hoverMoveEvent(QHoverEvent* event)
{
    pointAt(event->position());
}

void BubbleMap::hoverLeaveEvent(QHoverEvent*)
{
    if (m_model && m_pointed)
        m_model->leave(m_pointed);
    m_pointed = nullptr;
    m_toolTip.clear();
    emit toolTipChanged();
}

void BubbleMap::mousePressEvent(QMouseEvent* event)
{
    m_pressed = childAt(event->position());
    if (event->button() == Qt::RightButton && m_model && m_pressed >= 0) {
        m_model->setMenuNode(m_scene[size_t(m_pressed)].node);
        emit menuRequested(event->position().x(), event->position().y());
        m_pressed = -1;
    }
    event->accept();
}

void BubbleMap::mouseReleaseEvent(QMouseEvent* event)
{
    const int pressed = std::exchange(m_pressed, -1);
    if (event->button() != Qt::LeftButton || !m_model || pressed < 0 || childAt(event->position()) != pressed)
        return;
    const FileNode* node = m_scene[size_t(pressed)].node;
    if (node->canDrill())
        m_model->open(node);
    else
        m_model->toggleMark(node); // aggregates and protected nodes are refused there
}

void BubbleMap::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        repaintAll();
}

} // namespace nubo
