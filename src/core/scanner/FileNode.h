#pragma once

#include "core/format/FileKind.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace nubo {

/// One item of a scanned tree: a folder (packages included), a file kept on its own, or the
/// aggregate that stands for a folder's small files. Nodes own their children; the parent link is a
/// plain back pointer that is valid for as long as the tree lives. Identity is the object's address.
///
/// A scan builds the tree on its own threads and hands it over whole; afterwards it is read and
/// changed on one thread only.
class FileNode
{
public:
    enum class Type { File, Directory, Aggregate };
    using Children = std::vector<std::unique_ptr<FileNode>>;

    /// `path` is text from `NativePath::decode` when it came from the disk.
    FileNode(QString name, QString path, Type type, bool isPackage = false);
    FileNode(const FileNode&) = delete;
    FileNode& operator=(const FileNode&) = delete;

    /// What the map shows: the last path component, the display name of a scan's root, or
    /// "N archivos pequeños" for an aggregate.
    [[nodiscard]] const QString& name() const { return m_name; }
    /// The item's location; for an aggregate, the folder that holds the small files.
    [[nodiscard]] const QString& path() const { return m_path; }
    /// The bytes that reach the item on disk, also for names that are not UTF-8.
    [[nodiscard]] QByteArray nativePath() const;
    [[nodiscard]] bool isDirectory() const { return m_type == Type::Directory; }
    [[nodiscard]] bool isPackage() const { return m_package; }
    [[nodiscard]] bool isAggregate() const { return m_type == Type::Aggregate; }

    /// Allocated bytes of the item and everything below it.
    [[nodiscard]] qint64 size() const { return m_size; }
    /// What the item counts for: 1 for a file, the small files an aggregate stands for, and for a
    /// folder the sum of its children's counts but at least 1, so that an empty or unread folder
    /// still counts as one item wherever it is summed, shown or subtracted.
    [[nodiscard]] qint64 itemCount() const;
    void setSize(qint64 size) { m_size = size; }
    void setItemCount(qint64 count) { m_count = count; }

    [[nodiscard]] const FileNode* parent() const { return m_parent; }
    [[nodiscard]] FileNode* parent() { return m_parent; }
    /// Largest first after a scan.
    [[nodiscard]] const Children& children() const { return m_children; }

    /// A folder that is not a package and has something to open.
    [[nodiscard]] bool canDrill() const;
    [[nodiscard]] FileKind kind() const;
    /// From the root down to this node, this node last.
    [[nodiscard]] std::vector<const FileNode*> ancestors() const;

    /// The text after the last "." of the location's last component; names that start with their
    /// only dot (".gradle") and names ending in "." have none.
    [[nodiscard]] QString extension() const;

    /// Takes ownership of `child` and makes this node its parent. Totals are left alone: the
    /// scanner sets them when it assembles a folder.
    FileNode* addChild(std::unique_ptr<FileNode> child);
    /// Replaces the children wholesale (the scanner's assembly) and adopts them.
    void setChildren(Children children);
    /// Drops the children but keeps the totals: the node is then drawn as one block.
    void collapse() { m_children.clear(); }

    /// Takes `child` out after its item was deleted and lowers this node and every ancestor by the
    /// child's size and item count. Returns the child, so that whoever still refers to it (a
    /// selection) decides when it goes; null when `child` is not a child of this node.
    std::unique_ptr<FileNode> remove(const FileNode* child);

private:
    QString m_name;
    QString m_path;
    qint64 m_size = 0;
    qint64 m_count = 0;
    FileNode* m_parent = nullptr;
    Children m_children;
    Type m_type;
    bool m_package;
};

} // namespace nubo
