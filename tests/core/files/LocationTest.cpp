#include "core/files/Location.h"

#include "support/TempTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using nubo::test::blocksOf;

namespace {

// A temporary tree whose files are measured by the file system itself.
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
    const std::pair<const char*, const char*> cases[] = {
        {"/Users/ana", "~"},
        {"/Users/ana/Library/Caches", "~/Library/Caches"},
        {"/Users/anabel/x", "~bel/x"}, // plain text: the caller passes paths below the home only
        {"/Library/Caches", "/Library/Caches"},
        {"/Users/an", "/Users/an"},
    };
    for (const auto& [path, shown] : cases)
        EXPECT_EQ(Location::tildePath(QString::fromUtf8(path), QStringLiteral("/Users/ana")),
                  QString::fromUtf8(shown))
            << path;
}

TEST_F(LocationTest, FilesCountTheirAllocatedBlocksWhateverTheirNames)
{
    for (const QByteArray& name :
         {QByteArray("one"), QByteArray("-rf \"quoted\" back\\slash\nnew line \xc3\xb1")}) {
        const qint64 blocks = file(name, 10'000);
        EXPECT_EQ(size(name), blocks) << name.constData();
        EXPECT_GE(blocks, 10'000);
    }
    // A sparse file is long but holds almost nothing.
    const int fd = ::open(bytes("sparse").constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::ftruncate(fd, 512LL * 1024 * 1024), 0);
    ::close(fd);
    EXPECT_LT(size("sparse"), 1024 * 1024);
    // Missing items count nothing and have no date.
    EXPECT_EQ(size("absent"), 0);
    EXPECT_EQ(Location::allocatedSize(QString()), 0);
    EXPECT_EQ(Location::modificationDate(path("absent")), std::nullopt);
}

TEST_F(LocationTest, FolderSumsEverythingInsideWithoutFollowingLinks)
{
    file("tree/top", 5'000);
    file("tree/a/b/c/deep", 70'000);
    file("tree/a/empty", 0);
    file("tree/bad\xff\xfename", 4'096); // bytes that are not UTF-8 still reach the file system
    file("big", 3'000'000);
    // A link to a large file outside the folder must not bring the file's size with it, and a
    // link to a folder is not walked into either.
    link(bytes("big"), "tree/link");
    link(rootBytes(), "tree/a/loop");

    qint64 expected = 0;
    for (const char* item :
         {"tree/top", "tree/a/b/c/deep", "tree/bad\xff\xfename", "tree/link", "tree/a/loop"})
        expected += blocksOf(bytes(item));
    EXPECT_EQ(size("tree"), expected);
    EXPECT_LT(size("tree"), 1'000'000);
}

TEST_F(LocationTest, ModificationDateIsTheItemsOwn)
{
    file("dated", 10);
    const timespec times[2] = {{1'600'000'000, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, bytes("dated").constData(), times, 0), 0);
    EXPECT_EQ(Location::modificationDate(path("dated")), QDateTime::fromMSecsSinceEpoch(1'700'000'000'250LL));

    // A dangling link has a date of its own even though its target is gone.
    link("/nonexistent/target", "dangling");
    EXPECT_TRUE(Location::modificationDate(path("dangling")).has_value());
}
