#include "models/app/Backends.h"

#include "core/admin/Admin.h"
#include "core/cleanup/CatalogRules.h"
#include "core/privacy/Privacy.h"
#include "core/shell/Shell.h"
#include "core/shell/ShellToolRunner.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <functional>

namespace nubo {

namespace {

// The file manager's names, for the scanner's root and the cleanup's items alike.
std::function<QString(const QString&)> displayNamesOf(const Workspace* workspace)
{
    return [workspace](const QString& path) { return workspace->displayName(path); };
}

// The scanner asks the gate, and the platform for names, volumes and packages; it leaves alone
// what the system's rules never scan.
DiskScanner::Services scanningWith(const Privacy& privacy, const Workspace* workspace, const SafetyRules& rules)
{
    DiskScanner::Services services;
    services.isGated = [&privacy](const QString& path) { return privacy.isGated(path); };
    services.displayName = displayNamesOf(workspace);
    services.isVolume = [workspace](const QString& path) { return workspace->isVolume(path); };
    services.isPackage = [workspace](const QString& path) { return workspace->isPackage(path); };
    services.skipPaths = rules.unscanned;
    return services;
}

// The environment's XDG folders are the real home's; a prepared home keeps its own.
std::function<QString(const char*)> environmentOf(const SystemRoots& roots)
{
    return [realHome = roots.realHome.isEmpty()](const char* name) {
        const QString value = realHome ? qEnvironmentVariable(name) : QString();
        return value.startsWith(QLatin1Char('/')) ? QDir::cleanPath(value) : QString();
    };
}

// A Mac's applications are its bundles; a Linux desktop's are its desktop entries.
AppCatalog catalogueOf(const SystemRoots& roots, const Safety& safety, const Privacy& privacy,
                       const Workspace& workspace, const Metadata& metadata, const ToolRunner& tools,
                       std::optional<DesktopPlaces> desktop)
{
    if (safety.rules().system == HostSystem::Mac)
        return AppCatalog(roots, safety, privacy, workspace, metadata);
    return AppCatalog(roots, safety, privacy, workspace, metadata,
                      desktop ? std::move(*desktop) : DesktopPlaces::forHome(roots.home, environmentOf(roots)), tools);
}

} // namespace

Backends::Backends(SystemRoots roots, const Privacy& privacy, Overrides overrides)
    : m_roots(std::move(roots)), m_admin(overrides.admin ? std::move(overrides.admin) : makeAdminRunner()),
      m_workspace(overrides.workspace ? std::move(overrides.workspace) : makeWorkspace()),
      m_metadata(overrides.metadata ? std::move(overrides.metadata) : makeMetadata()),
      m_tools(overrides.tools ? std::move(overrides.tools) : std::make_unique<ShellToolRunner>()),
      m_safety(m_roots, overrides.safety ? *overrides.safety : SafetyRules::forHost()), m_deleter(m_safety, *m_admin),
      m_scanner(scanningWith(privacy, m_workspace.get(), m_safety.rules())),
      m_naming(Naming::lookupIn(*m_workspace)),
      m_context(std::make_shared<CleanContext>(m_safety, privacy, m_naming, *m_tools, m_roots)),
      m_catalog(overrides.rules ? std::move(overrides.rules) : CatalogRules::make(m_context), m_safety.rules().system),
      m_apps(catalogueOf(m_roots, m_safety, privacy, *m_workspace, *m_metadata, *m_tools, std::move(overrides.desktop))),
      m_processes(makeProcessTable()), m_accessibility(makeAccessibility()), m_loginItem(makeLoginItem()),
      m_launchItems(SystemTools::system(m_roots), *m_tools, *m_admin, m_deleter, m_naming, *m_workspace),
      m_maintenance(SystemTools::system(m_roots), *m_tools, *m_admin)
{
    // Our own folders are never offered for cleaning while we run: the caches under the identifier
    // the build sets, and wherever Qt keeps this program's cache and data.
    m_context->ownFolders = {m_context->home(QStringLiteral("Library/Caches/" NUBO_BUNDLE_IDENTIFIER))};
    for (const auto location : {QStandardPaths::CacheLocation, QStandardPaths::AppLocalDataLocation}) {
        if (const QString path = QStandardPaths::writableLocation(location); !path.isEmpty())
            m_context->ownFolders << QDir::cleanPath(path);
    }
    m_context->sharedTemporaries = m_safety.rules().sharedTemporaries;
    if (m_safety.rules().system == HostSystem::Linux) {
        const auto variable = environmentOf(m_roots);
        m_context->places =
            CleanPlaces::forLinux(m_roots.home, variable("XDG_CACHE_HOME"), variable("XDG_STATE_HOME"));
        m_context->places.crashReports = m_safety.rules().crashReports;
    }
    const ToolRunner& tools = *m_tools;
    AdminRunner& admin = *m_admin;
    m_context->findTool = [](const QString& name) { return Shell::which(name); };
    m_context->displayName = displayNamesOf(m_workspace.get());
    m_context->orphans = [this] { return m_apps.orphanedLeftovers(); };
    // The workspace acts on applications from the user-interface thread only; the removal that
    // asks comes from background work and does not wait for the answer, it watches for the quit.
    Workspace& workspace = *m_workspace;
    ModelServices::Quitter quit = [&workspace](const RunningApplication& app) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [&workspace, app] { workspace.terminate(app); },
            Qt::QueuedConnection);
    };
    m_services.emplace(ModelServices{
        .home = m_roots.home,
        .safety = m_safety,
        .deleter = m_deleter,
        .scanner = m_scanner,
        .catalog = m_catalog,
        .apps = m_apps,
        .runCommands = [&tools](const QList<CleanItem>& items,
                                StopToken stop) { return CommandCleaners::runCommands(tools, items, stop); },
        .runAsAdministrator = [&admin](const QString& commandLine) { return Admin::run(admin, commandLine); },
        .quit = overrides.quit ? std::move(overrides.quit) : std::move(quit),
        .haptics = {},
        .workspace = m_workspace.get(),
    });
}

ActivityModel::Services Backends::activityServices()
{
    ActivityModel::Services services{*m_workspace, *m_processes, *m_accessibility, *m_loginItem,
                                     QCoreApplication::applicationPid()};
    services.owner = shared_from_this();
    return services;
}

// Each pointer shares the ownership of the whole: background work that holds one keeps every
// service it may reach through it.
std::shared_ptr<const ModelServices> Backends::services() const
{
    return {shared_from_this(), &*m_services};
}

std::shared_ptr<const LaunchItems> Backends::launchItems() const
{
    return {shared_from_this(), &m_launchItems};
}

std::shared_ptr<const MaintenanceCatalog> Backends::maintenance() const
{
    return {shared_from_this(), &m_maintenance};
}

} // namespace nubo
