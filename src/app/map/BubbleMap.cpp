#include "BubbleMap.h"

#include "core/format/Bytes.h"
#include "core/format/FileKind.h"
#include "core/scanner/FileNode.h"
#include "models/map/MapModel.h"

#include <QElapsedTimer>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickWindow>
#include <QSGGeometryNode>
#include <QSGImageNode>
#include <QSGRendererInterface>
#include <QSGVertexColorMaterial>

#include <algorithm>
#include <cmath>

namespace nubo {

namespace {

constexpr int Context = 0;
constexpr int Child = 1;
constexpr int Grandchild = 2;
// Room left around the folder's circle, in pixels.
constexpr double Margin = 20;
// Bubbles smaller than this radius (in pixels) cannot be seen and are not drawn.
constexpr double Smallest = 0.35;
// A child carries its name from this radius, its size from the next, its kind's icon from the last.
constexpr double NameRadius = 26;
constexpr double SizeRadius = 40;
constexpr double IconRadius = 60;
// Below this radius (in pixels) the painter stamps cached discs instead of drawing ellipses.
constexpr double SpriteRadius = 24;

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

int roleIndex(MapScene::Role role)
{
    switch (role) {
    case MapScene::Role::Child:
        return Child;
    case MapScene::Role::Grandchild:
        return Grandchild;
    case MapScene::Role::Context:
        break;
    }
    return Context;
}

int depthOf(const FileNode* node)
{
    int depth = 0;
    for (const FileNode* up = node->parent(); up; up = up->parent())
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
    connect(this, &BubbleMap::styleChanged, this, &QQuickItem::update);
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
        connect(m_model, &MapModel::markedChanged, this, &QQuickItem::update);
        connect(m_model, &MapModel::hoveredChanged, this, &QQuickItem::update);
        connect(m_model, &QObject::destroyed, this, [this] {
            m_scene.clear();
            m_drawn.clear();
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
    emit zoomProgressChanged();
    update();
}

void BubbleMap::restartZoom()
{
    animate(m_zoomDuration, QEasingCurve::InOutCubic);
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

PackedCircle BubbleMap::Drawn::at(double t) const
{
    if (!moved || t >= 1)
        return circle;
    const auto lerp = [t](double a, double b) { return a + (b - a) * t; };
    return {lerp(before.x, circle.x), lerp(before.y, circle.y), lerp(before.r, circle.r)};
}

void BubbleMap::rebuild()
{
    m_zoom.stop();
    m_progress = 1;
    // A new tree may reuse the addresses of the old one's nodes: nothing cached may survive it.
    m_layout = BubbleLayout{};
    m_kinds.clear();
    m_scene.clear();
    m_root = m_model ? m_model->root() : nullptr;
    m_current = m_model ? m_model->current() : nullptr;
    if (m_model && m_current) {
        m_layout.reset(m_model->revision());
        m_scene = MapScene::build(m_layout, *m_current);
        m_to = m_from = m_layout.circle(*m_current);
    }
    compose(nullptr);
    loadIcons();
    m_pointed = nullptr;
    if (!m_toolTip.isEmpty()) {
        m_toolTip.clear();
        emit toolTipChanged();
    }
    emit sceneChanged();
    update();
}

void BubbleMap::loadIcons()
{
    // The kinds' icons come from the engine's symbol images, drawn once in the label colour on
    // this (the user-interface) thread, since the platform's icons are pixmaps.
    if (!m_icons[0].isNull())
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
        m_icons[int(kind)] = provider->requestImage(
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
        for (const Drawn& drawn : m_drawn)
            before.emplace(drawn.node, drawn.at(m_progress));
    }
    rebuild();
    if (m_drawn.empty() || !isVisible())
        return;
    for (Drawn& drawn : m_drawn) {
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
    // The zoom starts from wherever the camera is now, also in the middle of another zoom.
    const PackedCircle camera = MapTransform::between(m_from, m_to, m_progress);
    const std::vector<MapScene::Bubble> previous = std::move(m_scene);
    m_current = next;
    m_scene = MapScene::build(m_layout, *next);
    m_from = camera;
    m_to = m_layout.circle(*next);
    compose(&previous);
    emit sceneChanged();
    restartZoom();
}

void BubbleMap::compose(const std::vector<MapScene::Bubble>* from)
{
    m_drawn.clear();
    std::unordered_map<const FileNode*, size_t> index;
    const auto add = [&](const MapScene::Bubble& bubble, bool before) {
        auto [it, fresh] = index.emplace(bubble.node, m_drawn.size());
        if (fresh)
            m_drawn.push_back({bubble.node, bubble.circle, depthOf(bubble.node), -1, -1, {}, false});
        Drawn& drawn = m_drawn[it->second];
        (before ? drawn.roleFrom : drawn.roleTo) = roleIndex(bubble.role);
    };
    if (from) {
        for (const MapScene::Bubble& bubble : *from)
            add(bubble, true);
    }
    for (const MapScene::Bubble& bubble : m_scene)
        add(bubble, false);
    // Parents paint before what they hold.
    std::stable_sort(m_drawn.begin(), m_drawn.end(),
                     [](const Drawn& a, const Drawn& b) { return a.depth < b.depth; });
}

MapTransform BubbleMap::transform() const
{
    return MapTransform(MapTransform::between(m_from, m_to, m_progress), size(), Margin);
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
    update();
}

QColor BubbleMap::kindColor(const FileNode* node)
{
    const auto found = m_kinds.find(node);
    if (found != m_kinds.end())
        return found->second;
    const QColor colour = QColor::fromString(FileKinds::color(node->kind()));
    m_kinds.emplace(node, colour);
    return colour;
}

BubbleMap::Look BubbleMap::look(const Drawn& drawn, int role, QColor kind) const
{
    Look result;
    switch (role) {
    case Context:
        return {m_frameColor, m_strokeColor, 1};
    case Child:
        result = drawn.node->canDrill() ? Look{withAlpha(kind, 0.16), withAlpha(kind, 0.9), 1.5}
                                        : Look{withAlpha(kind, 0.85), withAlpha(kind.lighter(125), 0.9), 1};
        break;
    default:
        result = {withAlpha(kind, 0.72), withAlpha(m_frameColor, 0.55), 0.75};
        break;
    }
    if (m_model && m_model->isMarked(drawn.node)) {
        result.fill = mix(result.fill, withAlpha(m_markColor, 0.9), 0.8);
        result.stroke = m_markColor;
        result.strokeWidth = role == Child ? 2.5 : 1.5;
    } else if (role == Child && m_model && m_model->hovered() == drawn.node) {
        result.fill = withAlpha(result.fill, drawn.node->canDrill() ? 1.9 : 1.15);
        result.stroke = m_hoverColor;
        result.strokeWidth = 2;
    }
    return result;
}

BubbleMap::Look BubbleMap::blended(const Drawn& drawn, QColor kind) const
{
    const double t = m_progress;
    if (drawn.roleFrom < 0 || t >= 1) {
        Look to = look(drawn, drawn.roleTo, kind);
        if (drawn.roleFrom < 0 && t < 1) {
            to.fill = withAlpha(to.fill, t);
            to.stroke = withAlpha(to.stroke, t);
        }
        return to;
    }
    Look from = look(drawn, drawn.roleFrom, kind);
    if (drawn.roleTo < 0) {
        from.fill = withAlpha(from.fill, 1 - t);
        from.stroke = withAlpha(from.stroke, 1 - t);
        return from;
    }
    const Look to = look(drawn, drawn.roleTo, kind);
    return {mix(from.fill, to.fill, t), mix(from.stroke, to.stroke, t),
            from.strokeWidth + (to.strokeWidth - from.strokeWidth) * t};
}

void BubbleMap::paintBubbles(QPainter& painter, QSizeF area, bool circles, bool labels)
{
    if (m_drawn.empty())
        return;
    const MapTransform place(MapTransform::between(m_from, m_to, m_progress), area, Margin);
    const QRectF visible(QPointF(0, 0), area);
    painter.setRenderHint(QPainter::Antialiasing);
    if (circles) {
        for (const Drawn& drawn : m_drawn) {
            const PackedCircle circle = drawn.at(m_progress);
            const double r = place.toView(circle.r);
            const QPointF centre = place.toView(circle.x, circle.y);
            if (r < Smallest || !visible.intersects(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r)))
                continue;
            const Look style = blended(drawn, kindColor(drawn.node));
            if (style.fill.alpha() == 0 && style.stroke.alpha() == 0)
                continue;
            painter.setBrush(style.fill);
            // A border on a small bubble costs a stroked path and shows as a smudge: small ones
            // are filled only.
            if (style.strokeWidth > 0 && r > 8 && style.stroke.alpha() > 0)
                painter.setPen(QPen(style.stroke, style.strokeWidth));
            else
                painter.setPen(Qt::NoPen);
            if (r < SpriteRadius) {
                // Thousands of small discs: each is stamped from a cached image of its colour and
                // size, which is many times faster than filling an antialiased ellipse.
                const QImage& disc = sprite(style, r, painter.device()->devicePixelRatioF());
                const double half = std::ceil(r) + 1;
                // Whole pixels keep the stamp on the painter's fast path (no resampling).
                painter.drawImage(QPointF(std::round(centre.x() - half), std::round(centre.y() - half)),
                                  disc);
                continue;
            }
            const double inset = painter.pen().style() == Qt::NoPen ? 0 : style.strokeWidth / 2;
            painter.drawEllipse(centre, r - inset, r - inset);
        }
    }
    if (!labels)
        return;

    QFont font(m_fontFamily.isEmpty() ? QFont().family() : m_fontFamily);
    for (const Drawn& drawn : m_drawn) {
        const double shown =
            (drawn.roleTo == Child ? m_progress : 0) + (drawn.roleFrom == Child ? 1 - m_progress : 0);
        if (shown <= 0.01 || (drawn.roleTo != Child && drawn.roleFrom != Child))
            continue;
        const PackedCircle circle = drawn.at(m_progress);
        const double r = place.toView(circle.r);
        const QPointF centre = place.toView(circle.x, circle.y);
        if (!visible.intersects(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r)))
            continue;
        painter.setOpacity(std::min(1.0, shown));
        const bool marked = m_model && m_model->isMarked(drawn.node);
        if (marked && r >= 12) {
            // A check badge on the rim, up and to the right.
            const double b = std::clamp(r * 0.22, 7.0, 11.0);
            const QPointF at = centre + QPointF(r * 0.7071, -r * 0.7071);
            painter.setPen(QPen(Qt::white, 1.5));
            painter.setBrush(m_markColor);
            painter.drawEllipse(at, b, b);
            QPainterPath check;
            check.moveTo(at + QPointF(-b * 0.45, 0));
            check.lineTo(at + QPointF(-b * 0.1, b * 0.35));
            check.lineTo(at + QPointF(b * 0.45, -b * 0.35));
            painter.setPen(
                QPen(Qt::white, std::max(1.5, b * 0.22), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.setBrush(Qt::NoBrush);
            painter.drawPath(check);
        }
        if (r < NameRadius)
            continue;
        const bool folder = drawn.node->canDrill();
        font.setPixelSize(int(std::clamp(r * 0.2, 11.0, 15.0)));
        font.setWeight(QFont::DemiBold);
        const QFontMetricsF nameMetrics(font);
        const QString name = fittedName(drawn.node->name(), nameMetrics, r * 1.6);
        if (name.isEmpty())
            continue;
        QFont small = font;
        small.setPixelSize(std::max(10, font.pixelSize() - 2));
        small.setWeight(QFont::Normal);
        const QFontMetricsF sizeMetrics(small);
        const bool withSize = r >= SizeRadius;
        const QString bytes = withSize ? Bytes::string(drawn.node->size()) : QString();
        const int symbolIndex = int(drawn.node->kind());
        const bool withIcon = !folder && r >= IconRadius && !m_icons[symbolIndex].isNull();
        const double icon = withIcon ? std::clamp(r * 0.28, 18.0, 28.0) : 0;

        const double textWidth = std::max(nameMetrics.horizontalAdvance(name),
                                          withSize ? sizeMetrics.horizontalAdvance(bytes) : 0.0);
        const double textHeight = nameMetrics.height() + (withSize ? sizeMetrics.height() : 0);
        const double blockHeight = textHeight + (withIcon ? icon + 4 : 0);
        double top = centre.y() - blockHeight / 2;
        if (folder) {
            // A folder's label sits on a dark pill so that it reads over the bubbles inside it.
            const QRectF pill(centre.x() - textWidth / 2 - 8, top - 3, textWidth + 16, textHeight + 6);
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(0, 0, 0, 115));
            painter.drawRoundedRect(pill, 7, 7);
        }
        if (withIcon) {
            painter.drawImage(QRectF(centre.x() - icon / 2, top, icon, icon), m_icons[symbolIndex]);
            top += icon + 4;
        }
        painter.setFont(font);
        const QRectF nameBox(centre.x() - textWidth / 2 - 2, top, textWidth + 4, nameMetrics.height());
        // White reads on the deep colours; the light ones (yellow, sky blue) take dark text.
        const QColor kind = kindColor(drawn.node);
        const double luminance = 0.299 * kind.redF() + 0.587 * kind.greenF() + 0.114 * kind.blueF();
        const bool lightFill = !folder && !marked && luminance > 0.68;
        const QColor ink = lightFill ? QColor(0x1D, 0x1D, 0x1F) : m_textColor;
        if (!folder && !lightFill) {
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
    painter.setOpacity(1);
}

QString BubbleMap::fittedName(const QString& name, const QFontMetricsF& metrics, double width)
{
    if (metrics.horizontalAdvance(name) <= width)
        return name;
    // The start of a name is what people recognise it by; a middle cut ("Do…ts") reads as
    // neither end.
    const QString cut = metrics.elidedText(name, Qt::ElideRight, width);
    constexpr qsizetype fewestLetters = 3;
    return cut.size() - 1 >= fewestLetters ? cut : QString();
}

const QImage& BubbleMap::sprite(const Look& style, double r, qreal ratio)
{
    // Half-pixel sizes and colours rounded to what the eye cannot tell apart keep the cache small
    // while a zoom fades bubbles in and out.
    const int halfPixels = std::max(1, int(std::lround(r * 2)));
    const auto quantise = [](const QColor& c) {
        const QRgb rgba = c.rgba();
        return (quint64(qRed(rgba)) << 24) | (quint64(qGreen(rgba)) << 16) | (quint64(qBlue(rgba)) << 8) |
               quint64(qAlpha(rgba) & 0xF8);
    };
    const bool stroked = r > 8 && style.strokeWidth > 0 && style.stroke.alpha() > 0;
    const quint64 first = (quantise(style.fill) << 8) | quint64(halfPixels);
    const quint64 second =
        stroked ? (quantise(style.stroke) << 8) | quint64(std::lround(style.strokeWidth * 4)) : 0;
    const auto key = std::make_pair(first, second);
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
        painter.setBrush(style.fill);
        double inset = 0;
        if (stroked) {
            painter.setPen(QPen(style.stroke, style.strokeWidth));
            inset = style.strokeWidth / 2;
        } else {
            painter.setPen(Qt::NoPen);
        }
        painter.drawEllipse(QPointF(half, half), radius - inset, radius - inset);
    }
    return m_sprites.emplace(key, std::move(image)).first->second;
}

QSGNode* BubbleMap::buildGeometry(QSGNode* old)
{
    auto* node = static_cast<QSGGeometryNode*>(old);
    if (!node) {
        node = new QSGGeometryNode;
        auto* geometry = new QSGGeometry(QSGGeometry::defaultAttributes_ColoredPoint2D(), 0, 0,
                                         QSGGeometry::UnsignedIntType);
        geometry->setDrawingMode(QSGGeometry::DrawTriangles);
        node->setGeometry(geometry);
        node->setMaterial(new QSGVertexColorMaterial);
        node->setFlags(QSGNode::OwnsGeometry | QSGNode::OwnsMaterial);
    }
    const MapTransform place = transform();
    const QRectF visible(QPointF(0, 0), size());

    // Each disc is a fan of its fill, a band for its border, and a half-pixel fringe that fades
    // to nothing, which smooths its edge without multisampling.
    struct Disc
    {
        QPointF centre;
        double r;
        int segments;
        Look style;
    };
    std::vector<Disc> discs;
    discs.reserve(m_drawn.size());
    int vertices = 0;
    int indices = 0;
    for (const Drawn& drawn : m_drawn) {
        const PackedCircle circle = drawn.at(m_progress);
        const double r = place.toView(circle.r);
        const QPointF centre = place.toView(circle.x, circle.y);
        if (r < Smallest || !visible.intersects(QRectF(centre.x() - r, centre.y() - r, 2 * r, 2 * r)))
            continue;
        Look style = blended(drawn, kindColor(drawn.node));
        if (style.fill.alpha() == 0 && style.stroke.alpha() == 0)
            continue;
        // Small bubbles go without a border, as in the painted picture; the number of segments
        // keeps each edge within a fraction of a pixel of the true circle.
        if (r <= 8 || style.stroke.alpha() == 0)
            style.strokeWidth = 0;
        const int segments = std::clamp(int(std::sqrt(r) * 4), 6, 128);
        const int rings = style.strokeWidth > 0 ? 4 : 2;
        discs.push_back({centre, r, segments, style});
        vertices += 1 + rings * segments;
        indices += 3 * segments + 6 * segments * (rings - 1);
    }
    QSGGeometry* geometry = node->geometry();
    geometry->allocate(vertices, indices);
    auto* v = geometry->vertexDataAsColoredPoint2D();
    quint32* idx = geometry->indexDataAsUInt();
    const auto premultiplied = [](const QColor& c) {
        const float a = c.alphaF();
        return std::array<uchar, 4>{uchar(std::lround(c.redF() * a * 255)),
                                    uchar(std::lround(c.greenF() * a * 255)),
                                    uchar(std::lround(c.blueF() * a * 255)), uchar(std::lround(a * 255))};
    };
    int base = 0;
    for (const Disc& disc : discs) {
        const auto fill = premultiplied(disc.style.fill);
        const auto stroke = premultiplied(disc.style.stroke);
        const std::array<uchar, 4> none{0, 0, 0, 0};
        struct Ring
        {
            double radius;
            std::array<uchar, 4> colour;
        };
        std::array<Ring, 4> rings{};
        int count = 0;
        const double sw = disc.style.strokeWidth;
        if (sw > 0) {
            rings[0] = {std::max(0.0, disc.r - sw - 0.5), fill};
            rings[1] = {std::max(0.0, disc.r - sw + 0.5), stroke};
            rings[2] = {std::max(0.0, disc.r - 0.5), stroke};
            rings[3] = {disc.r + 0.5, none};
            count = 4;
        } else {
            rings[0] = {std::max(0.0, disc.r - 0.5), fill};
            rings[1] = {disc.r + 0.5, none};
            count = 2;
        }
        const auto put = [&v](int at, double x, double y, const std::array<uchar, 4>& c) {
            v[at].set(float(x), float(y), c[0], c[1], c[2], c[3]);
        };
        put(base, disc.centre.x(), disc.centre.y(), fill);
        const int n = disc.segments;
        for (int s = 0; s < n; ++s) {
            const double angle = 2 * M_PI * s / n;
            const double cx = std::cos(angle);
            const double sy = std::sin(angle);
            for (int ring = 0; ring < count; ++ring)
                put(base + 1 + ring * n + s, disc.centre.x() + cx * rings[size_t(ring)].radius,
                    disc.centre.y() + sy * rings[size_t(ring)].radius, rings[size_t(ring)].colour);
        }
        for (int s = 0; s < n; ++s) {
            const int next = (s + 1) % n;
            *idx++ = quint32(base);
            *idx++ = quint32(base + 1 + s);
            *idx++ = quint32(base + 1 + next);
            for (int ring = 0; ring + 1 < count; ++ring) {
                const int inner = base + 1 + ring * n;
                const int outer = inner + n;
                *idx++ = quint32(inner + s);
                *idx++ = quint32(outer + s);
                *idx++ = quint32(outer + next);
                *idx++ = quint32(inner + s);
                *idx++ = quint32(outer + next);
                *idx++ = quint32(inner + next);
            }
        }
        base += 1 + count * n;
    }
    node->markDirty(QSGNode::DirtyGeometry | QSGNode::DirtyMaterial);
    return node;
}

QSGNode* BubbleMap::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    QQuickWindow* view = window();
    if (!view || width() <= 0 || height() <= 0 || m_drawn.empty()) {
        delete old;
        return nullptr;
    }
    QElapsedTimer spent;
    spent.start();
    const bool software = view->rendererInterface()->graphicsApi() == QSGRendererInterface::Software;
    // One node for the life of the item, holding the discs (hardware only) and the painted image
    // above them: nodes that come and go every frame lose their place in the software renderer.
    struct MapNode : QSGNode
    {
        QSGGeometryNode* discs = nullptr;
        QSGImageNode* layer = nullptr;
        std::unique_ptr<QSGTexture> texture;
    };
    auto* root = static_cast<MapNode*>(old);
    if (!root) {
        root = new MapNode;
        if (!software) {
            root->discs = static_cast<QSGGeometryNode*>(buildGeometry(nullptr));
            root->appendChildNode(root->discs);
        }
        root->layer = view->createImageNode();
        root->layer->setFiltering(QSGTexture::Linear);
        root->appendChildNode(root->layer);
    }
    if (root->discs)
        buildGeometry(root->discs);

    const qreal ratio = view->devicePixelRatio();
    QImage image(QSize(int(std::ceil(width() * ratio)), int(std::ceil(height() * ratio))),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        paintBubbles(painter, size(), software, true);
    }
    std::unique_ptr<QSGTexture> texture(view->createTextureFromImage(image));
    root->layer->setTexture(texture.get());
    root->texture = std::move(texture); // the previous frame's texture goes now
    root->layer->setRect(QRectF(0, 0, width(), height()));
    root->layer->markDirty(QSGNode::DirtyMaterial);
    m_syncNanoseconds = spent.nsecsElapsed();
    return root;
}

} // namespace nubo
