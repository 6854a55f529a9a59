#pragma once

#include "core/cleanup/CleanContext.h"
#include "core/cleanup/CleanItem.h"

#include <QList>

namespace nubo::LinuxCategories {

/// The rules of the categories whose shape on Linux is not the Mac's; the others read Linux's
/// places through the shared rules.

/// Log files of the state folder (~/.local/state, any depth up to three folders) not written for
/// a week, the session's previous error log (~/.xsession-errors.old; the current one is in use),
/// and the user's own crash reports in the system's folder of them (/var/crash).
[[nodiscard]] QList<CleanItem> logs(const CleanContext& context);
/// The trashed entries of ~/.local/share/Trash, each with its information entry as companion, so
/// no file manager is left listing something that is gone.
[[nodiscard]] QList<CleanItem> trash(const CleanContext& context);
/// Data certainly left by applications no longer installed: ~/.var/app/<id> of a Flatpak id
/// installed in no Flatpak installation, and ~/snap/<name> of a snap no longer in /snap.
[[nodiscard]] QList<CleanItem> orphans(const CleanContext& context);

} // namespace nubo::LinuxCategories
