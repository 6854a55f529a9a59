#include "models/activity/ActivityAppList.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace nubo;

namespace {

AppUsage usage(qint32 pid, double cpu = 0)
{
    AppUsage app;
    app.pid = pid;
    app.name = QStringLiteral("App ") + QString::number(pid);
    app.cpu = cpu;
    return app;
}

QList<qint32> pids(const ActivityAppList& list)
{
    QList<qint32> out;
    for (int row = 0; row < list.rowCount(); ++row)
        out << list.data(list.index(row), int(ActivityAppList::Role::Pid)).toInt();
    return out;
}

class ActivityAppListTest : public ::testing::Test
{
protected:
    ActivityAppList m_list;
    QAbstractItemModelTester m_tester{&m_list, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy m_inserted{&m_list, &QAbstractItemModel::rowsInserted};
    QSignalSpy m_removed{&m_list, &QAbstractItemModel::rowsRemoved};
    QSignalSpy m_moved{&m_list, &QAbstractItemModel::rowsMoved};
    QSignalSpy m_changed{&m_list, &QAbstractItemModel::dataChanged};
    QSignalSpy m_reset{&m_list, &QAbstractItemModel::modelReset};
};

} // namespace

TEST_F(ActivityAppListTest, RowsFollowTheOrderAndKeepTheirIdentity)
{
    m_list.sync({usage(1), usage(2), usage(3)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{1, 2, 3}));
    const QPersistentModelIndex first(m_list.index(0));

    // WHEN 2 ends and 3 becomes the busiest THEN 2's row goes, 3's moves up and 1's row is kept.
    m_list.sync({usage(3, 40), usage(1)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{3, 1}));
    EXPECT_EQ(m_removed.count(), 1);
    EXPECT_EQ(m_moved.count(), 1);
    ASSERT_TRUE(first.isValid());
    EXPECT_EQ(first.row(), 1);
    EXPECT_DOUBLE_EQ(m_list.data(m_list.index(0), int(ActivityAppList::Role::Cpu)).toDouble(), 40.0);

    // A new app is inserted where it ranks.
    m_list.sync({usage(3, 40), usage(4, 10), usage(1)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{3, 4, 1}));
    EXPECT_EQ(m_inserted.count(), 4);

    // New figures in the same order only update rows in place.
    m_changed.clear();
    m_list.sync({usage(3, 41), usage(4, 10), usage(1, 2)});
    EXPECT_EQ(m_changed.count(), 2);
    EXPECT_EQ(m_moved.count(), 1);
    EXPECT_EQ(m_inserted.count(), 4);
    EXPECT_EQ(m_removed.count(), 1);
    EXPECT_EQ(m_reset.count(), 0);
    EXPECT_EQ(first.row(), 2);
    EXPECT_EQ(m_list.data(m_list.index(2), int(ActivityAppList::Role::App)).toMap().value(QStringLiteral("cpu")),
              QVariant(2.0));
}

TEST_F(ActivityAppListTest, AReversedListAnEmptyOneAndARepeatedIdStayConsistent)
{
    m_list.sync({usage(1), usage(2), usage(3), usage(4)});
    m_list.sync({usage(4), usage(3), usage(2), usage(1)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{4, 3, 2, 1}));

    // The same id twice keeps one row, in its first place.
    m_list.sync({usage(2), usage(5), usage(2)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{2, 5}));

    m_list.sync({});
    EXPECT_EQ(m_list.rowCount(), 0);
    EXPECT_FALSE(m_list.index(0).isValid());
}
