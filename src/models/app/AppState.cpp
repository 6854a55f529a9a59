#include "models/app/AppState.h"

#include "core/safety/Safety.h"

#include "models/app/Notify.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/format/CheckedMath.h"
#include "core/privacy/Permissions.h"
#include "core/privacy/Privacy.h"
#include "models/app/Backends.h"
#include "models/text/ResultTexts.h"

#include <QTimer>
#include <algorithm>

namespace nubo {

AppState::AppState(Services services, QObject* parent)
    : QObject(parent), m_services(services), m_disk(DiskInfo::current(services.volume)),
      m_hasFullDiskAccess(services.privacy.refresh()),
      m_showPermissions(!services.privacy.hasFullDiskAccess())
{
    if (!services.models) {
        m_backends = std::make_shared<Backends>(SystemRoots::system(), services.privacy);
        m_models = m_backends->services();
    } else {
        m_models = services.models;
    }
    m_map = std::make_unique<MapModel>(m_models, this);
    m_clean = std::make_unique<CleanModel>(m_models, this);
    m_apps = std::make_unique<AppsModel>(m_models, this);
    m_map->setApp(this);
    // The node menu reveals and opens files through the same workspace as the settings page.
    m_map->setWorkspace(workspace());
    m_clean->setApp(this);
    m_apps->setApp(this);

    connect(m_clean.get(), &CleanModel::isScanningChanged, this, &AppState::isAnalyzingChanged);
    connect(m_apps.get(), &AppsModel::isLoadingChanged, this, &AppState::isAnalyzingChanged);
    connect(m_clean.get(), &CleanModel::categoriesChanged, this, &AppState::safeSizeChanged);
    connect(m_clean.get(), &CleanModel::categoriesChanged, this, &AppState::badgesChanged);
    connect(m_clean.get(), &CleanModel::selectionChanged, this, &AppState::badgesChanged);
    connect(m_map.get(), &MapModel::markedChanged, this, &AppState::badgesChanged);

    if (m_backends) {
        m_activity = std::make_unique<ActivityModel>(m_backends->activityServices(), this);
        m_performance =
            std::make_unique<PerformanceModel>(m_backends->launchItems(), m_backends->maintenance(), this);
        // The only periodic work that begins at launch: every analysis waits for the user.
        m_activity->start();
    }
}

AppState::~AppState()
{
    m_performance.reset();
    m_activity.reset();
    m_apps.reset();
    m_clean.reset();
    m_map.reset();
}

bool AppState::isAnalyzing() const
{
    return m_clean->isScanning() || m_apps->isLoading();
}

QStringList AppState::safeCategories() const
{
    QStringList ids;
    for (const CleanCategory& row : m_models->catalog.all()) {
        if (row.selectedByDefault)
            ids.append(row.id);
    }
    return ids;
}

qint64 AppState::safeSize() const
{
    qint64 total = 0;
    for (const QString& id : safeCategories()) {
        for (const CleanItem& item : m_clean->items(id))
            total = checkedAdd(total, item.size);
    }
    return total;
}

void AppState::analyze()
{
    m_clean->scan();
    if (!m_apps->isLoading()) {
        m_apps->clear();
        m_apps->load();
    }
}

void AppState::reveal(const QString& categoryId)
{
    m_clean->setPath({categoryId});
    setPane(Pane::Clean);
}

void AppState::showUnusedApps()
{
    m_apps->setSort(AppsModel::Sort::LastUse);
    setPane(Pane::Apps);
}

void AppState::setPane(Pane pane)
{
    assignAndNotify(this, m_section, pane, &AppState::sectionChanged);
}

QString AppState::section() const
{
    return Panes::id(m_section);
}

void AppState::setSection(const QString& id)
{
    if (const auto pane = Panes::fromId(id))
        setPane(*pane);
}

QString AppState::sectionTitle() const
{
    return Panes::title(m_section);
}

QString AppState::sectionSymbol() const
{
    return Panes::symbol(m_section);
}

int AppState::sectionIndex() const
{
    return int(std::ranges::find(Panes::all, m_section) - Panes::all.begin());
}

void AppState::setShowPermissions(bool show)
{
    assignAndNotify(this, m_showPermissions, show, &AppState::showPermissionsChanged);
}

void AppState::setDisk(const DiskInfo& disk)
{
    assignAndNotify(this, m_disk, disk, &AppState::diskChanged);
}

void AppState::setHasFullDiskAccess(bool granted)
{
    assignAndNotify(this, m_hasFullDiskAccess, granted, &AppState::hasFullDiskAccessChanged);
}

void AppState::setToast(std::optional<Toast> toast)
{
    assignAndNotify(this, m_toast, std::move(toast), &AppState::toastChanged);
}

void AppState::refreshDisk()
{
    setDisk(DiskInfo::current(m_services.volume));
    const bool granted = m_services.privacy.refresh();
    if (granted && !m_hasFullDiskAccess && m_showPermissions)
        setShowPermissions(false);
    setHasFullDiskAccess(granted);
}

void AppState::pollPermissions()
{
    refreshDisk();
    if (m_hasFullDiskAccess)
        setShowPermissions(false);
}

Workspace* AppState::workspace() const
{
    return m_services.workspace ? m_services.workspace : (m_backends ? &m_backends->workspace() : nullptr);
}

void AppState::openFullDiskAccessSettings()
{
    if (Workspace* shell = workspace())
        Permissions::openFullDiskAccessSettings(*shell);
}

void AppState::report(qint64 freed, qint64 failures)
{
    const qint64 total = checkedAdd(m_totalFreed, freed);
    if (total != m_totalFreed) {
        m_totalFreed = total;
        emit totalFreedThisSessionChanged();
    }
    refreshDisk();

    const Toast toast{QUuid::createUuid(), freed, failures};
    setToast(toast);
    // Only this toast may be dismissed by this timer: a newer report has its own.
    QTimer::singleShot(m_services.toastDuration, this, [this, id = toast.id] {
        if (m_toast && m_toast->id == id)
            setToast(std::nullopt);
    });
}

QString AppState::diskLine() const
{
    return ResultTexts::diskLine(m_disk.available, m_disk.total);
}

HostSystem AppState::system() const
{
    return m_models->safety.rules().system;
}

QString AppState::diskName() const
{
    return ResultTexts::diskName(m_disk.name);
}

QString AppState::diskTone() const
{
    switch (ResultTexts::fullnessTone(m_disk.fraction())) {
    case ResultTexts::Tone::Critical:
        return QStringLiteral("critical");
    case ResultTexts::Tone::Warning:
        return QStringLiteral("warning");
    default:
        return QStringLiteral("accent");
    }
}

QString AppState::mapBadge() const
{
    return ResultTexts::mapBadge(m_map->markedCount());
}

QString AppState::cleanBadge() const
{
    return ResultTexts::cleanBadge(m_clean->totalSelected());
}

QString AppState::freedTodayLine() const
{
    return ResultTexts::freedToday(m_totalFreed);
}

QString AppState::toastId() const
{
    return m_toast ? m_toast->id.toString(QUuid::WithoutBraces) : QString();
}

QString AppState::toastHeadline() const
{
    return m_toast ? ResultTexts::toastHeadline(m_toast->freed) : QString();
}

QString AppState::toastDetail() const
{
    return m_toast ? ResultTexts::toastFailures(m_toast->failures) : QString();
}

QString AppState::toastSymbol() const
{
    return m_toast ? ResultTexts::toastSymbol(m_toast->failures) : QString();
}

void AppState::dismissToast()
{
    setToast(std::nullopt);
}

} // namespace nubo
