#include "app/support/UiWorld.h"

#include "app/map/BubblePainter.h"
#include "app/map/MapPicture.h"
#include "core/scanner/FileNode.h"
#include "models/map/MapModel.h"

#include <QFont>
#include <QFontMetricsF>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <functional>

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
        const std::pair<const char*, qint64> files[] = {
            {"Movies/trip.mov", 22 * MiB},          {"Movies/clip.mp4", 8 * MiB},
            {"Projects/app/build.o", 9 * MiB},      {"Projects/app/notes.md", 3 * MiB},
            {"Projects/archive.zip", 7 * MiB},      {"Projects/site/node_modules/lib.js", 5 * MiB},
            {"Music/song.mp3", 6 * MiB},            {"Pictures/beach.png", 5 * MiB},
            {"Pictures/city.jpg", 4 * MiB},         {"Downloads/installer.dmg", 14 * MiB},
            {"Library/Caches/app/cache.db", 8 * MiB}, {"backup.tar", 10 * MiB},
            {"Documents/letter.pdf", 3 * MiB},      {"a.txt", MiB + MiB / 2},
            {"b.txt", MiB + MiB / 2},               {"c.txt", MiB + MiB / 2}};
        for (const auto& [name, size] : files)
            file(QStringLiteral("home/") + QString::fromUtf8(name), size);
    }

    MapModel& map() { return *state().map(); }

    const FileNode* child(const FileNode& parent, QStringView name)
    {
        for (const auto& node : parent.children()) {
            if (node->name() == name)
                return node.get();
        }
        return nullptr;
    }
    const FileNode* child(QStringView name) { return child(*map().current(), name); }

    // The centre of a child bubble in window coordinates.
    QPoint bubble(QQuickWindow& window, const QString& name)
    {
        QQuickItem& bubbles = named(window, QStringLiteral("bubbleMap"));
        QRectF rect;
        QMetaObject::invokeMethod(&bubbles, "childBubble", Q_RETURN_ARG(QRectF, rect), Q_ARG(QString, name));
        EXPECT_FALSE(rect.isEmpty()) << "no bubble named " << name.toStdString();
        return bubbles.mapToScene(rect.center()).toPoint();
    }
    QPoint bubble(QQuickWindow& window, const char* name) { return bubble(window, QString::fromUtf8(name)); }

    // The pointer comes from elsewhere, so that the move is a move even where it already was.
    static void hover(QQuickWindow& window, QPoint at)
    {
        QTest::mouseMove(&window, QPoint(1, 1));
        QTest::mouseMove(&window, at);
        QTest::qWait(50);
    }

    static void clickAt(QQuickWindow& window, QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        hover(window, at);
        QTest::mouseClick(&window, button, Qt::NoModifier, at);
        QTest::qWait(50);
    }

    // A popup (a menu, a confirmation) of the window; popups are objects, not items.
    static QObject* popup(QQuickWindow& window, const char* name)
    {
        QObject* found = window.contentItem()->findChild<QObject*>(QString::fromUtf8(name));
        return found ? found : window.findChild<QObject*>(QString::fromUtf8(name));
    }

    // How many pixels (of every third row and column, where `where` holds) differ by more than
    // the shade that painting an edge again may leave.
    static int differing(const QImage& a, const QImage& b, const std::function<bool(int, int)>& where = {})
    {
        int count = 0;
        for (int y = 0; y < std::min(a.height(), b.height()); y += 3) {
            for (int x = 0; x < std::min(a.width(), b.width()); x += 3) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                const int most = std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                           std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
                count += most > 2 && (!where || where(x, y));
            }
        }
        return count;
    }

    static void resize(QQuickWindow& window, QSize size)
    {
        window.resize(size);
        QTest::qWait(Settle);
    }
};

} // namespace

// One pass through the map as a user takes it: the empty state, a disk scan stopped, the home
// analysed, hovering and the inspector at both sizes, taps, deleting the marks after asking, a
// protected folder's menu, and a deletion and a new tree landing in the middle of a zoom.
TEST_F(MapViewsTest, WalkThroughTheMap)
{
    map().setWorkspace(&m_workspace);
    state().setSection(QStringLiteral("map"));
    QQuickWindow& window = mainWindow();
    resize(window, DefaultSize);
    QQuickItem& empty = named(window, QStringLiteral("mapEmpty"));
    QQuickItem& goUp = named(window, QStringLiteral("goUp"));
    EXPECT_TRUE(empty.isVisible() && named(window, QStringLiteral("inspectorPlaceholder")).isVisible());
    EXPECT_FALSE(goUp.isEnabled());
    snapshots(window, QStringLiteral("map-empty"));

    // The whole disk takes long enough to watch; "Detener" stands where "Escanear de nuevo" was.
    map().scanDisk();
    ASSERT_TRUE(QTest::qWaitFor([this] { return map().scannedFiles() > 0; }, 10000));
    QQuickItem& stop = named(window, QStringLiteral("stop"));
    QQuickItem& rescan = named(window, QStringLiteral("rescan"));
    EXPECT_TRUE(named(window, QStringLiteral("mapScanning")).isVisible() && stop.isVisible());
    EXPECT_FALSE(rescan.isVisible());
    snapshots(window, QStringLiteral("map-scanning"));
    click(stop);
    EXPECT_FALSE(map().isScanning());
    EXPECT_TRUE(rescan.isVisible() && empty.isVisible());

    click(named(window, QStringLiteral("analyzeHome")));
    ASSERT_TRUE(QTest::qWaitFor([this] { return map().hasTree() && !map().isScanning(); }, 10000));
    resize(window, DefaultSize);
    EXPECT_FALSE(empty.isVisible());
    EXPECT_TRUE(named(window, QStringLiteral("bubbleMap")).isVisible());
    EXPECT_FALSE(goUp.isEnabled()) << "at the root there is no level above";

    // The hovered bubble follows the pointer at both sizes, and leaving the bubbles clears it.
    ASSERT_TRUE(child(u"backup.tar") && child(u"Downloads"));
    map().toggleMark(child(u"backup.tar"));
    map().toggleMark(child(u"Downloads")->children().front().get());
    QTest::qWait(Settle); // the selection bar comes up
    hover(window, bubble(window, "Movies"));
    hover(window, bubble(window, "Projects"));
    ASSERT_NE(map().hovered(), nullptr);
    EXPECT_EQ(map().hovered()->name(), QStringLiteral("Projects"));
    // The pointer repaints only the bubbles it left and entered, and leaves the picture a whole
    // painting gives.
    QQuickItem& bubbles = named(window, QStringLiteral("bubbleMap"));
    const auto painted = [&bubbles] { return !bubbles.property("painting").toBool(); };
    ASSERT_TRUE(QTest::qWaitFor(painted, 5000)); // a slow (sanitizer) build may still paint the marks
    const QImage repainted = window.grabWindow();
    bubbles.setProperty("zoomDuration", bubbles.property("zoomDuration").toInt() + 1);
    ASSERT_TRUE(bubbles.property("painting").toBool());
    ASSERT_TRUE(QTest::qWaitFor(painted, 5000));
    EXPECT_EQ(differing(window.grabWindow(), repainted), 0);
    EXPECT_GT(distinctColours(snapshot(window, DefaultSize, QStringLiteral("map-home-default"))), 40)
        << "the map looks empty";
    hover(window, bubble(window, "Projects"));
    snapshot(window, MinimumSize, QStringLiteral("map-home-minimum"));
    QTest::mouseMove(&window, QPoint(window.width() - 320, window.height() - 10));
    QTest::qWait(50);
    EXPECT_EQ(map().hovered(), nullptr);
    // The inspector, without marks, shows the kind bar; the smaller window moves the bubbles, so
    // the pointer has to find the folder again.
    map().unmarkAll();
    resize(window, DefaultSize);
    hover(window, bubble(window, "Projects"));
    named(window, QStringLiteral("kindBreakdown"));
    snapshot(window, DefaultSize, QStringLiteral("map-inspector-default"));
    resize(window, MinimumSize);
    hover(window, bubble(window, "Projects"));
    EXPECT_EQ(map().inspectedName(), QStringLiteral("Projects"));
    snapshot(window, MinimumSize, QStringLiteral("map-inspector-minimum"));
    resize(window, DefaultSize);

    // A tapped file is marked and the selection bar comes; an aggregate and a protected folder
    // with nothing to open do nothing; a folder opens and then there is a level above.
    clickAt(window, bubble(window, "backup.tar"));
    ASSERT_EQ(map().markedCount(), 1);
    EXPECT_TRUE(map().isMarked(child(u"backup.tar")));
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("selectionBar")).isVisible());
    const auto& top = map().current()->children();
    const auto aggregate = std::find_if(top.begin(), top.end(), [](const auto& node) { return node->isAggregate(); });
    ASSERT_NE(aggregate, top.end());
    clickAt(window, bubble(window, (*aggregate)->name()));
    clickAt(window, bubble(window, "Documents"));
    EXPECT_EQ(map().markedCount(), 1);
    EXPECT_EQ(map().current(), map().root());

    // Once the zoom into a folder ends, the map draws that folder alone: around its circle the
    // map shows what it showed around the root's, and nothing spills over the window's other
    // parts. The pointer rests on the inspector, which changes with the folder anyway.
    const QPoint aside(window.width() - 320, window.height() - 10);
    QTest::mouseMove(&window, aside);
    const QImage atRoot = snapshot(window, DefaultSize, QStringLiteral("map-home-at-rest"));
    clickAt(window, bubble(window, "Projects"));
    EXPECT_EQ(map().currentName(), QStringLiteral("Projects"));
    EXPECT_TRUE(goUp.isEnabled());
    QTest::mouseMove(&window, aside);
    QTest::qWait(Settle + 200); // the zoom ends
    const QImage opened = snapshot(window, DefaultSize, QStringLiteral("map-folder-at-rest"));
    const QRectF area = bubbles.mapRectToScene(QRectF(0, 0, bubbles.width(), bubbles.height()));
    const double frame = std::min(area.width(), area.height()) / 2 - 18;
    const int changed = differing(atRoot, opened, [&](int x, int y) {
        const QPointF from = QPointF(x, y) - area.center();
        const bool beside = x < area.left() - 2 && y > area.top();
        return beside || (area.contains(x, y) && std::hypot(from.x(), from.y()) > frame);
    });
    EXPECT_EQ(changed, 0) << "pixels around the opened folder or beside the map changed";

    // An inspector row's circle marks its folder and shows it, and does not open the folder.
    QQuickItem* circle = nullptr;
    for (QQuickItem* item : drawn(window)) {
        if (item->objectName() == u"rowCheck" && item->parentItem()->parentItem()->property("name").toString() == u"app")
            circle = item;
    }
    ASSERT_NE(circle, nullptr);
    click(*circle);
    EXPECT_TRUE(map().isMarked(child(u"app")));
    EXPECT_EQ(circle->property("mode").toString(), QStringLiteral("on"));
    EXPECT_EQ(map().currentName(), QStringLiteral("Projects"));
    click(*circle);
    EXPECT_EQ(circle->property("mode").toString(), QStringLiteral("off"));
    click(goUp);
    EXPECT_EQ(map().current(), map().root());

    // Deleting the marks asks first and removes only them.
    click(named(window, QStringLiteral("deleteMarked")));
    QTest::qWait(Settle);
    EXPECT_TRUE(exists(QStringLiteral("home/backup.tar"))) << "nothing without the confirmation";
    QObject* confirmation = popup(window, "mapConfirmation");
    ASSERT_NE(confirmation, nullptr);
    EXPECT_TRUE(confirmation->property("visible").toBool());
    QMetaObject::invokeMethod(confirmation->findChild<QQuickItem*>(QStringLiteral("confirmButton")), "clicked");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting() && map().markedCount() == 0; }, 10000));
    EXPECT_FALSE(exists(QStringLiteral("home/backup.tar")));
    EXPECT_TRUE(exists(QStringLiteral("home/Movies/trip.mov")));

    // A protected folder's menu offers nothing that deletes; "Mostrar en Finder" hands the
    // workspace the node itself.
    clickAt(window, bubble(window, "Movies"), Qt::RightButton);
    QObject* menu = popup(window, "nodeMenu");
    ASSERT_NE(menu, nullptr);
    // A slow (sanitizer) build may take longer than an animation to open it.
    ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->property("opened").toBool(); }, 5000));
    EXPECT_EQ(map().menuName(), QStringLiteral("Movies"));
    const auto entry = [menu](const char* name) { return menu->findChild<QQuickItem*>(QString::fromUtf8(name)); };
    ASSERT_TRUE(entry("menuProtected") && entry("menuMark") && entry("menuOpen") && entry("menuReveal"));
    EXPECT_EQ((QList<bool>{entry("menuProtected")->isVisible(), entry("menuProtected")->isEnabled(),
                           entry("menuMark")->isVisible(), entry("menuOpen")->isVisible()}),
              (QList<bool>{true, false, false, true}));
    snapshot(window, DefaultSize, QStringLiteral("map-protected-menu-default"));
    QMetaObject::invokeMethod(entry("menuReveal"), "triggered");
    EXPECT_EQ(m_workspace.revealedPaths, QStringList{m_roots.home + QStringLiteral("/Movies")});
    EXPECT_EQ(map().markedCount(), 0);

    // The picture keeps pointing into the tree while it zooms: a deletion and a new scan that
    // land in the middle of a zoom leave it drawing only what still exists.
    const FileNode* projects = child(u"Projects");
    ASSERT_NE(projects, nullptr);
    map().toggleMark(child(*projects, u"app"));
    clickAt(window, bubble(window, "Projects"));
    ASSERT_EQ(map().current(), projects);
    map().deleteMarked();
    (void)window.grabWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isDeleting(); }, 10000));
    (void)window.grabWindow();
    map().goUp();
    map().rescan();
    (void)window.grabWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !map().isScanning(); }, 10000));
    QTest::qWait(Settle);
    EXPECT_GT(named(window, QStringLiteral("bubbleMap")).property("bubbleCount").toInt(), 10);
    EXPECT_GT(distinctColours(window.grabWindow()), 40);
}

// A bubble's name is recognised by its start: cut at its end, or left out when only a couple of
// letters would be left.
TEST(BubbleLabel, ANameThatDoesNotFitIsCutAtItsEndOrLeftOut)
{
    const QFontMetricsF metrics{QFont()};
    const QString name = QStringLiteral("Documentos del trabajo");
    EXPECT_EQ(BubblePainter::fittedName(name, metrics, 1000), name);
    const QString cut =
        BubblePainter::fittedName(name, metrics, metrics.horizontalAdvance(QStringLiteral("Documentos…")));
    EXPECT_TRUE(cut.startsWith(QStringLiteral("Docu")) && cut.endsWith(QChar(0x2026))) << cut.toStdString();
    EXPECT_EQ(BubblePainter::fittedName(name, metrics, metrics.horizontalAdvance(QStringLiteral("Do…"))), QString());
}

// During a zoom a picture painted under one camera is shown under another: moved and scaled with
// it, cut to the view, never reaching beyond it. A 100×50 view with a margin of 5 fits a camera's
// radius in 20 points; the image holds two pixels per point.
TEST(MapPicture, LandsWhereTheCameraPutsItAndOnlyInsideTheView)
{
    MapPicture picture{QImage(200, 100, QImage::Format_ARGB32_Premultiplied), {0, 0, 1}, 1};
    picture.image.setDevicePixelRatio(2);
    const struct
    {
        PackedCircle camera;
        QRectF target;
        QRectF source;
    } rows[] = {
        {{0, 0, 1}, {0, 0, 100, 50}, {0, 0, 200, 100}},      // its own camera: all of it, as it is
        {{0.5, 0, 0.5}, {0, 0, 100, 50}, {70, 25, 100, 50}}, // zoomed into a circle right of centre
        {{0, 0, 2}, {25, 12.5, 50, 25}, {0, 0, 200, 100}},   // zoomed out: half as large, centred
        {{10, 0, 1}, {}, {}},                                // far away: nothing of it shows
    };
    for (const auto& row : rows) {
        const MapPicture::Placement placed = picture.placed(row.camera, QSizeF(100, 50), 5);
        EXPECT_EQ(placed.target, row.target) << row.camera.x << " " << row.camera.r;
        EXPECT_EQ(placed.source, row.source) << row.camera.x << " " << row.camera.r;
    }
}
