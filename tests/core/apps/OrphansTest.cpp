#include "AppFixture.h"

#include <atomic>
#include <thread>
#include <vector>

using namespace nubo;
using namespace nubo::test;

namespace {

class Orphans : public AppTree
{
protected:
    // An installed suite: an app with an extension and a service inside, and the system's own apps.
    void install()
    {
        app(QStringLiteral("/Applications/Writer.app"), QStringLiteral("com.acme.Writer"),
            PlistFormat::binary);
        app(QStringLiteral("/Applications/Writer.app/Contents/PlugIns/Share.appex"),
            QStringLiteral("com.acme.writer.share"));
        app(QStringLiteral("/Applications/Writer.app/Contents/XPCServices/Render.xpc"),
            QStringLiteral("net.render.service"));
        app(QStringLiteral("~/Applications/Big Suite/Editor.app"), QStringLiteral("org.big.suite.editor"));
        app(QStringLiteral("/System/Applications/Mail.app"), QStringLiteral("com.apple.mail"));
        app(QStringLiteral("/System/Applications/Chess.app"), QStringLiteral("org.system.chess"));
        app(QStringLiteral("/Applications/Utilities/Tool.app"), QStringLiteral("org.utilities.tool"));
        // Depth 6 is still walked; depth 7 is not.
        app(QStringLiteral("/Applications/D1/D2/D3/D4/D5/Six.app"), QStringLiteral("org.depth.six"));
        app(QStringLiteral("/Applications/D1/D2/D3/D4/D5/D6/Seven.app"), QStringLiteral("org.depth.seven"));
    }

    QStringList found() { return paths(catalog().orphanedLeftovers()); }

    // A folder holding `bytes` of data at `path`; returns the folder.
    QString data(const QString& path, qint64 bytes = 1000)
    {
        return file(path + QStringLiteral("/data"), bytes).chopped(5);
    }
};

} // namespace

TEST_F(Orphans, DataOfInstalledAppsTheirExtensionsAndServicesIsNotAnOrphan)
{
    install();
    for (const char* name : {"com.acme.writer",           // the app, in another case
                             "com.acme.writer.share",     // its extension
                             "net.render.service",        // its service
                             "com.acme.writer.share.sub", // below an installed id
                             "org.big.suite",             // above an installed id
                             "org.system.chess", "org.utilities.tool", "org.depth.six"})
        data(QStringLiteral("~/Library/Containers/") + QLatin1String(name));
    const QString deep = data(QStringLiteral("~/Library/Containers/org.depth.seven"));
    const QString gone = data(QStringLiteral("~/Library/Containers/com.gone.app"), 5000);

    const QList<CleanItem> items = catalog().orphanedLeftovers();
    EXPECT_EQ(paths(items), (QStringList{gone, deep}));
    expectSoundItems(items);
    EXPECT_EQ(items.first().name, QStringLiteral("com.gone.app"));
    EXPECT_EQ(items.first().detail, QStringLiteral("Containers"));
    EXPECT_FALSE(items.first().subtitle || items.first().appURL);
}

// Only the data of a removed app that holds something comes back: an app the registry knows
// elsewhere, a bundle whose name is not UTF-8 (its identifier still counts), empty data, and data
// whose own name is not UTF-8 (left where it is) are not orphans.
TEST_F(Orphans, OnlyNonEmptyDataOfAnAppInstalledNowhereIsAnOrphan)
{
    data(QStringLiteral("~/Library/Containers/com.registry.known"));
    workspace.applications.insert(QStringLiteral("com.registry.known"),
                                  QStringLiteral("/Volumes/External/Known.app"));
    writeBytes(nativePath(QStringLiteral("/Applications"), QByteArray("Od\xe9.app")) + "/Contents/Info.plist",
               plistBytes(QVariantMap{{QStringLiteral("CFBundleIdentifier"), QStringLiteral("com.odd.app")}},
                          PlistFormat::xml));
    data(QStringLiteral("~/Library/Containers/com.odd.app"));
    folder(QStringLiteral("~/Library/Containers/com.gone.empty/Data/Library"));
    file(QStringLiteral("~/Library/Containers/com.gone.zero/empty-file"), 0);
    const QByteArray odd =
        nativePath(QStringLiteral("~/Library/Containers"), QByteArray("com.gone.\xfe\xff"));
    writeBytes(odd + "/data", "data");
    const QString gone = data(QStringLiteral("~/Library/Containers/com.registry.gone"));

    EXPECT_EQ(found(), QStringList{gone});
    EXPECT_TRUE(exists(odd));
}

TEST_F(Orphans, OnlyIdentifierShapedNamesAreCandidates)
{
    for (const char* name : {"two.parts", "a..b.c", "has space.b.c", "com.apple.Safari", "COM.APPLE.thing",
                             "group.com.x.y", "Group.com.x.y", "plain", "trailing.dot."})
        data(QStringLiteral("~/Library/Application Support/") + QLatin1String(name));
    data(QStringLiteral("~/Library/WebKit/.hidden.a.b"));
    const QString accepted = data(QStringLiteral("~/Library/Application Support/org.third.party"));
    EXPECT_EQ(found(), QStringList{accepted});
}

TEST_F(Orphans, EachFolderTurnsNamesIntoIdentifiersItsOwnWay)
{
    const QString saved =
        data(QStringLiteral("~/Library/Saved Application State/com.gone.app.savedState"), 3000);
    data(QStringLiteral("~/Library/Saved Application State/com.gone.nosuffix"));
    data(QStringLiteral("~/Library/Saved Application State/com.apple.Preview.savedState"));
    file(QStringLiteral("~/Library/HTTPStorages/com.gone.web.binarycookies"), 2000);
    const QString storage = data(QStringLiteral("~/Library/HTTPStorages/com.gone.web"), 2000);
    const QString webkit = data(QStringLiteral("~/Library/WebKit/com.gone.kit"), 1000);
    data(QStringLiteral("~/Library/Caches/com.gone.cache")); // not searched for orphans

    const QList<CleanItem> items = catalog().orphanedLeftovers();
    ASSERT_EQ(paths(items), (QStringList{saved, storage, webkit}));
    EXPECT_EQ(items.at(0).name, QStringLiteral("com.gone.app"));
    EXPECT_EQ(items.at(0).detail, QStringLiteral("Saved Application State"));
    expectSoundItems(items);
}

TEST_F(Orphans, GatedFoldersAreSkippedWithoutFullDiskAccessAndMissingRootsGiveNothing)
{
    data(QStringLiteral("~/Library/Containers/com.gone.app"));
    const QString support = data(QStringLiteral("~/Library/Application Support/com.gone.app"));
    fullDiskAccess = false;
    EXPECT_EQ(found(), QStringList{support});
    fullDiskAccess = true;
    QDir(m_tree.root()).removeRecursively();
    EXPECT_TRUE(found().isEmpty());
}

TEST_F(Orphans, NothingTheSafetyGateRefusesComesBack)
{
    // Application Support is a link into the keychains: whatever is inside is protected.
    data(QStringLiteral("~/Library/Keychains/Vault/com.gone.secret"));
    link(QStringLiteral("~/Library/Keychains/Vault"), QStringLiteral("~/Library/Application Support"));
    const QString container = data(QStringLiteral("~/Library/Containers/com.gone.app"));
    const QList<CleanItem> items = catalog().orphanedLeftovers();
    EXPECT_EQ(paths(items), QStringList{container});
    expectSoundItems(items);
}

// The cleanup model scans categories in parallel while the apps screen asks for one app's
// leftovers: calls on one catalogue must not disturb each other.
TEST_F(Orphans, ConcurrentCallsGiveWhatSerialCallsGive)
{
    install();
    for (int i = 0; i < 40; ++i) {
        data(QStringLiteral("~/Library/Containers/com.gone%1.app").arg(i), 1000 * (i + 1));
        data(QStringLiteral("~/Library/Application Support/com.acme.writer.part%1").arg(i));
    }
    file(QStringLiteral("~/Library/Preferences/com.acme.writer.plist"));
    const InstalledApp writer = *catalog().describe(at(QStringLiteral("/Applications/Writer.app")));
    const QList<CleanItem> orphans = catalog().orphanedLeftovers();
    const QList<CleanItem> leftovers = catalog().leftovers(writer);
    ASSERT_EQ(orphans.size(), 40);
    ASSERT_EQ(leftovers.size(), 41);

    std::vector<std::thread> threads;
    std::atomic<int> mismatches = 0;
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 3; ++round) {
                if (t % 2 ? catalog().orphanedLeftovers() != orphans
                          : catalog().leftovers(writer) != leftovers)
                    ++mismatches;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
}
