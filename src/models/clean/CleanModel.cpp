#include "models/clean/CleanModel.h"
#include "models/text/IconSource.h"

#include "core/cleanup/CleanCatalog.h"
#include "core/cleanup/CleanGroup.h"
#include "core/cleanup/NamedColor.h"
#include "core/deletion/Deleter.h"
#include "core/files/NativePath.h"
#include "core/format/Bytes.h"
#include "core/format/CheckedMath.h"
#include "models/app/AppState.h"
#include "models/apps/AppsTexts.h"
#include "models/clean/CleanTexts.h"
#include "models/text/Counts.h"

#include <QFileInfo>
#include <QMetaObject>
#include <sys/stat.h>

#include <utility>

namespace nubo {

namespace {

QString stateName(CleanModel::CategoryState state)
{
    switch (state) {
    case CleanModel::CategoryState::All:
        return QStringLiteral("all");
    case CleanModel::CategoryState::Partial:
        return QStringLiteral("partial");
    case CleanModel::CategoryState::None:
        break;
    }
    return QStringLiteral("none");
}

// lstat on the exact bytes, so a name that is not UTF-8 is judged by its own file; a link to a
// folder is drawn as a file, since cleaning it removes the link only.
bool isFolder(const QString& path)
{
    struct stat info;
    return ::lstat(NativePath::encode(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The name of an application bundle as the file manager shows it: its file name without ".app".
QString bundleName(const QString& bundlePath)
{
    QString name = bundlePath.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
    if (name.endsWith(QLatin1String(".app")))
        name.chop(4);
    return name;
}

} // namespace

CleanModel::CleanModel(std::shared_ptr<const ModelServices> services, QObject* parent)
    : QObject(parent), m_services(std::move(services))
{
    // The detail page is rebuilt whole from `detail`; a clean or a scan's landing changes the
    // items and the selection together, so the page hears of it once per turn of the event loop.
    const auto detailDirty = [this] {
        if (std::exchange(m_detailPending, true))
            return;
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_detailPending = false;
                emit detailChanged();
            },
            Qt::QueuedConnection);
    };
    connect(this, &CleanModel::categoriesChanged, this, detailDirty);
    connect(this, &CleanModel::selectionChanged, this, detailDirty);
    connect(this, &CleanModel::pathChanged, this, detailDirty);
    connect(this, &CleanModel::categoriesChanged, this, &CleanModel::textsChanged);
    connect(this, &CleanModel::selectionChanged, this, &CleanModel::textsChanged);
    connect(this, &CleanModel::isScanningChanged, this, &CleanModel::textsChanged);
}

CleanModel::~CleanModel() = default;

const CleanCategory* CleanModel::category(const QString& categoryId) const
{
    for (const CleanCategory& row : m_services->catalog.all()) {
        if (row.id == categoryId)
            return &row;
    }
    return nullptr;
}

QList<CleanItem> CleanModel::items(const QString& categoryId) const
{
    return m_items.value(categoryId);
}

qint64 CleanModel::size(const QString& categoryId) const
{
    qint64 total = 0;
    for (const CleanItem& item : m_items.value(categoryId))
        total = checkedAdd(total, item.size);
    return total;
}

qint64 CleanModel::selectedSize(const QString& categoryId) const
{
    qint64 total = 0;
    for (const CleanItem& item : m_items.value(categoryId)) {
        if (m_selected.contains(item.id))
            total = checkedAdd(total, item.size);
    }
    return total;
}

CleanModel::CategoryState CleanModel::state(const QString& categoryId) const
{
    const QList<CleanItem> found = m_items.value(categoryId);
    qsizetype chosen = 0;
    for (const CleanItem& item : found)
        chosen += m_selected.contains(item.id) ? 1 : 0;
    if (chosen == 0)
        return CategoryState::None;
    return chosen == found.size() ? CategoryState::All : CategoryState::Partial;
}

QStringList CleanModel::selectedIds() const
{
    QStringList ids(m_selected.cbegin(), m_selected.cend());
    ids.sort();
    return ids;
}

QStringList CleanModel::loading() const
{
    QStringList ids(m_loading.cbegin(), m_loading.cend());
    ids.sort();
    return ids;
}

qint64 CleanModel::totalSelected() const
{
    qint64 total = 0;
    for (const CleanCategory& row : m_services->catalog.all())
        total = checkedAdd(total, selectedSize(row.id));
    return total;
}

qint64 CleanModel::totalFound() const
{
    qint64 total = 0;
    for (const CleanCategory& row : m_services->catalog.all())
        total = checkedAdd(total, size(row.id));
    return total;
}

int CleanModel::selectedCount() const
{
    int count = 0;
    for (const CleanCategory& row : m_services->catalog.all()) {
        for (const CleanItem& item : m_items.value(row.id))
            count += m_selected.contains(item.id) ? 1 : 0;
    }
    return count;
}

int CleanModel::categoryCount() const
{
    return int(m_services->catalog.all().size());
}

QVariantMap CleanModel::categoryMap(const CleanCategory& row) const
{
    const qint64 found = size(row.id);
    const qsizetype count = m_items.value(row.id).size();
    const bool loading = m_loading.contains(row.id);
    const CategoryState current = state(row.id);
    return {
        {QStringLiteral("id"), row.id},
        {QStringLiteral("group"), CleanGroups::title(row.group)},
        {QStringLiteral("title"), row.title},
        {QStringLiteral("subtitle"), row.subtitle},
        {QStringLiteral("symbol"), row.symbol},
        {QStringLiteral("color"), NamedColors::name(row.color)},
        {QStringLiteral("caution"), row.caution.value_or(QString())},
        {QStringLiteral("loading"), loading},
        {QStringLiteral("count"), int(count)},
        {QStringLiteral("size"), found},
        {QStringLiteral("sizeText"), Bytes::string(found)},
        {QStringLiteral("selectedSize"), selectedSize(row.id)},
        {QStringLiteral("state"), stateName(current)},
        {QStringLiteral("help"), CleanTexts::categoryHelp(current == CategoryState::All)},
        {QStringLiteral("cleaning"), m_cleaning.contains(row.id)},
        {QStringLiteral("countText"), CleanTexts::categoryCount(loading, count, m_cleaning.contains(row.id))},
    };
}

QVariantList CleanModel::categories() const
{
    QVariantList rows;
    for (const CleanCategory& row : m_services->catalog.all())
        rows.append(categoryMap(row));
    return rows;
}

QVariantList CleanModel::groups() const
{
    QVariantList headed;
    for (const CleanGroup group : CleanGroups::all()) {
        QVariantList rows;
        for (const CleanCategory& row : m_services->catalog.all()) {
            if (row.group == group)
                rows.append(categoryMap(row));
        }
        if (!rows.isEmpty())
            headed.append(QVariantMap{{QStringLiteral("title"), CleanGroups::title(group)},
                                      {QStringLiteral("categories"), rows}});
    }
    return headed;
}

QVariantMap CleanModel::detail() const
{
    if (m_path.isEmpty())
        return {};
    const CleanCategory* row = category(m_path.constFirst());
    if (!row)
        return {};
    QVariantMap page = categoryMap(*row);
    const QList<CleanItem> found = m_items.value(row->id);
    qsizetype chosen = 0;
    QVariantList rows;
    for (const CleanItem& item : found) {
        chosen += m_selected.contains(item.id) ? 1 : 0;
        rows.append(itemMap(item));
    }
    const bool all = state(row->id) == CategoryState::All;
    page.insert(QStringLiteral("selectedCount"), int(chosen));
    page.insert(QStringLiteral("countLine"), CleanTexts::detailCountLine(chosen, found.size()));
    page.insert(QStringLiteral("selectedSizeText"), Bytes::string(selectedSize(row->id)));
    page.insert(QStringLiteral("toggleLabel"), CleanTexts::toggleAllLabel(all));
    // The header counts; "Nada que limpiar" is said once, where the list would be.
    page.insert(QStringLiteral("itemCountText"),
                m_loading.contains(row->id) ? QString() : Counts::items(found.size()));
    page.insert(QStringLiteral("items"), rows);
    return page;
}

QString CleanModel::overviewLine() const
{
    return CleanTexts::overviewLine(isScanning(), totalFound());
}

QString CleanModel::summaryHeading() const
{
    return CleanTexts::summaryHeading(isScanning());
}

QString CleanModel::progressLine() const
{
    return CleanTexts::progressLine(categoryCount(), int(m_loading.size()));
}

QString CleanModel::selectionLine() const
{
    return CleanTexts::selectionLine(selectedCount());
}

double CleanModel::scanProgress() const
{
    const int count = categoryCount();
    if (count == 0)
        return 1.0;
    return double(qBound(0, count - int(m_loading.size()), count)) / count;
}

QString CleanModel::totalSelectedText() const
{
    return Bytes::string(totalSelected());
}

QVariantMap CleanModel::itemMap(const CleanItem& item) const
{
    return {
        {QStringLiteral("id"), item.id},
        {QStringLiteral("name"), CleanTexts::oneLine(item.name)},
        {QStringLiteral("detail"), CleanTexts::oneLine(item.detail)},
        {QStringLiteral("subtitle"), CleanTexts::oneLine(item.subtitle.value_or(QString()))},
        {QStringLiteral("size"), item.size},
        {QStringLiteral("sizeText"), Bytes::string(item.size)},
        {QStringLiteral("selected"), m_selected.contains(item.id)},
        {QStringLiteral("symbol"), CleanTexts::itemSymbol(!item.url(), m_folders.contains(item.id))},
        {QStringLiteral("appName"), item.appURL ? bundleName(*item.appURL) : QString()},
        {QStringLiteral("appInitial"),
         item.appURL ? AppsTexts::initial(bundleName(*item.appURL)) : QString()},
        {QStringLiteral("appHue"), item.appURL ? AppsTexts::tileHue(bundleName(*item.appURL)) : 0.0},
        {QStringLiteral("appIconSource"), item.appURL ? IconSource::of(*item.appURL) : QString()},
        {QStringLiteral("canReveal"), !revealUrl(item).isEmpty()},
    };
}

std::optional<CleanItem> CleanModel::findItem(const QString& itemId) const
{
    for (const CleanCategory& row : m_services->catalog.all()) {
        for (const CleanItem& item : m_items.value(row.id)) {
            if (item.id == itemId)
                return item;
        }
    }
    return std::nullopt;
}

QUrl CleanModel::revealUrl(const QString& itemId) const
{
    const auto item = findItem(itemId);
    return item ? revealUrl(*item) : QUrl();
}

QUrl CleanModel::revealUrl(const CleanItem& item)
{
    // Read off the item itself: a page of thousands of rows asks this once per row.
    const auto path = item.url();
    if (!path)
        return {};
    const QString folder = QFileInfo(*path).path();
    // A folder whose name holds bytes that are not UTF-8 cannot be named by an address: better
    // no button than one that opens a look-alike folder.
    if (NativePath::hasEscapedBytes(folder) || !QFileInfo(folder).isAbsolute())
        return {};
    return QUrl::fromLocalFile(folder);
}

void CleanModel::revealItem(const QString& itemId) const
{
    const auto item = findItem(itemId);
    const auto path = item ? item->url() : std::nullopt;
    if (path && m_services->workspace && !revealUrl(*item).isEmpty())
        m_services->workspace->reveal(*path);
}

QStringList CleanModel::expanded() const
{
    QStringList ids(m_expanded.cbegin(), m_expanded.cend());
    ids.sort();
    return ids;
}

void CleanModel::setPath(const QStringList& path)
{
    if (path == m_path)
        return;
    m_path = path;
    emit pathChanged();
}

void CleanModel::scan()
{
    if (!m_hasScanned) {
        m_hasScanned = true;
        emit hasScannedChanged();
    }
    const bool wasScanning = isScanning();
    for (const CleanCategory& row : m_services->catalog.all())
        read(row);
    if (!wasScanning && isScanning())
        emit isScanningChanged();
    emit categoriesChanged();
}

void CleanModel::read(const CleanCategory& row)
{
    m_loading.insert(row.id);
    // Each category lands on its own; a newer read of the same category replaces an older one,
    // so the newest list always wins.
    m_jobs.start(
        QStringLiteral("category:") + row.id,
        [services = m_services, scan = row.scan](StopToken) {
            Found found;
            if (scan)
                found.items = scan();
            // Whether a path is a folder is read here, off the user-interface thread.
            for (const CleanItem& item : found.items) {
                if (const auto path = item.url(); path && isFolder(*path))
                    found.folders.insert(item.id);
            }
            return found;
        },
        [this, id = row.id](const Found& found) { land(id, found); },
        [this, id = row.id] { land(id, Found{}); });
}

void CleanModel::land(const QString& categoryId, const Found& landed)
{
    const QList<CleanItem>& found = landed.items;
    for (const CleanItem& item : m_items.value(categoryId))
        m_folders.remove(item.id);
    m_folders.unite(landed.folders);
    m_items.insert(categoryId, found);
    const CleanCategory* row = category(categoryId);
    bool selectionGrew = false;
    if (row && row->selectedByDefault) {
        for (const CleanItem& item : found) {
            if (!m_selected.contains(item.id)) {
                m_selected.insert(item.id);
                selectionGrew = true;
            }
        }
    }
    m_loading.remove(categoryId);
    if (selectionGrew)
        emit selectionChanged();
    emit categoriesChanged();
    if (m_loading.isEmpty())
        emit isScanningChanged();
}

void CleanModel::enter()
{
    if (!m_hasScanned)
        scan();
}

void CleanModel::open(const QString& categoryId)
{
    setPath(categoryId.isEmpty() ? QStringList() : QStringList{categoryId});
}

void CleanModel::toggleCategory(const QString& categoryId)
{
    const QList<CleanItem> found = m_items.value(categoryId);
    if (found.isEmpty())
        return;
    const bool clear = state(categoryId) == CategoryState::All;
    for (const CleanItem& item : found) {
        if (clear)
            m_selected.remove(item.id);
        else
            m_selected.insert(item.id);
    }
    emit selectionChanged();
    emit categoriesChanged();
}

void CleanModel::toggleItem(const QString& itemId)
{
    if (!m_selected.remove(itemId))
        m_selected.insert(itemId);
    emit selectionChanged();
    emit categoriesChanged();
}

void CleanModel::toggleExpanded(const QString& categoryId)
{
    if (!m_expanded.remove(categoryId))
        m_expanded.insert(categoryId);
    emit expandedChanged();
}

QString CleanModel::cleanLabel() const
{
    return CleanTexts::cleanLabel(m_isCleaning);
}

void CleanModel::clean()
{
    QStringList all;
    for (const CleanCategory& row : m_services->catalog.all())
        all.append(row.id);
    clean(all);
}

void CleanModel::clean(const QStringList& categoryIds)
{
    if (m_isCleaning)
        return;
    QList<CleanItem> chosen;
    QSet<QString> seen;
    QSet<QString> cleaning;
    for (const QString& id : categoryIds) {
        for (const CleanItem& item : m_items.value(id)) {
            if (m_selected.contains(item.id) && !seen.contains(item.id)) {
                seen.insert(item.id);
                chosen.append(item);
                cleaning.insert(id);
            }
        }
    }
    if (chosen.isEmpty())
        return;
    m_isCleaning = true;
    m_cleaning = cleaning;
    emit isCleaningChanged();
    emit categoriesChanged();

    // A read of a category being cleaned that is still under way may list what is about to go:
    // it is stopped now and made again once the clean has landed.
    for (const QString& id : categoryIds)
        m_jobs.stop(QStringLiteral("category:") + id);

    m_jobs.start(
        QStringLiteral("clean"),
        [services = m_services, chosen](StopToken stop) {
            Outcome outcome;
            QList<DeletionItem> paths;
            QList<CleanItem> commands;
            for (const CleanItem& item : chosen) {
                if (const auto path = item.url()) {
                    paths.append({*path, item.size});
                    for (const QString& companion : item.companions)
                        paths.append({companion, 0});
                } else
                    commands.append(item);
            }
            if (!paths.isEmpty()) {
                const DeletionResult result = services->deleter.deleteItems(paths, true, stop);
                outcome.freed = result.freed;
                outcome.failures = result.failed.size();
                for (const DeletionFailure& failure : result.failed)
                    outcome.failedPaths.insert(failure.path);
                // What the batch never reached is still there, neither freed nor failed.
                for (const DeletionItem& item : paths) {
                    if (!result.deleted.contains(item.path) && !outcome.failedPaths.contains(item.path))
                        outcome.untouched.insert(item.path);
                }
            }
            if (!commands.isEmpty()) {
                CommandOutcome ran;
                if (services->runCommands) {
                    ran = services->runCommands(commands, stop);
                } else {
                    // Without a runner nothing ran, and nothing may be reported as freed.
                    for (const CleanItem& item : commands)
                        ran.failed.append(item.id);
                }
                outcome.freed = checkedAdd(outcome.freed, ran.freed);
                outcome.failures += ran.failed.size();
                outcome.failedIds = QSet<QString>(ran.failed.cbegin(), ran.failed.cend());
                // Cancelled, the commands never reached ran neither well nor badly.
                if (stop.stopRequested()) {
                    for (const CleanItem& item : commands) {
                        if (!ran.done.contains(item.id) && !ran.failed.contains(item.id))
                            outcome.untouchedIds.insert(item.id);
                    }
                }
            }
            return outcome;
        },
        [this, categoryIds, chosen](const Outcome& outcome) { finishClean(categoryIds, chosen, outcome); },
        [this, categoryIds] { finishClean(categoryIds, {}, Outcome{}); });
}

void CleanModel::cancelClean()
{
    // The batch stops before its next item and still lands, so what it did is reported.
    if (m_jobs.interrupt(QStringLiteral("clean")))
        emit isCleaningChanged();
}

void CleanModel::finishClean(const QStringList& categoryIds, const QList<CleanItem>& attempted,
                             const Outcome& outcome)
{
    if (m_services->haptics)
        m_services->haptics(Feedback::Commit);
    if (m_app)
        m_app->report(outcome.freed, outcome.failures);

    // A cleaned item leaves its list and the selection. One that failed stays listed but is no
    // longer selected, so the next clean does not report it again unless the user ticks it; one
    // the batch never reached (a cancel) stays listed and selected, as it was.
    QSet<QString> gone;
    QSet<QString> cleaned;
    for (const CleanItem& item : attempted) {
        const auto path = item.url();
        const bool failed = path ? outcome.failedPaths.contains(*path) : outcome.failedIds.contains(item.id);
        const bool untouched = path ? outcome.untouched.contains(*path) : outcome.untouchedIds.contains(item.id);
        if (untouched)
            continue;
        cleaned.insert(item.id);
        if (!failed)
            gone.insert(item.id);
    }
    for (const QString& id : categoryIds) {
        auto found = m_items.find(id);
        if (found != m_items.end())
            found->removeIf([&gone](const CleanItem& item) { return gone.contains(item.id); });
    }
    m_selected.subtract(cleaned);
    m_isCleaning = false;
    m_cleaning.clear();
    emit selectionChanged();
    emit categoriesChanged();
    emit isCleaningChanged();
    // The reads stopped for the clean, or started while it ran, are made again over what is left.
    for (const CleanCategory& row : m_services->catalog.all()) {
        if (categoryIds.contains(row.id) && m_loading.contains(row.id))
            read(row);
    }
}

} // namespace nubo
