#include "core/format/FileKind.h"

#include "core/scanner/FileNode.h"

#include <gtest/gtest.h>

#include <QSet>

using nubo::FileKind;
using nubo::FileNode;
using nubo::FileKinds::classify;

namespace {

// Builds trees by path: "Library/Caches/com.x/blob" below a root adds every missing folder.
class Tree
{
public:
    explicit Tree(const QString& rootPath = QStringLiteral("/Users/ana"))
        : m_root(std::make_unique<FileNode>(rootPath == QLatin1String("/") ? QStringLiteral("Macintosh HD")
                                                                           : rootPath.section(QLatin1Char('/'), -1),
                                            rootPath, FileNode::Type::Directory))
    {
    }

    const FileNode& root() const { return *m_root; }

    const FileNode& add(const QString& relative, FileNode::Type leafType)
    {
        FileNode* current = m_root.get();
        const QStringList parts = relative.split(QLatin1Char('/'));
        for (qsizetype i = 0; i < parts.size(); ++i) {
            const bool leaf = i == parts.size() - 1;
            FileNode* next = nullptr;
            for (const auto& child : current->children()) {
                if (child->name() == parts[i] && !leaf)
                    next = child.get();
            }
            if (!next) {
                const auto type = leaf ? leafType : FileNode::Type::Directory;
                next = current->addChild(std::make_unique<FileNode>(
                    parts[i], current->path() + QLatin1Char('/') + parts[i], type));
            }
            current = next;
        }
        return *current;
    }

    FileKind file(const char* relative) { return classify(add(QString::fromUtf8(relative), FileNode::Type::File)); }
    FileKind folder(const char* relative)
    {
        return classify(add(QString::fromUtf8(relative), FileNode::Type::Directory));
    }

private:
    std::unique_ptr<FileNode> m_root;
};

} // namespace

TEST(FileKind, ExtensionIsLookedUpLowerCasedThenExactly)
{
    Tree tree;
    EXPECT_EQ(tree.file("Projects/clip.MOV"), FileKind::Video);
    EXPECT_EQ(tree.folder("Projects/App.dSYM"), FileKind::Developer);
    EXPECT_EQ(tree.file("Projects/photo.DSYM"), FileKind::Other); // neither lookup matches
    EXPECT_EQ(tree.file("Projects/backup.tar.gz"), FileKind::Archive);
    EXPECT_EQ(tree.file("Projects/Report.PDF"), FileKind::Document);
    EXPECT_EQ(tree.folder("Projects/Tool.app"), FileKind::Apps);
}

TEST(FileKind, NamesWithoutARealExtension)
{
    Tree tree;
    EXPECT_EQ(tree.file("Projects/.o"), FileKind::Other);       // a leading dot is not an extension
    EXPECT_EQ(tree.file("Projects/notes."), FileKind::Other);
    EXPECT_EQ(tree.folder("Projects/.gradle"), FileKind::Developer); // by folder name, not extension
}

TEST(FileKind, ExtensionOverridesEveryFolderRule)
{
    Tree tree;
    EXPECT_EQ(tree.file("Library/Caches/com.x/movie.mp4"), FileKind::Video);
    EXPECT_EQ(tree.file("Music/cover.png"), FileKind::Image);
    EXPECT_EQ(tree.file("Library/Developer/x/song.mp3"), FileKind::Audio);
}

TEST(FileKind, CacheAndDeveloperFoldersAreInheritedAtAnyDepth)
{
    Tree tree;
    EXPECT_EQ(tree.file("Library/Caches/com.x/blob"), FileKind::Cache);
    EXPECT_EQ(tree.file("Library/Caches/a/b/c/d/e/f/blob"), FileKind::Cache);
    EXPECT_EQ(tree.file("Library/Developer/blob"), FileKind::Developer);
    EXPECT_EQ(tree.file("Code/web/node_modules/left-pad/index"), FileKind::Developer);
    EXPECT_EQ(tree.file(".Trash/old"), FileKind::Cache);
    EXPECT_EQ(tree.folder("Work/Logs"), FileKind::Cache); // the node's own name counts
    EXPECT_EQ(tree.file("Movies/raw"), FileKind::Video);
}

TEST(FileKind, NearestFolderRuleWins)
{
    Tree tree;
    // A cache folder inside a developer folder: the cache is met first on the way up.
    EXPECT_EQ(tree.file("Library/Developer/Xcode/DerivedData/App/Logs/build"), FileKind::Cache);
    // A developer folder inside a cache folder: its parent test fires before the cache is reached.
    EXPECT_EQ(tree.file("Library/Caches/Xcode/blob"), FileKind::Developer);
    EXPECT_EQ(tree.file("Documents/Xcode/notes"), FileKind::Developer);
    EXPECT_EQ(tree.file("Music/Downloads/untitled"), FileKind::Audio);
}

TEST(FileKind, DeveloperFolderNameComesBeforeTheUpwardWalk)
{
    Tree tree;
    EXPECT_EQ(tree.folder("Documents/site/node_modules"), FileKind::Developer);
    EXPECT_EQ(tree.folder("Library/Caches/Pods"), FileKind::Developer);
}

TEST(FileKind, SystemNamesCountOnlyAtTheTopTwoLevels)
{
    Tree tree;
    EXPECT_EQ(tree.folder("Library"), FileKind::System);
    EXPECT_EQ(tree.folder("Projects/old/Library"), FileKind::Folder);
    EXPECT_EQ(tree.folder("Projects/usr"), FileKind::Folder);
    EXPECT_EQ(tree.file("opt"), FileKind::System); // a file with a system name, directly below the root

    Tree disk(QStringLiteral("/"));
    EXPECT_EQ(disk.folder("System"), FileKind::System);
    EXPECT_EQ(disk.folder("private/var/usr"), FileKind::Folder);
}

TEST(FileKind, TopLevelsWithoutARuleAreFolderOrOther)
{
    Tree tree;
    EXPECT_EQ(classify(tree.root()), FileKind::Folder);
    EXPECT_EQ(tree.folder("Projects"), FileKind::Folder);
    EXPECT_EQ(tree.file("README"), FileKind::Other);
    EXPECT_EQ(tree.folder("Projects/deep/er"), FileKind::Folder);
    EXPECT_EQ(tree.file("Projects/deep/blob"), FileKind::Other);
    EXPECT_EQ(tree.folder("Aplicaciones"), FileKind::Apps);
    EXPECT_EQ(tree.folder("Desktop/inbox"), FileKind::Document);
}

TEST(FileKind, RootNamedAfterAWellKnownFolderColoursEverything)
{
    Tree caches(QStringLiteral("/Users/ana/Library/Caches"));
    EXPECT_EQ(caches.file("com.x/blob"), FileKind::Cache);
}

TEST(FileKind, AggregatesAreAlwaysOther)
{
    Tree tree;
    const FileNode& caches = tree.add(QStringLiteral("Library/Caches"), FileNode::Type::Directory);
    auto& parent = const_cast<FileNode&>(caches);
    const FileNode* aggregate = parent.addChild(
        std::make_unique<FileNode>(QStringLiteral("video.mp4"), caches.path(), FileNode::Type::Aggregate));
    EXPECT_EQ(classify(*aggregate), FileKind::Other);
}

TEST(FileKind, RawValuesLabelsAndColours)
{
    EXPECT_EQ(nubo::FileKinds::fromRawValue(QStringLiteral("video")), FileKind::Video);
    EXPECT_EQ(nubo::FileKinds::fromRawValue(QStringLiteral("Video")), std::nullopt);
    EXPECT_EQ(nubo::FileKinds::fromRawValue(QString()), std::nullopt);
    EXPECT_EQ(nubo::FileKinds::label(FileKind::Cache), QStringLiteral("Cachés"));
    EXPECT_EQ(nubo::FileKinds::label(FileKind::Archive), QStringLiteral("Comprimidos"));

    QSet<QString> colours;
    QSet<QString> raws;
    for (FileKind kind : nubo::FileKinds::all) {
        EXPECT_EQ(nubo::FileKinds::fromRawValue(nubo::FileKinds::rawValue(kind)), kind);
        colours.insert(nubo::FileKinds::color(kind));
        raws.insert(nubo::FileKinds::rawValue(kind));
        EXPECT_FALSE(nubo::FileKinds::symbol(kind).isEmpty());
    }
    EXPECT_EQ(colours.size(), 11);
    EXPECT_EQ(raws.size(), 11);
}
