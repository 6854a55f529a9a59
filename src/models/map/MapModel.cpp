#include "models/map/MapModel.h"

#include "core/deletion/Deleter.h"
#include "core/files/NativePath.h"
#include "core/format/Bytes.h"
#include "core/format/CheckedMath.h"
#include "core/safety/Safety.h"
#include "core/scanner/DiskScanner.h"
#include "core/scanner/FileNode.h"
#include "core/scanner/ScanProgress.h"
#include "models/app/AppState.h"
#include "models/app/Notify.h"
#include "models/map/MapTexts.h"
#include "models/text/Counts.h"
#include "platform/Workspace.h"

#include <QFileInfo>
#include <QUrl>

namespace nubo {

QString MapModel::Scope::path(const QString& home) const
{
    switch (kind) {
    case Kind::Folder:
        return folder;
    case Kind::Disk:
        return QStringLiteral("/");
    case Kind::Home:
        break;
    }
    return home;
}

QString MapModel::Scope::label() const
{
    switch (kind) {
    case Kind::Folder:
        return QFileInfo(folder).fileName();
    case Kind::Disk:
        return QStringLiteral("Disco completo");
    case Kind::Home:
        break;
    }
    return QStringLiteral("Tu carpeta");
}

QString MapModel::Scope::scanningTitle() const
{
    switch (kind) {
    case Kind::Folder:
        return QStringLiteral("Analizando ") + label();
    case Kind::Disk:
        return QStringLiteral("Analizando el disco completo");
    case Kind::Home:
        break;
    }
    return QStringLiteral("Analizando tu carpeta");
}

MapModel::MapModel(std::shared_ptr<const ModelServices> services, QObject* parent)
    : QObject(parent), m_services(std::move(services)),
      m_inspectedRows([this](const FileNode* node) { return isMarked(node); }),
      m_children([this](const FileNode* node) { return isMarked(node); })
{
    // The inspector lists a folder's largest children; the rest are in the map.
    m_inspectedRows.setLimit(8);
    const auto refused = [this](const FileNode* node) { return isProtected(node); };
    m_inspectedRows.setProtectTest(refused);
    m_children.setProtectTest(refused);
    connect(this, &MapModel::isScanningChanged, this, &MapModel::subtitleChanged);
    connect(this, &MapModel::scannedFilesChanged, this, &MapModel::subtitleChanged);
    connect(this, &MapModel::scannedBytesChanged, this, &MapModel::subtitleChanged);
    connect(this, &MapModel::revisionChanged, this, &MapModel::subtitleChanged);
    connect(this, &MapModel::scopeChanged, this, &MapModel::subtitleChanged);
    connect(this, &MapModel::markedChanged, this, &MapModel::menuChanged);
    m_poll.setInterval(m_services->progressInterval);
    connect(&m_poll, &QTimer::timeout, this, &MapModel::pollProgress);
}

MapModel::~MapModel()
{
    if (m_progress)
        m_progress->cancel();
}

void MapModel::discard(std::shared_ptr<const FileNode> tree)
{
    // Freeing cannot be stopped halfway, so a newer one on the lane leaves it to finish.
    if (tree)
        m_jobs.start(QStringLiteral("free"), [tree = std::move(tree)](StopToken) mutable { tree.reset(); }, [] {});
}

void MapModel::feedback(Feedback kind) const
{
    if (m_services->haptics)
        m_services->haptics(kind);
}

QString MapModel::currentName() const
{
    return m_current ? m_current->name() : QString();
}

QString MapModel::currentPath() const
{
    return m_current ? m_current->path() : QString();
}

qint64 MapModel::currentSize() const
{
    return m_current ? m_current->size() : 0;
}

bool MapModel::canGoUp() const
{
    return m_current && m_current->parent();
}

QString MapModel::hoveredName() const
{
    return m_hovered ? m_hovered->name() : QString();
}

qint64 MapModel::markedSize() const
{
    // Every marked node counts with its own size, also one inside a marked folder: the figure
    // answers "how large is what I picked", while the deletion itself goes by `topMarked`.
    qint64 total = 0;
    for (const FileNode* node : m_marked)
        total = checkedAdd(total, node->size());
    return total;
}

QList<const FileNode*> MapModel::topMarked() const
{
    // A node marked inside a marked folder goes with the folder; deleting and counting it on its
    // own as well would count its bytes twice.
    QList<const FileNode*> top;
    for (const FileNode* node : m_marked) {
        bool inside = false;
        for (const FileNode* up = node->parent(); up && !inside; up = up->parent())
            inside = m_marked.contains(up);
        if (!inside)
            top.append(node);
    }
    // Largest first, a stable order for the deleter and for the tests that read it.
    std::stable_sort(top.begin(), top.end(), [](const FileNode* a, const FileNode* b) {
        return a->size() != b->size() ? a->size() > b->size() : a->path() < b->path();
    });
    return top;
}

void MapModel::setScanning(bool scanning)
{
    assignAndNotify(this, m_isScanning, scanning, &MapModel::isScanningChanged);
}

void MapModel::setDeleting(bool deleting)
{
    assignAndNotify(this, m_isDeleting, deleting, &MapModel::isDeletingChanged);
}

void MapModel::clearMarks()
{
    if (m_marked.isEmpty())
        return;
    m_marked.clear();
    m_children.marksChanged();
    m_inspectedRows.marksChanged();
    emit markedChanged();
}

void MapModel::bumpRevision()
{
    ++m_revision;
    emit revisionChanged();
}

void MapModel::setCurrent(const FileNode* node)
{
    if (node == m_current && m_children.folder() == node)
        return;
    m_current = node;
    m_children.setFolder(node);
    setInspected(node);
    emit currentChanged();
}

void MapModel::setInspected(const FileNode* node)
{
    if (node == m_inspected && m_inspectedRows.folder() == node)
        return;
    m_inspected = node;
    m_inspectedRows.setFolder(node);
    emit inspectedChanged();
}

void MapModel::setHovered(const FileNode* node)
{
    if (node != m_hovered) {
        m_hovered = node;
        emit hoveredChanged();
    }
    setInspected(node ? node : m_current);
}

void MapModel::leave(const FileNode* node)
{
    if (node && node == m_hovered)
        setHovered(nullptr);
}

void MapModel::hoverInspectedRow(int row)
{
    const FileNode* node = m_inspectedRows.nodeAt(row);
    if (node == m_hovered)
        return;
    m_hovered = node;
    emit hoveredChanged();
}

void MapModel::openAncestor(int index)
{
    if (!m_current || index < 0)
        return;
    const auto chain = m_current->ancestors();
    if (index < int(chain.size()))
        setCurrent(chain[size_t(index)]);
}

void MapModel::unmarkAll()
{
    if (!m_isDeleting)
        clearMarks();
}

QString MapModel::selectionText() const
{
    return MapTexts::selectionCount(markedCount());
}

QString MapModel::scannedFilesText() const
{
    return Counts::number(m_scannedFiles);
}

QString MapModel::markedSizeText() const
{
    return Bytes::string(markedSize());
}

QString MapModel::subtitle() const
{
    if (m_isScanning)
        return MapTexts::scanningLine(m_scannedFiles, m_scannedBytes);
    if (!m_root)
        return {};
    return MapTexts::mapLine(scopeLabel(), m_root->size(), m_root->itemCount());
}

QString MapModel::scanningPathText() const
{
    return MapTexts::scanningPath(m_scanningPath, m_services->home);
}

QStringList MapModel::pathNames() const
{
    QStringList names;
    if (m_current) {
        for (const FileNode* node : m_current->ancestors())
            names << node->name();
    }
    return names;
}

bool MapModel::isProtected(const FileNode* node) const
{
    return node && !m_services->safety.isAllowed(node->path());
}

bool MapModel::canMark(const FileNode* node) const
{
    // The root is the scope itself: the map deletes what is inside it, never the scope.
    return node && node->parent() && !node->isAggregate() && !isProtected(node);
}

QString MapModel::inspectedName() const
{
    return m_inspected ? m_inspected->name() : QString();
}

QString MapModel::inspectedSizeText() const
{
    return m_inspected ? Bytes::string(m_inspected->size()) : QString();
}

QString MapModel::inspectedCountText() const
{
    return m_inspected ? MapTexts::fileCount(m_inspected->itemCount()) : QString();
}

QString MapModel::inspectedSymbol() const
{
    return m_inspected ? FileKinds::symbol(m_inspected->kind()) : QString();
}

QString MapModel::inspectedColor() const
{
    return m_inspected ? FileKinds::color(m_inspected->kind()) : QString();
}

QVariantList MapModel::breakdown() const
{
    QVariantList list;
    if (!m_inspected)
        return list;
    unsigned named = 0; // one bit per kind already in the legend
    for (const MapTexts::Segment& segment : MapTexts::breakdown(*m_inspected)) {
        // The legend names each kind once, however many segments it has.
        const unsigned bit = 1u << unsigned(segment.kind);
        const bool first = !segment.remainder && !(named & bit);
        named |= bit;
        list.append(QVariantMap{
            {QStringLiteral("named"), first},
            {QStringLiteral("color"), segment.remainder ? QString() : FileKinds::color(segment.kind)},
            {QStringLiteral("fraction"), segment.fraction},
            {QStringLiteral("label"), segment.remainder ? QString() : FileKinds::label(segment.kind)},
            {QStringLiteral("remainder"), segment.remainder},
        });
    }
    return list;
}

void MapModel::setMenuNode(const FileNode* node)
{
    if (node == m_menu)
        return;
    m_menu = node;
    emit menuChanged();
}

QString MapModel::menuName() const
{
    return m_menu ? m_menu->name() : QString();
}

QString MapModel::menuPath() const
{
    return m_menu ? m_menu->path() : QString();
}

bool MapModel::menuCanOpen() const
{
    return m_menu && m_menu->canDrill();
}

bool MapModel::menuIsProtected() const
{
    return isProtected(m_menu);
}

bool MapModel::menuIsMarked() const
{
    return isMarked(m_menu);
}

bool MapModel::menuCanMark() const
{
    return !m_isDeleting && canMark(m_menu);
}

QString MapModel::urlOf(const QString& path) const
{
    // A name whose bytes are not UTF-8 is handed over byte for byte, so that the address names
    // that very item and never a look-alike.
    if (NativePath::hasEscapedBytes(path))
        return QStringLiteral("file://") +
               QString::fromLatin1(NativePath::encode(path).toPercentEncoding(QByteArrayLiteral("/")));
    return QUrl::fromLocalFile(path).toString();
}

void MapModel::menuReveal()
{
    if (!m_menu || !m_workspace)
        return;
    // An aggregate of small files has no file of its own to select: open the folder they fill.
    if (m_menu->isAggregate())
        m_workspace->openUrl(urlOf(m_menu->path()));
    else
        m_workspace->reveal(m_menu->path());
}

void MapModel::menuOpenWithDefaultApp()
{
    if (m_menu && m_workspace)
        m_workspace->openUrl(urlOf(m_menu->path()));
}

void MapModel::scan(const Scope& scope)
{
    if (scope != m_scope) {
        m_scope = scope;
        emit scopeChanged();
    }
    if (m_progress)
        m_progress->cancel();
    m_progress.reset();

    const QString folder = m_scope.path(m_services->home);
    setScanning(true);
    clearMarks();
    if (m_scannedFiles != 0) {
        m_scannedFiles = 0;
        emit scannedFilesChanged();
    }
    if (m_scannedBytes != 0) {
        m_scannedBytes = 0;
        emit scannedBytesChanged();
    }

    auto progress = std::make_shared<ScanProgress>();
    m_progress = progress;
    m_poll.start();
    m_jobs.start(
        QStringLiteral("tree"),
        [services = m_services, folder, progress](StopToken stop) {
            const StopCallback cancel(stop, [progress] { progress->cancel(); });
            return Tree(services->scanner.scan(folder, *progress));
        },
        [this, progress](Tree tree) { land(progress, std::move(tree)); }, [this] { cancelScan(); });
}

void MapModel::scanFolderUrl(const QUrl& url)
{
    if (!url.isValid() || !url.isLocalFile())
        return;
    const QString path = url.toLocalFile();
    if (!path.isEmpty())
        scanFolder(path);
}

void MapModel::land(const std::shared_ptr<ScanProgress>& progress, Tree tree)
{
    if (progress != m_progress || progress->isCancelled()) {
        discard(std::move(tree));
        return;
    }
    m_poll.stop();
    pollProgress();
    m_progress.reset();

    // Nothing may keep pointing into the tree that is about to be freed.
    clearMarks();
    setHovered(nullptr);
    setMenuNode(nullptr);
    Tree old = std::exchange(m_root, std::move(tree));
    // The list lets go of the old nodes before they are freed.
    setCurrent(m_root.get());
    discard(std::move(old));
    bumpRevision();
    setScanning(false);
}

void MapModel::present(std::unique_ptr<FileNode> tree)
{
    if (!tree)
        return;
    cancelScan();
    clearMarks();
    setHovered(nullptr);
    setMenuNode(nullptr);
    Tree old = std::exchange(m_root, Tree(std::move(tree)));
    setCurrent(m_root.get());
    discard(std::move(old));
    bumpRevision();
}

void MapModel::pollProgress()
{
    if (!m_progress)
        return;
    const ScanProgress::Snapshot now = m_progress->snapshot();
    if (now.files != m_scannedFiles) {
        m_scannedFiles = now.files;
        emit scannedFilesChanged();
    }
    if (now.bytes != m_scannedBytes) {
        m_scannedBytes = now.bytes;
        emit scannedBytesChanged();
    }
    if (now.current != m_scanningPath) {
        m_scanningPath = now.current;
        emit scanningPathChanged();
    }
}

void MapModel::cancelScan()
{
    if (m_progress)
        m_progress->cancel();
    m_jobs.stop(QStringLiteral("tree"));
    m_progress.reset();
    m_poll.stop();
    setScanning(false);
}

void MapModel::open(const FileNode* node)
{
    if (!node || !node->canDrill())
        return;
    feedback(Feedback::Tap);
    setCurrent(node);
}

void MapModel::goUp()
{
    if (canGoUp())
        setCurrent(m_current->parent());
}

void MapModel::toggleMark(const FileNode* node)
{
    // While a scan runs the tree on screen is about to be replaced: a mark made now would point
    // into it after it is gone.
    if (m_isDeleting || m_isScanning || !canMark(node))
        return;
    feedback(Feedback::Tap);
    if (!m_marked.remove(node))
        m_marked.insert(node);
    // The same node may be a bubble of the map and a row of the inspector at once.
    m_children.markChanged(node);
    m_inspectedRows.markChanged(node);
    emit markedChanged();
}

void MapModel::deleteMarked()
{
    if (m_isDeleting || m_isScanning || m_marked.isEmpty())
        return;
    setDeleting(true);
    const QList<const FileNode*> nodes = topMarked();
    QList<DeletionItem> items;
    items.reserve(nodes.size());
    for (const FileNode* node : nodes)
        items.append({node->path(), node->size()});
    // The tree rides along so that its nodes outlive a scan that lands while the deletion runs.
    m_jobs.start(
        QStringLiteral("delete"),
        [services = m_services, items](StopToken stop) {
            return services->deleter.deleteItems(items, true, std::move(stop));
        },
        [this, tree = m_root, nodes](const DeletionResult& result) { finishDeletion(tree, nodes, result); },
        [this] { setDeleting(false); });
}

void MapModel::cancelDeletion()
{
    if (m_jobs.interrupt(QStringLiteral("delete")))
        emit isDeletingChanged();
}

void MapModel::finishDeletion(const Tree& tree, const QList<const FileNode*>& removed,
                              const DeletionResult& result)
{
    feedback(Feedback::Commit);
    if (m_app)
        m_app->report(result.freed, result.failed.size());

    if (tree == m_root) {
        const QSet<QString> deleted(result.deleted.cbegin(), result.deleted.cend());
        bool changed = false;
        for (const FileNode* node : removed) {
            if (!deleted.contains(node->path()))
                continue;
            FileNode* parent = const_cast<FileNode*>(node->parent());
            // Whatever pointed into the deleted subtree lets go of it first.
            for (auto it = m_marked.begin(); it != m_marked.end();) {
                const auto chain = (*it)->ancestors();
                if (std::find(chain.begin(), chain.end(), node) != chain.end())
                    it = m_marked.erase(it);
                else
                    ++it;
            }
            const auto inside = [node](const FileNode* other) {
                for (; other; other = other->parent()) {
                    if (other == node)
                        return true;
                }
                return false;
            };
            if (inside(m_hovered))
                setHovered(nullptr);
            if (inside(m_menu))
                setMenuNode(nullptr);
            if (inside(m_current))
                setCurrent(parent);
            m_children.forget(node);
            if (inside(m_inspected))
                setInspected(m_current);
            m_inspectedRows.forget(node);
            discard(parent->remove(node));
            changed = true;
        }
        if (changed) {
            m_children.sizesChanged();
            m_inspectedRows.setFolder(m_inspected);
            emit inspectedChanged();
            emit markedChanged();
        }
        bumpRevision();
    }
    setDeleting(false);
    // A scan that started while the deletion ran may have listed what is gone now: read again.
    if (m_isScanning)
        scan(m_scope);
}

} // namespace nubo
