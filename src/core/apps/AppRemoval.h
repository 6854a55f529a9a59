#pragma once

#include "core/apps/InstalledApp.h"
#include "core/cleanup/CleanItem.h"

#include <QStringList>
#include <optional>

namespace nubo {

class ToolRunner;

/// How one application leaves the machine, decided by where it came from. A Mac bundle, an
/// AppImage or a program of the user's own is deleted (the program with its desktop entry); a
/// Flatpak, a snap or a distribution package is handed to its own packaging, never taken apart
/// by hand. A distribution package is only offered when removing it takes nothing else away.
struct AppRemoval
{
    /// Why an application is not offered for removal.
    enum class Refusal
    {
        None,
        /// No packaging that Nubo knows installed it (a program in /usr/local, for example).
        NotPackaged,
        /// Its package cannot go alone: `others` would go with it.
        TakesOthers,
        /// The package manager did not say what the removal would take.
        PackagingSilent,
        /// The packaging's tool is not on this machine (`others` names it).
        ToolMissing
    };

    /// The application's own line: the path deleted (with its desktop entry as a companion) or
    /// the packaging's command; none when the removal is not offered.
    std::optional<CleanItem> item;
    /// The command needs the administrator's password (a system-wide Flatpak, a snap, a package).
    bool asAdministrator = false;
    Refusal refusal = Refusal::None;
    QStringList others;

    /// The plan for `app`, read off what is known of it without asking any tool; the packaging's
    /// tool is looked for in `toolFolders`. A package's plan still has to be `confirmed`.
    [[nodiscard]] static AppRemoval of(const InstalledApp& app, const QString& home, const QStringList& toolFolders);
    /// `plan` once the package manager has simulated the removal; other plans come back as they
    /// are. Blocks on the tool: call it from background work.
    [[nodiscard]] static AppRemoval confirmed(AppRemoval plan, const InstalledApp& app, const ToolRunner& tools);

    /// The command's line for the administrator's shell, every word quoted; empty for a path.
    [[nodiscard]] QString commandLine() const;

    friend bool operator==(const AppRemoval&, const AppRemoval&) = default;
};

} // namespace nubo
