#include "BubbleMap.h"

#include "core/format/FileKind.h"
#include "core/scanner/FileNode.h"
#include "models/map/MapModel.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGNode>
#include <QSGTexture>

#include <algorithm>
#include <cmath>
#include <memory>
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

} // namespace

BubbleMap::BubbleMap(QQuickItem* parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setAcceptHoverEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
    m_zoom.setStartValue(0.0);
    m_zoom.setEndValue(1.0);
    m_zoom.setEasingCurve(QEasingCurve::InOutCubic);
    connect(&m_zoom, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setZoomProgress(value.toDouble()); });
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
            m_drawn.clear();
            m_hoverPainted = nullptr;
        });
    }
    rebuild();
    emit modelChanged();
}

void BubbleMap::setZoomProgress(qreal progress)
{
    progress = std::clamp<qreal>(progress, 0, 1);
    if (qFuzzyCompare(progress, m_progress))
        return;
    m_progress = progress;
    if (!m_zooming) {
        repaintAll(); // a glide or a fade paints every frame
    } else if (m_progress >= 1) {
        // The zoom has ended: the picture it replaced goes, and whatever changed during it (the
        // pointer over another child, say) is painted now.
        m_zooming = false;
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
    m_zooming = false;
    m_leaving = {};
    // A new tree may reuse the addresses of the old one's nodes: nothing cached may survive it.
    m_layout = BubbleLayout{};
    m_painter.forgetNodes();
    m_scene.clear();
    m_root = m_model ? m_model->root() : nullptr;
    m_current = m_model ? m_model->current() : nullptr;
    if (m_model && m_current) {
        m_layout.reset(m_model->revision());
        m_scene = MapScene::build(m_layout, *m_current);
        m_to = m_from = m_layout.circle(*m_current);
    }
    m_drawn = DrawnBubble::fromScene(m_scene);
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
        if (size_t(kind) >= m_painter.icons.size())
            continue;
        QSize got;
        m_painter.icons[size_t(kind)] = provider->requestImage(
            FileKinds::symbol(kind) + QStringLiteral("?tint=") + m_textColor.name(), &got, QSize(px, px));
    }
}

void BubbleMap::treeChanged()
{
    // A deletion keeps the tree: the bubbles that stay glide to their new places. A new tree
    // fades in. Only the addresses of the old bubbles are read here, never the nodes, since the
    // deleted ones are already gone.
    const FileNode* root = m_model ? m_model->root() : nullptr;
    const bool sameTree = m_shownRoot && root == m_shownRoot;
    m_shownRoot = root;
    std::unordered_map<const FileNode*, PackedCircle> before;
    if (sameTree) {
        for (const DrawnBubble& drawn : m_drawn)
            before.emplace(drawn.node, drawn.at(m_zooming ? 1 : m_progress));
    }
    rebuild();
    if (m_drawn.empty() || !isVisible())
        return;
    for (DrawnBubble& drawn : m_drawn) {
        const auto found = before.find(drawn.node);
        if (found == before.end())
            continue;
        drawn.before = found->second;
        drawn.moved = true;
        drawn.roleFrom = drawn.roleTo;
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
    m_leaving = onScreen();
    m_leavingOnTop = depthOf(m_current) > depthOf(next);
    m_shown = {};
    m_current = next;
    m_scene = MapScene::build(m_layout, *next);
    m_drawn = DrawnBubble::fromScene(m_scene);
    m_hoverPainted = nullptr;
    m_from = from;
    m_to = m_layout.circle(*next);
    m_zooming = true;
    emit sceneChanged();
    repaintAll();
    animate(m_zoomDuration, QEasingCurve::InOutCubic);
}

void BubbleMap::hoverMoved()
{
    // Only the child that lost the pointer and the one that has it look different now.
    const PackedCircle at = m_shown.camera;
    repaint(bubbleRect(m_hoverPainted, at).united(bubbleRect(m_model ? m_model->hovered() : nullptr, at)));
}

void BubbleMap::repaintAll()
{
    m_stale = true;
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
    for (const DrawnBubble& drawn : m_drawn) {
        if (drawn.node != node)
            continue;
        const QPointF centre = place.toView(drawn.circle.x, drawn.circle.y);
        const double r = place.toView(drawn.circle.r) + HoverReach;
        return {centre.x() - r, centre.y() - r, 2 * r, 2 * r};
    }
    return {};
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

void BubbleMap::paintBubbles(QPainter& painter, QSizeF area, bool circles, bool labels)
{
    m_painter.paint(painter, m_drawn, MapTransform(camera(), area, Margin), m_progress, QRectF(QPointF(0, 0), area),
                    m_model, circles, labels);
}

void BubbleMap::paintShown()
{
    const qreal ratio = window() ? window()->devicePixelRatio() : 1.0;
    const QSize pixels(int(std::ceil(width() * ratio)), int(std::ceil(height() * ratio)));
    // A zoom paints its destination at rest; a glide or a fade paints the frame it is at.
    const PackedCircle at = m_zooming ? m_to : camera();
    const double t = m_zooming ? 1.0 : m_progress;
    const MapTransform place(at, size(), Margin);
    const bool inPlace = !m_stale && m_shown.image.size() == pixels &&
                         m_shown.image.devicePixelRatio() == ratio && m_shown.camera == at;
    if (inPlace) {
        // Everything that meets the region is painted again, in order, into an image of its own
        // that starts on whole pixels of the picture, and copied over: the very pixels a whole
        // painting gives there (a clip would blend the edges a shade differently).
        const QRect pixelRegion = QRectF(m_staleRegion.topLeft() * ratio, m_staleRegion.size() * ratio)
                                      .toAlignedRect()
                                      .intersected(m_shown.image.rect());
        if (!pixelRegion.isEmpty()) {
            const QPointF origin = QPointF(pixelRegion.topLeft()) / ratio;
            QImage patch(pixelRegion.size(), QImage::Format_ARGB32_Premultiplied);
            patch.setDevicePixelRatio(ratio);
            patch.fill(Qt::transparent);
            {
                QPainter painter(&patch);
                painter.translate(-origin);
                m_painter.paint(painter, m_drawn, place, t, QRectF(origin, patch.deviceIndependentSize()), m_model,
                                true, true);
            }
            QPainter painter(&m_shown.image);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.drawImage(origin, patch);
        }
    } else {
        m_shown.image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        m_shown.image.setDevicePixelRatio(ratio);
        m_shown.image.fill(Qt::transparent);
        QPainter painter(&m_shown.image);
        m_painter.paint(painter, m_drawn, place, t, QRectF(QPointF(0, 0), size()), m_model, true, true);
    }
    m_shown.camera = at;
    m_shown.id = ++m_lastPicture;
    m_stale = false;
    m_staleRegion = {};
    m_hoverPainted = m_model ? m_model->hovered() : nullptr;
}

void BubbleMap::updatePolish()
{
    QElapsedTimer spent;
    spent.start();
    // During a zoom its destination is painted once; what changes meanwhile waits for its end.
    const bool waits = m_zooming && !m_shown.image.isNull();
    if (!waits && (m_stale || !m_staleRegion.isEmpty()) && width() > 0 && height() > 0)
        paintShown();
    m_polishNanoseconds = spent.nsecsElapsed();
}

BubbleMap::Layers BubbleMap::layers() const
{
    if (!m_zooming || m_leaving.image.isNull())
        return {{{nullptr, 0}, {&m_shown, 1}}};
    // The level arriving appears over the first half of the zoom; the one leaving fades all the
    // way. The deeper level lies on top, so that zooming out shows it shrinking into its place.
    const std::pair<const MapPicture*, double> arriving{&m_shown, std::min(1.0, 2 * m_progress)};
    const std::pair<const MapPicture*, double> leaving{&m_leaving, 1 - m_progress};
    return m_leavingOnTop ? Layers{arriving, leaving} : Layers{leaving, arriving};
}

MapPicture BubbleMap::onScreen()
{
    if (!m_zooming || m_leaving.image.isNull())
        return std::move(m_shown);
    // Interrupted in the middle of a zoom: the two pictures as they stand become one.
    MapPicture picture{QImage(m_shown.image.size(), QImage::Format_ARGB32_Premultiplied), camera(), ++m_lastPicture};
    picture.image.setDevicePixelRatio(m_shown.image.devicePixelRatio());
    picture.image.fill(Qt::transparent);
    QPainter painter(&picture.image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const auto& [layer, opacity] : layers()) {
        const MapPicture::Placement placed = layer ? layer->placed(picture.camera, size(), Margin)
                                                   : MapPicture::Placement{};
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
    if (!view || width() <= 0 || height() <= 0 || m_drawn.empty() || m_shown.image.isNull()) {
        delete old;
        return nullptr;
    }
    QElapsedTimer spent;
    spent.start();
    // Two fixed layers for the life of the item (nodes that come and go every frame lose their
    // place in the software renderer), each an image under an opacity; a texture is made once
    // per picture and kept while a layer shows it.
    struct Layer
    {
        QSGOpacityNode* opacity = nullptr;
        QSGImageNode* image = nullptr;
        quint64 picture = 0;
    };
    // An opacity node (always opaque) rather than a plain one: the software renderer keeps the
    // place of opacity nodes, and a change below a plain node would draw at the window's corner.
    struct MapNode : QSGOpacityNode
    {
        std::array<Layer, 2> layers;
        std::unordered_map<quint64, std::unique_ptr<QSGTexture>> textures;
    };
    auto* root = static_cast<MapNode*>(old);
    if (!root) {
        // Both layers come whole with the root, each with a texture from its first frame.
        root = new MapNode;
        auto& texture = root->textures[m_shown.id];
        texture.reset(view->createTextureFromImage(m_shown.image));
        for (Layer& layer : root->layers) {
            layer.opacity = new QSGOpacityNode;
            layer.opacity->setOpacity(0);
            layer.image = view->createImageNode();
            layer.image->setFiltering(QSGTexture::Linear);
            layer.image->setTexture(texture.get());
            layer.picture = m_shown.id;
            layer.opacity->appendChildNode(layer.image);
            root->appendChildNode(layer.opacity);
        }
    }
    const PackedCircle now = camera();
    const Layers shown = layers();
    for (size_t i = 0; i < shown.size(); ++i) {
        const auto& [picture, opacity] = shown[i];
        const MapPicture::Placement placed = picture ? picture->placed(now, size(), Margin) : MapPicture::Placement{};
        Layer& layer = root->layers[i];
        if (placed.target.isEmpty() || opacity <= 0) {
            layer.opacity->setOpacity(0);
            continue;
        }
        auto& texture = root->textures[picture->id];
        if (!texture)
            texture.reset(view->createTextureFromImage(picture->image));
        if (layer.picture != picture->id) {
            layer.image->setTexture(texture.get());
            layer.picture = picture->id;
        }
        layer.image->setRect(placed.target);
        layer.image->setSourceRect(placed.source);
        layer.opacity->setOpacity(opacity);
    }
    // Textures no layer shows any more go; a hidden layer keeps its own until it shows another.
    std::erase_if(root->textures, [root](const auto& entry) {
        return std::none_of(root->layers.begin(), root->layers.end(),
                            [&entry](const Layer& layer) { return layer.picture == entry.first; });
    });
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
