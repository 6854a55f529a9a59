#include "core/format/FileKind.h"

#include "core/scanner/FileNode.h"

#include <QSet>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>

using nubo::FileKind;
using nubo::FileNode;
using nubo::FileKinds::classify;

namespace {

// Adds `relative` below `root`, reusing the nodes already there; a trailing "/" makes the last part
// a folder.
FileNode& add(FileNode& root, QString relative)
{
    const bool folder = relative.endsWith(QLatin1Char('/'));
    const QStringList parts = relative.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    FileNode* current = &root;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const bool leaf = i == parts.size() - 1;
        const auto& children = current->children();
        const auto it = std::find_if(children.begin(), children.end(),
                                     [&](const auto& c) { return c->name() == parts[i]; });
        current = it != children.end()
                      ? it->get()
                      : current->addChild(std::make_unique<FileNode>(
                            parts[i], current->path() + QLatin1Char('/') + parts[i],
                            leaf && !folder ? FileNode::Type::File : FileNode::Type::Directory));
    }
    return *current;
}

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
    std::map<QString, std::unique_ptr<FileNode>> trees;
    for (const Case& c : cases) {
        const QString root = QString::fromUtf8(c.root);
        auto& tree = trees[root];
        if (!tree)
            tree = std::make_unique<FileNode>(root == QLatin1String("/") ? QStringLiteral("Macintosh HD")
                                                                         : root.section(QLatin1Char('/'), -1),
                                              root, FileNode::Type::Directory);
        EXPECT_EQ(classify(add(*tree, QString::fromUtf8(c.relative))), c.expected)
            << c.root << " " << c.relative;
    }
    FileNode& home = *trees.at(QStringLiteral("/Users/ana"));
    EXPECT_EQ(classify(home), FileKind::Folder);
    // Small files stand together whatever their names, even below a cache folder.
    FileNode& caches = add(home, QStringLiteral("Library/Caches/"));
    const FileNode* aggregate = caches.addChild(
        std::make_unique<FileNode>(QStringLiteral("video.mp4"), caches.path(), FileNode::Type::Aggregate));
    EXPECT_EQ(classify(*aggregate), FileKind::Other);
}

TEST(FileKind, RawValuesRoundTripAndEveryKindHasItsOwnColour)
{
    EXPECT_EQ(nubo::FileKinds::fromRawValue(QStringLiteral("Video")), std::nullopt);
    EXPECT_EQ(nubo::FileKinds::fromRawValue(QString()), std::nullopt);

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
