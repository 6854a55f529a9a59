#include "core/layout/CirclePack.h"

#include <algorithm>
#include <cmath>

namespace nubo::CirclePack {

namespace {

constexpr double kSmallestRadius = 1e-9;

// Puts `c` against `a` and `b`, touching both, on the side that keeps the chain turning the same way.
void placeTangent(const PackedCircle& a, const PackedCircle& b, PackedCircle& c)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double d2 = dx * dx + dy * dy;
    if (d2 == 0) {
        c.x = a.x + c.r;
        c.y = a.y;
        return;
    }
    const double sa = (a.r + c.r) * (a.r + c.r);
    const double sb = (b.r + c.r) * (b.r + c.r);
    if (sa > sb) {
        const double x = (d2 + sb - sa) / (2 * d2);
        const double y = std::sqrt(std::max(0.0, sb / d2 - x * x));
        c.x = b.x - x * dx - y * dy;
        c.y = b.y - x * dy + y * dx;
    } else {
        const double x = (d2 + sa - sb) / (2 * d2);
        const double y = std::sqrt(std::max(0.0, sa / d2 - x * x));
        c.x = a.x + x * dx - y * dy;
        c.y = a.y + x * dy + y * dx;
    }
}

bool overlaps(const PackedCircle& a, const PackedCircle& b)
{
    const double d = a.r + b.r - tolerance;
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    return d > 0 && dx * dx + dy * dy < d * d;
}

// How far from the origin the weighted middle of a neighbouring pair lies; the chain grows from
// the pair nearest the centre so the packing stays round.
double score(const PackedCircle& p, const PackedCircle& q)
{
    const double sum = p.r + q.r;
    const double x = (p.x * q.r + q.x * p.r) / sum;
    const double y = (p.y * q.r + q.y * p.r) / sum;
    return x * x + y * y;
}

double centre(std::vector<PackedCircle>& circles)
{
    double minX = circles.front().x - circles.front().r;
    double maxX = circles.front().x + circles.front().r;
    double minY = circles.front().y - circles.front().r;
    double maxY = circles.front().y + circles.front().r;
    for (const auto& c : circles) {
        minX = std::min(minX, c.x - c.r);
        maxX = std::max(maxX, c.x + c.r);
        minY = std::min(minY, c.y - c.r);
        maxY = std::max(maxY, c.y + c.r);
    }
    const double cx = (minX + maxX) * 0.5;
    const double cy = (minY + maxY) * 0.5;
    double radius = 0;
    for (auto& c : circles) {
        c.x -= cx;
        c.y -= cy;
        radius = std::max(radius, std::sqrt(c.x * c.x + c.y * c.y) + c.r);
    }
    return radius;
}

} // namespace

Result pack(const std::vector<double>& radii)
{
    Result result;
    auto& c = result.circles;
    c.reserve(radii.size());
    for (double r : radii)
        c.push_back({0, 0, r > kSmallestRadius ? r : kSmallestRadius}); // also catches NaN
    const int n = static_cast<int>(c.size());
    if (n == 0)
        return result;
    if (n == 1) {
        result.radius = c[0].r;
        return result;
    }

    c[0].x = -c[1].r;
    c[1].x = c[0].r;
    if (n == 2) {
        result.radius = centre(c);
        return result;
    }

    placeTangent(c[0], c[1], c[2]);
    std::vector<int> next(n, -1);
    std::vector<int> prev(n, -1);
    const auto link = [&](int from, int to) {
        next[from] = to;
        prev[to] = from;
    };
    link(0, 1);
    link(1, 2);
    link(2, 0);
    int a = 0;
    int b = 1;

    for (int i = 3; i < n; ++i) {
        PackedCircle& ci = c[i];
        for (;;) {
            placeTangent(c[b], c[a], ci);
            // Walk outwards from the pair on both sides at once, always on the side that has
            // covered less length, so that the nearest overlapping circle is found first.
            int j = next[b];
            int k = prev[a];
            double sj = c[b].r;
            double sk = c[a].r;
            int hit = -1;
            bool forward = false;
            while (j != next[k]) {
                if (sj <= sk) {
                    if (overlaps(c[j], ci)) {
                        hit = j;
                        forward = true;
                        break;
                    }
                    sj += c[j].r;
                    j = next[j];
                } else {
                    if (overlaps(c[k], ci)) {
                        hit = k;
                        break;
                    }
                    sk += c[k].r;
                    k = prev[k];
                }
            }
            if (hit < 0)
                break;
            if (forward) {
                link(a, hit);
                b = hit;
            } else {
                link(hit, b);
                a = hit;
            }
        }

        link(a, i);
        link(i, b);
        b = i;
        double best = score(c[a], c[next[a]]);
        for (int e = next[i]; e != i; e = next[e]) {
            const double s = score(c[e], c[next[e]]);
            if (s < best) {
                a = e;
                best = s;
            }
        }
        b = next[a];
    }

    result.radius = centre(c);
    return result;
}

} // namespace nubo::CirclePack
