#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"

#include <QList>

namespace nubo::LargeOldFiles {

/// Files that take at least 500 MiB on disk, the catalogue's limit for "grandes".
inline constexpr qint64 kMinimumSize = 524'288'000;
/// Six months without use.
inline constexpr int kDays = 180;

/// Regular files of the home folder taking at least `minSize` allocated bytes whose last use (the
/// later of their last access and last change) is more than `days` days ago, largest first. Links
/// are not followed and other volumes not entered; hidden folders, "node_modules", the Library,
/// the Trash, the applications folder, guarded folders and packages (applications, photo and
/// music libraries, projects, archives, bundles, frameworks) are never opened, so their insides
/// are never offered one file at a time.
[[nodiscard]] QList<CleanItem> find(const CleanContext& context, qint64 minSize = kMinimumSize, int days = kDays);

} // namespace nubo::LargeOldFiles
