#pragma once

#include "core/activity/AppUsage.h"
#include "core/activity/UsageSampler.h"
#include "models/app/Jobs.h"

#include <QList>
#include <QObject>
#include <QVariantMap>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <memory>
#include <optional>

namespace nubo {

class Accessibility;
class LoginItem;
class ProcessTable;
class Workspace;
struct RunningApplication;

/// The running applications with what each uses now, the machine's memory, the actions on
/// running applications (front, hide, show, quit, force quit, minimise) and the open-at-login
/// switch. Behind the activity pane and the menu-bar panel.
///
/// Lives on the user-interface thread. Every refresh lists and samples on the thread pool and
/// publishes here; refreshes never overlap (one asked for while another runs follows it), so the
/// sampler never measures twice at once. The loop of `start` refreshes every `interval`, counted
/// from the end of one refresh; `bump` refreshes once shortly after an action so its effect shows.
/// Actions the platform cannot do (see `canActivate`, `canHide`, `canMinimize`) do nothing.
class ActivityModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("ActivityModel is created once by the application state")
    Q_DISABLE_COPY_MOVE(ActivityModel)
    Q_PROPERTY(QVariantList apps READ appsList NOTIFY appsChanged)
    Q_PROPERTY(QVariantList sorted READ sortedList NOTIFY sortedChanged)
    Q_PROPERTY(qint64 memoryUsed READ memoryUsed NOTIFY memoryChanged)
    Q_PROPERTY(qint64 memoryTotal READ memoryTotal NOTIFY memoryChanged)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(QString sort READ sortLabel WRITE setSortLabel NOTIFY sortChanged)
    Q_PROPERTY(double totalCPU READ totalCPU NOTIFY appsChanged)
    Q_PROPERTY(bool hasAccessibility READ hasAccessibility NOTIFY hasAccessibilityChanged)
    Q_PROPERTY(bool canActivate READ canActivate CONSTANT)
    Q_PROPERTY(bool canHide READ canHide CONSTANT)
    Q_PROPERTY(bool canMinimize READ canMinimize CONSTANT)
    Q_PROPERTY(QStringList sortLabels READ sortLabels CONSTANT)
    Q_PROPERTY(bool hasSampled READ hasSampled NOTIFY hasSampledChanged)

public:
    /// The orders `sorted` can list the applications in; the label is what the picker shows.
    enum class Sort
    {
        cpu,
        memory
    };

    [[nodiscard]] static QString label(Sort sort);
    /// The labels of every order, in the picker's order.
    [[nodiscard]] static QStringList sortLabels();
    /// The order with this label ("CPU", "Memoria"); none for any other text.
    [[nodiscard]] static std::optional<Sort> sortFromLabel(const QString& label);
    /// One application as the views read it: its figures, its flags and its icon's badge.
    [[nodiscard]] static QVariantMap appMap(const AppUsage& app);

    /// What the model drives, all borrowed: they must outlive the model, which waits for its
    /// own background work when it goes. `ownPid` is the program's own process, which the "all"
    /// actions leave alone.
    struct Services
    {
        Workspace& workspace;
        const ProcessTable& processes;
        Accessibility& accessibility;
        LoginItem& loginItem;
        qint64 ownPid = 0;
        std::chrono::milliseconds interval = std::chrono::seconds(2);
        std::chrono::milliseconds bumpDelay = std::chrono::milliseconds(300);
        /// Whatever keeps the services above alive; the sampling in the background holds it.
        std::shared_ptr<const void> owner = {};
    };

    explicit ActivityModel(Services services, QObject* parent = nullptr);
    ~ActivityModel() override;

    /// The running regular applications at the last refresh, in the workspace's order.
    [[nodiscard]] const QList<AppUsage>& apps() const { return m_apps; }
    /// `apps` by processor or memory use, largest first; equal values keep the workspace's order.
    [[nodiscard]] QList<AppUsage> sorted() const;
    [[nodiscard]] QVariantList appsList() const;
    [[nodiscard]] QVariantList sortedList() const;
    [[nodiscard]] qint64 memoryUsed() const { return m_memory.used; }
    [[nodiscard]] qint64 memoryTotal() const { return m_memory.total; }
    [[nodiscard]] bool launchAtLogin() const { return m_launchAtLogin; }
    /// A refresh has landed, so an empty list means that no app is open.
    [[nodiscard]] bool hasSampled() const { return m_hasSampled; }
    [[nodiscard]] Sort sort() const { return m_sort; }
    void setSort(Sort sort);
    [[nodiscard]] QString sortLabel() const { return label(m_sort); }
    /// Unknown labels are ignored.
    void setSortLabel(const QString& label);
    [[nodiscard]] double totalCPU() const;
    /// Asked of the system on every read.
    [[nodiscard]] bool hasAccessibility() const;
    [[nodiscard]] bool canActivate() const;
    [[nodiscard]] bool canHide() const;
    [[nodiscard]] bool canMinimize() const;

    /// Starts the refresh loop with an immediate refresh; a loop already running is kept.
    Q_INVOKABLE void start();
    /// One refresh: lists and samples on the thread pool, then replaces `apps` and the memory.
    Q_INVOKABLE void refresh();
    /// One refresh after `bumpDelay`, to show an action's effect.
    Q_INVOKABLE void bump();

    /// Actions on one listed application, found again among the running ones by process id
    /// (and bundle); one that has ended meanwhile is ignored silently. Each is followed by a bump.
    void activate(const AppUsage& app);
    void hide(const AppUsage& app);
    void unhide(const AppUsage& app);
    void quit(const AppUsage& app);
    void forceQuit(const AppUsage& app);
    /// Minimises every window of the application, asking for Accessibility trust first when it is
    /// missing; without trust nothing is minimised.
    void minimize(const AppUsage& app);
    /// The same by process id, for the views; an id not listed is ignored.
    Q_INVOKABLE void activate(int pid);
    Q_INVOKABLE void hide(int pid);
    Q_INVOKABLE void unhide(int pid);
    Q_INVOKABLE void quit(int pid);
    Q_INVOKABLE void forceQuit(int pid);
    Q_INVOKABLE void minimize(int pid);
    /// Every listed application but the program itself.
    Q_INVOKABLE void minimizeAll();
    Q_INVOKABLE void hideAll();
    /// Shows the system's Accessibility prompt when trust is missing.
    Q_INVOKABLE void ensureAccessibility();
    /// Registers or unregisters the program as a login item, then shows what the system says.
    void setLaunchAtLogin(bool on);

signals:
    void appsChanged();
    void sortedChanged();
    void memoryChanged();
    void launchAtLoginChanged();
    void sortChanged();
    void hasAccessibilityChanged();
    void hasSampledChanged();
    /// A refresh has been published (also when nothing changed).
    void refreshed();

private:
    struct Sampling;
    struct Snapshot
    {
        QList<AppUsage> apps;
        UsageSampler::SystemMemory memory;
    };

    void publish(const Snapshot& snapshot);
    [[nodiscard]] const AppUsage* listed(int pid) const;
    [[nodiscard]] std::optional<RunningApplication> lookUp(const AppUsage& app) const;
    [[nodiscard]] static std::optional<RunningApplication> lookUp(const AppUsage& app,
                                                                  const QList<RunningApplication>& all);
    void act(const AppUsage& app, void (Workspace::*action)(const RunningApplication&), bool supported);
    bool trusted();
    void minimizeInTurn(QList<qint64> pids);
    void noteAccessibility();

    Services m_services;
    std::shared_ptr<Sampling> m_sampling;
    QList<AppUsage> m_apps;
    UsageSampler::SystemMemory m_memory;
    bool m_launchAtLogin = false;
    Sort m_sort = Sort::cpu;
    bool m_lastAccessibility = false;
    bool m_started = false;
    bool m_hasSampled = false;
    bool m_refreshing = false;
    bool m_refreshAgain = false;
    QTimer m_loop;
    QTimer m_bump;
    // Last, so that it goes first: nothing lands on a model that is being taken apart.
    Jobs m_jobs{this};
};

} // namespace nubo
