#include "app/support/UiWorld.h"

#include "core/scanner/FileNode.h"
#include "models/map/MapModel.h"

#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {

constexpr qint64 MiB = 1'048'576;

// A home with something of every kind: protected top folders (Movies, Documents), a project
// folder to open, loose files to mark and a handful of small files that become one aggregate.
class MapViewsTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        file(QStringLiteral("home/Movies/trip.mov"), 22 * MiB);
        file(QStringLiteral("home/Movies/clip.mp4"), 8 * MiB);
        file(QStringLiteral("home/Projects/app/build.o"), 9 * MiB);
        file(QStringLiteral("home/Projects/app/notes.md"), 3 * MiB);
        file(QStringLiteral("home/Projects/archive.zip"), 7 * MiB);
        file(QStringLiteral("home/Projects/site/node_modules/lib.js"), 5 * MiB);
        file(QStringLiteral("home/Music/song.mp3"), 6 * MiB);
        file(QStringLiteral("home/Pictures/beach.png"), 5 * MiB);
        file(QStringLiteral("home/Pictures/city.jpg"), 4 * MiB);
        file(QStringLiteral("home/Downloads/installer.dmg"), 14 * MiB);
        file(QStringLiteral("home/Library/Caches/app/cache.db"), 8 * MiB);
        file(QStringLiteral("home/backup.tar"), 10 * MiB);
        file(QStringLiteral("home/Documents/letter.pdf"), 3 * MiB);
        for (const char* name : {"a.txt", "b.txt", "c.txt"})
            file(QStringLiteral("home/") + QString::fromUtf8(name), MiB + MiB / 2);
    }

    MapModel& map() { return *state().map(); }

    QQuickWindow& mapWindow()
    {
        map().setWorkspace(&m_workspace);
        state().setSection(QStringLiteral("map"));
        QQuickWindow& window = mainWindow();
        window.resize(DefaultSize);
        QTest::qWait(Settle);
        return window;
    }

    void scanHome()
    {
        map().scanHome();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
        ASSERT_TRUE(map().hasTree());
        QTest::qWait(Settle);
    }

    QQuickItem& bubbles(QQuickWindow& window)
    {
        QQuickItem* found = item(window, QStringLiteral("bubbleMap"));
        EXPECT_NE(found, nullptr);
        return *found;
    }

    // The centre of a child bubble in window coordinates, or a point outside the window.
    QPoint bubble(QQuickWindow& window, const QString& name)
    {
        QQuickItem& map = bubbles(window);
        QRectF rect;
        QMetaObject::invokeMethod(&map, "childBubble", Q_RETURN_ARG(QRectF, rect), Q_ARG(QString, name));
        EXPECT_FALSE(rect.isEmpty()) << "no bubble named " << name.toStdString();
        return map.mapToScene(rect.center()).toPoint();
    }

    const FileNode* child(const QString& name)
    {
        for (const auto& node : map().current()->children()) {
            if (node->name() == name)
                return node.get();
        }
        return nullptr;
    }

    QString aggregateName()
    {
        for (const auto& node : map().current()->children()) {
            if (node->isAggregate())
                return node->name();
        }
        return {};
    }

    // The pointer comes from elsewhere, so that the move is a move even where the last test left it.
    void hover(QQuickWindow& window, QPoint at)
    {
        QTest::mouseMove(&window, QPoint(1, 1));
        QTest::mouseMove(&window, at);
        QTest::qWait(50);
    }

    void clickAt(QQuickWindow& window, QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        hover(window, at);
        QTest::mouseClick(&window, button, Qt::NoModifier, at);
        QTest::qWait(50);
    }
};

} // namespace

TEST_F(MapViewsTest, BeforeTheFirstScanTheEmptyStateInvitesAndNothingCanGoUp)
{
    QQuickWindow& window = mapWindow();
    QQuickItem* empty = item(window, QStringLiteral("mapEmpty"));
    QQuickItem* placeholder = item(window, QStringLiteral("inspectorPlaceholder"));
    QQuickItem* goUp = item(window, QStringLiteral("goUp"));
    ASSERT_TRUE(empty && placeholder && goUp);
    EXPECT_TRUE(empty->isVisible());
    EXPECT_TRUE(placeholder->isVisible());
    EXPECT_FALSE(goUp->isEnabled());
    snapshots(window, QStringLiteral("map-empty"));

    QQuickItem* analyze = item(window, QStringLiteral("analyzeHome"));
    ASSERT_NE(analyze, nullptr);
    click(*analyze);
    ASSERT_TRUE(QTest::qWaitFor([this] { return map().hasTree() && !map().isScanning(); }, 10000));
    EXPECT_FALSE(empty->isVisible());
    EXPECT_TRUE(item(window, QStringLiteral("bubbleMap"))->isVisible());
    // At the root there is still no level above.
    EXPECT_FALSE(goUp->isEnabled());
}

TEST_F(MapViewsTest, AScanShowsItsLiveFiguresAndStopReplacesRescan)
{
    QQuickWindow& window = mapWindow();
    // The whole disk takes long enough to watch; the test stops it.
    map().scanDisk();
    ASSERT_TRUE(QTest::qWaitFor([this] { return map().scannedFiles() > 0; }, 10000));
    QQuickItem* scanning = item(window, QStringLiteral("mapScanning"));
    QQuickItem* stop = item(window, QStringLiteral("stop"));
    QQuickItem* rescan = item(window, QStringLiteral("rescan"));
    ASSERT_TRUE(scanning && stop && rescan);
    EXPECT_TRUE(scanning->isVisible());
    EXPECT_TRUE(stop->isVisible());
    EXPECT_FALSE(rescan->isVisible());
    snapshots(window, QStringLiteral("map-scanning"));

    click(*stop);
    EXPECT_FALSE(map().isScanning());
    EXPECT_TRUE(rescan->isVisible());
    EXPECT_TRUE(item(window, QStringLiteral("mapEmpty"))->isVisible());
}

TEST_F(MapViewsTest, TheHoveredBubbleFollowsThePointerAtBothSizes)
{
    QQuickWindow& window = mapWindow();
    scanHome();
    map().toggleMark(child(QStringLiteral("backup.tar")));
    map().toggleMark(child(QStringLiteral("Downloads"))->children().front().get());
    hover(window, bubble(window, QStringLiteral("Projects")));
    ASSERT_NE(map().hovered(), nullptr);
    EXPECT_EQ(map().hovered()->name(), QStringLiteral("Projects"));
    const QImage picture = snapshot(window, DefaultSize, QStringLiteral("map-home-default"));
    EXPECT_GT(distinctColours(picture), 40) << "the map looks empty";
    hover(window, bubble(window, QStringLiteral("Projects")));
    snapshot(window, MinimumSize, QStringLiteral("map-home-minimum"));

    // Leaving the bubbles for the empty corner clears the hover.
    QTest::mouseMove(&window, QPoint(window.width() - 320, window.height() - 10));
    QTest::qWait(50);
    EXPECT_EQ(map().hovered(), nullptr);

    // The inspector's pictures, without marks: the kind bar shows, and the smaller window moves
    // the bubbles, so the pointer has to find the folder again.
    map().unmarkAll();
    window.resize(DefaultSize);
    QTest::qWait(Settle);
    hover(window, bubble(window, QStringLiteral("Projects")));
    ASSERT_NE(item(window, QStringLiteral("kindBreakdown")), nullptr);
    snapshot(window, DefaultSize, QStringLiteral("map-inspector-default"));
    window.resize(MinimumSize);
    QTest::qWait(Settle);
    hover(window, bubble(window, QStringLiteral("Projects")));
    EXPECT_EQ(map().inspectedName(), QStringLiteral("Projects"));
    snapshot(window, MinimumSize, QStringLiteral("map-inspector-minimum"));
}

TEST_F(MapViewsTest, TappingOpensFoldersMarksFilesAndLeavesTheRestAlone)
{
    QQuickWindow& window = mapWindow();
    scanHome();

    // A file: marked, and the selection bar comes.
    clickAt(window, bubble(window, QStringLiteral("backup.tar")));
    ASSERT_EQ(map().markedCount(), 1);
    EXPECT_TRUE(map().isMarked(child(QStringLiteral("backup.tar"))));
    QTest::qWait(Settle);
    EXPECT_TRUE(item(window, QStringLiteral("selectionBar"))->isVisible());

    // An aggregate and a protected folder with nothing to open: nothing happens.
    clickAt(window, bubble(window, aggregateName()));
    clickAt(window, bubble(window, QStringLiteral("Documents")));
    EXPECT_EQ(map().markedCount(), 1);
    EXPECT_EQ(map().current(), map().root());

    // A folder opens, and then there is a level above.
    clickAt(window, bubble(window, QStringLiteral("Projects")));
    EXPECT_EQ(map().currentName(), QStringLiteral("Projects"));
    QQuickItem* goUp = item(window, QStringLiteral("goUp"));
    EXPECT_TRUE(goUp->isEnabled());
    QTest::qWait(Settle + 200); // the zoom ends
    click(*goUp);
    EXPECT_EQ(map().current(), map().root());
}

TEST_F(MapViewsTest, DeletingTheMarksAsksFirstAndRemovesOnlyThem)
{
    QQuickWindow& window = mapWindow();
    scanHome();
    clickAt(window, bubble(window, QStringLiteral("backup.tar")));
    QTest::qWait(Settle);
    QQuickItem* remove = item(window, QStringLiteral("deleteMarked"));
    ASSERT_NE(remove, nullptr);
    click(*remove);
    QTest::qWait(Settle);
    EXPECT_TRUE(exists(QStringLiteral("home/backup.tar"))); // nothing without the confirmation
    QObject* confirmation = window.findChild<QObject*>(QStringLiteral("mapConfirmation"));
    if (!confirmation)
        confirmation = window.contentItem()->findChild<QObject*>(QStringLiteral("mapConfirmation"));
    ASSERT_NE(confirmation, nullptr);
    EXPECT_TRUE(confirmation->property("visible").toBool());
    QQuickItem* confirm = confirmation->findChild<QQuickItem*>(QStringLiteral("confirmButton"));
    ASSERT_NE(confirm, nullptr);
    QMetaObject::invokeMethod(confirm, "clicked");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting() && map().markedCount() == 0; }, 10000));
    EXPECT_FALSE(exists(QStringLiteral("home/backup.tar")));
    EXPECT_TRUE(exists(QStringLiteral("home/Movies/trip.mov")));
}

TEST_F(MapViewsTest, AProtectedFoldersMenuOffersNothingThatDeletes)
{
    QQuickWindow& window = mapWindow();
    scanHome();
    clickAt(window, bubble(window, QStringLiteral("Movies")), Qt::RightButton);
    QObject* menu = window.contentItem()->findChild<QObject*>(QStringLiteral("nodeMenu"));
    if (!menu)
        menu = window.findChild<QObject*>(QStringLiteral("nodeMenu"));
    ASSERT_NE(menu, nullptr);
    // A slow (sanitizer) build may take longer than an animation to open it.
    ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->property("opened").toBool(); }, 5000));
    EXPECT_EQ(map().menuName(), QStringLiteral("Movies")); // the bubble under the pointer
    const auto entry = [&](const char* name) {
        return menu->findChild<QQuickItem*>(QString::fromUtf8(name));
    };
    ASSERT_TRUE(entry("menuProtected") && entry("menuMark") && entry("menuOpen"));
    EXPECT_TRUE(entry("menuProtected")->isVisible());
    EXPECT_FALSE(entry("menuProtected")->isEnabled());
    EXPECT_FALSE(entry("menuMark")->isVisible());
    EXPECT_TRUE(entry("menuOpen")->isVisible());
    snapshot(window, DefaultSize, QStringLiteral("map-protected-menu-default"));

    // "Mostrar en Finder" hands the workspace the node itself, to select it in the file manager.
    QMetaObject::invokeMethod(entry("menuReveal"), "triggered");
    EXPECT_EQ(m_workspace.revealedPaths, QStringList{m_roots.home + QStringLiteral("/Movies")});
    EXPECT_EQ(map().markedCount(), 0);
}

// The picture keeps pointing into the tree while it zooms: a deletion and a new scan that land in
// the middle of a zoom must leave it drawing only what still exists.
TEST_F(MapViewsTest, DeletionsAndNewTreesInTheMiddleOfAZoomDrawOnlyWhatExists)
{
    QQuickWindow& window = mapWindow();
    scanHome();
    const FileNode* projects = child(QStringLiteral("Projects"));
    ASSERT_NE(projects, nullptr);
    const FileNode* app = nullptr;
    for (const auto& node : projects->children()) {
        if (node->name() == QLatin1String("app"))
            app = node.get();
    }
    ASSERT_NE(app, nullptr);
    map().toggleMark(app);
    clickAt(window, bubble(window, QStringLiteral("Projects")));
    ASSERT_EQ(map().current(), projects);
    map().deleteMarked(); // lands while the zoom runs
    (void)window.grabWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));
    (void)window.grabWindow();

    map().goUp();
    map().rescan(); // a new tree replaces the old one in the middle of the zoom out
    (void)window.grabWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
    QTest::qWait(Settle);
    const QImage after = window.grabWindow();
    EXPECT_GT(bubbles(window).property("bubbleCount").toInt(), 10);
    EXPECT_GT(distinctColours(after), 40);
}
