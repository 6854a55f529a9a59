#pragma once

#include "core/apps/AppCatalog.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/cleanup/CleanContext.h"
#include "core/deletion/Deleter.h"
#include "core/launch/LaunchItems.h"
#include "core/maintenance/MaintenanceCatalog.h"
#include "core/files/SystemRoots.h"
#include "core/naming/Naming.h"
#include "core/safety/Safety.h"
#include "core/scanner/DiskScanner.h"
#include "core/shell/ToolRunner.h"
#include "models/activity/ActivityModel.h"
#include "models/app/ModelServices.h"
#include "platform/Accessibility.h"
#include "platform/LoginItem.h"
#include "platform/ProcessTable.h"
#include "platform/AdminRunner.h"
#include "platform/Metadata.h"
#include "platform/Workspace.h"

#include <memory>
#include <optional>

namespace nubo {

class Privacy;

/// The real services behind the models for one run, built over a set of system roots: the
/// safety gate, the deleter with the platform's administrator prompt, the disk scanner, the
/// cleanup and application catalogues, and the command runner. Pointing the roots at a prepared
/// folder gives the whole program a fixture home; each platform backend may be replaced.
class Backends : public std::enable_shared_from_this<Backends>
{
public:
    struct Overrides
    {
        std::unique_ptr<AdminRunner> admin;
        std::unique_ptr<Workspace> workspace;
        std::unique_ptr<Metadata> metadata;
        std::unique_ptr<ToolRunner> tools;
        /// The discovery rules of the cleanup categories; by default the catalogue's own, over
        /// these roots.
        CleanCatalog::Rules rules;
        /// By default the workspace's polite request, made on the user-interface thread.
        ModelServices::Quitter quit;
        /// What the gate protects; by default the rules of the system we run on.
        std::optional<SafetyRules> safety;
        /// Where a Linux desktop's applications are found; by default the session's XDG folders.
        std::optional<DesktopPlaces> desktop;
    };

    /// `privacy` gates what the scanner and the catalogue read; it must outlive the backends.
    Backends(SystemRoots roots, const Privacy& privacy, Overrides overrides = {});
    Backends(const Backends&) = delete;
    Backends& operator=(const Backends&) = delete;

    /// What the map, cleanup and apps models work with; keeps these backends alive. The backends
    /// must be owned by a shared pointer (`std::make_shared`).
    [[nodiscard]] std::shared_ptr<const ModelServices> services() const;
    [[nodiscard]] const Safety& safety() const { return m_safety; }
    [[nodiscard]] const CleanCatalog& catalog() const { return m_catalog; }
    /// What the activity model drives: the workspace, the process table, Accessibility and the
    /// login item, with this program's own process id; keeps these backends alive.
    [[nodiscard]] ActivityModel::Services activityServices();
    /// The running applications and the pages the system opens.
    [[nodiscard]] Workspace& workspace() { return *m_workspace; }
    [[nodiscard]] std::shared_ptr<const LaunchItems> launchItems() const;
    [[nodiscard]] std::shared_ptr<const MaintenanceCatalog> maintenance() const;

private:
    SystemRoots m_roots;
    std::unique_ptr<AdminRunner> m_admin;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<Metadata> m_metadata;
    std::unique_ptr<ToolRunner> m_tools;
    Safety m_safety;
    Deleter m_deleter;
    DiskScanner m_scanner;
    Naming m_naming;
    std::shared_ptr<CleanContext> m_context;
    CleanCatalog m_catalog;
    AppCatalog m_apps;
    std::unique_ptr<ProcessTable> m_processes;
    std::unique_ptr<Accessibility> m_accessibility;
    std::unique_ptr<LoginItem> m_loginItem;
    LaunchItems m_launchItems;
    MaintenanceCatalog m_maintenance;
    std::optional<ModelServices> m_services;
};

} // namespace nubo
