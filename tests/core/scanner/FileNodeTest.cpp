#include "core/scanner/FileNode.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

using nubo::FileNode;

namespace {

FileNode* addNode(FileNode& parent, const char* name, FileNode::Type type, qint64 size, qint64 files,
                  bool package = false)
{
    auto node = std::make_unique<FileNode>(
        QString::fromUtf8(name), parent.path() + QLatin1Char('/') + QString::fromUtf8(name), type, package);
    node->setSize(size);
    node->setItemCount(files);
    return parent.addChild(std::move(node));
}

} // namespace

// Removing a child takes its totals off every ancestor and hands it back; a node that is not (or
// no longer) a child changes nothing.
TEST(FileNode, RemoveLowersEveryAncestorAndHandsTheChildBack)
{
    FileNode root(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    root.setSize(1000);
    root.setItemCount(10);
    FileNode* library = addNode(root, "Library", FileNode::Type::Directory, 700, 8);
    FileNode* caches = addNode(*library, "Caches", FileNode::Type::Directory, 500, 6);
    FileNode* blob = addNode(*caches, "blob", FileNode::Type::File, 300, 1);
    addNode(*caches, "other", FileNode::Type::File, 200, 1);
    EXPECT_EQ(blob->ancestors(), (std::vector<const FileNode*>{&root, library, caches, blob}));

    auto removed = caches->remove(blob);
    ASSERT_EQ(removed.get(), blob);
    EXPECT_EQ(removed->parent(), nullptr);
    EXPECT_EQ(std::tuple(caches->children().size(), caches->size(), library->size(), root.size(),
                         caches->itemCount(), root.itemCount()),
              std::tuple(1u, 200, 400, 700, 5, 9));
    EXPECT_EQ(caches->remove(blob), nullptr);
    EXPECT_EQ(root.remove(caches), nullptr);
    EXPECT_EQ(root.size(), 700);

    ASSERT_TRUE(library->remove(caches));
    EXPECT_EQ(std::tuple(root.size(), root.itemCount(), library->canDrill()), std::tuple(500, 4, false));
    // An empty folder counts one item wherever it is summed, so its removal takes one off.
    const FileNode* empty = addNode(*library, "Empty", FileNode::Type::Directory, 0, 0);
    ASSERT_TRUE(library->remove(empty));
    EXPECT_EQ(root.itemCount(), 3);
}

// Only folders that are not bundles, with something inside, can be opened; an empty folder still
// counts as one item.
TEST(FileNode, OnlyFoldersThatAreNotBundlesCanBeOpened)
{
    FileNode root(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    EXPECT_EQ(std::tuple(root.canDrill(), root.itemCount()), std::tuple(false, 1));
    FileNode* package = addNode(root, "Tool.app", FileNode::Type::Directory, 1, 1, true);
    addNode(*package, "Contents", FileNode::Type::Directory, 1, 1);
    EXPECT_TRUE(root.canDrill());
    EXPECT_FALSE(package->canDrill());
    EXPECT_FALSE(addNode(root, "3 archivos pequeños", FileNode::Type::Aggregate, 30, 3)->canDrill());
}
