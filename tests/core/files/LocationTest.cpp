#include "core/files/Location.h"

#include "support/TempTree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using nubo::test::blocksOf;
using nubo::test::TempTree;

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

// Files count their allocated blocks whatever their names, a sparse file almost nothing, a missing
// item nothing and has no date; a folder sums everything inside without following links: a link
// to a large file outside brings only itself, and a link to a folder is not walked into.
TEST(Location, SizesAreTheAllocatedBlocksOfWhatIsReallyThere)
{
    TempTree tree;
    const auto size = [&tree](const QByteArray& relative) {
        return Location::allocatedSize(tree.path(relative));
    };
    for (const QByteArray& name :
         {QByteArray("one"), QByteArray("-rf \"quoted\" back\\slash\nnew line \xc3\xb1")}) {
        const qint64 blocks = tree.file(name, 10'000);
        EXPECT_EQ(size(name), blocks) << name.constData();
        EXPECT_GE(blocks, 10'000);
    }
    const int fd = ::open(tree.bytes("sparse").constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::ftruncate(fd, 512LL * 1024 * 1024), 0);
    ::close(fd);
    EXPECT_LT(size("sparse"), 1024 * 1024);
    EXPECT_EQ(size("absent"), 0);
    EXPECT_EQ(Location::allocatedSize(QString()), 0);
    EXPECT_EQ(Location::modificationDate(tree.path("absent")), std::nullopt);

    tree.file("tree/top", 5'000);
    tree.file("tree/a/b/c/deep", 70'000);
    tree.file("tree/a/empty", 0);
    tree.file("tree/bad\xff\xfename", 4'096); // bytes that are not UTF-8 still reach the file system
    tree.file("big", 3'000'000);
    tree.link(tree.bytes("big"), "tree/link");
    tree.link(tree.rootBytes(), "tree/a/loop");
    qint64 expected = 0;
    for (const char* item :
         {"tree/top", "tree/a/b/c/deep", "tree/bad\xff\xfename", "tree/link", "tree/a/loop"})
        expected += blocksOf(tree.bytes(item));
    EXPECT_EQ(size("tree"), expected);
    EXPECT_LT(size("tree"), 1'000'000);
}

// The item's own date, to the millisecond; a dangling link has one even though its target is gone.
TEST(Location, ModificationDateIsTheItemsOwn)
{
    TempTree tree;
    tree.file("dated", 10);
    const timespec times[2] = {{1'600'000'000, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, tree.bytes("dated").constData(), times, 0), 0);
    EXPECT_EQ(Location::modificationDate(tree.path("dated")),
              QDateTime::fromMSecsSinceEpoch(1'700'000'000'250LL));
    tree.link("/nonexistent/target", "dangling");
    EXPECT_TRUE(Location::modificationDate(tree.path("dangling")).has_value());
}
