#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace nubo {

/// One item of a scanned tree: a folder, a file kept on its own, or the aggregate that stands for
/// a folder's small files. Nodes own their children; the parent link is a plain back pointer that
/// is valid for as long as the tree lives.
class FileNode
{
public:
    enum class Type { File, Directory, Aggregate };

    FileNode(QString name, QString path, Type type);
    FileNode(const FileNode&) = delete;
    FileNode& operator=(const FileNode&) = delete;

    [[nodiscard]] const QString& name() const { return m_name; }
    /// The item's location; for an aggregate, the folder that holds the small files.
    [[nodiscard]] const QString& path() const { return m_path; }
    [[nodiscard]] bool isDirectory() const { return m_type == Type::Directory; }
    [[nodiscard]] bool isAggregate() const { return m_type == Type::Aggregate; }
    [[nodiscard]] const FileNode* parent() const { return m_parent; }
    [[nodiscard]] const std::vector<std::unique_ptr<FileNode>>& children() const { return m_children; }

    /// The text after the last "." of the location's last component; names that start with their
    /// only dot (".gradle") and names ending in "." have none.
    [[nodiscard]] QString extension() const;

    /// Takes ownership of `child` and makes this node its parent.
    FileNode* addChild(std::unique_ptr<FileNode> child);

private:
    QString m_name;
    QString m_path;
    Type m_type;
    FileNode* m_parent = nullptr;
    std::vector<std::unique_ptr<FileNode>> m_children;
};

} // namespace nubo
