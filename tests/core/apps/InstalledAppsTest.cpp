#include "AppFixture.h"
#include "support/Column.h"

#include <fcntl.h>
#include <sys/stat.h>

using namespace nubo;
using namespace nubo::test;

namespace {

class InstalledApps : public AppTree
{
protected:
    QStringList names() { return names(catalog().load()); }
    static QStringList names(const QList<InstalledApp>& apps) { return test::column(apps, &InstalledApp::name); }
};

} // namespace

TEST_F(InstalledApps, ListsBundlesTwoLevelsDownButNotThreeNorLinksNorOtherCases)
{
    QDir(roots.applications).removeRecursively(); // missing roots give nothing
    EXPECT_TRUE(names().isEmpty());
    app(QStringLiteral("/Applications/Top.app"), QStringLiteral("com.acme.top"));
    app(QStringLiteral("/Applications/Suite/Nested.app"), QStringLiteral("com.acme.nested"));
    app(QStringLiteral("/Applications/A/B/TooDeep.app"), QStringLiteral("com.acme.deep"));
    app(QStringLiteral("/Applications/Upper.APP"), QStringLiteral("com.acme.upper"));
    app(QStringLiteral("/Applications/.Hidden.app"), QStringLiteral("com.acme.hidden"));
    // Inside a bundle nothing is listed: helpers are part of their app.
    app(QStringLiteral("/Applications/Top.app/Contents/Helpers/Helper.app"),
        QStringLiteral("com.acme.top.helper"));
    // Neither a link to an app nor a folder of apps reached through a link is walked.
    link(QStringLiteral("/Applications/Top.app"), QStringLiteral("/Applications/Alias.app"));
    link(QStringLiteral("/Applications/Suite"), QStringLiteral("/Applications/Linked"));
    // A name that is not UTF-8 cannot be held as text without changing it: listing it would offer
    // to remove a path that does not exist, so it is not listed, and it is not touched.
    const QByteArray odd = nativePath(QStringLiteral("/Applications"), QByteArray("Caf\xe9.app"));
    makeDir(odd);

    EXPECT_EQ(names(), (QStringList{QStringLiteral("Nested"), QStringLiteral("Top")}));
    EXPECT_TRUE(exists(odd));
}

TEST_F(InstalledApps, SortedByNameIgnoringCaseAndTheSystemCopyFirstOnATie)
{
    app(QStringLiteral("/Applications/banana.app"), QStringLiteral("com.x.banana"));
    app(QStringLiteral("/Applications/Cherry.app"), QStringLiteral("com.x.cherry"));
    app(QStringLiteral("~/Applications/Apple.app"), QStringLiteral("com.x.apple.user"));
    app(QStringLiteral("/Applications/Apple.app"), QStringLiteral("com.x.apple"));

    const QList<InstalledApp> apps = catalog().load();
    ASSERT_EQ(names(apps), (QStringList{QStringLiteral("Apple"), QStringLiteral("Apple"),
                                        QStringLiteral("banana"), QStringLiteral("Cherry")}));
    EXPECT_EQ(apps.at(0).url, at(QStringLiteral("/Applications/Apple.app")));
    EXPECT_EQ(apps.at(1).url, at(QStringLiteral("~/Applications/Apple.app")));
}

TEST_F(InstalledApps, DescribesXmlAndBinaryBundlesAlikeAndTheStoreByItsReceiptFile)
{
    const QVariantMap info{{QStringLiteral("CFBundleIdentifier"), QStringLiteral("com.Acme.Writer")},
                           {QStringLiteral("CFBundleDisplayName"), QStringLiteral("Bar")},
                           {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("2.1")}};
    for (PlistFormat format : {PlistFormat::xml, PlistFormat::binary}) {
        const QString name = format == PlistFormat::xml ? QStringLiteral("Foo") : QStringLiteral("Baz");
        const QString path =
            bundle(QStringLiteral("/Applications/") + name + QStringLiteral(".app"), info, format);
        const std::optional<InstalledApp> described = catalog().describe(path);
        ASSERT_TRUE(described);
        EXPECT_EQ(described->name, name); // the file name wins over every declared name
        EXPECT_EQ(described->bundleID, QStringLiteral("com.Acme.Writer")); // case as declared
        EXPECT_EQ(described->version, QStringLiteral("2.1"));
        EXPECT_FALSE(described->isStore);
        EXPECT_FALSE(described->size);
    }
    // Only a receipt file marks a store app, whatever it holds; an empty receipt folder does not.
    const QString store = app(QStringLiteral("/Applications/Store.app"), QStringLiteral("com.x.store"));
    rawFile(QStringLiteral("/Applications/Store.app/Contents/_MASReceipt/receipt"), "not a real receipt");
    const QString almost = app(QStringLiteral("/Applications/Almost.app"), QStringLiteral("com.x.almost"));
    folder(QStringLiteral("/Applications/Almost.app/Contents/_MASReceipt"));
    EXPECT_TRUE(catalog().describe(store)->isStore);
    EXPECT_FALSE(catalog().describe(almost)->isStore);
}

TEST_F(InstalledApps, DeclaredNamesOnlyServeABundleNamedByItsExtensionAlone)
{
    const QString bare = bundle(QStringLiteral("/Elsewhere/.app"),
                                {{QStringLiteral("CFBundleDisplayName"), QStringLiteral("Shown")},
                                 {QStringLiteral("CFBundleName"), QStringLiteral("Plain")}});
    EXPECT_EQ(catalog().describe(bare)->name, QStringLiteral("Shown"));
    const QString named =
        bundle(QStringLiteral("/Elsewhere2/.app"), {{QStringLiteral("CFBundleName"), QStringLiteral("Plain")},
                                                    {QStringLiteral("CFBundleDisplayName"), qint64(3)}});
    EXPECT_EQ(catalog().describe(named)->name, QStringLiteral("Plain"));
    EXPECT_EQ(catalog().describe(named + QLatin1Char('/'))->name, QStringLiteral("Plain"));
    EXPECT_EQ(catalog().describe(at(QStringLiteral("/Applications/Dotted.Name.app")))->name,
              QStringLiteral("Dotted.Name"));
}

TEST_F(InstalledApps, BundlesWithoutUsableInformationAreStillListed)
{
    folder(QStringLiteral("/Applications/Bare.app/Contents"));
    rawFile(QStringLiteral("/Applications/Broken.app/Contents/Info.plist"),
            QByteArray("bplist00\x01\x02garbage", 17));
    rawFile(QStringLiteral("/Applications/Empty.app/Contents/Info.plist"), QByteArray());
    rawFile(QStringLiteral("/Applications/Listy.app/Contents/Info.plist"),
            plistBytes(QVariantList{QStringLiteral("CFBundleIdentifier"), QStringLiteral("com.x")},
                       PlistFormat::binary));
    const QByteArray whole =
        plistBytes(QVariantMap{{QStringLiteral("CFBundleIdentifier"), QStringLiteral("com.acme.cut")},
                               {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("1")}},
                   PlistFormat::binary);
    rawFile(QStringLiteral("/Applications/Cut.app/Contents/Info.plist"), whole.left(whole.size() - 5));
    bundle(QStringLiteral("/Applications/NumericId.app"),
           {{QStringLiteral("CFBundleIdentifier"), qint64(12345)}});

    const QList<InstalledApp> apps = catalog().load();
    EXPECT_EQ(names(apps),
              (QStringList{QStringLiteral("Bare"), QStringLiteral("Broken"), QStringLiteral("Cut"),
                           QStringLiteral("Empty"), QStringLiteral("Listy"), QStringLiteral("NumericId")}));
    for (const InstalledApp& app : apps)
        EXPECT_FALSE(app.bundleID || app.version) << app.name.toStdString();
}

TEST_F(InstalledApps, LastUseComesFromMetadataThenFromTheAccessDate)
{
    const QString indexed = app(QStringLiteral("/Applications/Indexed.app"), QStringLiteral("com.x.indexed"));
    const QString opened = app(QStringLiteral("/Applications/Opened.app"), QStringLiteral("com.x.opened"));
    const QDateTime spotlight = QDateTime::fromSecsSinceEpoch(1'600'000'000);
    metadata.lastUsed.insert(indexed, spotlight);
    const timespec times[2] = {{1'500'000'000, 0}, {1'400'000'000, 0}}; // access, modification
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(opened).constData(), times, AT_SYMLINK_NOFOLLOW), 0);

    EXPECT_EQ(catalog().describe(indexed)->lastUsed, spotlight);
    EXPECT_EQ(catalog().describe(opened)->lastUsed, QDateTime::fromSecsSinceEpoch(1'500'000'000));
    EXPECT_FALSE(catalog().describe(at(QStringLiteral("/Applications/Gone.app")))->lastUsed);
}

TEST_F(InstalledApps, RunningInstanceIsMatchedByLocationNotByIdentifier)
{
    const QString first = app(QStringLiteral("/Applications/Writer.app"), QStringLiteral("com.acme.writer"));
    const QString second =
        app(QStringLiteral("~/Applications/Writer.app"), QStringLiteral("com.acme.writer"));
    const InstalledApp firstApp = *catalog().describe(first);
    const InstalledApp secondApp = *catalog().describe(second);

    EXPECT_FALSE(catalog().runningInstance(firstApp));
    workspace.running = {
        RunningApplication{10, QStringLiteral("helper"), QString(), false, false, false},
        RunningApplication{11, QStringLiteral("Writer"), second + QStringLiteral("/"), false, true, true}};
    EXPECT_FALSE(catalog().runningInstance(firstApp)); // only the other copy runs
    ASSERT_TRUE(catalog().runningInstance(secondApp));
    EXPECT_EQ(catalog().runningInstance(secondApp)->pid, 11);

    workspace.running << RunningApplication{12,
                                            QStringLiteral("Writer"),
                                            roots.applications + QStringLiteral("/./Other/../Writer.app"),
                                            false,
                                            false,
                                            true};
    EXPECT_EQ(catalog().runningInstance(firstApp)->pid, 12);
}
