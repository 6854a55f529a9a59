#include "models/map/MapScene.h"
#include "core/scanner/FileNode.h"
#include "models/map/MapTexts.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace nubo;

namespace {

// Trees built node by node, the way the scanner assembles them: sizes set, children largest
// first.
FileNode* add(FileNode& parent, const QString& name, FileNode::Type type, qint64 size)
{
    auto child = std::make_unique<FileNode>(name, parent.path() + QLatin1Char('/') + name, type);
    child->setSize(size);
    child->setItemCount(type == FileNode::Type::Directory ? 0 : 1);
    return parent.addChild(std::move(child));
}

std::unique_ptr<FileNode> folder(const QString& path)
{
    return std::make_unique<FileNode>(path.section(QLatin1Char('/'), -1), path, FileNode::Type::Directory);
}

// A home with a big project folder (three files inside), a movie file, a package and an
// aggregate of small files.
struct Home
{
    std::unique_ptr<FileNode> root = folder(QStringLiteral("/Users/ana"));
    FileNode* projects = nullptr;

    Home()
    {
        projects = add(*root, QStringLiteral("Projects"), FileNode::Type::Directory, 600);
        add(*projects, QStringLiteral("a.o"), FileNode::Type::File, 300);
        add(*projects, QStringLiteral("b.o"), FileNode::Type::File, 200);
        add(*projects, QStringLiteral("c.o"), FileNode::Type::File, 100);
        add(*root, QStringLiteral("trip.mov"), FileNode::Type::File, 300);
        auto bundle = std::make_unique<FileNode>(QStringLiteral("Tool.app"), QStringLiteral("/Users/ana/Tool.app"),
                                                 FileNode::Type::Directory, true);
        bundle->setSize(200);
        add(*root->addChild(std::move(bundle)), QStringLiteral("Contents"), FileNode::Type::Directory, 200);
        add(*root, QStringLiteral("3 archivos pequeños"), FileNode::Type::Aggregate, 100);
        root->setSize(1200);
    }
};

int indexOf(const std::vector<MapScene::Bubble>& bubbles, const FileNode* node)
{
    for (size_t i = 0; i < bubbles.size(); ++i) {
        if (bubbles[i].node == node)
            return int(i);
    }
    return -1;
}

QPointF centreOf(const MapScene::Bubble& bubble)
{
    return {bubble.circle.x, bubble.circle.y};
}

} // namespace

TEST(MapSceneTest, OnlyChildrenThatOpenShowTheirOwnChildren)
{
    Home home;
    BubbleLayout layout;
    const auto bubbles = MapScene::build(layout, *home.root);

    ASSERT_EQ(bubbles.size(), 1u + 4u + 3u); // the frame, four children, the project's three files
    EXPECT_EQ(bubbles.front().role, MapScene::Role::Context);
    EXPECT_EQ(bubbles.front().node, home.root.get());
    int grandchildren = 0;
    for (const auto& bubble : bubbles) {
        if (bubble.role != MapScene::Role::Grandchild)
            continue;
        ++grandchildren;
        // Packages, files and aggregates never show what is inside them.
        EXPECT_EQ(bubble.node->parent(), home.projects);
        EXPECT_EQ(bubbles[size_t(bubble.holder)].node, home.projects);
    }
    EXPECT_EQ(grandchildren, 3);
}

TEST(MapSceneTest, HitTestingFindsTheDeepestBubbleAndActsOnTheChildThatHoldsIt)
{
    Home home;
    BubbleLayout layout;
    // Inside a child folder: its own circles are placed inside the child's absolute circle.
    const auto bubbles = MapScene::build(layout, *home.projects);
    const int a = indexOf(bubbles, home.projects->children()[0].get());
    ASSERT_GE(a, 0);
    EXPECT_EQ(MapScene::hit(bubbles, centreOf(bubbles[size_t(a)])), a);
    EXPECT_EQ(MapScene::target(bubbles, a), a);

    // One level up the same file is a grandchild: a tap on it acts on the folder holding it.
    const auto top = MapScene::build(layout, *home.root);
    const int file = indexOf(top, home.projects->children()[0].get());
    const int projects = indexOf(top, home.projects);
    ASSERT_GE(file, 0);
    ASSERT_EQ(top[size_t(file)].role, MapScene::Role::Grandchild);
    EXPECT_EQ(MapScene::hit(top, centreOf(top[size_t(file)])), file);
    EXPECT_EQ(MapScene::target(top, file), projects);

    // Just inside the rim of a child, between its grandchildren: the child itself.
    const PackedCircle p = top[size_t(projects)].circle;
    const QPointF rim(p.x + p.r * 0.999, p.y);
    EXPECT_EQ(MapScene::hit(top, rim), projects);
    // Just outside every child but inside the frame: the frame, which nothing acts on.
    EXPECT_EQ(MapScene::hit(top, QPointF(0, 0.995)), 0);
    EXPECT_EQ(MapScene::target(top, 0), -1);
    // Outside the frame, and out-of-range indices: nothing.
    EXPECT_EQ(MapScene::hit(top, QPointF(1.01, 0)), -1);
    EXPECT_EQ(MapScene::target(top, -1), -1);
    EXPECT_EQ(MapScene::target(top, int(top.size())), -1);
}

TEST(MapSceneTest, TheCameraCircleIsCentredAndFillsTheShorterSideLessTheMargin)
{
    const PackedCircle camera{0.25, -0.5, 0.2};
    const MapTransform wide(camera, QSizeF(800, 500), 10);
    const QPointF centre = wide.toView(camera.x, camera.y);
    EXPECT_DOUBLE_EQ(centre.x(), 400);
    EXPECT_DOUBLE_EQ(centre.y(), 250);
    EXPECT_DOUBLE_EQ(wide.toView(camera.r), 240); // half of 500, less 10
    // The top of the camera circle lands on the margin.
    EXPECT_NEAR(wide.toView(camera.x, camera.y - camera.r).y(), 10, 1e-9);

    const MapTransform tall(camera, QSizeF(300, 900), 0);
    EXPECT_DOUBLE_EQ(tall.toView(camera.r), 150);

    // Into unit coordinates and back, anywhere in the view.
    for (const QPointF view : {QPointF(0, 0), QPointF(799, 3), QPointF(123.5, 456.25)}) {
        const QPointF unit = wide.toUnit(view);
        const QPointF back = wide.toView(unit.x(), unit.y());
        EXPECT_NEAR(back.x(), view.x(), 1e-9);
        EXPECT_NEAR(back.y(), view.y(), 1e-9);
    }

    // A view smaller than its margins, or an empty circle, shows nothing instead of dividing by 0.
    const MapTransform tiny(camera, QSizeF(10, 10), 20);
    EXPECT_EQ(tiny.scale(), 0);
    EXPECT_EQ(tiny.toUnit(QPointF(5, 5)), QPointF(camera.x, camera.y));
    EXPECT_EQ(MapTransform(PackedCircle{0, 0, 0}, QSizeF(100, 100), 0).scale(), 0);
}

TEST(MapSceneTest, AZoomKeepsOnePointStillAndEndsExactlyOnTheNewFolder)
{
    const PackedCircle parent{0, 0, 1};
    const PackedCircle child{0.4, -0.3, 0.25};
    const QSizeF view(1000, 800);

    const PackedCircle start = MapTransform::between(parent, child, 0);
    const PackedCircle end = MapTransform::between(parent, child, 1);
    EXPECT_NEAR(start.x, parent.x, 1e-12);
    EXPECT_NEAR(start.r, parent.r, 1e-12);
    EXPECT_NEAR(end.x, child.x, 1e-12);
    EXPECT_NEAR(end.y, child.y, 1e-12);
    EXPECT_NEAR(end.r, child.r, 1e-12);

    // The still point: where the parent's and the child's pictures put the same unit point.
    const double fx = (parent.x * child.r - child.x * parent.r) / (child.r - parent.r);
    const double fy = (parent.y * child.r - child.y * parent.r) / (child.r - parent.r);
    const QPointF still = MapTransform(parent, view, 16).toView(fx, fy);
    double previous = parent.r;
    for (const double t : {0.1, 0.35, 0.5, 0.8}) {
        const PackedCircle camera = MapTransform::between(parent, child, t);
        const QPointF now = MapTransform(camera, view, 16).toView(fx, fy);
        EXPECT_NEAR(now.x(), still.x(), 1e-6) << t;
        EXPECT_NEAR(now.y(), still.y(), 1e-6) << t;
        EXPECT_LT(camera.r, previous); // always closer in
        previous = camera.r;
    }
    // Out of range progress stays at the ends; equal radii pan in a line.
    EXPECT_EQ(MapTransform::between(parent, child, -1), start);
    EXPECT_NEAR(MapTransform::between(parent, child, 2).r, child.r, 1e-12);
    const PackedCircle pan = MapTransform::between({0, 0, 0.5}, {1, 1, 0.5}, 0.5);
    EXPECT_NEAR(pan.x, 0.5, 1e-12);
    EXPECT_NEAR(pan.r, 0.5, 1e-12);
}

TEST(MapTextsTest, BreakdownKeepsSixLargestChildrenAndAGrayRestOfWhatTheyLeave)
{
    auto root = folder(QStringLiteral("/Users/ana/Work"));
    qint64 size = 800;
    for (const char* name : {"a.mov", "b.png", "c.mp3", "d.zip", "e.pdf", "f.app", "g.o", "h.txt"}) {
        add(*root, QString::fromUtf8(name), FileNode::Type::File, size);
        size -= 100;
    }
    root->setSize(3600);
    auto segments = MapTexts::breakdown(*root);
    ASSERT_EQ(segments.size(), 7u);
    EXPECT_EQ(segments[0].kind, FileKind::Video);
    EXPECT_EQ(segments[5].kind, FileKind::Apps);
    double sum = 0;
    for (const auto& segment : segments) {
        EXPECT_EQ(segment.remainder, &segment == &segments.back());
        sum += segment.fraction;
    }
    EXPECT_NEAR(segments[6].fraction, 300.0 / 3600.0, 1e-12);
    EXPECT_NEAR(sum, 1.0, 1e-12);

    // Children without bytes draw nothing; the node's own bytes are the gray rest.
    auto hollow = folder(QStringLiteral("/x/hollow"));
    add(*hollow, QStringLiteral("a"), FileNode::Type::Directory, 0);
    add(*hollow, QStringLiteral("b.txt"), FileNode::Type::File, 0);
    hollow->setSize(4096);
    segments = MapTexts::breakdown(*hollow);
    ASSERT_EQ(segments.size(), 1u);
    EXPECT_TRUE(segments[0].remainder);
    EXPECT_DOUBLE_EQ(segments[0].fraction, 1.0);

    // Children that add up to the node leave no rest; an empty node shows no bar at all.
    auto exact = folder(QStringLiteral("/x/exact"));
    add(*exact, QStringLiteral("a.mov"), FileNode::Type::File, 700);
    add(*exact, QStringLiteral("b.mov"), FileNode::Type::File, 300);
    exact->setSize(1000);
    EXPECT_EQ(MapTexts::breakdown(*exact).size(), 2u);
    EXPECT_TRUE(MapTexts::breakdown(*folder(QStringLiteral("/x/empty"))).empty());
}

TEST(MapTextsTest, ScanningPathIsShortenedWithoutBreakingCharacters)
{
    const QString home = QStringLiteral("/Users/ana");
    const QString deep =
        QStringLiteral("/Users/ana/") + QStringLiteral("carpeta/").repeated(20) + QStringLiteral("final");
    const QString shown = MapTexts::scanningPath(deep, home, 40);
    EXPECT_LE(shown.size(), 40);
    EXPECT_TRUE(shown.startsWith(QStringLiteral("~/")));
    EXPECT_TRUE(shown.endsWith(QStringLiteral("/final")));
    EXPECT_TRUE(shown.contains(QChar(0x2026)));

    // A character outside the basic plane is never cut in half.
    const QString emoji = QStringLiteral("/Users/ana/") + QString::fromUtf8("\xF0\x9F\x93\x81").repeated(40);
    const QString cut = MapTexts::scanningPath(emoji, home, 30);
    for (qsizetype i = 0; i < cut.size(); ++i) {
        if (cut.at(i).isHighSurrogate()) {
            EXPECT_TRUE(i + 1 < cut.size() && cut.at(i + 1).isLowSurrogate()) << i;
        }
        if (cut.at(i).isLowSurrogate()) {
            EXPECT_TRUE(i > 0 && cut.at(i - 1).isHighSurrogate()) << i;
        }
    }
}
