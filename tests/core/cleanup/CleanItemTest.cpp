#include "core/cleanup/CleanItem.h"

#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;

using nubo::test::blocksOf;
using nubo::test::writeFile;

TEST(CleanItem, PathItemMeasuresTheAllocatedSizeOfTheWholeTree)
{
    QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("Library/Caches/com.acme.writer"));
    ASSERT_TRUE(QDir().mkpath(folder + QStringLiteral("/inner")));
    writeFile(folder + QStringLiteral("/a"), 5000);
    writeFile(folder + QStringLiteral("/inner/b"), 70'000);
    // A sparse file: long, but holding almost no blocks. Its logical length must not count.
    const QString sparse = folder + QStringLiteral("/sparse");
    {
        QFile file(sparse);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(50 * 1024 * 1024));
    }
    const qint64 expected = blocksOf(folder + QStringLiteral("/a")) +
                            blocksOf(folder + QStringLiteral("/inner/b")) + blocksOf(sparse);

    const CleanItem item = CleanItem::atPath(folder, home.path());
    EXPECT_EQ(item.id, folder);
    EXPECT_EQ(item.name, QStringLiteral("com.acme.writer"));
    EXPECT_EQ(item.detail, QStringLiteral("~/Library/Caches/com.acme.writer"));
    EXPECT_EQ(item.size, expected);
    EXPECT_LT(item.size, 50 * 1024 * 1024);
    EXPECT_EQ(item.url(), folder);
    EXPECT_FALSE(item.subtitle);
    EXPECT_FALSE(item.appURL);

    const CleanItem given = CleanItem::atPath(folder, home.path(), QStringLiteral("Writer"), 7);
    EXPECT_EQ(given.name, QStringLiteral("Writer"));
    EXPECT_EQ(given.size, 7);
}

TEST(CleanItem, MissingPathMeasuresZeroAndKeepsItsPath)
{
    const CleanItem item =
        CleanItem::atPath(QStringLiteral("/nonexistent/nubo/thing/"), QStringLiteral("/home/x"));
    EXPECT_EQ(item.size, 0);
    EXPECT_EQ(item.name, QStringLiteral("thing"));
    EXPECT_EQ(item.url(), QStringLiteral("/nonexistent/nubo/thing/"));
}

TEST(CleanItem, CommandHasNoUrl)
{
    const CleanItem item(
        QStringLiteral("docker"), QStringLiteral("Docker"), QString(), 100,
        CleanItem::Command{QStringLiteral("docker"),
                           {QStringLiteral("system"), QStringLiteral("prune"), QStringLiteral("-a")}});
    EXPECT_FALSE(item.url());
}

TEST(CleanItem, EqualityAndHashCoverEveryFieldWhileTheIdStaysThePath)
{
    const CleanItem a(QStringLiteral("/p"), QStringLiteral("p"), QStringLiteral("/p"), 10,
                      CleanItem::Remove{QStringLiteral("/p")});
    CleanItem b = a;
    EXPECT_EQ(a, b);
    EXPECT_EQ(qHash(a), qHash(b));
    b.size = 11;
    EXPECT_NE(a, b);
    EXPECT_EQ(a.id, b.id);

    CleanItem c = a;
    c.subtitle = QString(); // present but empty differs from absent
    EXPECT_NE(a, c);
    CleanItem d = a;
    d.action = CleanItem::Command{QStringLiteral("/p"), {}};
    EXPECT_NE(a, d);

    const QSet<CleanItem> set{a, b, c, d, a};
    EXPECT_EQ(set.size(), 4);
}
