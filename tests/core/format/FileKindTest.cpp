#include "core/format/FileKind.h"

#include "core/scanner/FileNode.h"

#include <QSet>
#include <gtest/gtest.h>
#include <map>

using nubo::FileKind;
using nubo::FileNode;
using nubo::FileKinds::classify;

namespace {

// Builds trees by path: "Library/Caches/com.x/blob" below a root adds every missing folder.
class Tree
{
public:
    explicit Tree(const QString& rootPath = QStringLiteral("/Users/ana"))
        : m_root(std::make_unique<FileNode>(rootPath == QLatin1String("/")
                                                ? QStringLiteral("Macintosh HD")
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

private:
    std::unique_ptr<FileNode> m_root;
};

} // namespace

// One case per row: the root of the scan, a path below it (a trailing "/" makes it a folder) and
// the kind it must get. Rows share one tree per root, as nodes of one scan do.
TEST(FileKind, ClassifiesByExtensionThenNameThenNearestFolderRule)
{
    struct Case
    {
        const char* root;
        const char* relative;
        FileKind expected;
    };
    const Case cases[] = {
        // The extension is looked up lower-cased, then exactly.
        {"/Users/ana", "Projects/clip.MOV", FileKind::Video},
        {"/Users/ana", "Projects/App.dSYM/", FileKind::Developer},
        {"/Users/ana", "Projects/photo.DSYM", FileKind::Other}, // neither lookup matches
        {"/Users/ana", "Projects/backup.tar.gz", FileKind::Archive},
        {"/Users/ana", "Projects/Report.PDF", FileKind::Document},
        {"/Users/ana", "Projects/Tool.app/", FileKind::Apps},
        // Names without a real extension.
        {"/Users/ana", "Projects/.o", FileKind::Other}, // a leading dot is not an extension
        {"/Users/ana", "Projects/notes.", FileKind::Other},
        {"/Users/ana", "Projects/.gradle/", FileKind::Developer}, // by folder name, not extension
        // The extension overrides every folder rule.
        {"/Users/ana", "Library/Caches/com.x/movie.mp4", FileKind::Video},
        {"/Users/ana", "Music/cover.png", FileKind::Image},
        {"/Users/ana", "Library/Developer/x/song.mp3", FileKind::Audio},
        // Cache and developer folders are inherited at any depth; the node's own name counts.
        {"/Users/ana", "Library/Caches/com.x/blob", FileKind::Cache},
        {"/Users/ana", "Library/Caches/a/b/c/d/e/f/blob", FileKind::Cache},
        {"/Users/ana", "Library/Developer/blob", FileKind::Developer},
        {"/Users/ana", "Code/web/node_modules/left-pad/index", FileKind::Developer},
        {"/Users/ana", ".Trash/old", FileKind::Cache},
        {"/Users/ana", "Work/Logs/", FileKind::Cache},
        {"/Users/ana", "Movies/raw", FileKind::Video},
        // The nearest folder rule wins: a cache inside a developer folder is met first on the
        // way up; a developer folder's parent test fires before an enclosing cache is reached.
        {"/Users/ana", "Library/Developer/Xcode/DerivedData/App/Logs/build", FileKind::Cache},
        {"/Users/ana", "Library/Caches/Xcode/blob", FileKind::Developer},
        {"/Users/ana", "Documents/Xcode/notes", FileKind::Developer},
        {"/Users/ana", "Music/Downloads/untitled", FileKind::Audio},
        // A developer folder's own name comes before the upward walk.
        {"/Users/ana", "Documents/site/node_modules/", FileKind::Developer},
        {"/Users/ana", "Library/Caches/Pods/", FileKind::Developer},
        // System names count only at the top two levels.
        {"/Users/ana", "Library/", FileKind::System},
        {"/Users/ana", "Projects/old/Library/", FileKind::Folder},
        {"/Users/ana", "Projects/usr/", FileKind::Folder},
        {"/Users/ana", "opt", FileKind::System}, // a file with a system name, directly below the root
        {"/", "System/", FileKind::System},
        {"/", "private/var/usr/", FileKind::Folder},
        // Top levels without a rule are a folder or other.
        {"/Users/ana", "Projects/", FileKind::Folder},
        {"/Users/ana", "README", FileKind::Other},
        {"/Users/ana", "Projects/deep/er/", FileKind::Folder},
        {"/Users/ana", "Projects/deep/blob", FileKind::Other},
        {"/Users/ana", "Aplicaciones/", FileKind::Apps},
        {"/Users/ana", "Desktop/inbox/", FileKind::Document},
        // A root named after a well-known folder colours everything below it.
        {"/Users/ana/Library/Caches", "com.x/blob", FileKind::Cache},
    };
    std::map<QString, Tree> trees;
    for (const Case& c : cases) {
        const QString root = QString::fromUtf8(c.root);
        Tree& tree = trees.try_emplace(root, root).first->second;
        QString relative = QString::fromUtf8(c.relative);
        const bool folder = relative.endsWith(QLatin1Char('/'));
        if (folder)
            relative.chop(1);
        const FileNode& node = tree.add(relative, folder ? FileNode::Type::Directory : FileNode::Type::File);
        EXPECT_EQ(classify(node), c.expected) << c.root << " " << c.relative;
    }
    EXPECT_EQ(classify(trees.at(QStringLiteral("/Users/ana")).root()), FileKind::Folder);
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
