#include "models/activity/ActivityAppList.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

using namespace nubo;
using namespace Qt::StringLiterals;

namespace {

// The list as it must show: the first of a repeated id wins.
QList<AppUsage> firstOfEach(const QList<AppUsage>& apps)
{
    QList<AppUsage> out;
    for (const AppUsage& app : apps) {
        if (std::ranges::find(out, app.pid, &AppUsage::pid) == out.end())
            out << app;
    }
    return out;
}

} // namespace

// Over generated lists (apps starting, ending, changing place or figures, an id listed twice, no
// app at all) the rows read the new list with its figures, and each row stays with its app (never
// a reset), so a view keeps its place and selection. The tester checks every announced change.
TEST(ActivityAppListTest, RowsFollowEveryListInPlaceAndKeepTheirIdentity)
{
    constexpr auto Pid = int(ActivityAppList::Role::Pid);
    ActivityAppList list;
    QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::mt19937 random(2024);
    const auto figure = [&random] { return double(random() % 2 * 10); };
    QList<AppUsage> apps;
    for (int step = 0; step < 300; ++step) {
        SCOPED_TRACE(step);
        const QList<AppUsage> was = firstOfEach(apps);
        if (step % 3 == 2) { // the same list with new figures
            for (AppUsage& app : apps)
                app.cpu = figure();
        } else {
            apps.clear();
            for (qint32 pid = 1; pid <= 6; ++pid) {
                if (random() % 3 != 0)
                    apps << AppUsage{pid, {}, {}, figure()};
            }
            std::shuffle(apps.begin(), apps.end(), random);
            if (!apps.isEmpty() && random() % 4 == 0)
                apps << AppUsage{apps.first().pid, {}, {}, 99};
            if (step % 50 == 49)
                apps.clear();
        }
        const QList<AppUsage> want = firstOfEach(apps);
        QList<QPersistentModelIndex> held;
        for (int row = 0; row < list.rowCount(); ++row)
            held << QPersistentModelIndex(list.index(row));

        list.sync(apps);
        ASSERT_EQ(list.rowCount(), want.size());
        for (int row = 0; row < want.size(); ++row) {
            const QModelIndex at = list.index(row);
            EXPECT_EQ(std::pair(at.data(Pid).toInt(), at.data(int(ActivityAppList::Role::App)).toMap().value(u"cpu"_s)),
                      std::pair(want[row].pid, QVariant(want[row].cpu)));
        }
        for (int row = 0; row < held.size(); ++row) {
            const bool stays = std::ranges::find(want, was[row].pid, &AppUsage::pid) != want.end();
            EXPECT_EQ(held[row].isValid() ? held[row].data(Pid).toInt() : 0, stays ? was[row].pid : 0);
        }
    }
}
