#include "core/scanner/FileNode.h"

#include <gtest/gtest.h>

#include <vector>

using nubo::FileNode;

namespace {

FileNode* addNode(FileNode& parent, const char* name, FileNode::Type type, qint64 size, qint64 files,
                  bool package = false)
{
    auto node = std::make_unique<FileNode>(
        QString::fromUtf8(name), parent.path() + QLatin1Char('/') + QString::fromUtf8(name), type, package);
    node->setSize(size);
    node->setFileCount(files);
    return parent.addChild(std::move(node));
}

} // namespace

TEST(FileNode, RemoveLowersEveryAncestorAndHandsTheChildBack)
{
    FileNode root(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    root.setSize(1000);
    root.setFileCount(10);
    FileNode* library = addNode(root, "Library", FileNode::Type::Directory, 700, 8);
    FileNode* caches = addNode(*library, "Caches", FileNode::Type::Directory, 500, 6);
    FileNode* blob = addNode(*caches, "blob", FileNode::Type::File, 300, 1);
    addNode(*caches, "other", FileNode::Type::File, 200, 1);

    const std::vector<const FileNode*> chain = blob->ancestors();
    EXPECT_EQ(chain, (std::vector<const FileNode*>{&root, library, caches, blob}));

    auto removed = caches->remove(blob);
    ASSERT_EQ(removed.get(), blob);
    EXPECT_EQ(removed->parent(), nullptr);
    EXPECT_EQ(caches->children().size(), 1u);
    EXPECT_EQ(caches->size(), 200);
    EXPECT_EQ(library->size(), 400);
    EXPECT_EQ(root.size(), 700);
    EXPECT_EQ(caches->fileCount(), 5);
    EXPECT_EQ(root.fileCount(), 9);

    // Not a child (any more): nothing changes.
    EXPECT_EQ(caches->remove(blob), nullptr);
    EXPECT_EQ(root.remove(caches), nullptr);
    EXPECT_EQ(root.size(), 700);

    // Removing a whole folder takes its totals off the ancestors at once.
    ASSERT_TRUE(library->remove(caches));
    EXPECT_EQ(root.size(), 500);
    EXPECT_EQ(root.fileCount(), 4);
    EXPECT_FALSE(library->canDrill());
}

TEST(FileNode, OnlyFoldersThatAreNotBundlesCanBeOpened)
{
    FileNode root(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    EXPECT_FALSE(root.canDrill());  // nothing inside
    EXPECT_EQ(root.itemCount(), 1); // yet it counts as one item

    FileNode* package = addNode(root, "Tool.app", FileNode::Type::Directory, 1, 1, true);
    addNode(*package, "Contents", FileNode::Type::Directory, 1, 1);
    EXPECT_TRUE(root.canDrill());
    EXPECT_FALSE(package->canDrill()); // a bundle is never opened, even with children
    EXPECT_FALSE(addNode(root, "3 archivos pequeños", FileNode::Type::Aggregate, 30, 3)->canDrill());
}
