#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace nubo::PanelPlacement {

/// Where the menu-bar panel opens: centred under its icon and kept whole on the screen. An icon
/// whose place the system does not tell (an empty rectangle) puts the panel at the top right
/// corner of the screen's free area, where the menu-bar icons live.
[[nodiscard]] QPoint position(const QRect& icon, const QSize& panel, const QRect& screen);

} // namespace nubo::PanelPlacement
