#include "models/map/MapModel.h"

#include "models/app/Notify.h"
#include "core/deletion/Deleter.h"
#include "core/format/CheckedMath.h"
#include "core/safety/Safety.h"
#include "core/scanner/DiskScanner.h"
#include "core/scanner/FileNode.h"
#include "core/scanner/ScanProgress.h"
#include "models/app/AppState.h"

#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

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

MapModel::MapModel(const ModelServices& services, QObject* parent)
    : QObject(parent), m_services(services),
      m_children([this](const FileNode* node) { return isMarked(node); })
{
    m_poll.setInterval(services.progressInterval);
    connect(&m_poll, &QTimer::timeout, this, &MapModel::pollProgress);
}

MapModel::~MapModel()
{
    if (m_progress)
        m_progress->cancel();
    m_work.waitForAll();
}

void MapModel::discard(std::shared_ptr<const FileNode> tree)
{
    if (tree)
        m_work.add(QtConcurrent::run([tree = std::move(tree)]() mutable { tree.reset(); }));
}

void MapModel::feedback(Feedback kind) const
{
    if (m_services.haptics)
        m_services.haptics(kind);
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
    qint64 total = 0;
    for (const FileNode* node : topMarked())
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
    emit currentChanged();
}

void MapModel::setHovered(const FileNode* node)
{
    if (node == m_hovered)
        return;
    m_hovered = node;
    emit hoveredChanged();
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

    const QString folder = m_scope.path(m_services.home);
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
    DiskScanner& scanner = m_services.scanner;
    m_work.start(this, QtConcurrent::run([&scanner, folder, progress] {
                     return Tree(scanner.scan(folder, *progress));
                 }),
                 [this, progress](Tree tree) { land(progress, std::move(tree)); });
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

    setHovered(nullptr);
    Tree old = std::exchange(m_root, std::move(tree));
    // The list lets go of the old nodes before they are freed.
    setCurrent(m_root.get());
    discard(std::move(old));
    bumpRevision();
    setScanning(false);
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
    // The root is the scope itself: the map deletes what is inside it, never the scope.
    if (!node || m_isDeleting || node->isAggregate() || !node->parent() ||
        !m_services.safety.isAllowed(node->path()))
        return;
    feedback(Feedback::Tap);
    if (!m_marked.remove(node))
        m_marked.insert(node);
    m_children.markChanged(node);
    emit markedChanged();
}

void MapModel::deleteMarked()
{
    if (m_isDeleting || m_marked.isEmpty())
        return;
    setDeleting(true);
    const QList<const FileNode*> nodes = topMarked();
    QList<DeletionItem> items;
    items.reserve(nodes.size());
    for (const FileNode* node : nodes)
        items.append({node->path(), node->size()});
    // The tree rides along so that its nodes outlive a scan that lands while the deletion runs.
    m_work.start(
        this, m_services.deleter.deleteItems(items, true),
        [this, tree = m_root, nodes](const DeletionResult& result) { finishDeletion(tree, nodes, result); });
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
            if (inside(m_current))
                setCurrent(parent);
            m_children.forget(node);
            discard(parent->remove(node));
            changed = true;
        }
        if (changed) {
            m_children.sizesChanged();
            emit markedChanged();
        }
        bumpRevision();
    }
    setDeleting(false);
}

} // namespace nubo
