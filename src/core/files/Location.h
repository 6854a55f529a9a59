#pragma once

#include "core/stop/StopToken.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace nubo::Location {

/// The path with the home folder's path replaced by "~". The test is a plain text prefix, so a
/// sibling whose name starts with the home folder's name is shortened too (/Users/anabel/x reads
/// ~bel/x for the home /Users/ana); the lists rely on exactly this behaviour.
[[nodiscard]] QString tildePath(const QString& path, const QString& home);
[[nodiscard]] QString tildePath(const QString& path);

/// Bytes the item occupies on disk. A folder is walked without following links and every
/// non-folder inside it contributes its allocated blocks; what cannot be read counts 0. Asked to
/// stop, the walk ends at its next entry with what it had summed (a bundle can hold a million).
[[nodiscard]] qint64 allocatedSize(const QString& path, const StopToken& stop = {});

/// The content-modification date of the item itself (a link is not followed), none when unreadable.
[[nodiscard]] std::optional<QDateTime> modificationDate(const QString& path);

/// The last-access date of the item itself, none when unreadable.
[[nodiscard]] std::optional<QDateTime> accessDate(const QString& path);

/// Whether the item itself is there (a link counts, even a broken one), looked for by its exact
/// bytes, so a name that is not UTF-8 is found and never a look-alike.
[[nodiscard]] bool exists(const QString& path);

} // namespace nubo::Location
