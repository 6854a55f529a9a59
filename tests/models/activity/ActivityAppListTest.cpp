#include "models/activity/ActivityAppList.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <tuple>

using namespace nubo;
using namespace Qt::StringLiterals;

namespace {

AppUsage usage(qint32 pid, double cpu = 0)
{
    AppUsage app;
    app.pid = pid;
    app.name = u"App "_s + QString::number(pid);
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

// Rows are moved, inserted and removed one by one, never reset, so a view keeps its place and
// selection; a row keeps its identity while its app runs.
TEST_F(ActivityAppListTest, RowsFollowTheOrderAndKeepTheirIdentity)
{
    m_list.sync({usage(1), usage(2), usage(3)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{1, 2, 3}));
    const QPersistentModelIndex first(m_list.index(0));
    // 2 ends and 3 becomes the busiest: 2's row goes, 3's moves up and 1's row is kept.
    m_list.sync({usage(3, 40), usage(1)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{3, 1}));
    EXPECT_EQ(std::tuple(m_removed.count(), m_moved.count(), first.row()), std::tuple(1, 1, 1));
    EXPECT_DOUBLE_EQ(m_list.data(m_list.index(0), int(ActivityAppList::Role::Cpu)).toDouble(), 40.0);
    // A new app is inserted where it ranks.
    m_list.sync({usage(3, 40), usage(4, 10), usage(1)});
    EXPECT_EQ(pids(m_list), (QList<qint32>{3, 4, 1}));
    EXPECT_EQ(m_inserted.count(), 4);
    // New figures in the same order only update rows in place.
    m_changed.clear();
    m_list.sync({usage(3, 41), usage(4, 10), usage(1, 2)});
    EXPECT_EQ(std::tuple(m_changed.count(), m_moved.count(), m_inserted.count(), m_removed.count(), m_reset.count()),
              std::tuple(2, 1, 4, 1, 0));
    EXPECT_EQ(first.row(), 2);
    EXPECT_EQ(m_list.data(m_list.index(2), int(ActivityAppList::Role::App)).toMap().value(u"cpu"_s), QVariant(2.0));
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
