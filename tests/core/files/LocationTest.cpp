#include "core/files/Location.h"

#include "support/TempTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using nubo::test::blocksOf;

namespace {

// A temporary tree; its files are written by relative paths, measured by the file system itself.
class LocationTest : public ::testing::Test, protected nubo::test::TempTree
{
protected:
    [[nodiscard]] qint64 size(const QByteArray& relative) const
    {
        return Location::allocatedSize(path(relative));
    }
};

} // namespace

TEST(TildePath, ReplacesTheHomePrefixAsPlainText)
{
    const QString home = QStringLiteral("/Users/ana");
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/ana"), home), QStringLiteral("~"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/ana/Library/Caches"), home),
              QStringLiteral("~/Library/Caches"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/anabel/x"), home), QStringLiteral("~bel/x"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Library/Caches"), home),
              QStringLiteral("/Library/Caches"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/an"), home), QStringLiteral("/Users/an"));
}

TEST_F(LocationTest, FileCountsItsAllocatedBlocks)
{
    const qint64 blocks = file("one", 10'000);
    EXPECT_EQ(size("one"), blocks);
    EXPECT_GE(size("one"), 10'000);
}

TEST_F(LocationTest, FolderSumsEverythingInsideWithoutFollowingLinks)
{
    file("tree/top", 5'000);
    file("tree/a/b/c/deep", 70'000);
    file("tree/a/empty", 0);
    file("big", 3'000'000);
    // A link to a large file outside the folder must not bring the file's size with it, and a
    // link to a folder is not walked into either.
    link(bytes("big"), "tree/link");
    link(rootBytes(), "tree/a/loop");

    const qint64 expected = blocksOf(bytes("tree/top")) + blocksOf(bytes("tree/a/b/c/deep")) +
                            blocksOf(bytes("tree/link")) + blocksOf(bytes("tree/a/loop"));
    EXPECT_EQ(size("tree"), expected);
    EXPECT_LT(size("tree"), 1'000'000);
}

TEST_F(LocationTest, SparseFileCountsOnlyWhatIsAllocated)
{
    const int fd = open(bytes("sparse").constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, 512LL * 1024 * 1024), 0);
    close(fd);
    EXPECT_LT(size("sparse"), 1024 * 1024);
}

TEST_F(LocationTest, MissingItemsCountNothing)
{
    EXPECT_EQ(size("absent"), 0);
    EXPECT_EQ(Location::allocatedSize(QString()), 0);
    EXPECT_EQ(Location::modificationDate(path("absent")), std::nullopt);
}

TEST_F(LocationTest, OddNamesAreMeasured)
{
    const QByteArray odd = "-rf \"quoted\" back\\slash\nnew line \xc3\xb1";
    const qint64 blocks = file(odd, 4'096);
    EXPECT_EQ(size(odd), blocks);

    // A name whose bytes are not UTF-8 still reaches the file system intact.
    file("bad\xff\xfename", 10);
    EXPECT_GT(Location::allocatedSize(root()), blocks);
}

TEST_F(LocationTest, ModificationDateIsTheItemsOwn)
{
    file("dated", 10);
    const timespec times[2] = {{1'600'000'000, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, bytes("dated").constData(), times, 0), 0);
    EXPECT_EQ(Location::modificationDate(path("dated")), QDateTime::fromMSecsSinceEpoch(1'700'000'000'250LL));

    // A dangling link has a date of its own even though its target is gone.
    link("/nonexistent/target", "dangling");
    EXPECT_TRUE(Location::modificationDate(path("dangling")).has_value());
}
