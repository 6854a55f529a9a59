#include "core/layout/BubbleLayout.h"

#include "core/scanner/FileNode.h"

#include <gtest/gtest.h>

#include <cmath>

using nubo::BubbleLayout;
using nubo::FileNode;
using nubo::PackedCircle;

namespace {

FileNode* addChild(FileNode& parent, qint64 size, FileNode::Type type = FileNode::Type::File)
{
    const QString name = QString::number(parent.children().size());
    auto node = std::make_unique<FileNode>(name, parent.path() + QLatin1Char('/') + name, type);
    node->setSize(size);
    return parent.addChild(std::move(node));
}

FileNode makeRoot()
{
    return FileNode(QStringLiteral("root"), QStringLiteral("/r"), FileNode::Type::Directory);
}

} // namespace

TEST(BubbleLayout, OneChildFillsNinetyFourPercentAndTwoEqualChildrenShareIt)
{
    FileNode one = makeRoot();
    addChild(one, 1000);
    BubbleLayout layout;
    const auto& single = layout.packedChildren(one);
    ASSERT_EQ(single.size(), 1u);
    EXPECT_EQ(single[0].second, (PackedCircle{0, 0, 0.94}));

    FileNode two = makeRoot();
    addChild(two, 500);
    addChild(two, 500);
    const auto& pair = layout.packedChildren(two);
    ASSERT_EQ(pair.size(), 2u);
    EXPECT_DOUBLE_EQ(pair[0].second.r, 0.47);
    EXPECT_DOUBLE_EQ(pair[1].second.r, 0.47);
    EXPECT_DOUBLE_EQ(pair[0].second.x, -0.47);
    EXPECT_DOUBLE_EQ(pair[1].second.x, 0.47);
    EXPECT_DOUBLE_EQ(pair[0].second.y, 0);
}

TEST(BubbleLayout, ZeroSizesAndEmptyFolders)
{
    FileNode root = makeRoot();
    EXPECT_TRUE(BubbleLayout().packedChildren(root).empty());
    addChild(root, 0);
    addChild(root, 0);
    BubbleLayout layout;
    for (const auto& [node, c] : layout.packedChildren(root)) {
        EXPECT_TRUE(std::isfinite(c.x) && std::isfinite(c.r));
        EXPECT_GT(c.r, 0);
    }
}

TEST(BubbleLayout, TwoHundredChildrenDrawTheEightyLargest)
{
    FileNode root = makeRoot();
    for (int i = 0; i < 200; ++i)
        addChild(root, 10'000 - i); // children arrive largest first, as a scan sorts them
    BubbleLayout layout;
    const auto& packed = layout.packedChildren(root);
    ASSERT_EQ(packed.size(), 80u);
    for (size_t i = 0; i < packed.size(); ++i)
        EXPECT_EQ(packed[i].first, root.children()[i].get());
    double outer = 0;
    for (const auto& [node, c] : packed)
        outer = std::max(outer, std::hypot(c.x, c.y) + c.r);
    EXPECT_NEAR(outer, 0.94, 1e-12);

    // A child that is not drawn has no place of its own.
    EXPECT_EQ(layout.circle(*root.children()[150]), (PackedCircle{0, 0, 1}));
}

TEST(BubbleLayout, AbsoluteCirclesComposeThroughTheLevels)
{
    FileNode root = makeRoot();
    FileNode* big = addChild(root, 900, FileNode::Type::Directory);
    addChild(root, 400);
    FileNode* inner = addChild(*big, 600);
    addChild(*big, 300);

    BubbleLayout layout;
    EXPECT_EQ(layout.circle(root), (PackedCircle{0, 0, 1}));
    const PackedCircle parent = layout.circle(*big);
    EXPECT_EQ(parent, layout.packedChildren(root)[0].second); // the root is the unit circle
    const PackedCircle local = layout.packedChildren(*big)[0].second;
    const PackedCircle absolute = layout.circle(*inner);
    EXPECT_DOUBLE_EQ(absolute.x, parent.x + parent.r * local.x);
    EXPECT_DOUBLE_EQ(absolute.y, parent.y + parent.r * local.y);
    EXPECT_DOUBLE_EQ(absolute.r, parent.r * local.r);
}

TEST(BubbleLayout, CachesLiveUntilTheRevisionChanges)
{
    FileNode root = makeRoot();
    addChild(root, 900);
    FileNode* second = addChild(root, 100);
    BubbleLayout layout;
    layout.reset(7);
    const auto before = layout.packedChildren(root);
    const PackedCircle circleBefore = layout.circle(*second);

    // The tree changes; as long as the revision stays, the cached packing is what is drawn.
    auto removed = root.remove(second);
    layout.reset(7);
    EXPECT_EQ(layout.packedChildren(root).size(), 2u);
    EXPECT_EQ(layout.circle(*second), circleBefore);

    layout.reset(8);
    EXPECT_EQ(layout.revision(), 8);
    const auto& after = layout.packedChildren(root);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].second, (PackedCircle{0, 0, 0.94}));
    EXPECT_NE(after[0].second, before[0].second);
}
