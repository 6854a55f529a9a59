#include "models/map/MapNodeModel.h"

#include "core/format/Bytes.h"
#include "core/format/FileKind.h"
#include "core/scanner/FileNode.h"

#include <algorithm>

namespace nubo {

MapNodeModel::MapNodeModel(MarkTest isMarked, QObject* parent)
    : QAbstractListModel(parent), m_isMarked(std::move(isMarked))
{
}

int MapNodeModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MapNodeModel::data(const QModelIndex& index, int role) const
{
    const FileNode* node = nodeAt(index.row());
    if (!index.isValid() || !node)
        return {};
    switch (Role(role)) {
    case Role::Name:
        return node->name();
    case Role::Path:
        return node->path();
    case Role::Size:
        return node->size();
    case Role::SizeText:
        return Bytes::string(node->size());
    case Role::ItemCount:
        return node->itemCount();
    case Role::IsDirectory:
        return node->isDirectory();
    case Role::IsPackage:
        return node->isPackage();
    case Role::IsAggregate:
        return node->isAggregate();
    case Role::CanDrill:
        return node->canDrill();
    case Role::Kind:
        return int(node->kind());
    case Role::Marked:
        return m_isMarked(node);
    case Role::KindColor:
        return FileKinds::color(node->kind());
    case Role::KindSymbol:
        return FileKinds::symbol(node->kind());
    case Role::Protected:
        return m_isProtected && m_isProtected(node);
    }
    return {};
}

QHash<int, QByteArray> MapNodeModel::roleNames() const
{
    static const QHash<int, QByteArray> names{
        {int(Role::Name), "name"},
        {int(Role::Path), "path"},
        {int(Role::Size), "size"},
        {int(Role::SizeText), "sizeText"},
        {int(Role::ItemCount), "itemCount"},
        {int(Role::IsDirectory), "isDirectory"},
        {int(Role::IsPackage), "isPackage"},
        {int(Role::IsAggregate), "isAggregate"},
        {int(Role::CanDrill), "canDrill"},
        {int(Role::Kind), "kind"},
        {int(Role::Marked), "marked"},
        {int(Role::KindColor), "kindColor"},
        {int(Role::KindSymbol), "kindSymbol"},
        {int(Role::Protected), "isProtected"},
    };
    return names;
}

void MapNodeModel::setFolder(const FileNode* folder)
{
    // Another folder is another list altogether, so a reset says it best.
    beginResetModel();
    m_folder = folder;
    m_rows.clear();
    if (folder) {
        for (const auto& child : folder->children()) {
            if (m_limit > 0 && int(m_rows.size()) == m_limit)
                break;
            m_rows.push_back(child.get());
        }
    }
    endResetModel();
}

const FileNode* MapNodeModel::nodeAt(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? m_rows[size_t(row)] : nullptr;
}

int MapNodeModel::rowOf(const FileNode* node) const
{
    const auto found = std::find(m_rows.begin(), m_rows.end(), node);
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

void MapNodeModel::forget(const FileNode* node)
{
    const int row = rowOf(node);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void MapNodeModel::sizesChanged()
{
    if (m_rows.empty())
        return;
    emit dataChanged(index(0), index(int(m_rows.size()) - 1),
                     {int(Role::Size), int(Role::SizeText), int(Role::ItemCount), int(Role::CanDrill)});
}

void MapNodeModel::markChanged(const FileNode* node)
{
    const int row = rowOf(node);
    if (row >= 0)
        emit dataChanged(index(row), index(row), {int(Role::Marked)});
}

void MapNodeModel::marksChanged()
{
    if (!m_rows.empty())
        emit dataChanged(index(0), index(int(m_rows.size()) - 1), {int(Role::Marked)});
}

} // namespace nubo
