#include "models/menubar/PanelPlacement.h"

#include <algorithm>

namespace nubo::PanelPlacement {

namespace {
// A small gap keeps the panel from touching the menu bar, as the system's own panels do.
constexpr int kGap = 6;
} // namespace

QPoint position(const QRect& icon, const QSize& panel, const QRect& screen)
{
    const int right = screen.x() + screen.width() - panel.width() - kGap;
    const int bottom = screen.y() + screen.height() - panel.height();
    if (!icon.isValid() || icon.isEmpty())
        return {std::max(screen.x(), right), screen.y() + kGap};

    int x = icon.x() + icon.width() / 2 - panel.width() / 2;
    x = std::max(screen.x() + kGap, std::min(x, right));
    // An icon in a bar at the foot of the screen opens the panel above it.
    const bool below = icon.y() + icon.height() / 2 < screen.y() + screen.height() / 2;
    int y = below ? icon.bottom() + 1 + kGap : icon.top() - panel.height() - kGap;
    y = std::max(screen.y(), std::min(y, bottom));
    return {x, y};
}

} // namespace nubo::PanelPlacement
