#include "models/map/MapModel.h"
#include "models/map/MapNodeModel.h"

#include "../support/ModelWorld.h"
#include "core/files/NativePath.h"
#include "core/scanner/FileNode.h"

#include "support/FixtureFiles.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 MiB = 1'048'576;

const FileNode* node(const FileNode* from, const QString& suffix)
{
    if (!from)
        return nullptr;
    if (from->path().endsWith(suffix))
        return from;
    for (const auto& child : from->children()) {
        if (const FileNode* found = node(child.get(), suffix))
            return found;
    }
    return nullptr;
}

// A home with two project folders big enough to keep their children, and the usual Library.
class MapModelTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        file(QStringLiteral("home/Projects/big/a.bin"), 5 * MiB);
        file(QStringLiteral("home/Projects/big/b.bin"), 3 * MiB);
        file(QStringLiteral("home/Projects/keep/c.bin"), 5 * MiB);
        file(QStringLiteral("home/Projects/small1.txt"), 1000);
        file(QStringLiteral("home/Library/Caches/app/cache.db"), 5 * MiB);
    }

    MapModel& map() { return *state().map(); }

    void scanHomeAndWait()
    {
        map().scanHome();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
        ASSERT_TRUE(map().hasTree());
    }

    const FileNode* find(const QString& suffix) { return node(map().root(), suffix); }
};

} // namespace

TEST_F(MapModelTest, AScanLandsItsTreeAndCopiesProgressOnlyWhenItChanges)
{
    QList<qint64> files;
    QObject::connect(&map(), &MapModel::scannedFilesChanged, &map(),
                     [&] { files.append(map().scannedFiles()); });
    QSignalSpy revision(&map(), &MapModel::revisionChanged);
    QSignalSpy scanning(&map(), &MapModel::isScanningChanged);

    scanHomeAndWait();

    EXPECT_EQ(map().root()->path(), m_roots.home);
    EXPECT_EQ(map().current(), map().root());
    EXPECT_EQ(revision.count(), 1);
    EXPECT_EQ(scanning.count(), 2); // on, then off: never repeated
    for (qsizetype i = 1; i < files.size(); ++i)
        EXPECT_NE(files[i], files[i - 1]);
    EXPECT_EQ(map().scannedFiles(), 5);
    EXPECT_GT(map().scannedBytes(), 18 * MiB);
    EXPECT_GT(map().children()->rowCount(), 0);
}

TEST_F(MapModelTest, ACancelledOrOvertakenScanNeverLands)
{
    scanHomeAndWait();
    const FileNode* before = map().root();
    map().rescan();
    // The old tree is still on screen, and is freed when the new one lands.
    map().toggleMark(find(QStringLiteral("/Projects/big")));
    EXPECT_EQ(map().markedCount(), 0);
    map().cancelScan();
    EXPECT_FALSE(map().isScanning());
    QTest::qWait(300); // the cancelled scan has had every chance to land
    EXPECT_EQ(map().root(), before);
    EXPECT_EQ(map().revision(), 1);
    map().deleteMarked(); // nothing marked: nothing starts
    EXPECT_FALSE(map().isDeleting());

    // A second scan abandons the first, and only the second lands.
    map().scanFolder(home(QStringLiteral("Projects/big")));
    map().scanFolder(home(QStringLiteral("Projects/keep")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
    QTest::qWait(300); // the abandoned scan has had every chance to land
    EXPECT_EQ(map().root()->path(), home(QStringLiteral("Projects/keep")));
    EXPECT_EQ(map().scopeLabel(), QStringLiteral("keep"));
    EXPECT_EQ(map().revision(), 2);
}

TEST_F(MapModelTest, OnlyAllowedNodesInsideTheRootCanBeMarked)
{
    scanHomeAndWait();
    const FileNode* aggregate = nullptr;
    for (const auto& child : find(QStringLiteral("/Projects"))->children()) {
        if (child->isAggregate())
            aggregate = child.get();
    }
    ASSERT_NE(aggregate, nullptr);
    const FileNode* library = find(QStringLiteral("/home/Library"));
    ASSERT_NE(library, nullptr);

    QSignalSpy marked(&map(), &MapModel::markedChanged);
    map().toggleMark(aggregate);
    map().toggleMark(library); // a protected place
    map().toggleMark(map().root());
    map().toggleMark(nullptr);
    EXPECT_EQ(marked.count(), 0);
    EXPECT_EQ(map().markedCount(), 0);

    const FileNode* big = find(QStringLiteral("/Projects/big"));
    map().toggleMark(big);
    EXPECT_TRUE(map().isMarked(big));
    EXPECT_EQ(map().markedSize(), big->size());
    map().toggleMark(big);
    EXPECT_FALSE(map().isMarked(big));
    EXPECT_EQ(marked.count(), 2);
    map().toggleMark(big);
    map().toggleMark(find(QStringLiteral("/Library/Caches/app")));
    map().unmarkAll();
    EXPECT_EQ(map().markedCount(), 0);
    EXPECT_EQ(map().markedSize(), 0);
}

TEST_F(MapModelTest, DeletingAMarkedFolderLowersEveryAncestorAtOnce)
{
    scanHomeAndWait();
    const FileNode* projects = find(QStringLiteral("/Projects"));
    const FileNode* big = find(QStringLiteral("/Projects/big"));
    map().open(projects);
    ASSERT_EQ(map().current(), projects);
    QAbstractItemModelTester tester(map().children(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy removed(map().children(), &QAbstractItemModel::rowsRemoved);
    const qint64 bigSize = big->size();
    const qint64 rootBefore = map().root()->size();
    const int bigRow = map().children()->rowOf(big);

    // The inspector shows the same folder's children: its circle follows the mark too.
    const MapNodeModel& rows = *map().inspectedRows();
    const auto rowMarked = [&](const FileNode* node) {
        return rows.data(rows.index(rows.rowOf(node)), int(MapNodeModel::Role::Marked)).toBool();
    };
    QSignalSpy rowChanged(map().inspectedRows(), &QAbstractItemModel::dataChanged);
    map().toggleMark(big);
    EXPECT_TRUE(rowMarked(big));
    EXPECT_EQ(rowChanged.count(), 1);
    map().unmarkAll();
    EXPECT_FALSE(rowMarked(big));

    // The selection's size sums every mark, but the file inside the marked folder is deleted and
    // reported once, with the folder.
    const FileNode* inner = find(QStringLiteral("/Projects/big/a.bin"));
    map().toggleMark(big);
    map().toggleMark(inner);
    EXPECT_EQ(map().markedSize(), bigSize + inner->size());
    map().deleteMarked();
    EXPECT_TRUE(map().isDeleting());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));

    EXPECT_FALSE(exists(QStringLiteral("home/Projects/big")));
    EXPECT_TRUE(exists(QStringLiteral("home/Projects/keep/c.bin")));
    EXPECT_EQ(map().root()->size(), rootBefore - bigSize);
    EXPECT_EQ(find(QStringLiteral("/Projects/big")), nullptr);
    EXPECT_EQ(map().markedCount(), 0);
    EXPECT_EQ(map().markedSize(), 0);
    EXPECT_EQ(map().revision(), 2);
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.first().at(1).toInt(), bigRow);
    EXPECT_EQ(state().toast()->freed, bigSize);
    EXPECT_EQ(state().toast()->failures, 0);
}

TEST_F(MapModelTest, ANodeThatCannotBeDeletedStaysInTheTreeAndMarked)
{
    if (!pin(QStringLiteral("home/Projects/keep/c.bin")))
        GTEST_SKIP() << "this file system cannot make a file undeletable";
    m_admin.outcome = AdminOutcome::Failed; // the user refuses the prompt too
    scanHomeAndWait();
    const FileNode* keep = find(QStringLiteral("/Projects/keep"));
    const FileNode* big = find(QStringLiteral("/Projects/big"));
    const qint64 bigSize = big->size();
    map().toggleMark(keep);
    map().toggleMark(big);
    map().deleteMarked();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));

    EXPECT_EQ(find(QStringLiteral("/Projects/keep")), keep);
    EXPECT_TRUE(map().isMarked(keep));
    EXPECT_EQ(map().markedCount(), 1);
    EXPECT_EQ(find(QStringLiteral("/Projects/big")), nullptr);
    EXPECT_EQ(state().toast()->freed, bigSize);
    EXPECT_EQ(state().toast()->failures, 1);
    EXPECT_EQ(state().totalFreedThisSession(), bigSize);
}

TEST_F(MapModelTest, NavigationStaysInsideTheTree)
{
    scanHomeAndWait();
    QSignalSpy current(&map(), &MapModel::currentChanged);
    map().goUp(); // at the root
    map().open(find(QStringLiteral("/Projects/big/a.bin")));
    EXPECT_EQ(current.count(), 0);
    EXPECT_FALSE(map().canGoUp());

    map().open(find(QStringLiteral("/Projects")));
    EXPECT_TRUE(map().canGoUp());
    map().goUp();
    EXPECT_EQ(map().current(), map().root());
    EXPECT_EQ(current.count(), 2);
    EXPECT_GE(m_feedback.load(), 1);
}

TEST_F(MapModelTest, ANameThatIsNotUtf8IsOpenedAndDeletedByItsExactBytesAndItsLookAlikeIsNot)
{
    // Two folders whose names differ only in bytes that are not UTF-8: a careless decoding
    // would give them the same text.
    map().setWorkspace(&m_workspace);
    const QByteArray base = QFile::encodeName(home(QStringLiteral("Projects")));
    for (const char* name : {"/odd\xff/data", "/odd\xfe/data"})
        writeFile(base + name, 5 * MiB);
    scanHomeAndWait();
    const FileNode* odd = find(NativePath::decode("odd\xff"));
    ASSERT_NE(odd, nullptr);
    map().setMenuNode(odd);
    map().menuOpenWithDefaultApp();
    ASSERT_EQ(m_workspace.openedUrls.size(), 1);
    EXPECT_TRUE(m_workspace.openedUrls[0].endsWith(QStringLiteral("/odd%FF"))) << m_workspace.openedUrls[0].toStdString();

    map().toggleMark(odd);
    map().deleteMarked();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));
    EXPECT_FALSE(test::exists(base + "/odd\xff"));
    EXPECT_TRUE(test::exists(base + "/odd\xfe/data"));
    EXPECT_EQ(state().toast()->failures, 0);
    EXPECT_NE(find(NativePath::decode("odd\xfe")), nullptr);
    ::unlink((base + "/odd\xfe/data").constData());
    ::rmdir((base + "/odd\xfe").constData());
}

TEST_F(MapModelTest, TheInspectorFollowsTheMapsPointerButNotItsOwnRows)
{
    scanHomeAndWait();
    const FileNode* projects = find(QStringLiteral("/Projects"));
    const FileNode* library = find(QStringLiteral("/Library"));
    map().setHovered(projects);
    EXPECT_EQ(map().inspectedRows()->folder(), projects);
    // Entering another bubble before leaving the first keeps the second.
    map().setHovered(library);
    map().leave(projects);
    EXPECT_EQ(map().inspected(), library);
    map().leave(library);
    EXPECT_EQ(map().inspected(), map().root());

    // A row under the pointer lights up on the map, while the rows stay those of the folder.
    QSignalSpy inspected(&map(), &MapModel::inspectedChanged);
    map().hoverInspectedRow(0);
    EXPECT_EQ(map().hovered(), map().inspectedRows()->nodeAt(0));
    map().hoverInspectedRow(-1);
    EXPECT_EQ(map().hovered(), nullptr);
    EXPECT_EQ(inspected.count(), 0);
}

TEST_F(MapModelTest, TheNodeMenuActsThroughTheWorkspaceAndADeletionForgetsEveryNodeItTook)
{
    map().setWorkspace(&m_workspace);
    scanHomeAndWait();
    const FileNode* big = find(QStringLiteral("/Projects/big"));
    const FileNode* library = find(QStringLiteral("/home/Library"));

    map().setMenuNode(library);
    EXPECT_TRUE(map().menuIsProtected());
    EXPECT_FALSE(map().menuCanMark());

    map().setMenuNode(big);
    EXPECT_TRUE(map().menuCanOpen());
    EXPECT_FALSE(map().menuIsProtected());
    map().menuReveal();
    map().menuOpenWithDefaultApp();
    EXPECT_EQ(m_workspace.revealedPaths, QStringList{big->path()});
    ASSERT_EQ(m_workspace.openedUrls.size(), 1);
    EXPECT_EQ(QUrl(m_workspace.openedUrls[0]).toLocalFile(), big->path());
    map().menuToggleMark();
    EXPECT_TRUE(map().menuIsMarked());

    // Deleting the folder on show, under the pointer, goes back to its parent.
    const FileNode* projects = find(QStringLiteral("/Projects"));
    map().open(big);
    map().setHovered(big->children().front().get());
    map().deleteMarked();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));
    EXPECT_EQ(map().current(), projects);
    EXPECT_EQ(map().hovered(), nullptr);
    EXPECT_EQ(map().children()->folder(), projects);
    EXPECT_EQ(map().menuNode(), nullptr);
    EXPECT_EQ(map().menuPath(), QString());
    map().menuReveal(); // on nothing: nothing happens
    EXPECT_EQ(m_workspace.revealedPaths.size(), 1);
}

TEST_F(MapModelTest, ACancelledFolderPickerChangesNothing)
{
    scanHomeAndWait();
    const FileNode* root = map().root();
    QSignalSpy scope(&map(), &MapModel::scopeChanged);
    QSignalSpy scanning(&map(), &MapModel::isScanningChanged);
    map().scanFolderUrl(QUrl());
    map().scanFolderUrl(QUrl(QStringLiteral("https://example.com/folder")));
    EXPECT_EQ(scope.count(), 0);
    EXPECT_EQ(scanning.count(), 0);
    EXPECT_EQ(map().root(), root);

    map().scanFolderUrl(QUrl::fromLocalFile(home(QStringLiteral("Projects"))));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
    EXPECT_EQ(map().root()->path(), home(QStringLiteral("Projects")));
}
