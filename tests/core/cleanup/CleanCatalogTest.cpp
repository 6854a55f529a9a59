#include "core/cleanup/CleanCatalog.h"

#include "core/cleanup/CleanGroup.h"
#include "core/cleanup/CleanItem.h"
#include "support/FixtureFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;

// The screen restores a heading from its title: every title must lead back to its group, exactly.
TEST(CleanGroups, TitleLeadsBackToItsGroupAndCaseMatters)
{
    for (CleanGroup group : CleanGroups::all()) {
        EXPECT_EQ(CleanGroups::fromTitle(CleanGroups::title(group)), group);
        EXPECT_FALSE(CleanGroups::fromTitle(CleanGroups::title(group).toLower()));
    }
    EXPECT_FALSE(CleanGroups::fromTitle(QString()));
}

TEST(CleanCatalog, RowsComeInOneBlockPerGroupAndOnlyUnselectedRowsWarn)
{
    int lastGroup = 0;
    for (const CleanCategory& category : CleanCatalog::rows()) {
        SCOPED_TRACE(category.id.toStdString());
        // One block per group, in the groups' order, so the screen can cut the list.
        EXPECT_GE(static_cast<int>(category.group), lastGroup);
        lastGroup = static_cast<int>(category.group);
        EXPECT_FALSE(category.title.isEmpty() || category.subtitle.isEmpty() || category.symbol.isEmpty());
        // A row that warns is never pre-selected; installers are the one quiet unselected row.
        EXPECT_EQ(category.caution.has_value(),
                  !category.selectedByDefault && category.id != QLatin1String("installers"));
        ASSERT_TRUE(category.scan);
        EXPECT_TRUE(category.scan().isEmpty()); // rows alone find nothing until rules are bound
    }
}

TEST(CleanItem, PathItemMeasuresTheAllocatedSizeOfTheWholeTreeAndShowsTheTildePath)
{
    QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("Library/Caches/com.acme.writer"));
    const qint64 written = test::writeFile(folder + QStringLiteral("/a"), 5000) +
                           test::writeFile(folder + QStringLiteral("/inner/b"), 70'000);
    // A sparse file is long but holds almost no blocks: its length must not count.
    QFile sparse(folder + QStringLiteral("/sparse"));
    ASSERT_TRUE(sparse.open(QIODevice::WriteOnly) && sparse.resize(50 * 1024 * 1024));
    sparse.close();

    const CleanItem item = CleanItem::atPath(folder + QLatin1Char('/'), home.path());
    EXPECT_EQ(item.name, QStringLiteral("com.acme.writer"));
    EXPECT_EQ(item.detail, QStringLiteral("~/Library/Caches/com.acme.writer/"));
    EXPECT_EQ(item.size, written + test::blocksOf(sparse.fileName()));
    EXPECT_EQ(item.url(), folder + QLatin1Char('/'));

    // A path that has gone measures nothing and keeps its path.
    const CleanItem gone =
        CleanItem::atPath(QStringLiteral("/nonexistent/nubo/thing/"), QStringLiteral("/home/x"));
    EXPECT_EQ(gone.size, 0);
    EXPECT_EQ(gone.name, QStringLiteral("thing"));
    EXPECT_EQ(gone.url(), QStringLiteral("/nonexistent/nubo/thing/"));
    // A command item has no path that could be removed or revealed.
    EXPECT_FALSE(
        CleanItem(QStringLiteral("docker"), {}, {}, 1, CleanItem::Command{QStringLiteral("docker"), {}})
            .url());
}
