#include "AppFixture.h"
#include "core/apps/LeftoverKeys.h"
#include "support/OrdinaryUser.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

class Leftovers : public AppTree
{
protected:
    InstalledApp writer()
    {
        return *catalog().describe(
            app(QStringLiteral("/Applications/Acme Writer.app"), QStringLiteral("com.acme.writer")));
    }

    InstalledApp named(const QString& name, std::optional<QString> identifier)
    {
        InstalledApp app;
        app.url = at(QStringLiteral("/Applications/") + name + QStringLiteral(".app"));
        app.name = name;
        app.bundleID = std::move(identifier);
        return app;
    }

    // The items' paths below the fixture's root, sorted.
    QStringList relative(const QList<CleanItem>& items) const
    {
        QStringList list;
        for (const CleanItem& item : items)
            list << item.id.mid(m_tree.root().size());
        list.sort();
        return list;
    }

    const QStringList preferencesOnly{QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.plist")};
};

} // namespace

TEST(LeftoverKeys, VendorAndStrippedNameComeOnlyFromAThreePartIdentifier)
{
    InstalledApp app;
    app.name = QStringLiteral("Acme Writer Pro");
    app.bundleID = QStringLiteral("com.Acme.Writer");
    const LeftoverKeys keys = LeftoverKeys::of(app);
    EXPECT_EQ(keys.id, QStringLiteral("com.acme.writer"));
    EXPECT_EQ(keys.name, QStringLiteral("acme writer pro"));
    EXPECT_EQ(keys.compact, QStringLiteral("acmewriterpro"));
    EXPECT_EQ(keys.vendor, QStringLiteral("acme"));
    EXPECT_EQ(keys.stripped, QStringLiteral("writer pro"));

    for (const char* identifier : {"com.acme", "com..acme"}) { // empty parts do not count
        app.bundleID = QString::fromUtf8(identifier);
        EXPECT_FALSE(LeftoverKeys::of(app).vendor) << identifier;
        EXPECT_EQ(LeftoverKeys::of(app).stripped, keys.name) << identifier;
    }
    app.bundleID = std::nullopt;
    EXPECT_FALSE(LeftoverKeys::of(app).id);
}

// One application's leftovers across both Library folders, by every rule, and what must not match.
// A row is a file to write; the part before "|" is the leftover offered for it, and a row that
// starts with "!" is not this application's: the vendor's other app, names in Preferences, another
// identifier, no dot before the identifier, the stripped name alone, a vendor folder without ours.
// Case does not matter.
TEST_F(Leftovers, FindsTheApplicationsDataByIdentifierNameAndVendorFolder)
{
    QStringList offered;
    for (const char* row : {"~/Library/Preferences/com.acme.writer.plist|",
                            "~/Library/Preferences/ByHost/com.acme.writer.ABCDEF.plist|",
                            "~/Library/Containers/com.acme.writer|/Data/x",
                            "~/Library/Group Containers/group.com.acme.writer|/x",
                            "~/Library/Group Containers/ABCD1234.com.acme.writer.shared|/x",
                            "~/Library/Saved Application State/com.acme.writer.savedState|/windows.plist",
                            "~/Library/Caches/AcmeWriter|/blob",
                            "~/Library/Application Support/Acme/Writer|/state",
                            "!~/Library/Application Support/Acme/Painter/state",
                            "~/Library/Logs/COM.ACME.WRITER|/log.txt",
                            "/Library/LaunchDaemons/com.acme.writer.helper.plist|",
                            "/Library/PrivilegedHelperTools/com.acme.writer.helper|",
                            "/Library/Application Support/Acme Writer|/shared",
                            "!~/Library/Preferences/Acme Writer.plist",
                            "!~/Library/Preferences/Acme Writer/x",
                            "!~/Library/Preferences/com.acme.writerx.plist",
                            "!~/Library/Preferences/xcom.acme.writer",
                            "!~/Library/Caches/writer/x",
                            "!~/Library/Caches/com.acme/x",
                            "!~/Library/Logs/Acme/x"}) {
        const QString path = QString::fromUtf8(row).remove(QLatin1Char('!'));
        file(QString(path).remove(QLatin1Char('|')));
        if (row[0] != '!')
            offered << at(path.section(QLatin1Char('|'), 0, 0));
    }
    const QString largest = file(QStringLiteral("~/Library/Application Support/Acme Writer/db"), 50'000);
    offered << largest.chopped(3);
    offered.sort();

    const QList<CleanItem> items = catalog().leftovers(writer());
    QStringList found = paths(items);
    found.sort();
    EXPECT_EQ(found, offered);
    expectSoundItems(items);
    EXPECT_EQ(items.first().id, largest.chopped(3));
}

// Named by their Library folder, shown by the tilde path inside the home only, with no subtitle or
// application link. An empty leftover of an installed application is still listed: removing the
// app takes it too.
TEST_F(Leftovers, ItemsAreNamedByTheirLibraryFolderAndShowTheTildePath)
{
    file(QStringLiteral("~/Library/Preferences/ByHost/com.acme.writer.1234.plist"));
    const QString support = file(QStringLiteral("/Library/Application Support/com.acme.writer"));
    folder(QStringLiteral("~/Library/Caches/com.acme.writer"));
    QStringList shown;
    for (const CleanItem& item : catalog().leftovers(writer())) {
        shown << QStringLiteral("%1 | %2 | %3")
                     .arg(item.name, item.detail)
                     .arg(QLatin1String(item.size > 0 ? "full" : "empty"));
        EXPECT_FALSE(item.subtitle || item.appURL) << item.id.toStdString();
    }
    shown.sort();
    EXPECT_EQ(
        shown,
        (QStringList{
            QStringLiteral("Application Support | %1 | full").arg(support),
            QStringLiteral("Caches | ~/Library/Caches/com.acme.writer | empty"),
            QStringLiteral("Preferences | ~/Library/Preferences/ByHost/com.acme.writer.1234.plist | full")}));
}

// A name that starts with the identifier and a dot is ours unless the registry places that
// identifier in another app, even the app's own preferences; a name equal to the identifier is
// always ours.
TEST_F(Leftovers, AnotherInstalledAppKeepsWhatItsIdentifierNames)
{
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.helper.plist"));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.cloud.plist"));
    folder(QStringLiteral("~/Library/Saved Application State/com.acme.writer.helper.savedState"));
    folder(QStringLiteral("~/Library/Containers/com.acme.writer"));
    // The identifier between dots, not at the start: accepted without asking the registry.
    file(QStringLiteral("~/Library/Preferences/group.com.acme.writer.helper"));
    const InstalledApp app = writer();
    workspace.applications.insert(QStringLiteral("com.acme.writer.helper"),
                                  at(QStringLiteral("/Applications/Helper.app")));
    workspace.applications.insert(QStringLiteral("com.acme.writer"),
                                  at(QStringLiteral("/Volumes/Other/Acme Writer.app")));
    // The registry placing the same app at its own location, spelled differently, is no other owner.
    workspace.applications.insert(QStringLiteral("com.acme.writer.cloud"), app.url + QStringLiteral("/"));

    EXPECT_EQ(relative(catalog().leftovers(app)),
              (QStringList{QStringLiteral("/Users/ana/Library/Containers/com.acme.writer"),
                           QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.cloud.plist"),
                           QStringLiteral("/Users/ana/Library/Preferences/group.com.acme.writer.helper")}));
}

TEST_F(Leftovers, WithoutIdentifierOnlyNamesMatchOnlyWhereNamesAreUsedAndNeverShortOnes)
{
    for (const char* path :
         {"~/Library/Application Support/Sketchy/x", "~/Library/Caches/sketchy/x",
          "~/Library/Logs/Sketchy.log", "~/Library/Logs/Sketchy", "~/Library/Preferences/Sketchy",
          "~/Library/Containers/Sketchy/x", "/Library/Caches/Sketchy", "~/Library/Application Support/Qt/x",
          "~/Library/Caches/a.bc/x", "~/Library/Preferences/a.bc.plist"})
        file(QString::fromUtf8(path));
    EXPECT_EQ(relative(catalog().leftovers(named(QStringLiteral("Sketchy"), std::nullopt))),
              (QStringList{QStringLiteral("/Library/Caches/Sketchy"),
                           QStringLiteral("/Users/ana/Library/Application Support/Sketchy"),
                           QStringLiteral("/Users/ana/Library/Caches/sketchy"),
                           QStringLiteral("/Users/ana/Library/Logs/Sketchy")}));
    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("Qt"), std::nullopt)).isEmpty());
    // An identifier of four characters is never matched by identifier, and the name is too short.
    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("ab"), QStringLiteral("a.bc"))).isEmpty());
}

TEST_F(Leftovers, NothingTheSafetyGateRefusesComesBack)
{
    // Protected whatever the app: the address book's data, the Notes container.
    file(QStringLiteral("~/Library/Application Support/AddressBook/db"));
    file(QStringLiteral("~/Library/Containers/com.apple.Notes/x"));
    file(QStringLiteral("~/Library/Caches/com.apple.notes/x"));
    // A Library folder that is a link into the keychains.
    file(QStringLiteral("~/Library/Keychains/Stash/com.acme.writer/secret"));
    link(QStringLiteral("~/Library/Keychains/Stash"), QStringLiteral("~/Library/Logs"));

    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("AddressBook"), std::nullopt)).isEmpty());
    const QList<CleanItem> notes =
        catalog().leftovers(named(QStringLiteral("Notes"), QStringLiteral("com.apple.Notes")));
    EXPECT_EQ(relative(notes), (QStringList{QStringLiteral("/Users/ana/Library/Caches/com.apple.notes")}));
    expectSoundItems(notes);
    EXPECT_TRUE(catalog().leftovers(writer()).isEmpty());
}

// Gated folders without Full Disk Access, names that are not UTF-8 (they would be measured and
// removed under a different, missing path), a file where a folder should be and a dangling link
// are all passed over; what is readable still comes back, and nothing else is touched.
TEST_F(Leftovers, WhatCannotBeReadSafelyIsSkipped)
{
    folder(QStringLiteral("~/Library/Containers/com.acme.writer"));
    folder(QStringLiteral("~/Library/Group Containers/group.com.acme.writer"));
    const QByteArray odd =
        nativePath(QStringLiteral("~/Library/Preferences"), QByteArray("com.acme.writer.\xff.plist"));
    writeBytes(odd, "data");
    file(QStringLiteral("~/Library/Caches"));
    makeLink(QStringLiteral("/nonexistent/nubo"), at(QStringLiteral("~/Library/Logs")));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    fullDiskAccess = false;

    EXPECT_EQ(relative(catalog().leftovers(writer())), preferencesOnly);
    EXPECT_TRUE(exists(odd));
    ::unlink(odd.constData()); // Qt cannot name it to remove it
    QDir(roots.home).removeRecursively();
    QDir(roots.library).removeRecursively();
    EXPECT_TRUE(catalog().leftovers(writer()).isEmpty());
}

TEST_F(Leftovers, UnreadableFoldersAreSkipped)
{
    file(QStringLiteral("~/Library/Caches/com.acme.writer/x"));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    // An ordinary user reaches the tree but may not read the caches.
    ASSERT_EQ(::chmod(QFile::encodeName(at(QStringLiteral("~/Library/Caches"))).constData(), 0), 0);
    const InstalledApp app = writer();
    AppCatalog& apps = catalog();
    const QByteArray found =
        runUnprivileged([&] { return relative(apps.leftovers(app)).join(QLatin1Char('\n')).toUtf8(); });
    ::chmod(QFile::encodeName(at(QStringLiteral("~/Library/Caches"))).constData(), 0755);
    EXPECT_EQ(found, preferencesOnly.first().toUtf8());
}

TEST_F(Leftovers, EachPathComesBackOnceEvenWhenBothLibrariesAreOneFolder)
{
    file(QStringLiteral("~/Library/Application Support/com.acme.writer/x"));
    file(QStringLiteral("~/Library/Caches/Acme Writer/x"));
    file(QStringLiteral("~/Library/Logs/Acme/Acme Writer/x"));
    roots.library = roots.home + QStringLiteral("/Library");
    const QList<CleanItem> items = catalog().leftovers(writer());
    EXPECT_EQ(items.size(), 3);
    expectSoundItems(items);
}

TEST_F(Leftovers, VendorFolderOffersOnlyTheFirstMatchingChild)
{
    file(QStringLiteral("~/Library/Application Support/Acme/writer/a"));
    file(QStringLiteral("~/Library/Application Support/acme/Acme Writer/b"));
    file(QStringLiteral("~/Library/Application Support/acme/Other/b"));
    EXPECT_EQ(relative(catalog().leftovers(writer())),
              (QStringList{QStringLiteral("/Users/ana/Library/Application Support/Acme/writer"),
                           QStringLiteral("/Users/ana/Library/Application Support/acme/Acme Writer")}));
}
