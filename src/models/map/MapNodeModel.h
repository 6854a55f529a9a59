#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <vector>

namespace nubo {

class FileNode;

/// The children of the folder the map shows, one row per node, largest first as the scan left
/// them. The rows point into the map model's tree: the map model tells this list before any node
/// it shows goes away, so a row never outlives its node.
class MapNodeModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The map model owns its list of children")
    Q_DISABLE_COPY_MOVE(MapNodeModel)

public:
    enum class Role
    {
        Name = Qt::UserRole + 1,
        Path,
        Size,
        SizeText,
        ItemCount,
        IsDirectory,
        IsPackage,
        IsAggregate,
        CanDrill,
        Kind,
        Marked,
        KindColor,
        KindSymbol,
        Protected,
    };
    Q_ENUM(Role)

    using MarkTest = std::function<bool(const FileNode*)>;

    explicit MapNodeModel(MarkTest isMarked, QObject* parent = nullptr);
    /// Says which rows the safety gate refuses (drawn with a lock); none without it.
    void setProtectTest(MarkTest isProtected) { m_isProtected = std::move(isProtected); }
    /// Shows at most this many rows (the largest); 0 shows all.
    void setLimit(int limit) { m_limit = limit; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Shows the children of `folder` (none for null).
    void setFolder(const FileNode* folder);
    [[nodiscard]] const FileNode* folder() const { return m_folder; }
    [[nodiscard]] const FileNode* nodeAt(int row) const;
    [[nodiscard]] int rowOf(const FileNode* node) const;
    /// Takes the row of `node` out, if shown, before the node itself is dropped.
    void forget(const FileNode* node);
    /// Every row's sizes and counts changed (something below them was deleted).
    void sizesChanged();
    void markChanged(const FileNode* node);
    void marksChanged();

private:
    MarkTest m_isMarked;
    MarkTest m_isProtected;
    int m_limit = 0;
    const FileNode* m_folder = nullptr;
    std::vector<const FileNode*> m_rows;
};

} // namespace nubo
