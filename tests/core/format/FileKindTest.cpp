#include "core/format/FileKind.h"

#include "core/scanner/FileNode.h"

#include <QSet>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

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

// Paths below a home (a trailing "/" makes the last part a folder) that must get each kind, all
// in one tree as nodes of one scan are. The extension decides first, looked up lower-cased and
// then exactly, and overrides every folder rule; then a developer folder's own name; then the
// nearest cache, developer or well-known user folder on the way up, at any depth; system names
// count only at the top two levels; what is left is a folder or other.
TEST(FileKind, ClassifiesByExtensionThenNameThenNearestFolderRule)
{
    const std::pair<FileKind, std::vector<const char*>> rows[] = {
        {FileKind::Video, {"Projects/clip.MOV", "Library/Caches/com.x/movie.mp4", "Movies/raw"}},
        {FileKind::Image, {"Music/cover.png"}},
        {FileKind::Audio, {"Library/Developer/x/song.mp3", "Music/Downloads/untitled"}},
        {FileKind::Archive, {"Projects/backup.tar.gz"}},
        {FileKind::Document, {"Projects/Report.PDF", "Desktop/inbox/"}},
        {FileKind::Apps, {"Projects/Tool.app/", "Aplicaciones/"}},
        {FileKind::Developer,
         {"Projects/App.dSYM/", "Projects/.gradle/", "Library/Developer/blob",
          "Code/web/node_modules/left-pad/index",
          // The nearest rule wins: a developer folder's parent test fires before an enclosing cache.
          "Library/Caches/Xcode/blob", "Documents/Xcode/notes", "Documents/site/node_modules/",
          "Library/Caches/Pods/"}},
        {FileKind::Cache,
         {"Library/Caches/com.x/blob", "Library/Caches/a/b/c/d/e/f/blob", ".Trash/old", "Work/Logs/",
          // A cache inside a developer folder is met first on the way up.
          "Library/Developer/Xcode/DerivedData/App/Logs/build"}},
        {FileKind::System, {"Library/", "opt"}},
        {FileKind::Folder, {"Projects/old/Library/", "Projects/usr/", "Projects/", "Projects/deep/er/"}},
        // Neither lookup matches "DSYM"; a leading dot or a trailing one is no extension.
        {FileKind::Other,
         {"Projects/photo.DSYM", "Projects/.o", "Projects/notes.", "README", "Projects/deep/blob"}},
    };
    FileNode home(QStringLiteral("ana"), QStringLiteral("/Users/ana"), FileNode::Type::Directory);
    for (const auto& [kind, paths] : rows) {
        for (const char* relative : paths)
            EXPECT_EQ(classify(add(home, QString::fromUtf8(relative))), kind) << relative;
    }
    EXPECT_EQ(classify(home), FileKind::Folder);
    // At the whole disk's top two levels a system name counts; deeper it does not. A root named
    // after a well-known folder colours everything below it.
    FileNode disk(QStringLiteral("Macintosh HD"), QStringLiteral("/"), FileNode::Type::Directory);
    EXPECT_EQ(classify(add(disk, QStringLiteral("System/"))), FileKind::System);
    EXPECT_EQ(classify(add(disk, QStringLiteral("private/var/usr/"))), FileKind::Folder);
    FileNode caches(QStringLiteral("Caches"), QStringLiteral("/Users/ana/Library/Caches"),
                    FileNode::Type::Directory);
    EXPECT_EQ(classify(add(caches, QStringLiteral("com.x/blob"))), FileKind::Cache);
    // Small files stand together whatever their names, even below a cache folder.
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
