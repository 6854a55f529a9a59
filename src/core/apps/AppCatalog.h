#pragma once

#include "core/apps/AppRemoval.h"
#include "core/apps/DesktopApps.h"
#include "core/apps/InstalledApp.h"
#include "core/cleanup/CleanItem.h"
#include "core/files/SystemRoots.h"
#include "platform/Workspace.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

namespace nubo {

class Metadata;
class Privacy;
class Safety;
class ToolRunner;

/// Finds the applications the user can remove and what they leave behind, and how each one is
/// removed. On a Mac the applications are bundles; built with a desktop's places, they are the
/// desktop entries of a Linux desktop (see `DesktopApps`), and the rest of this description
/// speaks of the Mac.
///
/// The installed half lists the ".app" bundles of the applications folders and describes each
/// one (`load`, `describe`) and finds an application's running process (`runningInstance`). The
/// leftover half finds the Library entries of one installed application (`leftovers`) and the
/// identifier-named data of applications that are gone (`orphanedLeftovers`). Every folder comes
/// from the `SystemRoots` it is built with, every path offered has passed `Safety`, and folders
/// `Privacy` gates are skipped without being touched.
///
/// Holds nothing but its services, which must outlive it. All functions block on the disk and
/// are meant for background work; several may run at once.
class AppCatalog
{
public:
    AppCatalog(SystemRoots roots, const Safety& safety, const Privacy& privacy, const Workspace& workspace,
               const Metadata& metadata);
    /// The catalogue of a Linux desktop: the applications are the desktop entries found through
    /// `places`, and `tools` asks their packaging.
    AppCatalog(SystemRoots roots, const Safety& safety, const Privacy& privacy, const Workspace& workspace,
               const Metadata& metadata, DesktopPlaces places, const ToolRunner& tools);

    /// Where applications are looked for, in order: "/Applications", then ~/Applications.
    [[nodiscard]] QStringList searchRoots() const;

    /// Every ".app" in the search roots and one folder below them (not inside packages, not
    /// through links), sorted by name, localised and case-insensitive; equal names keep the
    /// order found, so the copy in "/Applications" comes first. Never fails.
    [[nodiscard]] QList<InstalledApp> load() const;

    /// One bundle described; `size` is left for the caller to measure.
    [[nodiscard]] std::optional<InstalledApp> describe(const QString& url) const;

    /// The running process whose bundle is this very copy of `app` (matched by location, not by
    /// identifier, so two copies are told apart), none when it is not running.
    [[nodiscard]] std::optional<RunningApplication> runningInstance(const InstalledApp& app) const;

    /// What `app` left in the two Library folders, largest first; the bundle itself is not part
    /// of it. Each path comes back once, and only if the safety gate allows it.
    [[nodiscard]] QList<CleanItem> leftovers(const InstalledApp& app) const;

    /// Identifier-named data in the user's Library whose application is not installed, largest
    /// first; empty items are left out. None on a desktop, whose cleanup finds its own.
    [[nodiscard]] QList<CleanItem> orphanedLeftovers() const;

    /// How `app` would be removed, from what is known of it; instant.
    [[nodiscard]] AppRemoval removalPlan(const InstalledApp& app) const;
    /// The plan once the packaging has said what the removal would take; blocks on the tool.
    [[nodiscard]] AppRemoval confirmedRemoval(const InstalledApp& app) const;

private:
    [[nodiscard]] bool otherAppOwns(const QString& entryName, const InstalledApp& besides) const;
    [[nodiscard]] QSet<QString> installedIdentifiers() const;

    SystemRoots m_roots;
    const Safety& m_safety;
    const Privacy& m_privacy;
    const Workspace& m_workspace;
    const Metadata& m_metadata;
    const ToolRunner* m_tools = nullptr;
    std::optional<DesktopApps> m_desktop;
};

} // namespace nubo
