#pragma once

#include <QString>

#include <array>
#include <optional>

namespace nubo {

/// A section of the main window, chosen in the sidebar. Its identity is its raw value ("home").
enum class Pane { Home, Map, Clean, Apps, Activity, Performance };

namespace Panes {

/// Every pane in sidebar order.
inline constexpr std::array<Pane, 6> all{Pane::Home, Pane::Map, Pane::Clean,
                                         Pane::Apps, Pane::Activity, Pane::Performance};

[[nodiscard]] QString id(Pane pane);
[[nodiscard]] std::optional<Pane> fromId(const QString& id);
[[nodiscard]] QString title(Pane pane);
[[nodiscard]] QString symbol(Pane pane);

} // namespace Panes
} // namespace nubo
