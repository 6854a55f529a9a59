#include "core/layout/BubbleLayout.h"

#include "core/scanner/FileNode.h"

#include <algorithm>
#include <cmath>

namespace nubo {

void BubbleLayout::reset(qint64 revision)
{
    if (revision == m_revision)
        return;
    m_children.clear();
    m_absolute.clear();
    m_revision = revision;
}

const BubbleLayout::Packed& BubbleLayout::packedChildren(const FileNode& node)
{
    if (const auto it = m_children.find(&node); it != m_children.end())
        return it->second;

    const auto& children = node.children();
    const size_t drawn = std::min(children.size(), static_cast<size_t>(maxChildren));
    std::vector<double> radii;
    radii.reserve(drawn);
    // Areas proportional to sizes.
    for (size_t i = 0; i < drawn; ++i)
        radii.push_back(std::sqrt(static_cast<double>(std::max<qint64>(children[i]->size(), 0))));

    const CirclePack::Result packing = CirclePack::pack(radii);
    const double scale = packing.radius > 0 ? fill / packing.radius : 0;
    Packed packed;
    packed.reserve(drawn);
    for (size_t i = 0; i < drawn; ++i) {
        const PackedCircle& c = packing.circles[i];
        packed.emplace_back(children[i].get(), PackedCircle{c.x * scale, c.y * scale, c.r * scale});
    }
    return m_children.emplace(&node, std::move(packed)).first->second;
}

PackedCircle BubbleLayout::circle(const FileNode& node)
{
    if (const auto it = m_absolute.find(&node); it != m_absolute.end())
        return it->second;

    PackedCircle absolute{0, 0, 1};
    if (const FileNode* parent = node.parent()) {
        const PackedCircle outer = circle(*parent);
        for (const auto& [child, c] : packedChildren(*parent)) {
            if (child == &node) {
                absolute = {outer.x + outer.r * c.x, outer.y + outer.r * c.y, outer.r * c.r};
                break;
            }
        }
    }
    m_absolute.emplace(&node, absolute);
    return absolute;
}

} // namespace nubo
