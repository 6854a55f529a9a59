#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The sidebar's rows: one per pane, in sidebar order, with its id, title and symbol.
class PaneListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_DISABLE_COPY_MOVE(PaneListModel)

public:
    enum class Role { Id = Qt::UserRole + 1, Title, Symbol };
    Q_ENUM(Role)

    explicit PaneListModel(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
};

} // namespace nubo
