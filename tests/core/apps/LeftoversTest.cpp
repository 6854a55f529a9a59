#include "AppFixture.h"
#include "support/OrdinaryUser.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

class Leftovers : public AppTree
{
protected:
    InstalledApp writer()
    {
        return *catalog().describe(app(u"/Applications/Acme Writer.app"_s, u"com.acme.writer"_s));
    }

    InstalledApp named(const QString& name, std::optional<QString> identifier)
    {
        InstalledApp app;
        app.url = at(u"/Applications/"_s + name + u".app"_s);
        app.name = name;
        app.bundleID = std::move(identifier);
        return app;
    }

    // The leftovers' paths below the fixture's root, sorted.
    QStringList relative(const InstalledApp& app)
    {
        QStringList list;
        for (const CleanItem& item : catalog().leftovers(app))
            list << item.id.mid(m_tree.root().size());
        return sorted(list);
    }

    const QStringList preferencesOnly{u"/Users/ana/Library/Preferences/com.acme.writer.plist"_s};
};

} // namespace

// One application's leftovers across both Library folders, by every rule, and what must not match.
// A row is a file to write; the part before "|" is the leftover offered for it, and a row that
// starts with "!" is not this application's: the vendor's other app, names in Preferences, another
// identifier, no dot before the identifier, the stripped name alone, a vendor folder without ours.
// Case does not matter.
TEST_F(Leftovers, FindsTheApplicationsDataByIdentifierNameAndVendorFolder)
{
    QStringList offered;
    // clang-format off
    for (const char* row : {
             "~/Library/Preferences/com.acme.writer.plist|", "~/Library/Containers/com.acme.writer|/Data/x",
             "~/Library/Preferences/ByHost/com.acme.writer.ABCDEF.plist|", "~/Library/Logs/COM.ACME.WRITER|/log.txt",
             "~/Library/Group Containers/group.com.acme.writer|/x", "~/Library/Caches/AcmeWriter|/blob",
             "~/Library/Group Containers/ABCD1234.com.acme.writer.shared|/x",
             "~/Library/Saved Application State/com.acme.writer.savedState|/windows.plist",
             "~/Library/Application Support/Acme/Writer|/state", "!~/Library/Application Support/Acme/Painter/state",
             "~/Library/Application Support/acme/Acme Writer|/state", "/Library/Application Support/Acme Writer|/x",
             "/Library/LaunchDaemons/com.acme.writer.helper.plist|", "!~/Library/Preferences/Acme Writer.plist",
             "/Library/PrivilegedHelperTools/com.acme.writer.helper|", "!~/Library/Preferences/Acme Writer/x",
             "!~/Library/Preferences/com.acme.writerx.plist", "!~/Library/Preferences/xcom.acme.writer",
             "!~/Library/Caches/writer/x", "!~/Library/Caches/com.acme/x", "!~/Library/Logs/Acme/x"}) {
        // clang-format on
        const QString path = QString::fromUtf8(row).remove(u'!');
        file(QString(path).remove(u'|'));
        if (row[0] != '!')
            offered << at(path.section(u'|', 0, 0));
    }
    const QString largest = file(u"~/Library/Application Support/Acme Writer/db"_s, 50'000).chopped(3);
    offered << largest;

    const QList<CleanItem> items = catalog().leftovers(writer());
    EXPECT_EQ(sorted(paths(items)), sorted(offered));
    expectSoundItems(items);
    EXPECT_EQ(items.first().id, largest);
}

// Named by their Library folder, shown by the tilde path inside the home only. An empty leftover
// of an installed application is still listed: removing the app takes it too.
TEST_F(Leftovers, ItemsAreNamedByTheirLibraryFolderAndShowTheTildePath)
{
    file(u"~/Library/Preferences/ByHost/com.acme.writer.1234.plist"_s);
    const QString support = file(u"/Library/Application Support/com.acme.writer"_s);
    folder(u"~/Library/Caches/com.acme.writer"_s);
    QStringList shown;
    for (const CleanItem& item : catalog().leftovers(writer()))
        shown << u"%1 | %2 | %3"_s.arg(item.name, item.detail, item.size > 0 ? u"full"_s : u"empty"_s);
    EXPECT_EQ(sorted(shown), (QStringList{u"Application Support | %1 | full"_s.arg(support),
                                          u"Caches | ~/Library/Caches/com.acme.writer | empty"_s,
                                          u"Preferences | ~/Library/Preferences/ByHost/com.acme.writer.1234.plist"
                                          u" | full"_s}));
}

// A name that starts with the identifier and a dot is ours unless the registry places that
// identifier in another app, even the app's own preferences; a name equal to the identifier, or
// holding it between dots, is always ours.
TEST_F(Leftovers, AnotherInstalledAppKeepsWhatItsIdentifierNames)
{
    for (const char* path :
         {"Preferences/com.acme.writer.plist", "Preferences/com.acme.writer.helper.plist",
          "Preferences/com.acme.writer.cloud.plist", "Preferences/group.com.acme.writer.helper",
          "Saved Application State/com.acme.writer.helper.savedState/x", "Containers/com.acme.writer/x"})
        file(u"~/Library/"_s + QString::fromUtf8(path));
    const InstalledApp app = writer();
    workspace.applications.insert(u"com.acme.writer.helper"_s, at(u"/Applications/Helper.app"_s));
    workspace.applications.insert(u"com.acme.writer"_s, at(u"/Volumes/Other/Acme Writer.app"_s));
    // The registry placing the same app at its own location, spelled differently, is no other owner.
    workspace.applications.insert(u"com.acme.writer.cloud"_s, app.url + u"/"_s);

    EXPECT_EQ(relative(app), (QStringList{u"/Users/ana/Library/Containers/com.acme.writer"_s,
                                          u"/Users/ana/Library/Preferences/com.acme.writer.cloud.plist"_s,
                                          u"/Users/ana/Library/Preferences/group.com.acme.writer.helper"_s}));
}

// Only an identifier of three parts or more, empty parts not counted, names a vendor folder.
TEST_F(Leftovers, WithoutIdentifierOnlyNamesMatchOnlyWhereNamesAreUsedAndNeverShortOnes)
{
    for (const char* path :
         {"~/Library/Application Support/Sketchy/x", "~/Library/Caches/sketchy/x", "~/Library/Logs/Sketchy.log",
          "~/Library/Logs/Sketchy", "~/Library/Preferences/Sketchy", "~/Library/Containers/Sketchy/x",
          "/Library/Caches/Sketchy", "~/Library/Application Support/Qt/x", "~/Library/Caches/a.bc/x",
          "~/Library/Preferences/a.bc.plist", "~/Library/Application Support/Acme/Writer/x"})
        file(QString::fromUtf8(path));
    EXPECT_EQ(relative(named(u"Sketchy"_s, std::nullopt)),
              (QStringList{u"/Library/Caches/Sketchy"_s, u"/Users/ana/Library/Application Support/Sketchy"_s,
                           u"/Users/ana/Library/Caches/sketchy"_s, u"/Users/ana/Library/Logs/Sketchy"_s}));
    EXPECT_TRUE(relative(named(u"Qt"_s, std::nullopt)).isEmpty());
    // An identifier of four characters is never matched by identifier, and the name is too short.
    EXPECT_TRUE(relative(named(u"ab"_s, u"a.bc"_s)).isEmpty());
    EXPECT_TRUE(relative(named(u"Acme Writer"_s, u"com.acme"_s)).isEmpty());
    EXPECT_TRUE(relative(named(u"Acme Writer"_s, u"com..acme"_s)).isEmpty());
    EXPECT_EQ(relative(named(u"Acme Writer"_s, u"org.acme.x"_s)),
              QStringList{u"/Users/ana/Library/Application Support/Acme/Writer"_s});
}

// Protected whatever the app: the address book's data, the Notes container, and a Library folder
// that is a link into the keychains.
TEST_F(Leftovers, NothingTheSafetyGateRefusesComesBack)
{
    file(u"~/Library/Application Support/AddressBook/db"_s);
    file(u"~/Library/Containers/com.apple.Notes/x"_s);
    file(u"~/Library/Caches/com.apple.notes/x"_s);
    file(u"~/Library/Keychains/Stash/com.acme.writer/secret"_s);
    link(u"~/Library/Keychains/Stash"_s, u"~/Library/Logs"_s);

    EXPECT_TRUE(relative(named(u"AddressBook"_s, std::nullopt)).isEmpty());
    const QList<CleanItem> notes = catalog().leftovers(named(u"Notes"_s, u"com.apple.Notes"_s));
    EXPECT_EQ(paths(notes), QStringList{at(u"~/Library/Caches/com.apple.notes"_s)});
    expectSoundItems(notes);
    EXPECT_TRUE(relative(writer()).isEmpty());
}

// Gated folders without Full Disk Access, names that are not UTF-8 (they would be measured and
// removed under a different, missing path), a file where a folder should be and a dangling link
// are all passed over; what is readable still comes back, and nothing else is touched.
TEST_F(Leftovers, WhatCannotBeReadSafelyIsSkipped)
{
    folder(u"~/Library/Containers/com.acme.writer"_s);
    folder(u"~/Library/Group Containers/group.com.acme.writer"_s);
    const QByteArray odd = nativePath(u"~/Library/Preferences"_s, "com.acme.writer.\xff.plist");
    writeBytes(odd, "data");
    file(u"~/Library/Caches"_s);
    makeLink(u"/nonexistent/nubo"_s, at(u"~/Library/Logs"_s));
    file(u"~/Library/Preferences/com.acme.writer.plist"_s);
    fullDiskAccess = false;

    EXPECT_EQ(relative(writer()), preferencesOnly);
    EXPECT_TRUE(exists(odd));
    ::unlink(odd.constData()); // Qt cannot name it to remove it
    QDir(roots.home).removeRecursively();
    QDir(roots.library).removeRecursively();
    EXPECT_TRUE(relative(writer()).isEmpty());
}

TEST_F(Leftovers, UnreadableFoldersAreSkipped)
{
    file(u"~/Library/Caches/com.acme.writer/x"_s);
    file(u"~/Library/Preferences/com.acme.writer.plist"_s);
    // An ordinary user reaches the tree but may not read the caches.
    const QByteArray caches = QFile::encodeName(at(u"~/Library/Caches"_s));
    ASSERT_EQ(::chmod(caches.constData(), 0), 0);
    const InstalledApp app = writer();
    const QByteArray found = runUnprivileged([&] { return relative(app).join(u'\n').toUtf8(); });
    ::chmod(caches.constData(), 0755);
    EXPECT_EQ(found, preferencesOnly.first().toUtf8());
}

TEST_F(Leftovers, EachPathComesBackOnceEvenWhenBothLibrariesAreOneFolder)
{
    file(u"~/Library/Application Support/com.acme.writer/x"_s);
    file(u"~/Library/Caches/Acme Writer/x"_s);
    file(u"~/Library/Logs/Acme/Acme Writer/x"_s);
    roots.library = roots.home + u"/Library"_s;
    const QList<CleanItem> items = catalog().leftovers(writer());
    EXPECT_EQ(items.size(), 3);
    expectSoundItems(items);
}
