#pragma once

#include "core/layout/BubbleLayout.h"

#include <QPointF>
#include <QSizeF>

#include <vector>

namespace nubo {

class FileNode;

/// The geometry of one picture of the space map: which bubbles a folder shows (the folder itself,
/// its children and the children of every child that can be opened), where they land in a view
/// of a given size, which bubble lies under a point, and the camera between two folders while the
/// map zooms. Pure arithmetic over `BubbleLayout`; the drawing item only paints what this says.
class MapScene
{
public:
    enum class Role
    {
        Context,   ///< the folder on show, drawn as the frame around everything else
        Child,     ///< one of its children: the bubbles the user taps
        Grandchild ///< a child of a child that can be opened, drawn inside it
    };

    struct Bubble
    {
        const FileNode* node = nullptr;
        Role role = Role::Context;
        PackedCircle circle; ///< in the root's unit coordinates
        int holder = -1;     ///< for a grandchild, the index of the child that holds it
    };

    /// The bubbles of `current`: itself first, then its drawn children, then, after each child's
    /// own entry, nothing; grandchildren follow all children so that they paint on top.
    [[nodiscard]] static std::vector<Bubble> build(BubbleLayout& layout, const FileNode& current);

    /// The index of the deepest bubble whose disc holds `unit` (a point in unit coordinates), or
    /// -1 when the point is outside the folder's circle.
    [[nodiscard]] static int hit(const std::vector<Bubble>& bubbles, QPointF unit);
    /// The bubble a tap or the pointer at `index` acts on: a child for itself and for what it
    /// holds; -1 for the frame and for nothing.
    [[nodiscard]] static int target(const std::vector<Bubble>& bubbles, int index);
};

/// Places unit coordinates in a view: the camera circle is centred in the view and fills its
/// shorter side less a margin on each side.
class MapTransform
{
public:
    MapTransform() = default;
    MapTransform(const PackedCircle& camera, QSizeF view, double margin);

    [[nodiscard]] QPointF toView(double x, double y) const;
    [[nodiscard]] double toView(double radius) const { return radius * m_scale; }
    /// The inverse of `toView`; the view's centre for a degenerate transform.
    [[nodiscard]] QPointF toUnit(QPointF view) const;
    [[nodiscard]] double scale() const { return m_scale; }

    /// The camera `t` (0 to 1) of the way from `from` to `to`: a zoom about the one point that
    /// keeps its place on screen, with the radius changing geometrically so that the speed of
    /// the zoom looks even. Between circles of equal size it pans in a straight line.
    [[nodiscard]] static PackedCircle between(const PackedCircle& from, const PackedCircle& to, double t);

private:
    PackedCircle m_camera{0, 0, 1};
    QPointF m_centre;
    double m_scale = 0;
};

} // namespace nubo
