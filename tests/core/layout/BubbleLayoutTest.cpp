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

void expectCircle(const PackedCircle& actual, const PackedCircle& expected)
{
    EXPECT_NEAR(actual.x, expected.x, 1e-12);
    EXPECT_NEAR(actual.y, expected.y, 1e-12);
    EXPECT_NEAR(actual.r, expected.r, 1e-12);
}

} // namespace

TEST(BubbleLayout, ChildrenFillNinetyFourPercentOfTheirParentAndComposeThroughTheLevels)
{
    // Two equal children sit side by side; a lone child is centred; the root is the unit circle;
    // an empty folder packs nothing.
    FileNode root(QStringLiteral("root"), QStringLiteral("/r"), FileNode::Type::Directory);
    EXPECT_TRUE(BubbleLayout().packedChildren(root).empty());
    FileNode* folder = addChild(root, 500, FileNode::Type::Directory);
    addChild(root, 500);
    const FileNode* inner = addChild(*folder, 300);

    BubbleLayout layout;
    const auto& packed = layout.packedChildren(root);
    ASSERT_EQ(packed.size(), 2u);
    expectCircle(packed[0].second, {-0.47, 0, 0.47});
    expectCircle(packed[1].second, {0.47, 0, 0.47});
    EXPECT_EQ(layout.circle(root), (PackedCircle{0, 0, 1}));
    expectCircle(layout.circle(*folder), {-0.47, 0, 0.47});
    expectCircle(layout.circle(*inner), {-0.47, 0, 0.47 * 0.94});
}

TEST(BubbleLayout, TwoHundredChildrenDrawTheEightyLargest)
{
    FileNode root(QStringLiteral("root"), QStringLiteral("/r"), FileNode::Type::Directory);
    for (int i = 0; i < 200; ++i)
        addChild(root, 10'000 - i); // children arrive largest first, as a scan sorts them
    BubbleLayout layout;
    const auto& packed = layout.packedChildren(root);
    ASSERT_EQ(packed.size(), 80u);
    double outer = 0;
    for (size_t i = 0; i < packed.size(); ++i) {
        EXPECT_EQ(packed[i].first, root.children()[i].get());
        const PackedCircle& c = packed[i].second;
        outer = std::max(outer, std::hypot(c.x, c.y) + c.r);
    }
    EXPECT_NEAR(outer, 0.94, 1e-12);
    // A child that is not drawn has no place of its own.
    EXPECT_EQ(layout.circle(*root.children()[150]), (PackedCircle{0, 0, 1}));
}

TEST(BubbleLayout, CachesLiveUntilTheRevisionChanges)
{
    FileNode root(QStringLiteral("root"), QStringLiteral("/r"), FileNode::Type::Directory);
    addChild(root, 900);
    FileNode* second = addChild(root, 100);
    BubbleLayout layout;
    layout.reset(7);
    const PackedCircle circleBefore = layout.circle(*second);

    // The tree changes; as long as the revision stays, the cached packing is what is drawn.
    auto removed = root.remove(second);
    layout.reset(7);
    EXPECT_EQ(layout.packedChildren(root).size(), 2u);
    EXPECT_EQ(layout.circle(*second), circleBefore);

    layout.reset(8);
    const auto& after = layout.packedChildren(root);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].second, (PackedCircle{0, 0, 0.94}));
}
