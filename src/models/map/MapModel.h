#pragma once

#include "models/app/Jobs.h"
#include "models/app/ModelServices.h"
#include "models/map/MapNodeModel.h"

#include <QObject>
#include <QSet>
#include <QTimer>
#include <QUrl>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <memory>

namespace nubo {

class AppState;
class FileNode;
class ScanProgress;
class Workspace;
struct DeletionResult;

/// The space map's state: what is scanned, the tree it gave, the folder on show, the nodes marked
/// for deletion, and the scan or deletion under way. Lives on the user-interface thread; the scan
/// and the deletion run on the pool and land here. A scan that was cancelled or overtaken by a
/// newer one never replaces the tree: the shared progress object of the latest scan decides.
class MapModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application state owns the map model")
    Q_DISABLE_COPY_MOVE(MapModel)
    Q_PROPERTY(QString scopeLabel READ scopeLabel NOTIFY scopeChanged)
    Q_PROPERTY(QString scopePath READ scopePath NOTIFY scopeChanged)
    Q_PROPERTY(QString scanningTitle READ scanningTitle NOTIFY scopeChanged)
    Q_PROPERTY(bool hasTree READ hasTree NOTIFY currentChanged)
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)
    Q_PROPERTY(QString currentPath READ currentPath NOTIFY currentChanged)
    Q_PROPERTY(qint64 currentSize READ currentSize NOTIFY revisionChanged)
    Q_PROPERTY(bool canGoUp READ canGoUp NOTIFY currentChanged)
    Q_PROPERTY(MapNodeModel* children READ children CONSTANT)
    Q_PROPERTY(QString hoveredName READ hoveredName NOTIFY hoveredChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(qint64 scannedFiles READ scannedFiles NOTIFY scannedFilesChanged)
    Q_PROPERTY(QString scannedFilesText READ scannedFilesText NOTIFY scannedFilesChanged)
    Q_PROPERTY(qint64 scannedBytes READ scannedBytes NOTIFY scannedBytesChanged)
    Q_PROPERTY(QString scanningPath READ scanningPath NOTIFY scanningPathChanged)
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)
    Q_PROPERTY(bool isDeleting READ isDeleting NOTIFY isDeletingChanged)
    Q_PROPERTY(bool isCancelling READ isCancelling NOTIFY isDeletingChanged)
    Q_PROPERTY(qint64 markedSize READ markedSize NOTIFY markedChanged)
    Q_PROPERTY(int markedCount READ markedCount NOTIFY markedChanged)
    Q_PROPERTY(QString selectionText READ selectionText NOTIFY markedChanged)
    Q_PROPERTY(QString markedSizeText READ markedSizeText NOTIFY markedChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY subtitleChanged)
    Q_PROPERTY(QString scanningPathText READ scanningPathText NOTIFY scanningPathChanged)
    Q_PROPERTY(QStringList pathNames READ pathNames NOTIFY currentChanged)
    // The inspector: the bubble under the pointer, else the folder on show.
    Q_PROPERTY(bool hasInspected READ hasInspected NOTIFY inspectedChanged)
    Q_PROPERTY(QString inspectedName READ inspectedName NOTIFY inspectedChanged)
    Q_PROPERTY(QString inspectedSizeText READ inspectedSizeText NOTIFY inspectedChanged)
    Q_PROPERTY(QString inspectedCountText READ inspectedCountText NOTIFY inspectedChanged)
    Q_PROPERTY(QString inspectedSymbol READ inspectedSymbol NOTIFY inspectedChanged)
    Q_PROPERTY(QString inspectedColor READ inspectedColor NOTIFY inspectedChanged)
    Q_PROPERTY(QVariantList breakdown READ breakdown NOTIFY inspectedChanged)
    Q_PROPERTY(MapNodeModel* inspectedRows READ inspectedRows CONSTANT)
    // The node menu's node: a bubble or an inspector row that asked for the menu.
    Q_PROPERTY(QString menuName READ menuName NOTIFY menuChanged)
    Q_PROPERTY(QString menuPath READ menuPath NOTIFY menuChanged)
    Q_PROPERTY(bool menuCanOpen READ menuCanOpen NOTIFY menuChanged)
    Q_PROPERTY(bool menuIsProtected READ menuIsProtected NOTIFY menuChanged)
    Q_PROPERTY(bool menuIsMarked READ menuIsMarked NOTIFY menuChanged)
    Q_PROPERTY(bool menuCanMark READ menuCanMark NOTIFY menuChanged)

public:
    /// What is scanned: the home folder, a folder of the user's choice, or the whole disk.
    struct Scope
    {
        enum class Kind
        {
            Home,
            Folder,
            Disk
        };
        Kind kind = Kind::Home;
        QString folder; ///< only for `Folder`

        [[nodiscard]] QString path(const QString& home) const;
        /// "Tu carpeta", the folder's last component, or "Disco completo".
        [[nodiscard]] QString label() const;
        /// The heading while it is scanned, the label read as part of a sentence:
        /// "Analizando tu carpeta", "Analizando el disco completo", "Analizando Fotos".
        [[nodiscard]] QString scanningTitle() const;
        friend bool operator==(const Scope&, const Scope&) = default;
    };

    explicit MapModel(std::shared_ptr<const ModelServices> services, QObject* parent = nullptr);
    /// Cancels a running scan and waits for background work, which borrows the services.
    ~MapModel() override;

    /// The owner that hears of every deletion; set once, not owned.
    void setApp(AppState* app) { m_app = app; }
    /// Where "Mostrar en Finder" and "Abrir con la app predeterminada" go; without one they do
    /// nothing. Not owned.
    void setWorkspace(Workspace* workspace) { m_workspace = workspace; }

    [[nodiscard]] const Scope& scope() const { return m_scope; }
    [[nodiscard]] QString scopeLabel() const { return m_scope.label(); }
    [[nodiscard]] QString scanningTitle() const { return m_scope.scanningTitle(); }
    [[nodiscard]] QString scopePath() const { return m_scope.path(m_services->home); }
    [[nodiscard]] const FileNode* root() const { return m_root.get(); }
    [[nodiscard]] const FileNode* current() const { return m_current; }
    [[nodiscard]] bool hasTree() const { return m_root != nullptr; }
    [[nodiscard]] QString currentName() const;
    [[nodiscard]] QString currentPath() const;
    [[nodiscard]] qint64 currentSize() const;
    [[nodiscard]] bool canGoUp() const;
    [[nodiscard]] MapNodeModel* children() { return &m_children; }
    [[nodiscard]] const FileNode* hovered() const { return m_hovered; }
    [[nodiscard]] QString hoveredName() const;
    [[nodiscard]] bool isScanning() const { return m_isScanning; }
    [[nodiscard]] qint64 scannedFiles() const { return m_scannedFiles; }
    [[nodiscard]] QString scannedFilesText() const;
    [[nodiscard]] qint64 scannedBytes() const { return m_scannedBytes; }
    [[nodiscard]] const QString& scanningPath() const { return m_scanningPath; }
    [[nodiscard]] int revision() const { return m_revision; }
    [[nodiscard]] bool isDeleting() const { return m_isDeleting; }
    [[nodiscard]] bool isCancelling() const { return m_jobs.isInterrupted(QStringLiteral("delete")); }
    [[nodiscard]] bool isMarked(const FileNode* node) const { return m_marked.contains(node); }
    /// The sum of the marked nodes' sizes, each counted on its own (one inside a marked folder too).
    [[nodiscard]] qint64 markedSize() const;
    [[nodiscard]] int markedCount() const { return int(m_marked.size()); }
    [[nodiscard]] QString selectionText() const;
    [[nodiscard]] QString markedSizeText() const;
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] QString scanningPathText() const;
    /// The names from the scan's root down to the folder on show.
    [[nodiscard]] QStringList pathNames() const;
    /// Whether the safety gate refuses to delete the node.
    [[nodiscard]] bool isProtected(const FileNode* node) const;
    /// Whether a node may be marked at all: not the root, not an aggregate, not protected.
    [[nodiscard]] bool canMark(const FileNode* node) const;

    [[nodiscard]] const FileNode* inspected() const { return m_inspected; }
    [[nodiscard]] bool hasInspected() const { return m_inspected != nullptr; }
    [[nodiscard]] QString inspectedName() const;
    [[nodiscard]] QString inspectedSizeText() const;
    [[nodiscard]] QString inspectedCountText() const;
    [[nodiscard]] QString inspectedSymbol() const;
    [[nodiscard]] QString inspectedColor() const;
    /// The inspected node's bar: one entry per segment with "color", "fraction", "label" and
    /// "remainder".
    [[nodiscard]] QVariantList breakdown() const;
    [[nodiscard]] MapNodeModel* inspectedRows() { return &m_inspectedRows; }

    [[nodiscard]] const FileNode* menuNode() const { return m_menu; }
    [[nodiscard]] QString menuName() const;
    [[nodiscard]] QString menuPath() const;
    [[nodiscard]] bool menuCanOpen() const;
    [[nodiscard]] bool menuIsProtected() const;
    [[nodiscard]] bool menuIsMarked() const;
    [[nodiscard]] bool menuCanMark() const;

    /// Starts scanning `scope`, abandoning any running scan and clearing the marks; the tree on
    /// show stays until the new one lands.
    void scan(const Scope& scope);
    Q_INVOKABLE void scanHome() { scan({}); }
    Q_INVOKABLE void scanDisk() { scan({Scope::Kind::Disk, {}}); }
    Q_INVOKABLE void scanFolder(const QString& path) { scan({Scope::Kind::Folder, path}); }
    /// The folder picker's answer: a local folder is scanned; anything else (a cancelled
    /// picker's empty address, a remote one) changes nothing.
    Q_INVOKABLE void scanFolderUrl(const QUrl& url);
    /// Scans the current scope again (the menu's "Escanear de nuevo").
    Q_INVOKABLE void rescan() { scan(m_scope); }
    /// Stops the running scan; the tree from before stays.
    Q_INVOKABLE void cancelScan();
    /// Shows a tree built elsewhere as if a scan had just produced it (the drawing benchmark's
    /// synthetic trees): any running scan stops and the marks go.
    void present(std::unique_ptr<FileNode> tree);

    /// Shows a folder's contents, when it is a folder with something to open.
    void open(const FileNode* node);
    Q_INVOKABLE void openRow(int row) { open(m_children.nodeAt(row)); }
    /// Shows the parent of the folder on show; nothing at the root.
    Q_INVOKABLE void goUp();
    /// The node under the pointer on the map (null when the pointer left the bubbles); the
    /// inspector then describes it.
    void setHovered(const FileNode* node);
    /// Clears the hover only when `node` is still the hovered one: leaving a bubble after the
    /// pointer has entered another keeps the other.
    void leave(const FileNode* node);
    Q_INVOKABLE void hoverRow(int row) { setHovered(m_children.nodeAt(row)); }
    /// An inspector row under the pointer: highlighted on the map, while the inspector keeps
    /// describing the node it shows (its rows stay where the pointer is). -1 leaves.
    Q_INVOKABLE void hoverInspectedRow(int row);
    Q_INVOKABLE void openInspectedRow(int row) { open(m_inspectedRows.nodeAt(row)); }
    Q_INVOKABLE void toggleMarkInspectedRow(int row) { toggleMark(m_inspectedRows.nodeAt(row)); }
    /// Opens the folder `index` steps below the root on the path (0 is the root).
    Q_INVOKABLE void openAncestor(int index);
    /// Empties the marks ("Desmarcar"); nothing during a deletion.
    Q_INVOKABLE void unmarkAll();

    /// Chooses the node menu's node.
    void setMenuNode(const FileNode* node);
    Q_INVOKABLE void menuForInspectedRow(int row) { setMenuNode(m_inspectedRows.nodeAt(row)); }
    Q_INVOKABLE void menuForRow(int row) { setMenuNode(m_children.nodeAt(row)); }
    Q_INVOKABLE void menuOpen() { open(m_menu); }
    Q_INVOKABLE void menuToggleMark() { toggleMark(m_menu); }
    /// Shows the item in the file manager.
    Q_INVOKABLE void menuReveal();
    /// Opens the item with the application the system chooses for it.
    Q_INVOKABLE void menuOpenWithDefaultApp();

    /// Marks or unmarks a node. Aggregates, the scan's root and what the safety gate refuses are
    /// never marked; nothing changes during a deletion.
    void toggleMark(const FileNode* node);
    Q_INVOKABLE void toggleMarkRow(int row) { toggleMark(m_children.nodeAt(row)); }
    /// Deletes every marked node for good, reports the outcome to the owner, and takes what is
    /// gone out of the tree; nodes that could not be deleted stay, still marked.
    Q_INVOKABLE void deleteMarked();
    /// Stops a running deletion before its next node; the nodes it removed leave the map and
    /// the others stay, still marked.
    Q_INVOKABLE void cancelDeletion();

signals:
    void scopeChanged();
    void currentChanged();
    void hoveredChanged();
    void isScanningChanged();
    void scannedFilesChanged();
    void scannedBytesChanged();
    void scanningPathChanged();
    void revisionChanged();
    void isDeletingChanged();
    void markedChanged();
    void subtitleChanged();
    void inspectedChanged();
    void menuChanged();

private:
    using Tree = std::shared_ptr<FileNode>;

    void land(const std::shared_ptr<ScanProgress>& progress, Tree tree);
    void finishDeletion(const Tree& tree, const QList<const FileNode*>& removed,
                        const DeletionResult& result);
    void pollProgress();
    void setCurrent(const FileNode* node);
    void setInspected(const FileNode* node);
    [[nodiscard]] QString urlOf(const QString& path) const;
    void setScanning(bool scanning);
    void setDeleting(bool deleting);
    void clearMarks();
    void bumpRevision();
    void feedback(Feedback kind) const;
    [[nodiscard]] QList<const FileNode*> topMarked() const;
    // Big trees are freed in the background so that replacing one never stalls the screen.
    void discard(std::shared_ptr<const FileNode> tree);

    std::shared_ptr<const ModelServices> m_services;
    AppState* m_app = nullptr;
    Scope m_scope;
    Tree m_root;
    const FileNode* m_current = nullptr;
    const FileNode* m_hovered = nullptr;
    const FileNode* m_inspected = nullptr;
    const FileNode* m_menu = nullptr;
    Workspace* m_workspace = nullptr;
    MapNodeModel m_inspectedRows;
    QSet<const FileNode*> m_marked;
    MapNodeModel m_children;
    std::shared_ptr<ScanProgress> m_progress;
    QTimer m_poll;
    bool m_isScanning = false;
    qint64 m_scannedFiles = 0;
    qint64 m_scannedBytes = 0;
    QString m_scanningPath;
    int m_revision = 0;
    bool m_isDeleting = false;
    // Last, so that it goes first: nothing lands on a model that is being taken apart.
    Jobs m_jobs{this};
};

} // namespace nubo
