#include "models/performance/PerformanceModel.h"
#include "models/apps/AppsTexts.h"

#include "models/app/Notify.h"
#include "models/performance/PerformanceTexts.h"
#include "core/launch/LaunchItems.h"
#include "core/maintenance/MaintenanceCatalog.h"

#include <algorithm>
#include <utility>

namespace nubo {

PerformanceModel::PerformanceModel(std::shared_ptr<const LaunchItems> launchItems,
                                   std::shared_ptr<const MaintenanceCatalog> maintenance, QObject* parent)
    : QObject(parent), m_launchItems(std::move(launchItems)), m_maintenance(std::move(maintenance))
{
}

QVariantList PerformanceModel::itemsList() const
{
    QVariantList list;
    list.reserve(m_items.size());
    for (const LaunchItem& item : m_items) {
        QVariantMap row = item.appURL ? AppsTexts::badge(item.name, *item.appURL) : QVariantMap();
        row.insert({{QStringLiteral("url"), item.url},
                            {QStringLiteral("label"), item.label},
                            {QStringLiteral("program"), item.program},
                            {QStringLiteral("scope"), LaunchItem::scopeLabel(item.scope)},
                            {QStringLiteral("isEnabled"), item.isEnabled},
                            {QStringLiteral("isLoaded"), item.isLoaded},
                            {QStringLiteral("name"), item.name},
                            {QStringLiteral("appURL"), item.appURL.value_or(QString())},
                            {QStringLiteral("needsAdmin"), item.needsAdmin()},
                            {QStringLiteral("details"), PerformanceTexts::details(item)}});
        list << row;
    }
    return list;
}

int PerformanceModel::enabledCount() const
{
    return int(std::count_if(m_items.cbegin(), m_items.cend(), [](const LaunchItem& item) { return item.isEnabled; }));
}

QVariantList PerformanceModel::tasksList()
{
    QVariantList list;
    for (const MaintenanceTask& task : MaintenanceCatalog::all()) {
        list << QVariantMap{{QStringLiteral("id"), task.id},
                            {QStringLiteral("title"), task.title},
                            {QStringLiteral("detail"), task.detail},
                            {QStringLiteral("symbol"), task.symbol},
                            {QStringLiteral("color"), NamedColors::name(task.color)},
                            {QStringLiteral("needsAdmin"), task.needsAdmin},
                            {QStringLiteral("caution"), task.caution.value_or(QString())}};
    }
    return list;
}

void PerformanceModel::openLoginItemsSettings() const
{
    m_launchItems->openLoginItemsSettings();
}

QStringList PerformanceModel::cancellingList() const
{
    QStringList list;
    for (const QString& id : runningList()) {
        if (m_jobs.isInterrupted(QStringLiteral("task:") + id))
            list.append(id);
    }
    return list;
}

QStringList PerformanceModel::runningList() const
{
    QStringList list(m_running.begin(), m_running.end());
    list.sort();
    return list;
}

QVariantMap PerformanceModel::outcomesMap() const
{
    QVariantMap map;
    for (auto it = m_outcomes.cbegin(); it != m_outcomes.cend(); ++it)
        map.insert(it.key(),
                   QVariantMap{{QStringLiteral("ok"), it->ok}, {QStringLiteral("message"), it->message}});
    return map;
}

void PerformanceModel::load()
{
    struct Loaded
    {
        QList<LaunchItem> items;
        int snapshots = 0;
    };
    const bool wasLoading = isLoading();
    // A newer load replaces an older one, whose list could be staler.
    m_jobs.start(
        QStringLiteral("launch"),
        [launchItems = m_launchItems, maintenance = m_maintenance](StopToken) {
            return Loaded{launchItems->load(), maintenance->localSnapshotCount()};
        },
        [this](const Loaded& loaded) {
            if (loaded.items != m_items) {
                m_items = loaded.items;
                emit itemsChanged();
            }
            setSnapshotCount(loaded.snapshots);
            assignAndNotify(this, m_hasLoaded, true, &PerformanceModel::hasLoadedChanged);
            emit isLoadingChanged();
        },
        [this] { emit isLoadingChanged(); });
    if (!wasLoading)
        emit isLoadingChanged();
}

void PerformanceModel::act(const QString& url, std::function<bool(const LaunchItems&)> action,
                           std::function<void()> done)
{
    // A listing under way may have read the item before the change: it is read again after.
    if (isLoading()) {
        m_jobs.stop(QStringLiteral("launch"));
        m_rereadAfterAction = true;
        emit isLoadingChanged();
    }
    m_jobs.start(
        QStringLiteral("action:%1").arg(++m_actions),
        [launchItems = m_launchItems, action = std::move(action)](StopToken) { return action(*launchItems); },
        [this, url, done = std::move(done)](bool succeeded) {
            if (succeeded)
                done();
            else
                emit actionFailed(url);
            if (std::exchange(m_rereadAfterAction, false) || isLoading())
                load();
        },
        [this, url] { emit actionFailed(url); });
}

void PerformanceModel::toggle(const LaunchItem& item)
{
    const bool enabled = !item.isEnabled;
    act(
        item.url, [item, enabled](const LaunchItems& launchItems) { return launchItems.setEnabled(item, enabled); },
        [this, url = item.url, enabled] {
            const auto found = std::find_if(m_items.begin(), m_items.end(),
                                            [&url](const LaunchItem& listed) { return listed.url == url; });
            if (found == m_items.end() || found->isEnabled == enabled)
                return;
            found->isEnabled = enabled;
            emit itemsChanged();
        });
}

void PerformanceModel::remove(const LaunchItem& item)
{
    act(
        item.url, [item](const LaunchItems& launchItems) { return launchItems.remove(item); },
        [this, url = item.url] {
            const qsizetype removed =
                m_items.removeIf([&url](const LaunchItem& listed) { return listed.url == url; });
            if (removed > 0)
                emit itemsChanged();
        });
}

const LaunchItem* PerformanceModel::listed(const QString& url) const
{
    for (const LaunchItem& item : m_items) {
        if (item.url == url)
            return &item;
    }
    return nullptr;
}

void PerformanceModel::toggle(const QString& url)
{
    if (const LaunchItem* item = listed(url))
        toggle(LaunchItem(*item));
}

void PerformanceModel::remove(const QString& url)
{
    if (const LaunchItem* item = listed(url))
        remove(LaunchItem(*item));
}

void PerformanceModel::run(const QString& taskId)
{
    const std::optional<MaintenanceTask> task = MaintenanceCatalog::task(taskId);
    if (!task || m_running.contains(taskId))
        return;
    m_running.insert(taskId);
    emit runningChanged();
    if (m_outcomes.remove(taskId) > 0)
        emit outcomesChanged();

    struct Ran
    {
        MaintenanceTask::Outcome outcome;
        std::optional<int> snapshots;
    };
    m_jobs.start(
        QStringLiteral("task:") + taskId,
        [maintenance = m_maintenance, task = *task](StopToken stop) {
            Ran ran{maintenance->run(task, stop), std::nullopt};
            if (task.id == QLatin1String("snapshots"))
                ran.snapshots = maintenance->localSnapshotCount();
            return ran;
        },
        [this, taskId](const Ran& ran) {
            m_outcomes.insert(taskId, ran.outcome);
            emit outcomesChanged();
            m_running.remove(taskId);
            emit runningChanged();
            if (ran.snapshots)
                setSnapshotCount(*ran.snapshots);
        },
        [this, taskId] {
            m_outcomes.insert(taskId, {false, QStringLiteral("Error")});
            emit outcomesChanged();
            m_running.remove(taskId);
            emit runningChanged();
        });
}

void PerformanceModel::cancel(const QString& taskId)
{
    const std::optional<MaintenanceTask> task = MaintenanceCatalog::task(taskId);
    // Behind the password prompt a task cannot be stopped: it ends when the prompt is answered.
    if (task && !task->needsAdmin && m_jobs.interrupt(QStringLiteral("task:") + taskId))
        emit runningChanged();
}

void PerformanceModel::setSnapshotCount(int count)
{
    assignAndNotify(this, m_snapshotCount, count, &PerformanceModel::snapshotCountChanged);
}

} // namespace nubo
