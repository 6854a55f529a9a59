#include "models/app/PaneListModel.h"

#include "models/app/Pane.h"

namespace nubo {

PaneListModel::PaneListModel(QObject* parent) : QAbstractListModel(parent) {}

int PaneListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Panes::all.size());
}

QVariant PaneListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Pane pane = Panes::all[static_cast<size_t>(index.row())];
    switch (static_cast<Role>(role)) {
    case Role::Id:
        return Panes::id(pane);
    case Role::Title:
        return Panes::title(pane);
    case Role::Symbol:
        return Panes::symbol(pane);
    }
    return {};
}

QHash<int, QByteArray> PaneListModel::roleNames() const
{
    static const QHash<int, QByteArray> names{
        {static_cast<int>(Role::Id), "paneId"},
        {static_cast<int>(Role::Title), "title"},
        {static_cast<int>(Role::Symbol), "symbol"},
    };
    return names;
}

} // namespace nubo
