#include "models/activity/ActivityAppList.h"

#include "models/activity/ActivityModel.h"

#include <QSet>
#include <QVariantMap>

namespace nubo {

ActivityAppList::ActivityAppList(QObject* parent) : QAbstractListModel(parent) {}

void ActivityAppList::setActivity(ActivityModel* activity)
{
    if (activity == m_activity)
        return;
    if (m_activity)
        disconnect(m_activity, nullptr, this, nullptr);
    m_activity = activity;
    if (m_activity)
        connect(m_activity, &ActivityModel::sortedChanged, this, [this] { sync(m_activity->sorted()); });
    sync(m_activity ? m_activity->sorted() : QList<AppUsage>{});
    emit activityChanged();
}

int ActivityAppList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ActivityAppList::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const AppUsage& app = m_rows.at(index.row());
    switch (Role(role)) {
    case Role::Pid:
        return app.pid;
    case Role::Name:
        return app.name;
    case Role::BundleUrl:
        return app.bundleURL;
    case Role::Cpu:
        return app.cpu;
    case Role::Memory:
        return app.memory;
    case Role::IsHidden:
        return app.isHidden;
    case Role::IsActive:
        return app.isActive;
    case Role::App:
        return ActivityModel::appMap(app);
    }
    return {};
}

QHash<int, QByteArray> ActivityAppList::roleNames() const
{
    static const QHash<int, QByteArray> names{{int(Role::Pid), "pid"},
                                              {int(Role::Name), "name"},
                                              {int(Role::BundleUrl), "bundleURL"},
                                              {int(Role::Cpu), "cpu"},
                                              {int(Role::Memory), "memory"},
                                              {int(Role::IsHidden), "isHidden"},
                                              {int(Role::IsActive), "isActive"},
                                              {int(Role::App), "app"}};
    return names;
}

qsizetype ActivityAppList::rowOf(qint32 pid, qsizetype from) const
{
    for (qsizetype row = from; row < m_rows.size(); ++row) {
        if (m_rows.at(row).pid == pid)
            return row;
    }
    return -1;
}

void ActivityAppList::sync(const QList<AppUsage>& apps)
{
    QSet<qint32> wanted;
    for (const AppUsage& app : apps)
        wanted.insert(app.pid);
    // A process id listed twice would make rows ambiguous; the workspace never does, but the
    // first one wins if it ever did.
    QSet<qint32> placed;

    for (qsizetype row = m_rows.size() - 1; row >= 0; --row) {
        if (!wanted.contains(m_rows.at(row).pid)) {
            beginRemoveRows({}, int(row), int(row));
            m_rows.removeAt(row);
            endRemoveRows();
        }
    }

    qsizetype target = 0;
    for (const AppUsage& app : apps) {
        if (placed.contains(app.pid))
            continue;
        placed.insert(app.pid);
        const qsizetype found = rowOf(app.pid, target);
        if (found < 0) {
            beginInsertRows({}, int(target), int(target));
            m_rows.insert(target, app);
            endInsertRows();
        } else {
            if (found != target) {
                // Moving a row up: the destination is the row it goes before.
                beginMoveRows({}, int(found), int(found), {}, int(target));
                m_rows.move(found, target);
                endMoveRows();
            }
            if (!(m_rows.at(target) == app)) {
                m_rows[target] = app;
                emit dataChanged(index(int(target)), index(int(target)));
            }
        }
        ++target;
    }
}

} // namespace nubo
