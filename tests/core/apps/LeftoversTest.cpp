#include "AppFixture.h"
#include "core/apps/LeftoverKeys.h"
#include "support/OrdinaryUser.h"

#include <fcntl.h>
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
        const QString url =
            app(QStringLiteral("/Applications/Acme Writer.app"), QStringLiteral("com.acme.writer"));
        return *catalog().describe(url);
    }

    InstalledApp named(const QString& name, std::optional<QString> identifier)
    {
        InstalledApp app;
        app.url = at(QStringLiteral("/Applications/") + name + QStringLiteral(".app"));
        app.name = name;
        app.bundleID = std::move(identifier);
        return app;
    }

    QStringList relative(const QList<CleanItem>& items) const
    {
        QStringList list;
        for (const CleanItem& item : items)
            list << item.id.mid(m_tree.root().size());
        list.sort();
        return list;
    }
};

} // namespace

TEST(LeftoverKeys, VendorAndStrippedNameComeFromAThreePartIdentifier)
{
    InstalledApp app;
    app.name = QStringLiteral("Acme Writer Pro");
    app.bundleID = QStringLiteral("com.Acme.Writer");
    LeftoverKeys keys = LeftoverKeys::of(app);
    EXPECT_EQ(keys.id, QStringLiteral("com.acme.writer"));
    EXPECT_EQ(keys.name, QStringLiteral("acme writer pro"));
    EXPECT_EQ(keys.compact, QStringLiteral("acmewriterpro"));
    EXPECT_EQ(keys.vendor, QStringLiteral("acme"));
    EXPECT_EQ(keys.stripped, QStringLiteral("writer pro"));

    app.bundleID = QStringLiteral("com.acme");
    keys = LeftoverKeys::of(app);
    EXPECT_FALSE(keys.vendor);
    EXPECT_EQ(keys.stripped, keys.name);

    app.bundleID = QStringLiteral("com..acme");
    EXPECT_FALSE(LeftoverKeys::of(app).vendor); // empty parts do not count
    app.bundleID = std::nullopt;
    EXPECT_FALSE(LeftoverKeys::of(app).id);
}

// One application's leftovers across both Library folders, by every rule, and what must not match.
TEST_F(Leftovers, FindsTheApplicationsDataByIdentifierNameAndVendorFolder)
{
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"), 2000);
    file(QStringLiteral("~/Library/Preferences/ByHost/com.acme.writer.ABCDEF.plist"), 100);
    folder(QStringLiteral("~/Library/Containers/com.acme.writer/Data"));
    file(QStringLiteral("~/Library/Group Containers/group.com.acme.writer/x"));
    file(QStringLiteral("~/Library/Group Containers/ABCD1234.com.acme.writer.shared/x"));
    file(QStringLiteral("~/Library/Saved Application State/com.acme.writer.savedState/windows.plist"));
    file(QStringLiteral("~/Library/Application Support/Acme Writer/db"), 50'000);
    file(QStringLiteral("~/Library/Caches/AcmeWriter/blob"), 30'000);
    file(QStringLiteral("~/Library/Application Support/Acme/Writer/state"));
    file(QStringLiteral("~/Library/Application Support/Acme/Painter/state")); // the vendor's other app
    file(QStringLiteral("~/Library/Logs/COM.ACME.WRITER/log.txt"));           // case does not matter
    file(QStringLiteral("/Library/LaunchDaemons/com.acme.writer.helper.plist"));
    file(QStringLiteral("/Library/PrivilegedHelperTools/com.acme.writer.helper"));
    file(QStringLiteral("/Library/Application Support/Acme Writer/shared"));

    // Not this application's:
    file(QStringLiteral("~/Library/Preferences/Acme Writer.plist"));      // no name matching in Preferences
    folder(QStringLiteral("~/Library/Preferences/Acme Writer"));          // idem
    file(QStringLiteral("~/Library/Preferences/com.acme.writerx.plist")); // another identifier
    file(QStringLiteral("~/Library/Preferences/xcom.acme.writer"));       // no dot before the identifier
    file(QStringLiteral("~/Library/Caches/writer/x")); // the stripped name alone is too loose
    file(QStringLiteral("~/Library/Caches/com.acme/x"));
    folder(QStringLiteral("~/Library/Logs/Acme")); // a vendor folder without our folder

    const QList<CleanItem> items = catalog().leftovers(writer());
    EXPECT_EQ(relative(items),
              (QStringList{
                  QStringLiteral("/Library/Application Support/Acme Writer/shared").chopped(7),
                  QStringLiteral("/Library/LaunchDaemons/com.acme.writer.helper.plist"),
                  QStringLiteral("/Library/PrivilegedHelperTools/com.acme.writer.helper"),
                  QStringLiteral("/Users/ana/Library/Application Support/Acme Writer"),
                  QStringLiteral("/Users/ana/Library/Application Support/Acme/Writer"),
                  QStringLiteral("/Users/ana/Library/Caches/AcmeWriter"),
                  QStringLiteral("/Users/ana/Library/Containers/com.acme.writer"),
                  QStringLiteral("/Users/ana/Library/Group Containers/ABCD1234.com.acme.writer.shared"),
                  QStringLiteral("/Users/ana/Library/Group Containers/group.com.acme.writer"),
                  QStringLiteral("/Users/ana/Library/Logs/COM.ACME.WRITER"),
                  QStringLiteral("/Users/ana/Library/Preferences/ByHost/com.acme.writer.ABCDEF.plist"),
                  QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.plist"),
                  QStringLiteral("/Users/ana/Library/Saved Application State/com.acme.writer.savedState")}));
    expectSoundItems(items);
    EXPECT_EQ(items.first().id, at(QStringLiteral("~/Library/Application Support/Acme Writer")));
}

TEST_F(Leftovers, ItemsAreNamedByTheirLibraryFolderAndShowTheTildePath)
{
    const QString byHost = file(QStringLiteral("~/Library/Preferences/ByHost/com.acme.writer.1234.plist"));
    const QString support = file(QStringLiteral("/Library/Application Support/com.acme.writer"));
    // An empty leftover of an installed application is still listed: removing the app takes it too.
    const QString empty = folder(QStringLiteral("~/Library/Caches/com.acme.writer"));

    const QList<CleanItem> items = catalog().leftovers(writer());
    ASSERT_EQ(items.size(), 3);
    for (const CleanItem& item : items) {
        if (item.id == byHost) {
            EXPECT_EQ(item.name, QStringLiteral("Preferences"));
            EXPECT_EQ(item.detail, QStringLiteral("~/Library/Preferences/ByHost/com.acme.writer.1234.plist"));
        } else if (item.id == support) {
            EXPECT_EQ(item.name, QStringLiteral("Application Support"));
            EXPECT_EQ(item.detail, support); // outside the home: no tilde
        } else {
            EXPECT_EQ(item.id, empty);
            EXPECT_EQ(item.size, 0);
            EXPECT_EQ(item.name, QStringLiteral("Caches"));
        }
        EXPECT_FALSE(item.subtitle);
        EXPECT_FALSE(item.appURL);
    }
}

TEST_F(Leftovers, AnotherInstalledAppKeepsWhatItsIdentifierNames)
{
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.helper.plist"));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.cloud.plist"));
    folder(QStringLiteral("~/Library/Saved Application State/com.acme.writer.helper.savedState"));
    // The identifier between dots, not at the start: accepted without asking the registry.
    file(QStringLiteral("~/Library/Preferences/group.com.acme.writer.helper"));
    const InstalledApp app = writer();
    workspace.applications.insert(QStringLiteral("com.acme.writer.helper"),
                                  at(QStringLiteral("/Applications/Helper.app")));
    // The registry placing the same app at its own location, spelled differently, is no other owner.
    workspace.applications.insert(QStringLiteral("com.acme.writer.cloud"), app.url + QStringLiteral("/"));

    const QList<CleanItem> items = catalog().leftovers(app);
    EXPECT_EQ(relative(items),
              (QStringList{QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.cloud.plist"),
                           QStringLiteral("/Users/ana/Library/Preferences/group.com.acme.writer.helper")}));
}

TEST_F(Leftovers, OwnPreferencesAreLeftWhenTheRegistryPlacesTheAppElsewhere)
{
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    folder(QStringLiteral("~/Library/Containers/com.acme.writer"));
    const InstalledApp app = writer();
    workspace.applications.insert(QStringLiteral("com.acme.writer"),
                                  at(QStringLiteral("/Volumes/Other/Acme Writer.app")));
    // The ".plist" starts with the identifier and a dot, so the registry decides; the container
    // equals the identifier and is always this app's.
    EXPECT_EQ(relative(catalog().leftovers(app)),
              (QStringList{QStringLiteral("/Users/ana/Library/Containers/com.acme.writer")}));
}

TEST_F(Leftovers, WithoutIdentifierOnlyNamesMatchAndOnlyWhereNamesAreUsed)
{
    file(QStringLiteral("~/Library/Application Support/Sketchy/x"));
    file(QStringLiteral("~/Library/Caches/sketchy/x"));
    file(QStringLiteral("~/Library/Logs/Sketchy.log"));
    file(QStringLiteral("~/Library/Logs/Sketchy"));
    file(QStringLiteral("~/Library/Preferences/Sketchy"));
    file(QStringLiteral("~/Library/Containers/Sketchy/x"));
    file(QStringLiteral("/Library/Caches/Sketchy"));

    EXPECT_EQ(relative(catalog().leftovers(named(QStringLiteral("Sketchy"), std::nullopt))),
              (QStringList{QStringLiteral("/Library/Caches/Sketchy"),
                           QStringLiteral("/Users/ana/Library/Application Support/Sketchy"),
                           QStringLiteral("/Users/ana/Library/Caches/sketchy"),
                           QStringLiteral("/Users/ana/Library/Logs/Sketchy")}));
}

TEST_F(Leftovers, ShortNamesAndShortIdentifiersMatchNothing)
{
    file(QStringLiteral("~/Library/Application Support/Qt/x"));
    file(QStringLiteral("~/Library/Caches/a.bc/x"));
    file(QStringLiteral("~/Library/Preferences/a.bc.plist"));
    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("Qt"), std::nullopt)).isEmpty());
    // An identifier of four characters is never matched by identifier, and the name is too short.
    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("ab"), QStringLiteral("a.bc"))).isEmpty());
}

TEST_F(Leftovers, GatedFoldersAreSkippedWithoutFullDiskAccess)
{
    folder(QStringLiteral("~/Library/Containers/com.acme.writer"));
    folder(QStringLiteral("~/Library/Group Containers/group.com.acme.writer"));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    fullDiskAccess = false;
    EXPECT_EQ(relative(catalog().leftovers(writer())),
              (QStringList{QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.plist")}));
}

TEST_F(Leftovers, NothingTheSafetyGateRefusesComesBack)
{
    // Protected whatever the app: the address book's data, the Notes container.
    file(QStringLiteral("~/Library/Application Support/AddressBook/db"));
    file(QStringLiteral("~/Library/Containers/com.apple.Notes/x"));
    file(QStringLiteral("~/Library/Caches/com.apple.notes/x"));
    EXPECT_TRUE(catalog().leftovers(named(QStringLiteral("AddressBook"), std::nullopt)).isEmpty());
    const QList<CleanItem> notes =
        catalog().leftovers(named(QStringLiteral("Notes"), QStringLiteral("com.apple.Notes")));
    EXPECT_EQ(relative(notes), (QStringList{QStringLiteral("/Users/ana/Library/Caches/com.apple.notes")}));
    expectSoundItems(notes);
}

TEST_F(Leftovers, ALibraryFolderThatLinksIntoTheKeychainsOffersNothing)
{
    file(QStringLiteral("~/Library/Keychains/Stash/com.acme.writer/secret"));
    link(QStringLiteral("~/Library/Keychains/Stash"), QStringLiteral("~/Library/Caches"));
    EXPECT_TRUE(catalog().leftovers(writer()).isEmpty());
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
    const QList<CleanItem> items = catalog().leftovers(writer());
    ASSERT_EQ(items.size(), 2);
    EXPECT_TRUE(
        relative(items).contains(QStringLiteral("/Users/ana/Library/Application Support/Acme/writer")));
    EXPECT_TRUE(
        relative(items).contains(QStringLiteral("/Users/ana/Library/Application Support/acme/Acme Writer")));
}

// Names that are not UTF-8 would be measured and removed under a different, missing path: they
// are not offered, and they stay where they are.
TEST_F(Leftovers, EntriesWhoseNamesAreNotUtf8AreNotOffered)
{
    const QByteArray odd =
        nativePath(QStringLiteral("~/Library/Preferences"), QByteArray("com.acme.writer.\xff.plist"));
    writeBytes(odd, "data");
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    EXPECT_EQ(relative(catalog().leftovers(writer())),
              (QStringList{QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.plist")}));
    EXPECT_TRUE(exists(odd));
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
    EXPECT_EQ(found, "/Users/ana/Library/Preferences/com.acme.writer.plist");
}

TEST_F(Leftovers, LibraryFoldersThatCannotBeListedAreSkipped)
{
    file(QStringLiteral("~/Library/Caches")); // a file where a folder should be
    folder(QStringLiteral("~/Library"));
    makeLink(QStringLiteral("/nonexistent/nubo"), at(QStringLiteral("~/Library/Logs")));
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    EXPECT_EQ(relative(catalog().leftovers(writer())),
              (QStringList{QStringLiteral("/Users/ana/Library/Preferences/com.acme.writer.plist")}));
    QDir(roots.home).removeRecursively();
    QDir(roots.library).removeRecursively();
    EXPECT_TRUE(catalog().leftovers(writer()).isEmpty());
}
