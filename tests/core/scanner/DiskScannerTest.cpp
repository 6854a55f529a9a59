#include "core/scanner/DiskScanner.h"

#include "core/files/NativePath.h"
#include "core/privacy/Privacy.h"
#include "support/OrdinaryUser.h"
#include "support/TempTree.h"

#include <QDir>
#include <QFile>
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

using nubo::DiskScanner;
using nubo::FileNode;
using nubo::ScanProgress;
using nubo::test::blocksOf;
using nubo::test::TempTree;

namespace {

constexpr qint64 MiB = 1 << 20;

// The node whose path ends in `suffix`, searched depth first; null when none.
const FileNode* find(const FileNode& node, const QString& suffix)
{
    if (node.path().endsWith(suffix) && !node.isAggregate())
        return &node;
    for (const auto& child : node.children()) {
        if (const FileNode* hit = find(*child, suffix))
            return hit;
    }
    return nullptr;
}

// The invariants of a scanned tree at every level: sizes add up (collapsed folders keep theirs),
// children largest first, parent links right.
void expectConsistent(const FileNode& node)
{
    if (node.children().empty())
        return;
    qint64 sum = 0;
    qint64 files = 0;
    qint64 previous = node.children().front()->size();
    for (const auto& child : node.children()) {
        EXPECT_EQ(child->parent(), &node) << child->path().toStdString();
        EXPECT_LE(child->size(), previous) << "children of " << node.path().toStdString() << " out of order";
        previous = child->size();
        sum += child->size();
        files += child->fileCount();
        expectConsistent(*child);
    }
    EXPECT_EQ(node.size(), sum) << node.path().toStdString();
    EXPECT_EQ(node.fileCount(), files) << node.path().toStdString();
}

DiskScanner::Services servicesWith(int helpers)
{
    DiskScanner::Services services;
    services.helpers = helpers;
    return services;
}

std::unique_ptr<FileNode> scan(const QString& root, const DiskScanner::Services& services)
{
    DiskScanner scanner(services);
    ScanProgress progress;
    return scanner.scan(root, progress);
}

std::unique_ptr<FileNode> scan(const QString& root, int helpers = 2)
{
    return scan(root, servicesWith(helpers));
}

QStringList childNames(const FileNode& node)
{
    QStringList names;
    for (const auto& child : node.children())
        names << child->name();
    return names;
}

// Every name and size of a tree, in order, so two scans can be compared whole.
QString shapeOf(const FileNode& node)
{
    QString text = node.name() + QLatin1Char(':') + QString::number(node.size()) + QLatin1Char('(');
    for (const auto& child : node.children())
        text += shapeOf(*child);
    return text + QLatin1Char(')');
}

} // namespace

TEST(DiskScanner, SameTreeWithSizesThatAddUpWhateverTheNumberOfThreads)
{
    // A home-like tree with files on both sides of the floor at every depth, a big folder and a
    // small one at depth 1, deep walks below them, and a wide grid that the helpers share.
    TempTree tree;
    tree.file("top-small.txt", 10'000);
    tree.file("top-big.bin", 3 * MiB);
    tree.file("Library/prefs.plist", 5'000);
    tree.file("Library/Caches/blob-1", 2 * MiB);
    tree.file("Library/Caches/blob-2", 100);
    tree.file("Library/Caches/com.x/a/b/c/huge", 6 * MiB);
    tree.file("Library/Caches/com.x/a/b/c/tiny", 1);
    tree.file("Library/Caches/com.x/a/small", 50'000);
    tree.file("Library/Empty/.keep", 0);
    tree.dir("Library/Empty/Nothing");
    tree.file("Documents/notes.md", 3'000);
    tree.file("Documents/deep/er/still/movie.mov", 4 * MiB);
    tree.file("Small/one", 70'000);
    tree.file("Small/two/three", 70'000);
    for (int i = 0; i < 12; ++i) {
        for (int j = 0; j < 6; ++j) {
            const QByteArray sub = "t" + QByteArray::number(i) + "/s" + QByteArray::number(j);
            tree.file(sub + "/deep/f", (i * 7 + j) * 300'000);
            tree.file(sub + "/g", 4'000);
        }
    }

    QString serial;
    for (int helpers : {0, 1, 3, 3, 3, 3}) {
        SCOPED_TRACE(testing::Message() << "helpers " << helpers);
        DiskScanner scanner(servicesWith(helpers));
        ScanProgress progress;
        const auto root = scanner.scan(tree.root(), progress);
        expectConsistent(*root);
        EXPECT_EQ(root->size(), tree.expectedBytes());
        EXPECT_EQ(root->fileCount(), tree.fileCount());
        EXPECT_EQ(progress.snapshot().files, tree.fileCount());
        EXPECT_EQ(progress.snapshot().bytes, tree.expectedBytes());
        if (serial.isEmpty())
            serial = shapeOf(*root);
        EXPECT_EQ(shapeOf(*root), serial);
        if (helpers > 0)
            continue;

        EXPECT_EQ(root->name(), QDir(tree.root()).dirName());
        EXPECT_FALSE(root->parent());
        // Files at or above the floor stay single nodes, wherever they are.
        const FileNode* huge = find(*root, QStringLiteral("/com.x/a/b/c/huge"));
        ASSERT_TRUE(huge);
        EXPECT_EQ(huge->size(), blocksOf(tree.rootBytes() + "/Library/Caches/com.x/a/b/c/huge"));
        EXPECT_EQ(huge->itemCount(), 1);
        EXPECT_FALSE(huge->isDirectory());
        EXPECT_TRUE(find(*root, QStringLiteral("/Caches/blob-1"))) << "a file of exactly 2 MiB is not small";
        EXPECT_TRUE(find(*root, QStringLiteral("/top-big.bin")));
    }
}

TEST(DiskScanner, SmallFilesBecomeOneAggregateAndSmallFoldersCollapseBelowTheRoot)
{
    TempTree tree;
    tree.file("Many/a", 1'000);
    tree.file("Many/b", 2'000);
    tree.file("Many/c", 0);
    tree.file("Many/Deeper/x/y", 100);
    tree.file("Many/Deeper/x/z", 100);
    tree.file("Many/Big", 5 * MiB);
    tree.file("root-small", 10);
    tree.file("Three/a", 1'500'000);
    tree.file("Three/b", 1'500'000);
    tree.file("Three/sub/c", 100'000);
    tree.file("Deep/x/y/z/file", 3 * MiB);
    tree.file("Deep/x/y/z/other", 3 * MiB);

    const auto root = scan(tree.root());
    const auto& rootChildren = root->children();
    const auto aggregate = std::find_if(rootChildren.begin(), rootChildren.end(),
                                        [](const auto& c) { return c->isAggregate(); });
    ASSERT_NE(aggregate, rootChildren.end());
    EXPECT_EQ((*aggregate)->name(), QStringLiteral("1 archivo pequeño"));
    EXPECT_EQ((*aggregate)->path(), tree.root());
    EXPECT_EQ((*aggregate)->itemCount(), 1);
    EXPECT_EQ((*aggregate)->size(), blocksOf(tree.rootBytes() + "/root-small"));
    EXPECT_EQ(DiskScanner::aggregateName(1234), QStringLiteral("1234 archivos pequeños"));

    // Many stays open for its big file; equal sizes keep folders before the aggregate (both hold
    // two 4 KiB blocks here).
    const FileNode* many = find(*root, QStringLiteral("/Many"));
    ASSERT_TRUE(many);
    EXPECT_EQ(childNames(*many), (QStringList{QStringLiteral("Big"), QStringLiteral("Deeper"),
                                              QStringLiteral("3 archivos pequeños")}));
    EXPECT_EQ(many->itemCount(), 6);

    // A folder below the root under 4 MiB keeps no children, however many files it holds.
    const FileNode* three = find(*root, QStringLiteral("/Three"));
    ASSERT_TRUE(three);
    EXPECT_TRUE(three->children().empty());
    EXPECT_GT(three->size(), 3'000'000);
    EXPECT_EQ(three->itemCount(), 3);

    // Deep in the walk a folder of 6 MiB stays open.
    const FileNode* z = find(*root, QStringLiteral("/Deep/x/y/z"));
    ASSERT_TRUE(z);
    EXPECT_EQ(z->children().size(), 2u);

    // As the root of a scan the same small folder opens; a trailing slash does not empty its name.
    const auto scope = scan(tree.root() + QStringLiteral("/Three/"));
    EXPECT_EQ(scope->name(), QStringLiteral("Three"));
    EXPECT_EQ(scope->path(), tree.root() + QStringLiteral("/Three"));
    EXPECT_EQ(scope->size(), three->size());
    EXPECT_EQ(childNames(*scope).size(), 2); // sub and the aggregate of a and b
}

TEST(DiskScanner, PackagesAreSingleBlocksAndSymbolicLinksAddNothing)
{
    TempTree tree;
    const qint64 inDeep = tree.file("Code/x/Tool.app/Contents/MacOS/tool", 5 * MiB) +
                          tree.file("Code/x/Tool.app/Contents/Info.plist", 2'000) +
                          tree.file("Code/x/Tool.app/Contents/Frameworks/Lib.framework/lib", 3 * MiB);
    const qint64 atTop = tree.file("Editor.app/Contents/big", 6 * MiB) + tree.file("Editor.app/small", 10);
    tree.file("Code/x/Shout.APP/inside/big", 5 * MiB); // extensions match exactly
    tree.file("Data/big", 8 * MiB);
    tree.dir("Links/deeper");
    tree.link(tree.rootBytes() + "/Data/big", "to-big");
    tree.link(tree.rootBytes() + "/Data", "Links/to-data");
    tree.link(tree.rootBytes() + "/Data/big", "Links/deeper/to-big");
    tree.link("/nowhere/at/all", "Links/deeper/broken");
    tree.link(tree.rootBytes(), "Links/deeper/loop");

    const auto root = scan(tree.root());
    expectConsistent(*root);
    EXPECT_EQ(root->size(), tree.expectedBytes());
    EXPECT_EQ(root->fileCount(), tree.fileCount());
    EXPECT_FALSE(find(*root, QStringLiteral("/to-big")));
    const FileNode* links = find(*root, QStringLiteral("/Links"));
    ASSERT_TRUE(links);
    EXPECT_EQ(links->size(), 0);
    EXPECT_EQ(links->fileCount(), 0);
    EXPECT_EQ(links->itemCount(), 1); // a folder counts at least one
    for (const auto& [suffix, bytes] :
         {std::pair{QStringLiteral("/Tool.app"), inDeep}, std::pair{QStringLiteral("/Editor.app"), atTop}}) {
        const FileNode* package = find(*root, suffix);
        ASSERT_TRUE(package) << suffix.toStdString();
        EXPECT_TRUE(package->isPackage());
        EXPECT_TRUE(package->isDirectory());
        EXPECT_TRUE(package->children().empty());
        EXPECT_EQ(package->size(), bytes);
    }
    EXPECT_EQ(find(*root, QStringLiteral("/Tool.app"))->itemCount(), 3);
    const FileNode* shout = find(*root, QStringLiteral("/Shout.APP"));
    ASSERT_TRUE(shout);
    EXPECT_FALSE(shout->isPackage());
    EXPECT_TRUE(shout->canDrill());
}

TEST(DiskScanner, RootNamesPackagesAndVolumesFollowTheSystemsAnswersBesideTheWholeDisk)
{
    TempTree tree;
    tree.file("Odd.bundle/a", 5 * MiB);
    tree.file("Plain/b", 5 * MiB);
    tree.file("Mounted/c", 5 * MiB);
    DiskScanner::Services services;
    services.isPackage = [](const QString& path) { return path.endsWith(QLatin1String("/Plain")); };
    services.isVolume = [](const QString& path) { return path.endsWith(QLatin1String("/Mounted")); };
    services.displayName = [](const QString& path) {
        return QStringLiteral("Inicio de ") + QDir(path).dirName();
    };
    const auto root = scan(tree.root(), services);
    EXPECT_EQ(root->name(), QStringLiteral("Inicio de ") + QDir(tree.root()).dirName());
    EXPECT_TRUE(find(*root, QStringLiteral("/Plain"))->isPackage());
    EXPECT_FALSE(find(*root, QStringLiteral("/Odd.bundle"))->isPackage());
    EXPECT_FALSE(find(*root, QStringLiteral("/Mounted")));
    EXPECT_EQ(root->size(), tree.expectedBytes() - blocksOf(tree.rootBytes() + "/Mounted/c"));

    // The whole disk is "Macintosh HD" without asking. Everything below "/" is gated except the
    // mount points of other file systems, which the scanner must leave alone on its own.
    DiskScanner::Services whole;
    whole.isGated = [](const QString& path) {
        return path != QLatin1String("/") && path != QLatin1String("/proc") && path != QLatin1String("/sys");
    };
    whole.displayName = [](const QString&) { return QStringLiteral("never asked for the disk"); };
    const auto disk = scan(QStringLiteral("/"), whole);
    EXPECT_EQ(disk->name(), QStringLiteral("Macintosh HD"));
    EXPECT_EQ(disk->path(), QStringLiteral("/"));
    struct stat rootInfo = {}, procInfo = {};
    ASSERT_EQ(::stat("/", &rootInfo), 0);
    if (::stat("/proc", &procInfo) != 0 || procInfo.st_dev == rootInfo.st_dev)
        GTEST_SKIP() << "/proc is not another file system here";
    for (const auto& child : disk->children())
        EXPECT_FALSE(child->isDirectory()) << child->path().toStdString();
}

TEST(DiskScanner, SkipPathsAndTheGateAreNeverEntered)
{
    TempTree tree;
    tree.file("Library/Mail/big", 5 * MiB);
    tree.file("Library/Keep/big", 5 * MiB);
    tree.file("Library/Keep/deep/Secret/big", 5 * MiB);
    tree.file("Library/Keep/deep/Skip/big", 5 * MiB);
    tree.file("Skipped/big", 5 * MiB);
    tree.file("sleepimage", 5 * MiB);                      // files can be skipped too, at the top…
    tree.file("Library/Keep/deep/vm/sleepimage", 5 * MiB); // …and in the deep walk
    tree.file("Library/Keep/deep/vm/swapfile", 1'000);
    const QString root = tree.root();

    std::mutex lock;
    QStringList asked;
    DiskScanner::Services services;
    services.skipPaths = {root + QStringLiteral("/Skipped"), root + QStringLiteral("/Library/Keep/deep/Skip"),
                          root + QStringLiteral("/sleepimage"),
                          root + QStringLiteral("/Library/Keep/deep/vm/sleepimage")};
    services.isGated = [&](const QString& path) {
        const std::lock_guard guard(lock);
        asked << path;
        return path.endsWith(QLatin1String("/Mail")) || path.endsWith(QLatin1String("/Secret"));
    };
    DiskScanner scanner(services);
    ScanProgress progress;
    const auto node = scanner.scan(root, progress);
    expectConsistent(*node);
    EXPECT_EQ(node->size(), blocksOf(tree.rootBytes() + "/Library/Keep/big") +
                                blocksOf(tree.rootBytes() + "/Library/Keep/deep/vm/swapfile"));
    for (const char* absent : {"/Mail", "/Skipped", "/Secret", "/Skip", "/sleepimage"})
        EXPECT_FALSE(find(*node, QString::fromLatin1(absent))) << absent;
    EXPECT_EQ(progress.snapshot().files, 2);
    // The gate is asked for every folder reached, at the top and in the deep walk.
    for (const char* folder :
         {"/Library", "/Library/Keep", "/Library/Mail", "/Library/Keep/deep", "/Library/Keep/deep/Secret"})
        EXPECT_TRUE(asked.contains(root + QString::fromUtf8(folder))) << folder;

    // A gated root is a folder of nothing.
    DiskScanner::Services all;
    all.isGated = [](const QString&) { return true; };
    const auto gated = scan(root, all);
    EXPECT_EQ(gated->size(), 0);
    EXPECT_EQ(gated->itemCount(), 1);
    EXPECT_TRUE(gated->children().empty());
    EXPECT_TRUE(gated->isDirectory());

    // The production gate: without Full Disk Access the guarded folders are left alone.
    nubo::Privacy withoutAccess(root, [] { return false; });
    ScanProgress again;
    EXPECT_EQ(DiskScanner(withoutAccess).scan(root, again)->size(),
              tree.expectedBytes() - blocksOf(tree.rootBytes() + "/Library/Mail/big"));
}

TEST(DiskScanner, CancellingStopsAtAFolderBoundaryWithAPartialTree)
{
    TempTree tree;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 30; ++j)
            tree.file("Top/s" + QByteArray::number(i) + "/d" + QByteArray::number(j) + "/big", 3 * MiB);

    // The gate is asked once per folder, so it serves as the hook that cancels mid-walk.
    ScanProgress progress;
    std::atomic<int> asked{0};
    std::atomic<int> askedAfterCancel{0};
    DiskScanner::Services services;
    services.helpers = 0;
    services.isGated = [&](const QString&) {
        if (progress.isCancelled())
            ++askedAfterCancel;
        if (++asked == 40)
            progress.cancel();
        return false;
    };
    DiskScanner scanner(services);
    const auto partial = scanner.scan(tree.root(), progress);
    expectConsistent(*partial);
    EXPECT_TRUE(progress.isCancelled());
    EXPECT_GT(partial->size(), 0);
    EXPECT_LT(partial->size(), tree.expectedBytes());
    EXPECT_EQ(askedAfterCancel.load(), 0); // no folder is entered once the cancel is seen
    // Every folder in the partial tree is whole: a file node never stands for half a folder.
    EXPECT_EQ(partial->size() % blocksOf(tree.rootBytes() + "/Top/s0/d0/big"), 0);

    // Cancelled before it starts: the root's own entries are listed and nothing below.
    ScanProgress early;
    early.cancel();
    DiskScanner plain(servicesWith(2));
    const auto nothing = plain.scan(tree.root(), early);
    EXPECT_TRUE(nothing->children().empty());
    EXPECT_EQ(nothing->size(), 0);
}

TEST(DiskScanner, AFolderThatVanishesDuringTheScanCountsNothing)
{
    TempTree tree;
    tree.file("Keep/big", 5 * MiB);
    tree.file("Keep/Vanishing/inner/big", 5 * MiB);     // listed at the top, gone by its walk
    tree.file("Top/deep/Vanishing/inner/big", 5 * MiB); // met inside a deep walk
    const QString root = tree.root();
    DiskScanner::Services services;
    services.helpers = 0;
    services.isGated = [&](const QString& path) {
        if (path.endsWith(QLatin1String("/Vanishing")))
            QDir(path).removeRecursively();
        return false;
    };
    const auto node = scan(root, services);
    expectConsistent(*node);
    EXPECT_EQ(node->size(), blocksOf(tree.rootBytes() + "/Keep/big"));
    EXPECT_EQ(node->size(), tree.expectedBytes());
}

TEST(DiskScanner, UnreadableFoldersCountAsEmpty)
{
    TempTree tree;
    tree.file("Open/big", 5 * MiB);
    tree.file("Closed/big", 5 * MiB);           // listed at depth 1
    tree.file("Open/deep/big", 5 * MiB);        // keeps deep open, so Closed shows
    tree.file("Open/deep/Closed/big", 5 * MiB); // met in the deep walk
    tree.file("Open/deep/Closed/more/big", 5 * MiB);
    ::chmod(tree.rootBytes() + "/Closed", 0);
    ::chmod(tree.rootBytes() + "/Open/deep/Closed", 0);

    const QString root = tree.root();
    const QByteArray answer = nubo::test::runUnprivileged([&root] {
        const auto node = scan(root, 0);
        const FileNode* closed = find(*node, QStringLiteral("/Open/deep/Closed"));
        return QByteArray::number(node->size()) + ' ' + QByteArray::number(closed ? closed->size() : -1) +
               ' ' + QByteArray::number(node->fileCount());
    });
    ::chmod(tree.rootBytes() + "/Closed", 0755);
    ::chmod(tree.rootBytes() + "/Open/deep/Closed", 0755);
    const QList<QByteArray> parts = answer.split(' ');
    ASSERT_EQ(parts.size(), 3) << answer.constData();
    EXPECT_EQ(parts[0].toLongLong(),
              blocksOf(tree.rootBytes() + "/Open/big") + blocksOf(tree.rootBytes() + "/Open/deep/big"));
    EXPECT_EQ(parts[1].toLongLong(), 0); // present, empty
    EXPECT_EQ(parts[2].toLongLong(), 2);
}

TEST(DiskScanner, AChainOfTwoThousandNestedFolders)
{
    TempTree tree;
    // Built with mkdirat from a descriptor, one level at a time, like any deep tree on disk.
    int fd = ::open(tree.rootBytes().constData(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::mkdirat(fd, "chain", 0755), 0);
    int level = ::openat(fd, "chain", O_RDONLY | O_DIRECTORY);
    ::close(fd);
    const int depth = 2000;
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(level, "d", 0755), 0);
        const int next = ::openat(level, "d", O_RDONLY | O_DIRECTORY);
        ::close(level);
        level = next;
        ASSERT_GE(level, 0);
    }
    const int file = ::openat(level, "bottom", O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(file, 0);
    ASSERT_TRUE(nubo::test::fill(file, 5 * MiB));
    struct stat info = {};
    ::fstat(file, &info);
    ::close(file);
    ::close(level);

    const auto root = scan(tree.root());
    expectConsistent(*root);
    EXPECT_EQ(root->size(), static_cast<qint64>(info.st_blocks) * 512);
    // Every folder on the chain holds 5 MiB, so none collapses and the file is a node at the end.
    const FileNode* node = root.get();
    int levels = 0;
    while (!node->children().empty()) {
        node = node->children().front().get();
        ++levels;
    }
    EXPECT_EQ(levels, depth + 2); // chain, 2,000 × d, bottom
    EXPECT_EQ(node->name(), QStringLiteral("bottom"));
}

TEST(DiskScanner, NamesThatAreNotUtf8KeepAPathThatReachesTheFile)
{
    TempTree tree;
    const QByteArray latin1Folder = "Caf\xe9";        // "Café" written in Latin-1
    const QByteArray brokenFile = "clip\xff\xfe.mov"; // two bytes that never occur in UTF-8
    const qint64 big = tree.file(latin1Folder + "/deep/" + brokenFile, 3 * MiB);
    tree.file(latin1Folder + "/deep/clip\xff\xfd.mov", 3 * MiB); // differs only in the bad byte
    tree.file("ok/x\xc3\xa9/big", 5 * MiB);                      // valid UTF-8 "é"

    const auto root = scan(tree.root());
    expectConsistent(*root);
    EXPECT_EQ(root->size(), tree.expectedBytes());
    const FileNode* file = find(*root, nubo::NativePath::decode(QByteArray("/deep/") + brokenFile));
    const FileNode* twin = find(*root, nubo::NativePath::decode(QByteArray("/deep/clip\xff\xfd.mov")));
    ASSERT_TRUE(file);
    ASSERT_TRUE(twin);
    EXPECT_NE(file->path(), twin->path());
    EXPECT_FALSE(file->path().contains(QChar(0xFFFD)));
    EXPECT_EQ(file->nativePath(), tree.rootBytes() + '/' + latin1Folder + "/deep/" + brokenFile);
    EXPECT_EQ(blocksOf(file->nativePath()), big);
    const FileNode* folder = file->parent()->parent();
    EXPECT_EQ(blocksOf(folder->nativePath()) > 0, true); // the folder itself is reachable too
    EXPECT_TRUE(find(*root, QStringLiteral("/ok/x\u00e9")));
}
