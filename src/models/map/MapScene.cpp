#include "models/map/MapScene.h"

#include "core/scanner/FileNode.h"

#include <algorithm>
#include <cmath>

namespace nubo {

std::vector<MapScene::Bubble> MapScene::build(BubbleLayout& layout, const FileNode& current)
{
    std::vector<Bubble> bubbles;
    bubbles.push_back({&current, Role::Context, layout.circle(current), -1});
    const BubbleLayout::Packed& children = layout.packedChildren(current);
    const PackedCircle outer = bubbles.front().circle;
    const auto place = [](const PackedCircle& parent, const PackedCircle& c) {
        return PackedCircle{parent.x + parent.r * c.x, parent.y + parent.r * c.y, parent.r * c.r};
    };
    for (const auto& [child, c] : children)
        bubbles.push_back({child, Role::Child, place(outer, c), -1});
    const int childCount = int(bubbles.size());
    for (int i = 1; i < childCount; ++i) {
        const FileNode* child = bubbles[size_t(i)].node;
        if (!child->canDrill())
            continue;
        const PackedCircle holder = bubbles[size_t(i)].circle;
        for (const auto& [grandchild, c] : layout.packedChildren(*child))
            bubbles.push_back({grandchild, Role::Grandchild, place(holder, c), i});
    }
    return bubbles;
}

int MapScene::hit(const std::vector<Bubble>& bubbles, QPointF unit)
{
    // Packed siblings never overlap, so the deepest disc that holds the point is the answer;
    // grandchildren come last, so a backwards search meets them first.
    for (int i = int(bubbles.size()) - 1; i >= 0; --i) {
        const PackedCircle& c = bubbles[size_t(i)].circle;
        const double dx = unit.x() - c.x;
        const double dy = unit.y() - c.y;
        if (dx * dx + dy * dy <= c.r * c.r)
            return i;
    }
    return -1;
}

int MapScene::target(const std::vector<Bubble>& bubbles, int index)
{
    if (index < 0 || index >= int(bubbles.size()))
        return -1;
    const Bubble& bubble = bubbles[size_t(index)];
    switch (bubble.role) {
    case Role::Child:
        return index;
    case Role::Grandchild:
        return bubble.holder;
    case Role::Context:
        break;
    }
    return -1;
}

MapTransform::MapTransform(const PackedCircle& camera, QSizeF view, double margin)
    : m_camera(camera), m_centre(view.width() / 2, view.height() / 2)
{
    const double half = std::min(view.width(), view.height()) / 2 - margin;
    m_scale = camera.r > 0 && half > 0 ? half / camera.r : 0;
}

QPointF MapTransform::toView(double x, double y) const
{
    return {m_centre.x() + (x - m_camera.x) * m_scale, m_centre.y() + (y - m_camera.y) * m_scale};
}

QPointF MapTransform::toUnit(QPointF view) const
{
    if (m_scale <= 0)
        return {m_camera.x, m_camera.y};
    return {m_camera.x + (view.x() - m_centre.x()) / m_scale,
            m_camera.y + (view.y() - m_centre.y()) / m_scale};
}

PackedCircle MapTransform::between(const PackedCircle& from, const PackedCircle& to, double t)
{
    // The ends are exact: a picture painted for a camera must meet that very camera at rest.
    if (t <= 0)
        return from;
    if (t >= 1)
        return to;
    if (from.r <= 0 || to.r <= 0 || std::abs(from.r - to.r) < 1e-12 * std::max(from.r, to.r)) {
        return {from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t, from.r + (to.r - from.r) * t};
    }
    const double r = from.r * std::pow(to.r / from.r, t);
    // The fixed point F satisfies (F - from) / from.r == (F - to) / to.r.
    const double fx = (from.x * to.r - to.x * from.r) / (to.r - from.r);
    const double fy = (from.y * to.r - to.y * from.r) / (to.r - from.r);
    const double k = r / from.r;
    return {fx + (from.x - fx) * k, fy + (from.y - fy) * k, r};
}

} // namespace nubo
