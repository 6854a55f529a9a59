#pragma once

#include "core/launch/LaunchItem.h"
#include "core/maintenance/MaintenanceTask.h"
#include "models/app/Jobs.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>

namespace nubo {

class LaunchItems;
class MaintenanceCatalog;

/// The launch agents and daemons, the count of local Time Machine snapshots and the state of
/// the maintenance tasks, behind the performance pane.
///
/// Lives on the user-interface thread; every load, switch, removal and task runs on the thread
/// pool and is published here. A switch or removal changes the list only when it succeeded, so
/// a refused password prompt leaves the item as it was shown. Tasks run independently; each
/// keeps the outcome of its last run until it is run again.
class PerformanceModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("PerformanceModel is created once by the application state")
    Q_DISABLE_COPY_MOVE(PerformanceModel)
    Q_PROPERTY(QVariantList items READ itemsList NOTIFY itemsChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QStringList running READ runningList NOTIFY runningChanged)
    Q_PROPERTY(QStringList cancelling READ cancellingList NOTIFY runningChanged)
    Q_PROPERTY(QVariantMap outcomes READ outcomesMap NOTIFY outcomesChanged)
    Q_PROPERTY(int snapshotCount READ snapshotCount NOTIFY snapshotCountChanged)
    Q_PROPERTY(int enabledCount READ enabledCount NOTIFY itemsChanged)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY hasLoadedChanged)
    Q_PROPERTY(QVariantList tasks READ tasksList CONSTANT)

public:
    /// Both services are shared with the work the model starts, which may outlive the model.
    PerformanceModel(std::shared_ptr<const LaunchItems> launchItems,
                     std::shared_ptr<const MaintenanceCatalog> maintenance, QObject* parent = nullptr);

    [[nodiscard]] const QList<LaunchItem>& items() const { return m_items; }
    [[nodiscard]] QVariantList itemsList() const;
    [[nodiscard]] bool isLoading() const { return m_jobs.isRunning(QStringLiteral("launch")); }
    [[nodiscard]] const QSet<QString>& running() const { return m_running; }
    [[nodiscard]] QStringList runningList() const;
    [[nodiscard]] QStringList cancellingList() const;
    [[nodiscard]] const QHash<QString, MaintenanceTask::Outcome>& outcomes() const { return m_outcomes; }
    /// Task id → {"ok", "message"}.
    [[nodiscard]] QVariantMap outcomesMap() const;
    [[nodiscard]] int snapshotCount() const { return m_snapshotCount; }
    /// A load has landed at least once, so the list and the snapshot count say something.
    [[nodiscard]] bool hasLoaded() const { return m_hasLoaded; }
    /// How many of the listed items are switched on.
    [[nodiscard]] int enabledCount() const;
    /// The maintenance tasks in display order, for the views: id, title, detail, symbol, color
    /// (a named tint), needsAdmin and caution (empty when the task has none).
    [[nodiscard]] static QVariantList tasksList();

    /// Reads the launch items and the snapshot count again. When loads overlap, the last one
    /// started is the one shown.
    Q_INVOKABLE void load();
    /// Switches the item off when it is enabled and on when it is not; on success the listed
    /// item with the same property list shows the new state, without a reload.
    void toggle(const LaunchItem& item);
    /// Stops the item's job and deletes its property list; on success it leaves the list.
    void remove(const LaunchItem& item);
    /// The same for the listed item with this property list, for the views.
    Q_INVOKABLE void toggle(const QString& url);
    Q_INVOKABLE void remove(const QString& url);
    /// Runs the task with this id (unknown ids and a task already running are ignored): its
    /// previous outcome goes away while it runs. After "snapshots" the count is read again.
    Q_INVOKABLE void run(const QString& taskId);
    /// Ends the task's tool; its outcome reads "Cancelado". A task that asks for the
    /// administrator password cannot be cancelled once the prompt is shown.
    Q_INVOKABLE void cancel(const QString& taskId);
    /// Opens the system's login-items settings page.
    Q_INVOKABLE void openLoginItemsSettings() const;

signals:
    void itemsChanged();
    void isLoadingChanged();
    void runningChanged();
    void outcomesChanged();
    void snapshotCountChanged();
    void hasLoadedChanged();
    /// A switch or removal was refused or failed; the list is unchanged.
    void actionFailed(const QString& url);

private:
    [[nodiscard]] const LaunchItem* listed(const QString& url) const;
    /// Runs a switch or a removal in the background; `done` updates the list when it worked.
    void act(const QString& url, std::function<bool(const LaunchItems&)> action, std::function<void()> done);
    void setSnapshotCount(int count);

    std::shared_ptr<const LaunchItems> m_launchItems;
    std::shared_ptr<const MaintenanceCatalog> m_maintenance;
    QList<LaunchItem> m_items;
    bool m_rereadAfterAction = false;
    quint64 m_actions = 0;
    QSet<QString> m_running;
    QHash<QString, MaintenanceTask::Outcome> m_outcomes;
    int m_snapshotCount = 0;
    bool m_hasLoaded = false;
    // Last, so that it goes first: nothing lands on a model that is being taken apart.
    Jobs m_jobs{this};
};

} // namespace nubo
