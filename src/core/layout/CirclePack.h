#pragma once

#include <vector>

namespace nubo {

/// A positioned circle. In the map's layout, coordinates are in units of the parent circle: its
/// centre is (0, 0) and its radius 1.
struct PackedCircle
{
    double x = 0;
    double y = 0;
    double r = 0;

    friend bool operator==(const PackedCircle&, const PackedCircle&) = default;
};

/// Packs sibling circles tightly around the origin with a front chain: each new circle is placed
/// against two neighbours on the chain and the chain is cut back past anything it would overlap.
namespace CirclePack {

/// Two circles of a packing may overlap by at most this much.
inline constexpr double tolerance = 1e-6;

struct Result
{
    std::vector<PackedCircle> circles; ///< in input order
    double radius = 0;                 ///< of the circle about the origin that encloses them all
};

/// Packs circles of the given radii without overlaps. A radius below 1e-9 (zero, negative, not a
/// number) gets 1e-9, so every circle exists. The group is centred on its bounding box, not on
/// its smallest enclosing circle.
[[nodiscard]] Result pack(const std::vector<double>& radii);

} // namespace CirclePack
} // namespace nubo
