#pragma once

#include "core/files/HostSystem.h"
#include "core/disk/DiskInfo.h"
#include "models/app/Pane.h"
#include "models/app/Toast.h"
#include "models/activity/ActivityModel.h"
#include "models/apps/AppsModel.h"
#include "models/clean/CleanModel.h"
#include "models/map/MapModel.h"
#include "models/performance/PerformanceModel.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <chrono>
#include <memory>
#include <optional>

namespace nubo {

class Backends;
class Privacy;
class VolumeCapacity;
class Workspace;

/// The one root state of the application, shared by every screen and the menu-bar panel: the
/// selected pane, the start-up volume's figures, the Full Disk Access state and whether its
/// guidance is showing, the toast of the last deletion and what this run has freed. Lives on the
/// user-interface thread; every property notifies only when its value really changes.
class AppState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("AppState is created once at start-up and handed to the window")
    Q_DISABLE_COPY_MOVE(AppState)
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionTitle READ sectionTitle NOTIFY sectionChanged)
    Q_PROPERTY(QString sectionSymbol READ sectionSymbol NOTIFY sectionChanged)
    Q_PROPERTY(int sectionIndex READ sectionIndex NOTIFY sectionChanged)
    Q_PROPERTY(qint64 diskTotal READ diskTotal NOTIFY diskChanged)
    Q_PROPERTY(qint64 diskAvailable READ diskAvailable NOTIFY diskChanged)
    Q_PROPERTY(double diskFraction READ diskFraction NOTIFY diskChanged)
    Q_PROPERTY(QString diskLine READ diskLine NOTIFY diskChanged)
    Q_PROPERTY(QString diskName READ diskName NOTIFY diskChanged)
    Q_PROPERTY(QString diskTone READ diskTone NOTIFY diskChanged)
    Q_PROPERTY(bool hasFullDiskAccess READ hasFullDiskAccess NOTIFY hasFullDiskAccessChanged)
    Q_PROPERTY(
        bool showPermissions READ showPermissions WRITE setShowPermissions NOTIFY showPermissionsChanged)
    Q_PROPERTY(bool hasToast READ hasToast NOTIFY toastChanged)
    Q_PROPERTY(QString toastId READ toastId NOTIFY toastChanged)
    Q_PROPERTY(QString toastHeadline READ toastHeadline NOTIFY toastChanged)
    Q_PROPERTY(QString toastDetail READ toastDetail NOTIFY toastChanged)
    Q_PROPERTY(QString toastSymbol READ toastSymbol NOTIFY toastChanged)
    Q_PROPERTY(bool toastHasFailures READ toastHasFailures NOTIFY toastChanged)
    Q_PROPERTY(qint64 totalFreedThisSession READ totalFreedThisSession NOTIFY totalFreedThisSessionChanged)
    Q_PROPERTY(QString freedTodayLine READ freedTodayLine NOTIFY totalFreedThisSessionChanged)
    Q_PROPERTY(MapModel* map READ map CONSTANT)
    Q_PROPERTY(CleanModel* clean READ clean CONSTANT)
    Q_PROPERTY(AppsModel* apps READ apps CONSTANT)
    Q_PROPERTY(ActivityModel* activity READ activity CONSTANT)
    Q_PROPERTY(PerformanceModel* performance READ performance CONSTANT)
    Q_PROPERTY(bool isAnalyzing READ isAnalyzing NOTIFY isAnalyzingChanged)
    Q_PROPERTY(QStringList safeCategories READ safeCategories CONSTANT)
    Q_PROPERTY(qint64 safeSize READ safeSize NOTIFY safeSizeChanged)
    Q_PROPERTY(QString mapBadge READ mapBadge NOTIFY badgesChanged)
    Q_PROPERTY(QString cleanBadge READ cleanBadge NOTIFY badgesChanged)
    Q_PROPERTY(int permissionPollInterval READ permissionPollInterval CONSTANT)

public:
    /// How the state reads the machine: the access probe's cache and the volume reader are
    /// borrowed and must outlive the state. `toastDuration` is how long a toast stays.
    struct Services
    {
        Privacy& privacy;
        const VolumeCapacity& volume;
        std::chrono::milliseconds toastDuration = std::chrono::seconds(4);
        /// What the feature models work with; none builds the real backends over this machine's
        /// roots (whose home NUBO_HOME may replace).
        std::shared_ptr<const ModelServices> models = {};
        /// Opens the settings page for Full Disk Access; none uses the real backends' workspace
        /// (a state over prepared services then opens nothing).
        Workspace* workspace = nullptr;
        /// How often the permission guidance looks for a new grant while it is shown.
        std::chrono::milliseconds permissionPoll = std::chrono::seconds(2);
    };

    /// Reads the volume, probes Full Disk Access afresh and asks for the permission guidance
    /// exactly when access is missing; then creates the map, cleanup and apps models and hands
    /// each a reference back to this state.
    explicit AppState(Services services, QObject* parent = nullptr);
    /// The models go first; each asks its background work to stop and returns at once.
    ~AppState() override;

    [[nodiscard]] Pane pane() const { return m_section; }
    void setPane(Pane pane);
    [[nodiscard]] QString section() const;
    /// Unknown ids are ignored, so a view can never select a pane that does not exist.
    void setSection(const QString& id);
    [[nodiscard]] QString sectionTitle() const;
    [[nodiscard]] QString sectionSymbol() const;
    /// The pane's place in the sidebar order, which is also the order of the detail's screens.
    [[nodiscard]] int sectionIndex() const;

    [[nodiscard]] const DiskInfo& disk() const { return m_disk; }
    [[nodiscard]] qint64 diskTotal() const { return m_disk.total; }
    [[nodiscard]] qint64 diskAvailable() const { return m_disk.available; }
    [[nodiscard]] double diskFraction() const { return m_disk.fraction(); }
    /// "<available> disponibles de <total>".
    [[nodiscard]] QString diskLine() const;
    [[nodiscard]] QString diskName() const;
    /// The system the program runs on, as its safety rules say; the texts follow it.
    [[nodiscard]] HostSystem system() const;
    /// "accent", "warning" or "critical", by how full the volume is.
    [[nodiscard]] QString diskTone() const;

    [[nodiscard]] bool hasFullDiskAccess() const { return m_hasFullDiskAccess; }
    [[nodiscard]] bool showPermissions() const { return m_showPermissions; }
    void setShowPermissions(bool show);

    [[nodiscard]] const std::optional<Toast>& toast() const { return m_toast; }
    [[nodiscard]] bool hasToast() const { return m_toast.has_value(); }
    /// The toast's texts for the view; empty while there is none.
    [[nodiscard]] QString toastId() const;
    [[nodiscard]] QString toastHeadline() const;
    [[nodiscard]] QString toastDetail() const;
    [[nodiscard]] QString toastSymbol() const;
    [[nodiscard]] bool toastHasFailures() const { return m_toast && m_toast->failures > 0; }
    [[nodiscard]] qint64 totalFreedThisSession() const { return m_totalFreed; }
    /// "Liberado hoy: <size>", empty until something has been freed.
    [[nodiscard]] QString freedTodayLine() const;

    /// Re-reads the volume and re-probes access. A newly seen grant closes the permission
    /// guidance; a refresh never opens it, and a lost grant is only recorded.
    Q_INVOKABLE void refreshDisk();
    /// One look of the permission guidance: refreshes, and closes the guidance once access is
    /// there, also when it was already there before the guidance opened.
    Q_INVOKABLE void pollPermissions();
    /// Milliseconds between two looks of the guidance.
    [[nodiscard]] int permissionPollInterval() const { return int(m_services.permissionPoll.count()); }
    /// Opens the system's settings page where the user grants Full Disk Access.
    Q_INVOKABLE void openFullDiskAccessSettings();
    /// Records one deletion batch: adds what it freed to this run's total (an overflow is
    /// fatal), refreshes the figures and shows a new toast, which goes away by itself after
    /// `toastDuration` unless a newer report replaced it first.
    Q_INVOKABLE void report(qint64 freed, qint64 failures);
    /// The user closed the toast.
    Q_INVOKABLE void dismissToast();

    [[nodiscard]] MapModel* map() const { return m_map.get(); }
    [[nodiscard]] CleanModel* clean() const { return m_clean.get(); }
    [[nodiscard]] AppsModel* apps() const { return m_apps.get(); }
    /// The activity and performance models exist when the state built the real backends itself;
    /// a state handed prepared services (tests) has none.
    [[nodiscard]] ActivityModel* activity() const { return m_activity.get(); }
    [[nodiscard]] PerformanceModel* performance() const { return m_performance.get(); }

    /// The sidebar's badges: the number of marked map nodes, the size selected for cleaning;
    /// empty when there is nothing to show.
    [[nodiscard]] QString mapBadge() const;
    [[nodiscard]] QString cleanBadge() const;

    /// The cleanup scan or the apps load is running.
    [[nodiscard]] bool isAnalyzing() const;
    /// The ids of the categories whose items start selected, in catalogue order.
    [[nodiscard]] QStringList safeCategories() const;
    /// What the cleanup model holds for those categories; an overflow is fatal.
    [[nodiscard]] qint64 safeSize() const;

    /// Starts the cleanup scan and, unless the apps are loading already, reloads them from empty.
    /// The space map is left alone.
    Q_INVOKABLE void analyze();
    /// Opens the cleanup pane on one category.
    Q_INVOKABLE void reveal(const QString& categoryId);
    /// Opens the apps pane sorted by last use.
    Q_INVOKABLE void showUnusedApps();

signals:
    void sectionChanged();
    void diskChanged();
    void hasFullDiskAccessChanged();
    void showPermissionsChanged();
    void toastChanged();
    void totalFreedThisSessionChanged();
    void isAnalyzingChanged();
    void safeSizeChanged();
    void badgesChanged();

private:
    [[nodiscard]] Workspace* workspace() const;
    void setDisk(const DiskInfo& disk);
    void setHasFullDiskAccess(bool granted);
    void setToast(std::optional<Toast> toast);

    Services m_services;
    Pane m_section = Pane::Home;
    DiskInfo m_disk;
    bool m_hasFullDiskAccess = false;
    bool m_showPermissions = false;
    std::optional<Toast> m_toast;
    qint64 m_totalFreed = 0;
    std::shared_ptr<Backends> m_backends;
    std::shared_ptr<const ModelServices> m_models;
    std::unique_ptr<MapModel> m_map;
    std::unique_ptr<CleanModel> m_clean;
    std::unique_ptr<AppsModel> m_apps;
    std::unique_ptr<ActivityModel> m_activity;
    std::unique_ptr<PerformanceModel> m_performance;
};

} // namespace nubo
