#pragma once

#include "core/layout/CirclePack.h"

#include <QtGlobal>

#include <unordered_map>
#include <utility>
#include <vector>

namespace nubo {

class FileNode;

/// The circles of the space map, computed level by level and cached per tree revision: a folder's
/// children are packed once in the folder's own unit circle, and absolute circles (the root is the
/// unit circle) are composed from those. One per map view; not thread-safe.
class BubbleLayout
{
public:
    using Packed = std::vector<std::pair<const FileNode*, PackedCircle>>;

    /// At most this many children of a folder (the largest) are packed and drawn.
    static constexpr int maxChildren = 80;
    /// The packing fills this share of the parent's radius, leaving a margin around it.
    static constexpr double fill = 0.94;

    /// Empties both caches when `revision` differs from the one they belong to.
    void reset(qint64 revision);
    [[nodiscard]] qint64 revision() const { return m_revision; }

    /// The node's drawn children (its first `maxChildren`, which are the largest) with their
    /// circles in the node's unit coordinates. The reference stays valid until the next `reset`
    /// that changes the revision.
    const Packed& packedChildren(const FileNode& node);
    /// The node's circle in the root's unit coordinates; the unit circle for a node that is not
    /// drawn (beyond its parent's first `maxChildren`).
    PackedCircle circle(const FileNode& node);

private:
    std::unordered_map<const FileNode*, Packed> m_children;
    std::unordered_map<const FileNode*, PackedCircle> m_absolute;
    qint64 m_revision = 0;
};

} // namespace nubo
