#include "models/apps/AppsModel.h"

#include "core/apps/AppCatalog.h"
#include "core/deletion/Deleter.h"
#include "core/safety/Safety.h"
#include "core/files/Location.h"
#include "core/format/Bytes.h"
#include "core/format/CheckedMath.h"
#include "core/scanner/ParallelLoop.h"
#include "models/app/AppState.h"
#include "models/app/Notify.h"
#include "models/apps/AppsTexts.h"
#include "models/clean/CleanTexts.h"

#include <QLocale>
#include <algorithm>
#include <optional>
#include <thread>
#include <variant>
#include <vector>

namespace nubo {

namespace {

// Case and accents folded away the way the user's language does it, so "cafe" finds "Café".
QString folded(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString bare;
    bare.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (c.category() != QChar::Mark_NonSpacing)
            bare.append(c);
    }
    return QLocale().toLower(bare);
}

struct UninstallOutcome
{
    qint64 freed = 0;
    qint64 failures = 0;
    bool bundleGone = false;
};

struct LeftoversFound
{
    QList<CleanItem> leftovers;
    AppRemoval removal;
};

} // namespace

AppsModel::AppsModel(std::shared_ptr<const ModelServices> services, QObject* parent)
    : QObject(parent), m_services(std::move(services))
{
    connect(this, &AppsModel::appsChanged, this, &AppsModel::headerLineChanged);
    connect(this, &AppsModel::isLoadingChanged, this, &AppsModel::headerLineChanged);
    connect(this, &AppsModel::selectionChanged, this, &AppsModel::selectedAppChanged);
    connect(this, &AppsModel::appsChanged, this, &AppsModel::selectedAppChanged);
    connect(this, &AppsModel::selectionChanged, this, &AppsModel::refreshRunning);
    // While an application is chosen, whether it runs is looked at as often as the activity
    // screen samples, so the "Abierta" tag follows the user quitting or opening it.
    m_runningPoll.setInterval(2000);
    connect(&m_runningPoll, &QTimer::timeout, this, &AppsModel::refreshRunning);
}

AppsModel::~AppsModel() = default;

QList<InstalledApp> AppsModel::arrange(const QList<InstalledApp>& apps, const QString& query, Sort sort)
{
    QList<InstalledApp> shown;
    const QString needle = folded(query);
    for (const InstalledApp& app : apps) {
        if (needle.isEmpty() || folded(app.name).contains(needle))
            shown.append(app);
    }
    // Stable over the name order the catalogue gave, so equal sizes or dates stay by name.
    switch (sort) {
    case Sort::Name:
        break;
    case Sort::Size:
        std::stable_sort(shown.begin(), shown.end(), [](const InstalledApp& a, const InstalledApp& b) {
            return a.size.value_or(0) > b.size.value_or(0);
        });
        break;
    case Sort::LastUse:
        std::stable_sort(shown.begin(), shown.end(), [](const InstalledApp& a, const InstalledApp& b) {
            if (!a.lastUsed || !b.lastUsed)
                return a.lastUsed.has_value() && !b.lastUsed.has_value();
            return *a.lastUsed > *b.lastUsed;
        });
        break;
    }
    return shown;
}

QVariantList AppsModel::visibleMaps() const
{
    QVariantList rows;
    const QLocale spanish(QLocale::Spanish, QLocale::Spain);
    for (const InstalledApp& app : visible()) {
        QVariantMap row = AppsTexts::badge(app.name, app.url);
        row.insert(QVariantMap{
            {QStringLiteral("id"), app.url},
            {QStringLiteral("name"), CleanTexts::oneLine(app.name)},
            {QStringLiteral("version"), app.version.value_or(QString())},
            {QStringLiteral("bundleID"), app.bundleID.value_or(QString())},
            {QStringLiteral("isStore"), app.isStore},
            {QStringLiteral("size"), app.size.value_or(0)},
            {QStringLiteral("sizeText"), app.size ? Bytes::string(*app.size) : QString()},
            {QStringLiteral("lastUsed"),
             app.lastUsed ? spanish.toString(app.lastUsed->toLocalTime().date(), QLocale::ShortFormat)
                          : QString()},
            {QStringLiteral("lastUsedText"), AppsTexts::lastUsedLine(app.lastUsed)},
        });
        rows.append(row);
    }
    return rows;
}

QList<InstalledApp> AppsModel::unusedOf(const QList<InstalledApp>& apps, const QDateTime& now)
{
    const QDateTime cutoff = now.addSecs(-unusedAfterSeconds);
    QList<InstalledApp> found;
    for (const InstalledApp& app : apps) {
        if (app.url.startsWith(QLatin1String("/System")))
            continue;
        if (!app.lastUsed || *app.lastUsed < cutoff)
            found.append(app);
    }
    return found;
}

void AppsModel::setSort(Sort sort)
{
    if (sort == m_sort)
        return;
    m_sort = sort;
    emit sortChanged();
    emit visibleChanged();
}

QStringList AppsModel::sortLabels()
{
    return {QStringLiteral("Nombre"), QStringLiteral("Tamaño"), QStringLiteral("Último uso")};
}

void AppsModel::setQuery(const QString& query)
{
    if (query == m_query)
        return;
    m_query = query;
    emit queryChanged();
    emit visibleChanged();
}

std::optional<InstalledApp> AppsModel::selected() const
{
    for (const InstalledApp& app : m_apps) {
        if (app.url == m_selection)
            return app;
    }
    return std::nullopt;
}

QString AppsModel::selectedName() const
{
    const auto app = selected();
    return app ? app->name : QString();
}

QList<CleanItem> AppsModel::removalItems() const
{
    const auto app = selected();
    if (!app || !m_removal.item)
        return {};
    QList<CleanItem> items{*m_removal.item};
    // The size is the one measured since the plan was made.
    items.first().size = app->size.value_or(0);
    for (const CleanItem& item : m_leftovers) {
        if (!m_excluded.contains(item.id))
            items.append(item);
    }
    return items;
}

qint64 AppsModel::removalSize() const
{
    qint64 total = 0;
    for (const CleanItem& item : removalItems())
        total = checkedAdd(total, item.size);
    return total;
}

QVariantList AppsModel::removalMaps() const
{
    QVariantList rows;
    for (const CleanItem& item : removalItems()) {
        rows.append(QVariantMap{
            {QStringLiteral("id"), item.id},
            {QStringLiteral("name"), item.name},
            {QStringLiteral("detail"), item.detail},
            {QStringLiteral("size"), item.size},
            {QStringLiteral("sizeText"), Bytes::string(item.size)},
        });
    }
    return rows;
}

QVariantList AppsModel::leftoverMaps() const
{
    QVariantList rows;
    for (const CleanItem& item : m_leftovers) {
        rows.append(QVariantMap{
            {QStringLiteral("id"), item.id},
            {QStringLiteral("name"), item.name},
            {QStringLiteral("detail"), item.detail},
            {QStringLiteral("size"), item.size},
            {QStringLiteral("sizeText"), Bytes::string(item.size)},
            {QStringLiteral("excluded"), m_excluded.contains(item.id)},
        });
    }
    return rows;
}

QString AppsModel::headerLine() const
{
    return AppsTexts::headerLine(m_isLoading, m_apps.size());
}

QString AppsModel::sortTitle() const
{
    return AppsTexts::sortTitle(sortLabels().value(int(m_sort)));
}

void AppsModel::chooseSort(int index)
{
    if (index < 0 || index >= sortLabels().size())
        return;
    setSort(Sort(index));
}

QVariantMap AppsModel::selectedApp() const
{
    const auto app = selected();
    if (!app)
        return {};
    QVariantMap map = AppsTexts::badge(app->name, app->url);
    map.insert({
        {QStringLiteral("id"), app->url},
        {QStringLiteral("name"), CleanTexts::oneLine(app->name)},
        {QStringLiteral("versionLine"), AppsTexts::versionLine(app->version)},
        {QStringLiteral("isStore"), app->isStore},
        {QStringLiteral("originTag"), AppsTexts::originTag(*app)},
        {QStringLiteral("sizeText"), app->size ? Bytes::string(*app->size) : QString()},
        {QStringLiteral("detail"), CleanTexts::oneLine(Location::tildePath(app->url, m_services->home))},
    });
    return map;
}

void AppsModel::refreshRunning()
{
    const auto app = selected();
    const bool running = app && m_services->apps.runningInstance(*app).has_value();
    if (app && !m_runningPoll.isActive())
        m_runningPoll.start();
    else if (!app)
        m_runningPoll.stop();
    assignAndNotify(this, m_selectedRunning, running, &AppsModel::selectedRunningChanged);
}

QVariantList AppsModel::removalRows() const
{
    const auto app = selected();
    if (!app)
        return {};
    QVariantList rows;
    const qint64 bundleSize = app->size.value_or(0);
    rows.append(QVariantMap{
        {QStringLiteral("id"), app->url},
        {QStringLiteral("label"), AppsTexts::removalLabel(app->name, true)},
        {QStringLiteral("symbol"), AppsTexts::removalSymbol(app->name, true)},
        {QStringLiteral("detail"), CleanTexts::oneLine(AppsTexts::removalDetail(*app, m_services->home))},
        {QStringLiteral("sizeText"), app->size ? Bytes::string(bundleSize) : QString()},
        {QStringLiteral("ticked"), true},
        {QStringLiteral("locked"), true},
    });
    for (const CleanItem& item : m_leftovers) {
        rows.append(QVariantMap{
            {QStringLiteral("id"), item.id},
            {QStringLiteral("label"), CleanTexts::oneLine(AppsTexts::removalLabel(item.name, false))},
            {QStringLiteral("symbol"), AppsTexts::removalSymbol(item.name, false)},
            {QStringLiteral("detail"), CleanTexts::oneLine(item.detail)},
            {QStringLiteral("sizeText"), Bytes::string(item.size)},
            {QStringLiteral("ticked"), !m_excluded.contains(item.id)},
            {QStringLiteral("locked"), false},
        });
    }
    return rows;
}

QString AppsModel::uninstallLabel() const
{
    return AppsTexts::uninstallLabel(m_removal.item ? std::optional(removalSize()) : std::nullopt);
}

QString AppsModel::removalRefusal() const
{
    const auto app = selected();
    return app ? AppsTexts::refusal(m_removal, *app) : QString();
}

QString AppsModel::removalNote() const
{
    return AppsTexts::removalNote(m_services->safety.rules().system);
}

QString AppsModel::emptyNote() const
{
    return AppsTexts::emptyNote(m_services->safety.rules().system);
}

void AppsModel::setLoading(bool loading)
{
    assignAndNotify(this, m_isLoading, loading, &AppsModel::isLoadingChanged);
}

void AppsModel::setSizesLoaded(bool loaded)
{
    assignAndNotify(this, m_sizesLoaded, loaded, &AppsModel::sizesLoadedChanged);
}

void AppsModel::setLeftoversLoading(bool loading)
{
    assignAndNotify(this, m_leftoversLoading, loading, &AppsModel::leftoversLoadingChanged);
}

void AppsModel::setRemoving(bool removing)
{
    assignAndNotify(this, m_isRemoving, removing, &AppsModel::isRemovingChanged);
}

void AppsModel::clear()
{
    // Sizes still being measured belong to the old list.
    m_jobs.stop(QStringLiteral("sizes"));
    setSizesLoaded(false);
    if (m_apps.isEmpty())
        return;
    m_apps.clear();
    emit appsChanged();
    emit visibleChanged();
    emit selectionChanged();
    emit removalChanged();
}

void AppsModel::enter()
{
    if (!m_everLoaded)
        load();
}

void AppsModel::load()
{
    if (m_isLoading)
        return;
    m_everLoaded = true;
    setLoading(true);
    setSizesLoaded(false);
    m_jobs.stop(QStringLiteral("sizes"));
    m_jobs.start(
        QStringLiteral("apps"), [services = m_services](StopToken) { return services->apps.load(); },
        [this](const QList<InstalledApp>& found) {
            m_apps = found;
            setLoading(false);
            emit appsChanged();
            emit visibleChanged();
            emit selectionChanged();
            emit removalChanged();
            Payloads payloads;
            for (const InstalledApp& app : m_apps) {
                if (!app.payload.isEmpty())
                    payloads.append({app.url, app.payload});
            }
            measure(payloads);
        },
        [this] { setLoading(false); });
}

void AppsModel::measure(Payloads payloads)
{
    // A few bundles at a time, one batch after another, so sizes show as they come; the bundles
    // of a batch are walked side by side, since a disk answers several requests at once.
    constexpr qsizetype kBatch = 8;
    if (payloads.isEmpty()) {
        setSizesLoaded(true);
        return;
    }
    const Payloads batch = payloads.mid(0, kBatch);
    payloads.remove(0, batch.size());
    m_jobs.start(
        QStringLiteral("sizes"),
        [batch](StopToken stop) {
            std::vector<std::optional<qint64>> measured(size_t(batch.size()));
            ParallelLoop loop(int(std::min<qsizetype>(ParallelLoop::defaultHelpers(), batch.size() - 1)));
            loop.forEach(batch.size(), [&batch, &measured, &stop](qsizetype i) {
                if (!stop.stopRequested())
                    measured[size_t(i)] = Location::allocatedSize(batch[i].second, stop);
            });
            QHash<QString, qint64> sizes;
            // A size cut short by a stop is not the bundle's size: only whole walks are kept.
            for (qsizetype i = 0; i < batch.size() && !stop.stopRequested(); ++i) {
                if (measured[size_t(i)])
                    sizes.insert(batch[i].first, *measured[size_t(i)]);
            }
            return sizes;
        },
        [this, payloads](const QHash<QString, qint64>& sizes) {
            storeSizes(sizes);
            measure(payloads);
        },
        [this, payloads] { measure(payloads); });
}

void AppsModel::storeSizes(const QHash<QString, qint64>& sizes)
{
    bool changed = false;
    bool selectedChanged = false;
    for (InstalledApp& app : m_apps) {
        const auto size = sizes.constFind(app.url);
        if (size != sizes.constEnd() && app.size != *size) {
            app.size = *size;
            changed = true;
            selectedChanged = selectedChanged || app.url == m_selection;
        }
    }
    if (changed) {
        emit appsChanged();
        emit visibleChanged();
    }
    if (selectedChanged)
        emit removalChanged();
}

void AppsModel::select(const QString& url)
{
    const bool changed = url != m_selection;
    m_selection = url;
    m_leftovers.clear();
    m_excluded.clear();
    const auto app = selected();
    m_removal = app ? m_services->apps.removalPlan(*app) : AppRemoval();
    if (changed)
        emit selectionChanged();
    emit removalChanged();
    if (!app) {
        setLeftoversLoading(false);
        return;
    }
    setLeftoversLoading(true);
    // A search for an application no longer chosen is replaced by this one.
    m_jobs.start(
        QStringLiteral("leftovers"),
        [services = m_services, app = *app](StopToken) {
            return LeftoversFound{services->apps.leftovers(app), services->apps.confirmedRemoval(app)};
        },
        [this](const LeftoversFound& found) {
            m_leftovers = found.leftovers;
            m_removal = found.removal;
            setLeftoversLoading(false);
            emit removalChanged();
        },
        [this] { setLeftoversLoading(false); });
}

void AppsModel::toggle(const QString& itemId)
{
    // Only a leftover can be unticked: the bundle (or an id that names nothing found) would
    // otherwise sit in the exclusions and change nothing but the figures.
    const bool isLeftover = std::any_of(m_leftovers.cbegin(), m_leftovers.cend(),
                                        [&itemId](const CleanItem& item) { return item.id == itemId; });
    if (!isLeftover)
        return;
    if (!m_excluded.remove(itemId))
        m_excluded.insert(itemId);
    emit removalChanged();
}

void AppsModel::uninstall()
{
    const auto app = selected();
    // Until the leftovers have landed, what would go is not known yet.
    if (!app || m_isRemoving || m_leftoversLoading || !m_removal.item)
        return;
    setRemoving(true);
    const QList<CleanItem> removal = removalItems();
    QList<DeletionItem> items;
    for (const CleanItem& item : removal) {
        if (const auto path = item.url())
            items.append({*path, item.size});
        for (const QString& companion : item.companions)
            items.append({companion, 0});
    }
    // A packaging command removes the application itself; the deleter the rest.
    std::optional<CleanItem> command;
    if (std::holds_alternative<CleanItem::Command>(m_removal.item->action))
        command = removal.constFirst();
    const bool asAdministrator = m_removal.asAdministrator;
    const QString commandLine = m_removal.commandLine();
    // A list read while the application is being removed may bring it back: it is read again
    // once the removal has landed.
    m_jobs.stop(QStringLiteral("apps"));
    m_jobs.start(
        QStringLiteral("uninstall"),
        [services = m_services, app = *app, items, command, asAdministrator, commandLine](StopToken stop) {
            if (const auto running = services->apps.runningInstance(app)) {
                if (services->quit)
                    services->quit(*running);
                // Quitting politely may take a moment (a document to save); whether or not it
                // has quit after the last look, the removal goes ahead.
                for (int look = 0; look < services->quitPolls && !stop.stopRequested(); ++look) {
                    const auto still = services->apps.runningInstance(app);
                    if (!still || still->pid != running->pid || still->terminated)
                        break;
                    std::this_thread::sleep_for(services->quitPollInterval);
                }
            }
            qint64 freed = 0;
            if (command) {
                bool removed = false;
                if (asAdministrator) {
                    removed = services->runAsAdministrator && services->runAsAdministrator(commandLine);
                    freed = removed ? command->size : 0;
                } else if (services->runCommands) {
                    const CommandOutcome outcome = services->runCommands({*command}, stop);
                    removed = outcome.failed.isEmpty() && outcome.done.contains(command->id);
                    freed = outcome.freed;
                }
                // What the application keeps in the user's folders stays while it is installed.
                if (!removed)
                    return UninstallOutcome{0, 1, !Location::exists(app.url)};
            }
            const DeletionResult result = services->deleter.deleteItems(items, true, stop);
            return UninstallOutcome{checkedAdd(freed, result.freed), result.failed.size(), !Location::exists(app.url)};
        },
        [this, app = *app](const UninstallOutcome& outcome) {
            finishUninstall(app, outcome.freed, outcome.failures, outcome.bundleGone);
            if (m_isLoading) {
                setLoading(false);
                load();
            }
        },
        [this, app = *app] { finishUninstall(app, 0, 0, false); });
}

void AppsModel::finishUninstall(const InstalledApp& app, qint64 freed, qint64 failures, bool bundleGone)
{
    if (m_services->haptics)
        m_services->haptics(Feedback::Commit);
    if (m_app)
        m_app->report(freed, failures);
    if (bundleGone) {
        m_apps.removeIf([&app](const InstalledApp& other) { return other.url == app.url; });
        if (m_selection == app.url) {
            m_selection.clear();
            m_leftovers.clear();
            m_excluded.clear();
            m_removal = AppRemoval();
            emit selectionChanged();
        }
        emit appsChanged();
        emit visibleChanged();
        emit removalChanged();
    }
    setRemoving(false);
}

} // namespace nubo
