#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace nubo::FolderListing {

/// The names of a folder's direct entries, hidden ones included, in the order the file system
/// gives them; "." and ".." are left out. None when the folder cannot be opened (missing, not a
/// folder, no permission).
///
/// A name whose bytes are not valid UTF-8 has no faithful QString form (it would come back with
/// U+FFFD and name some other, usually missing, file), so it is left out too: a caller that lists,
/// measures and later deletes by name must never act on, or report, a path that is not the one on
/// disk. Such entries stay where they are, untouched.
[[nodiscard]] std::optional<QStringList> names(const QString& folder);

/// True when `native` (a name or path as the system spells it) survives the trip through
/// QString and back unchanged.
[[nodiscard]] bool roundTrips(const QByteArray& native);

} // namespace nubo::FolderListing
