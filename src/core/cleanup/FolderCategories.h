#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"

#include <QList>
#include <QSet>
#include <QString>

namespace nubo::FolderCategories {

/// The applications' caches folder (~/Library/Caches, ~/.cache), less the package managers'
/// folders (the package-cache category offers them, so none is counted twice) and our own.
[[nodiscard]] QList<CleanItem> caches(const CleanContext& context);
/// The logs folder of the system's places (~/Library/Logs on a Mac).
[[nodiscard]] QList<CleanItem> logs(const CleanContext& context);
/// The per-user temporary folder (anything over 3 days old), then the shared one (the user's own
/// entries over 3 days old), each list sorted by itself.
[[nodiscard]] QList<CleanItem> temp(const CleanContext& context);
/// The entries of the trash folder (~/.Trash on a Mac).
[[nodiscard]] QList<CleanItem> trash(const CleanContext& context);
/// The attachments Mail saved when they were opened.
[[nodiscard]] QList<CleanItem> mail(const CleanContext& context);
/// Xcode's build folders, one per project, named by the project.
[[nodiscard]] QList<CleanItem> derivedData(const CleanContext& context);
/// Device symbols of iOS, watchOS, tvOS, visionOS and macOS, in that order, each sorted by itself.
[[nodiscard]] QList<CleanItem> deviceSupport(const CleanContext& context);
/// The simulator caches; the unavailable devices are appended by the caller.
[[nodiscard]] QList<CleanItem> simulatorCaches(const CleanContext& context);
/// Every archive inside Xcode's dated archive folders, the date folders themselves never.
[[nodiscard]] QList<CleanItem> archives(const CleanContext& context);
/// The system's installers (disk images and installer packages on a Mac) in the download
/// folder, whatever the case of their extension.
[[nodiscard]] QList<CleanItem> installers(const CleanContext& context);
/// Anything in the download folder not modified in 90 days.
[[nodiscard]] QList<CleanItem> oldDownloads(const CleanContext& context);
/// One item per device backup made by the Finder.
[[nodiscard]] QList<CleanItem> backups(const CleanContext& context);

} // namespace nubo::FolderCategories
