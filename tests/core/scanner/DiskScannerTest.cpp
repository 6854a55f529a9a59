#include "core/scanner/DiskScanner.h"

#include "core/files/NativePath.h"
#include "core/privacy/Privacy.h"
#include "support/OrdinaryUser.h"
#include "support/TempTree.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <tuple>
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

// The node whose path ends in `suffix` (as bytes); a failure and an empty stand-in when none.
const FileNode& nodeAt(const FileNode& root, const char* suffix)
{
    static const FileNode missing(QStringLiteral("missing"), QString(), FileNode::Type::Aggregate);
    const FileNode* hit = find(root, nubo::NativePath::decode(suffix));
    if (!hit)
        ADD_FAILURE() << "no node ends in " << suffix;
    return hit ? *hit : missing;
}

// What a test compares of one node at once: size, items, whether a folder, a bundle, and how
// many children it shows.
auto facts(const FileNode& node)
{
    return std::tuple(node.size(), node.itemCount(), node.isDirectory(), node.isPackage(), node.children().size());
}

// The invariants of a scanned tree at every level: sizes and item counts add up (collapsed
// folders keep theirs; a folder counts at least 1), children largest first, parent links right.
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
        files += child->itemCount();
        expectConsistent(*child);
    }
    EXPECT_EQ(node.size(), sum) << node.path().toStdString();
    EXPECT_EQ(node.itemCount(), std::max<qint64>(files, 1)) << node.path().toStdString();
}

DiskScanner::Services withHelpers(int helpers)
{
    DiskScanner::Services services;
    services.helpers = helpers;
    return services;
}

// A scan whose tree is checked for consistency before it is handed back.
std::unique_ptr<FileNode> scan(const QString& root, const DiskScanner::Services& services,
                               ScanProgress& progress)
{
    auto node = DiskScanner(services).scan(root, progress);
    expectConsistent(*node);
    return node;
}

std::unique_ptr<FileNode> scan(const QString& root, const DiskScanner::Services& services = withHelpers(2))
{
    ScanProgress progress;
    return scan(root, services, progress);
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

// A home-like tree with files on both sides of the floor at every depth, big and small folders at
// depth 1 with deep walks below them, a wide grid the helpers share, bundles at the top and deep
// down, links of every kind and names that are not UTF-8. Whatever the number of threads, the
// scan gives the same tree, whose totals are what the file system reports for the files written:
// links add nothing and are never followed.
TEST(DiskScanner, SameTreeWithSizesThatAddUpWhateverTheNumberOfThreads)
{
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
    // A Latin-1 folder, and two files whose names differ only in a byte that is never UTF-8.
    const qint64 odd = tree.file("Caf\xe9/deep/clip\xff\xfe.mov", 3 * MiB);
    tree.file("Caf\xe9/deep/clip\xff\xfd.mov", 3 * MiB);
    tree.file("ok/x\xc3\xa9/big", 5 * MiB);

    QString serial;
    for (int helpers : {0, 1, 3, 23, 23, 23}) {
        SCOPED_TRACE(testing::Message() << "helpers " << helpers);
        ScanProgress progress;
        const auto root = scan(tree.root(), withHelpers(helpers), progress);
        EXPECT_EQ(
            std::tuple(root->size(), root->itemCount(), progress.snapshot().files, progress.snapshot().bytes),
            // Library/Empty/Nothing and Links hold no file and count as one item each.
            std::tuple(tree.expectedBytes(), tree.fileCount() + 2, tree.fileCount(), tree.expectedBytes()));
        if (serial.isEmpty())
            serial = shapeOf(*root);
        EXPECT_EQ(shapeOf(*root), serial);
    }

    const auto root = scan(tree.root(), withHelpers(0));
    EXPECT_EQ(root->name(), QDir(tree.root()).dirName());
    EXPECT_FALSE(root->parent());
    // Files at or above the floor stay single nodes, wherever they are; a bundle is one block.
    EXPECT_EQ(facts(nodeAt(*root, "/com.x/a/b/c/huge")),
              std::tuple(blocksOf(tree.bytes("Library/Caches/com.x/a/b/c/huge")), 1, false, false, 0u));
    EXPECT_TRUE(find(*root, QStringLiteral("/Caches/blob-1"))) << "a file of exactly 2 MiB is not small";
    EXPECT_TRUE(find(*root, QStringLiteral("/top-big.bin")));
    EXPECT_EQ(facts(nodeAt(*root, "/Tool.app")), std::tuple(inDeep, 3, true, true, 0u));
    EXPECT_EQ(facts(nodeAt(*root, "/Editor.app")), std::tuple(atTop, 2, true, true, 0u));
    EXPECT_TRUE(nodeAt(*root, "/Shout.APP").canDrill());
    EXPECT_EQ(facts(nodeAt(*root, "/Links")),
              std::tuple(0, 1, true, false, 0u)); // a folder counts one item
    EXPECT_FALSE(find(*root, QStringLiteral("/to-big")));
    // A name that is not UTF-8 keeps a path of its own that reaches its file, and so does its folder.
    const FileNode& file = nodeAt(*root, "/deep/clip\xff\xfe.mov");
    EXPECT_NE(file.path(), nodeAt(*root, "/deep/clip\xff\xfd.mov").path());
    EXPECT_FALSE(file.path().contains(QChar(0xFFFD)));
    EXPECT_EQ(file.nativePath(), tree.bytes("Caf\xe9/deep/clip\xff\xfe.mov"));
    EXPECT_EQ(blocksOf(file.nativePath()), odd);
    ASSERT_TRUE(file.parent() && file.parent()->parent());
    EXPECT_GT(blocksOf(file.parent()->parent()->nativePath()), 0);
    EXPECT_TRUE(find(*root, QStringLiteral("/ok/x\u00e9")));
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
    const FileNode& aggregate = *root->children().back();
    EXPECT_EQ(
        std::tuple(aggregate.name(), aggregate.path(), aggregate.itemCount(), aggregate.size()),
        std::tuple(QStringLiteral("1 archivo pequeño"), tree.root(), 1, blocksOf(tree.bytes("root-small"))));
    EXPECT_EQ(DiskScanner::aggregateName(1234), QStringLiteral("1234 archivos pequeños"));
    // Many stays open for its big file; equal sizes keep folders before the aggregate (both hold
    // two 4 KiB blocks here).
    const FileNode& many = nodeAt(*root, "/Many");
    EXPECT_EQ(childNames(many), (QStringList{QStringLiteral("Big"), QStringLiteral("Deeper"),
                                             QStringLiteral("3 archivos pequeños")}));
    EXPECT_EQ(many.itemCount(), 6);
    // A folder below the root under 4 MiB keeps no children, however many files it holds; deep in
    // the walk a folder of 6 MiB stays open.
    const FileNode& three = nodeAt(*root, "/Three");
    EXPECT_EQ(facts(three), std::tuple(blocksOf(tree.bytes("Three/a")) + blocksOf(tree.bytes("Three/b")) +
                                           blocksOf(tree.bytes("Three/sub/c")),
                                       3, true, false, 0u));
    EXPECT_EQ(nodeAt(*root, "/Deep/x/y/z").children().size(), 2u);

    // As the root of a scan the same small folder opens; a trailing slash does not empty its name.
    const auto scope = scan(tree.root() + QStringLiteral("/Three/"));
    EXPECT_EQ(std::tuple(scope->name(), scope->path(), scope->size(), childNames(*scope).size()),
              std::tuple(QStringLiteral("Three"), tree.root() + QStringLiteral("/Three"), three.size(), 2));
}

TEST(DiskScanner, RootNamesAndPackagesFollowTheSystemsAnswersBesideTheWholeDisk)
{
    TempTree tree;
    tree.file("Odd.bundle/inner/deep/a", 5 * MiB);
    tree.file("Plain/b", 5 * MiB);
    tree.file("Silent.app/c", 5 * MiB);
    DiskScanner::Services services;
    services.isPackage = [](const QString& path) -> std::optional<bool> {
        if (path.endsWith(QLatin1String("/Silent.app")))
            return std::nullopt;
        return path.endsWith(QLatin1String("/Plain"));
    };
    services.displayName = [](const QString& path) {
        return QStringLiteral("Inicio de ") + QDir(path).dirName();
    };
    const auto root = scan(tree.root(), services);
    EXPECT_EQ(root->name(), QStringLiteral("Inicio de ") + QDir(tree.root()).dirName());
    // The file manager names the folders two levels down; deeper ones keep their own names.
    EXPECT_EQ(std::tuple(nodeAt(*root, "/inner").name(), nodeAt(*root, "/deep").name()),
              std::tuple(QStringLiteral("Inicio de inner"), QStringLiteral("deep")));
    // The system's word wins over the extension either way; without one the extension decides.
    EXPECT_TRUE(nodeAt(*root, "/Plain").isPackage());
    EXPECT_FALSE(nodeAt(*root, "/Odd.bundle").isPackage());
    EXPECT_TRUE(nodeAt(*root, "/Silent.app").isPackage());

    // The whole disk is "Macintosh HD" without asking. Everything below "/" is gated except the
    // mount points of other file systems, which the scanner must leave alone on its own.
    DiskScanner::Services whole;
    whole.isGated = [](const QString& path) {
        return path != QLatin1String("/") && path != QLatin1String("/proc") && path != QLatin1String("/sys");
    };
    whole.displayName = [](const QString&) { return QStringLiteral("never asked for the disk"); };
    const auto disk = scan(QStringLiteral("/"), whole);
    EXPECT_EQ(std::tuple(disk->name(), disk->path()),
              std::tuple(QStringLiteral("Macintosh HD"), QStringLiteral("/")));
    struct stat rootInfo = {}, procInfo = {};
    ASSERT_EQ(::stat("/", &rootInfo), 0);
    if (::stat("/proc", &procInfo) != 0 || procInfo.st_dev == rootInfo.st_dev)
        GTEST_SKIP() << "/proc is not another file system here";
    for (const auto& child : disk->children())
        EXPECT_FALSE(child->isDirectory()) << child->path().toStdString();
}

// A change of device is another volume unless the system says the folder is no mount point, as a
// Mac's firmlinks are not: then the scan goes on there, at the top levels and in the deep walk
// alike. "/dev" (a level below "/") and "/dev/shm" (two below) stand in for firmlinks here.
TEST(DiskScanner, AFolderOnAnotherDeviceIsEnteredOnlyWhenTheSystemSaysItIsNoVolume)
{
    struct stat rootInfo = {}, devInfo = {}, shmInfo = {};
    if (::stat("/", &rootInfo) != 0 || ::stat("/dev", &devInfo) != 0 || ::stat("/dev/shm", &shmInfo) != 0 ||
        rootInfo.st_dev == devInfo.st_dev || devInfo.st_dev == shmInfo.st_dev)
        GTEST_SKIP() << "/dev and /dev/shm are not file systems of their own here";
    QTemporaryDir shared(QStringLiteral("/dev/shm/nubo-scan-XXXXXX"));
    ASSERT_TRUE(shared.isValid());
    QFile file(shared.filePath(QStringLiteral("big")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.write(QByteArray(5 * MiB, 'x')) == 5 * MiB);
    file.close();
    const QString within = shared.path();

    const struct
    {
        std::optional<bool> dev, shm;
        bool devShown, fileShown;
    } rows[] = {
        {false, false, true, true},
        {false, true, true, false},
        {false, std::nullopt, true, false},
        {std::nullopt, false, false, false},
        {true, false, false, false},
    };
    for (const auto& row : rows) {
        DiskScanner::Services services;
        services.isGated = [&](const QString& path) {
            return path != QLatin1String("/") && path != QLatin1String("/dev") &&
                   path != QLatin1String("/dev/shm") && !path.startsWith(within);
        };
        services.isVolume = [&](const QString& path) {
            return path == QLatin1String("/dev") ? row.dev : path == QLatin1String("/dev/shm") ? row.shm : true;
        };
        const auto disk = scan(QStringLiteral("/"), services);
        const FileNode* big = find(*disk, within + QStringLiteral("/big"));
        EXPECT_EQ(std::tuple(find(*disk, QStringLiteral("/dev")) != nullptr, big != nullptr,
                             big ? big->size() : 0),
                  std::tuple(row.devShown, row.fileShown, row.fileShown ? blocksOf(file.fileName()) : 0))
            << "answers for /dev and /dev/shm: " << row.dev.value_or(2) << row.shm.value_or(2);
    }

    // Further down, folders are listed without asking, yet a change of device is still put to
    // the system: /sys/fs/cgroup, three levels below "/", is listed only when it is no volume.
    struct stat sysInfo = {}, cgroupInfo = {};
    if (::stat("/sys/fs", &sysInfo) != 0 || ::stat("/sys/fs/cgroup", &cgroupInfo) != 0 ||
        sysInfo.st_dev == rootInfo.st_dev || sysInfo.st_dev == cgroupInfo.st_dev)
        GTEST_SKIP() << "/sys/fs/cgroup is not a file system of its own here";
    const QString cgroup = QStringLiteral("/sys/fs/cgroup");
    for (const std::optional<bool> answer : {std::optional<bool>(false), std::optional<bool>()}) {
        std::atomic<bool> listed{false};
        DiskScanner::Services services;
        services.isGated = [&](const QString& path) {
            listed = listed || path.startsWith(cgroup + QLatin1Char('/'));
            return !QStringList{QStringLiteral("/"), QStringLiteral("/sys"), QStringLiteral("/sys/fs"), cgroup}
                        .contains(path);
        };
        services.isVolume = [&](const QString& path) { return path == cgroup ? answer : std::optional(false); };
        scan(QStringLiteral("/"), services);
        EXPECT_EQ(listed, answer.has_value()) << "answer for /sys/fs/cgroup: " << answer.value_or(2);
    }
}

// Skip paths name folders and files, at the top and in the deep walk; the gate is asked for every
// folder reached; a gated root is a folder of nothing; without Full Disk Access the production
// gate leaves the guarded folders alone.
TEST(DiskScanner, SkipPathsAndTheGateAreNeverEntered)
{
    TempTree tree;
    for (const char* big :
         {"Library/Mail/big", "Library/Keep/big", "Library/Keep/deep/Secret/big",
          "Library/Keep/deep/Skip/big", "Skipped/big", "sleepimage", "Library/Keep/deep/vm/sleepimage"})
        tree.file(big, 5 * MiB);
    tree.file("Library/Keep/deep/vm/swapfile", 1'000);
    const QString root = tree.root();

    std::mutex lock;
    QStringList asked;
    DiskScanner::Services services;
    for (const char* skipped :
         {"/Skipped", "/Library/Keep/deep/Skip", "/sleepimage", "/Library/Keep/deep/vm/sleepimage"})
        services.skipPaths << root + QString::fromUtf8(skipped);
    services.isGated = [&](const QString& path) {
        const std::lock_guard guard(lock);
        asked << path;
        return path.endsWith(QLatin1String("/Mail")) || path.endsWith(QLatin1String("/Secret"));
    };
    ScanProgress progress;
    const auto node = scan(root, services, progress);
    EXPECT_EQ(std::tuple(node->size(), progress.snapshot().files),
              std::tuple(blocksOf(tree.bytes("Library/Keep/big")) +
                             blocksOf(tree.bytes("Library/Keep/deep/vm/swapfile")),
                         2));
    for (const char* absent : {"/Mail", "/Skipped", "/Secret", "/Skip", "/sleepimage"})
        EXPECT_FALSE(find(*node, QString::fromLatin1(absent))) << absent;
    for (const char* folder :
         {"/Library", "/Library/Keep", "/Library/Mail", "/Library/Keep/deep", "/Library/Keep/deep/Secret"})
        EXPECT_TRUE(asked.contains(root + QString::fromUtf8(folder))) << folder;

    DiskScanner::Services all;
    all.isGated = [](const QString&) { return true; };
    EXPECT_EQ(facts(*scan(root, all)), std::tuple(0, 1, true, false, 0u));

    const nubo::Privacy withoutAccess(root, [] { return false; });
    DiskScanner::Services guarded;
    guarded.isGated = [&](const QString& path) { return withoutAccess.isGated(path); };
    EXPECT_EQ(scan(root, guarded)->size(),
              tree.expectedBytes() - blocksOf(tree.bytes("Library/Mail/big")));
}

// The gate is asked once per folder, so it serves as the hook that cancels mid-walk: the partial
// tree is consistent, no folder is entered once the cancel is seen, and every folder in it is
// whole. Cancelled before it starts, a scan lists the root's own entries and nothing below.
TEST(DiskScanner, CancellingStopsAtAFolderBoundaryWithAPartialTree)
{
    TempTree tree;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 30; ++j)
            tree.file("Top/s" + QByteArray::number(i) + "/d" + QByteArray::number(j) + "/big", 3 * MiB);
    ScanProgress progress;
    std::atomic<int> asked{0};
    std::atomic<int> askedAfterCancel{0};
    DiskScanner::Services services = withHelpers(0);
    services.isGated = [&](const QString&) {
        if (progress.isCancelled())
            ++askedAfterCancel;
        if (++asked == 40)
            progress.cancel();
        return false;
    };
    const auto partial = scan(tree.root(), services, progress);
    EXPECT_TRUE(progress.isCancelled());
    EXPECT_GT(partial->size(), 0);
    EXPECT_LT(partial->size(), tree.expectedBytes());
    EXPECT_EQ(askedAfterCancel.load(), 0);
    EXPECT_EQ(partial->size() % blocksOf(tree.bytes("Top/s0/d0/big")), 0);

    ScanProgress early;
    early.cancel();
    EXPECT_EQ(facts(*scan(tree.root(), withHelpers(2), early)), std::tuple(0, 1, true, false, 0u));
}

// A folder listed at the top but gone by its walk, and one met inside a deep walk, count nothing.
TEST(DiskScanner, AFolderThatVanishesDuringTheScanCountsNothing)
{
    TempTree tree;
    tree.file("Keep/big", 5 * MiB);
    tree.file("Keep/Vanishing/inner/big", 5 * MiB);
    tree.file("Top/deep/Vanishing/inner/big", 5 * MiB);
    DiskScanner::Services services = withHelpers(0);
    services.isGated = [](const QString& path) {
        if (path.endsWith(QLatin1String("/Vanishing")))
            QDir(path).removeRecursively();
        return false;
    };
    EXPECT_EQ(scan(tree.root(), services)->size(), blocksOf(tree.bytes("Keep/big")));
    EXPECT_EQ(tree.expectedBytes(), blocksOf(tree.bytes("Keep/big")));
}

// An unreadable folder listed at depth 1, and one met in the deep walk: present and empty.
TEST(DiskScanner, UnreadableFoldersCountAsEmpty)
{
    TempTree tree;
    for (const char* big :
         {"Open/big", "Closed/big", "Open/deep/big", "Open/deep/Closed/big", "Open/deep/Closed/more/big"})
        tree.file(big, 5 * MiB);
    ::chmod(tree.bytes("Closed").constData(), 0);
    ::chmod(tree.bytes("Open/deep/Closed").constData(), 0);
    const QString root = tree.root();
    const QByteArray answer = nubo::test::runUnprivileged([&root] {
        const auto node = scan(root, withHelpers(0));
        const FileNode* closed = find(*node, QStringLiteral("/Open/deep/Closed"));
        return QByteArray::number(node->size()) + ' ' + QByteArray::number(closed ? closed->size() : -1) +
               ' ' + QByteArray::number(node->itemCount());
    });
    ::chmod(tree.bytes("Closed").constData(), 0755);
    ::chmod(tree.bytes("Open/deep/Closed").constData(), 0755);
    EXPECT_EQ(answer,
              QByteArray::number(blocksOf(tree.bytes("Open/big")) + blocksOf(tree.bytes("Open/deep/big"))) +
                  " 0 4"); // two files, and each closed folder as one item
}

// Built with mkdirat from a descriptor, one level at a time, like any deep tree on disk: every
// folder on the chain holds 5 MiB, so none collapses and the file is a node at the end.
TEST(DiskScanner, AChainOfTwoThousandNestedFolders)
{
    TempTree tree;
    int level = ::open(tree.rootBytes().constData(), O_RDONLY | O_DIRECTORY);
    const int depth = 2000;
    for (int i = 0; i <= depth; ++i) {
        const char* name = i == 0 ? "chain" : "d";
        ASSERT_EQ(::mkdirat(level, name, 0755), 0);
        const int next = ::openat(level, name, O_RDONLY | O_DIRECTORY);
        ::close(level);
        ASSERT_GE(level = next, 0);
    }
    const int file = ::openat(level, "bottom", O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(file, 0);
    ASSERT_TRUE(nubo::test::fill(file, 5 * MiB));
    struct stat info = {};
    ::fstat(file, &info);
    ::close(file);
    ::close(level);

    const auto root = scan(tree.root());
    EXPECT_EQ(root->size(), static_cast<qint64>(info.st_blocks) * 512);
    const FileNode* node = root.get();
    int levels = 0;
    for (; !node->children().empty(); ++levels)
        node = node->children().front().get();
    EXPECT_EQ(levels, depth + 2); // chain, 2,000 × d, bottom
    EXPECT_EQ(node->name(), QStringLiteral("bottom"));
}
