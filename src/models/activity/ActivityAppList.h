#pragma once

#include "core/activity/AppUsage.h"
#include "models/activity/ActivityModel.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace nubo {

/// The activity model's `sorted` applications as rows that keep their identity across refreshes:
/// an application that stays open keeps its row (moved when the order changes, its figures
/// updated in place), so a table's row under the pointer is not rebuilt every two seconds and a
/// click on its buttons is never lost. Rows are keyed by process id.
class ActivityAppList : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_DISABLE_COPY_MOVE(ActivityAppList)
    Q_PROPERTY(ActivityModel* activity READ activity WRITE setActivity NOTIFY activityChanged)

public:
    enum class Role
    {
        Pid = Qt::UserRole + 1,
        Name,
        BundleUrl,
        Cpu,
        Memory,
        IsHidden,
        IsActive,
        App, ///< the whole record as a map, for the actions
    };
    Q_ENUM(Role)

    explicit ActivityAppList(QObject* parent = nullptr);

    [[nodiscard]] ActivityModel* activity() const { return m_activity; }
    void setActivity(ActivityModel* activity);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Brings the rows to `apps` with the fewest row signals: rows of ended applications are
    /// removed, new ones inserted, the others moved into place and refreshed.
    void sync(const QList<AppUsage>& apps);

signals:
    void activityChanged();

private:
    [[nodiscard]] qsizetype rowOf(qint32 pid, qsizetype from) const;

    QPointer<ActivityModel> m_activity;
    QList<AppUsage> m_rows;
};

} // namespace nubo
