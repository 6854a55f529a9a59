#include "models/performance/PerformanceModel.h"

#include "models/app/Notify.h"
#include "models/performance/PerformanceTexts.h"
#include "core/launch/LaunchItems.h"
#include "core/maintenance/MaintenanceCatalog.h"

#include <QFutureWatcher>
#include <QThread>
#include <QtConcurrent>
#include <algorithm>

namespace nubo {

namespace {

// Runs `work` on `pool` and hands its result to `done` on `context`'s thread; when the
// context is destroyed first, the result is dropped.
template <typename Work, typename Done>
void inBackground(QThreadPool& pool, QObject* context, Work work, Done done)
{
    using Result = std::invoke_result_t<Work>;
    auto* watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, done = std::move(done)] {
        watcher->deleteLater();
        done(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(&pool, std::move(work)));
}

} // namespace

PerformanceModel::PerformanceModel(const LaunchItems& launchItems, const MaintenanceCatalog& maintenance,
                                   QObject* parent)
    : QObject(parent), m_launchItems(launchItems), m_maintenance(maintenance)
{
    // A task waiting for the password must not hold back a listing or another task.
    m_pool.setMaxThreadCount(qMax(4, QThread::idealThreadCount()));
}

QVariantList PerformanceModel::itemsList() const
{
    QVariantList list;
    list.reserve(m_items.size());
    for (const LaunchItem& item : m_items) {
        list << QVariantMap{{QStringLiteral("url"), item.url},
                            {QStringLiteral("label"), item.label},
                            {QStringLiteral("program"), item.program},
                            {QStringLiteral("scope"), LaunchItem::scopeLabel(item.scope)},
                            {QStringLiteral("isEnabled"), item.isEnabled},
                            {QStringLiteral("isLoaded"), item.isLoaded},
                            {QStringLiteral("name"), item.name},
                            {QStringLiteral("appURL"), item.appURL.value_or(QString())},
                            {QStringLiteral("needsAdmin"), item.needsAdmin()},
                            {QStringLiteral("details"), PerformanceTexts::details(item)}};
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
    m_launchItems.openLoginItemsSettings();
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
    const quint64 generation = ++m_loadGeneration;
    if (m_loading++ == 0)
        emit isLoadingChanged();
    const LaunchItems& launchItems = m_launchItems;
    const MaintenanceCatalog& maintenance = m_maintenance;
    inBackground(
        m_pool, this,
        [&launchItems, &maintenance] {
            return Loaded{launchItems.load(), maintenance.localSnapshotCount()};
        },
        [this, generation](const Loaded& loaded) {
            // An older load that ends after a newer one started would show a stale list.
            if (generation == m_loadGeneration) {
                if (loaded.items != m_items) {
                    m_items = loaded.items;
                    emit itemsChanged();
                }
                setSnapshotCount(loaded.snapshots);
                assignAndNotify(this, m_hasLoaded, true, &PerformanceModel::hasLoadedChanged);
            }
            if (--m_loading == 0)
                emit isLoadingChanged();
        });
}

void PerformanceModel::toggle(const LaunchItem& item)
{
    const bool enabled = !item.isEnabled;
    const LaunchItems& launchItems = m_launchItems;
    inBackground(
        m_pool, this, [&launchItems, item, enabled] { return launchItems.setEnabled(item, enabled); },
        [this, url = item.url, enabled](bool done) {
            if (!done) {
                emit actionFailed(url);
                return;
            }
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
    const LaunchItems& launchItems = m_launchItems;
    inBackground(
        m_pool, this, [&launchItems, item] { return launchItems.remove(item); },
        [this, url = item.url](bool done) {
            if (!done) {
                emit actionFailed(url);
                return;
            }
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
    const MaintenanceCatalog& maintenance = m_maintenance;
    inBackground(
        m_pool, this,
        [&maintenance, task = *task] {
            Ran ran{maintenance.run(task), std::nullopt};
            if (task.id == QLatin1String("snapshots"))
                ran.snapshots = maintenance.localSnapshotCount();
            return ran;
        },
        [this, taskId](const Ran& ran) {
            m_outcomes.insert(taskId, ran.outcome);
            emit outcomesChanged();
            m_running.remove(taskId);
            emit runningChanged();
            if (ran.snapshots)
                setSnapshotCount(*ran.snapshots);
        });
}

void PerformanceModel::setSnapshotCount(int count)
{
    assignAndNotify(this, m_snapshotCount, count, &PerformanceModel::snapshotCountChanged);
}

} // namespace nubo
