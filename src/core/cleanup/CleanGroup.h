#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace nubo {

/// The three headings the cleanup categories are grouped under, in the order they are shown.
/// A group's identity is its Spanish title.
enum class CleanGroup { system, developer, personal };

namespace CleanGroups {

/// Every group, in display order.
[[nodiscard]] const QList<CleanGroup>& all();
/// The heading shown for the group ("Sistema", "Desarrollo", "Tus archivos"); also its id.
[[nodiscard]] QString title(CleanGroup group);
/// The group whose title is exactly `title` (case matters), none for any other text.
[[nodiscard]] std::optional<CleanGroup> fromTitle(const QString& title);

} // namespace CleanGroups

} // namespace nubo
