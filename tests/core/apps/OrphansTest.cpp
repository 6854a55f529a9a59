#include "AppFixture.h"

#include <atomic>
#include <thread>
#include <vector>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

class Orphans : public AppTree
{
protected:
    // An installed suite: an app with an extension and a service inside, and the system's own apps.
    void install()
    {
        app(u"/Applications/Writer.app"_s, u"com.acme.Writer"_s, PlistFormat::binary);
        app(u"/Applications/Writer.app/Contents/PlugIns/Share.appex"_s, u"com.acme.writer.share"_s);
        app(u"/Applications/Writer.app/Contents/XPCServices/Render.xpc"_s, u"net.render.service"_s);
        app(u"~/Applications/Big Suite/Editor.app"_s, u"org.big.suite.editor"_s);
        app(u"/System/Applications/Mail.app"_s, u"com.apple.mail"_s);
        app(u"/System/Applications/Chess.app"_s, u"org.system.chess"_s);
        app(u"/Applications/Utilities/Tool.app"_s, u"org.utilities.tool"_s);
        // Depth 6 is still walked; depth 7 is not.
        app(u"/Applications/D1/D2/D3/D4/D5/Six.app"_s, u"org.depth.six"_s);
        app(u"/Applications/D1/D2/D3/D4/D5/D6/Seven.app"_s, u"org.depth.seven"_s);
    }

    // A folder holding `bytes` of data at `path`; returns the folder.
    QString data(const QString& path, qint64 bytes = 1000) { return file(path + u"/data"_s, bytes).chopped(5); }
    QStringList found() { return paths(catalog().orphanedLeftovers()); }
};

struct Entry
{
    const char* path; // below ~/Library, a folder holding `bytes`
    const char* orphan; // the name it is offered under; none: not an orphan
    qint64 bytes = 1000;
};

} // namespace

// Only non-empty, identifier-named data whose app is installed nowhere (nor registered elsewhere)
// comes back, named by the identifier each Library folder's naming gives it.
TEST_F(Orphans, OnlyDataOfAnAppInstalledNowhereIsAnOrphan)
{
    // clang-format off
    const Entry entries[] = {
        {"Containers/com.acme.writer", nullptr}, // the app, in another case
        {"Containers/com.acme.writer.share", nullptr}, {"Containers/net.render.service", nullptr}, // extension, service
        {"Containers/com.acme.writer.share.sub", nullptr}, {"Containers/org.big.suite", nullptr}, // below, above an id
        {"Containers/org.system.chess", nullptr}, {"Containers/org.utilities.tool", nullptr},
        {"Containers/org.depth.six", nullptr}, {"Containers/org.depth.seven", "org.depth.seven"},
        {"Containers/com.registry.known", nullptr}, // the registry places it elsewhere
        {"Containers/com.odd.app", nullptr}, // its bundle's name is not UTF-8; its identifier still counts
        {"Containers/com.gone.zero", nullptr, 0}, {"Containers/com.gone.app", "com.gone.app", 5000},
        {"Containers/com.registry.gone", "com.registry.gone"}, {"Caches/com.gone.cache", nullptr}, // not searched
        {"Application Support/org.third.party", "org.third.party"}, {"Application Support/two.parts", nullptr},
        {"Application Support/a..b.c", nullptr}, {"Application Support/has space.b.c", nullptr},
        {"Application Support/com.apple.Safari", nullptr}, {"Application Support/COM.APPLE.thing", nullptr},
        {"Application Support/group.com.x.y", nullptr}, {"Application Support/Group.com.x.y", nullptr},
        {"Application Support/plain", nullptr}, {"Application Support/trailing.dot.", nullptr},
        {"WebKit/.hidden.a.b", nullptr}, {"WebKit/com.gone.kit", "com.gone.kit"},
        {"Saved Application State/com.gone.app.savedState", "com.gone.app", 3000},
        {"Saved Application State/com.gone.nosuffix", nullptr},
        {"Saved Application State/com.apple.Preview.savedState", nullptr},
        {"HTTPStorages/com.gone.web", "com.gone.web", 2000}, {"HTTPStorages/com.gone.web.binarycookies", nullptr},
    };
    // clang-format on
    install();
    workspace.applications.insert(u"com.registry.known"_s, u"/Volumes/External/Known.app"_s);
    writeBytes(nativePath(u"/Applications"_s, "Od\xe9.app") + "/Contents/Info.plist",
               plistBytes(QVariantMap{{u"CFBundleIdentifier"_s, u"com.odd.app"_s}}, PlistFormat::xml));
    folder(u"~/Library/Containers/com.gone.empty/Data/Library"_s);
    // Data whose own name is not UTF-8 is left where it is.
    const QByteArray odd = nativePath(u"~/Library/Containers"_s, "com.gone.\xfe\xff");
    writeBytes(odd + "/data", "data");
    QStringList expected;
    for (const Entry& entry : entries) {
        const QString path = QString::fromUtf8(entry.path);
        const QString made = data(u"~/Library/"_s + path, entry.bytes);
        if (entry.orphan)
            expected << made + u" | "_s + QLatin1String(entry.orphan) + u" | "_s + path.section(u'/', 0, 0);
    }

    const QList<CleanItem> items = catalog().orphanedLeftovers();
    QStringList shown;
    for (const CleanItem& item : items)
        shown << item.id + u" | "_s + item.name + u" | "_s + item.detail;
    EXPECT_EQ(sorted(shown), sorted(expected));
    expectSoundItems(items);
    EXPECT_TRUE(exists(odd));
}

// Containers need Full Disk Access, Application Support here is a link into the keychains whose
// contents the safety gate refuses, and missing roots give nothing.
TEST_F(Orphans, GatedRefusedAndMissingFoldersGiveNothing)
{
    data(u"~/Library/Keychains/Vault/com.gone.secret"_s);
    link(u"~/Library/Keychains/Vault"_s, u"~/Library/Application Support"_s);
    data(u"~/Library/Containers/com.gone.app"_s);
    const QString kit = data(u"~/Library/WebKit/com.gone.kit"_s);
    fullDiskAccess = false;
    const QList<CleanItem> items = catalog().orphanedLeftovers();
    EXPECT_EQ(paths(items), QStringList{kit});
    expectSoundItems(items);
    QDir(m_tree.root()).removeRecursively();
    EXPECT_TRUE(found().isEmpty());
}

// The cleanup model scans categories in parallel while the apps screen asks for one app's
// leftovers: calls on one catalogue must not disturb each other.
TEST_F(Orphans, ConcurrentCallsGiveWhatSerialCallsGive)
{
    install();
    for (int i = 0; i < 40; ++i) {
        data(u"~/Library/Containers/com.gone%1.app"_s.arg(i), 1000 * (i + 1));
        data(u"~/Library/Application Support/com.acme.writer.part%1"_s.arg(i));
    }
    file(u"~/Library/Preferences/com.acme.writer.plist"_s);
    const InstalledApp writer = *catalog().describe(at(u"/Applications/Writer.app"_s));
    const QList<CleanItem> orphans = catalog().orphanedLeftovers();
    const QList<CleanItem> leftovers = catalog().leftovers(writer);
    ASSERT_EQ(orphans.size(), 40);
    ASSERT_EQ(leftovers.size(), 41);

    std::vector<std::thread> threads;
    std::atomic<int> mismatches = 0;
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 3; ++round)
                mismatches += t % 2 ? catalog().orphanedLeftovers() != orphans
                                    : catalog().leftovers(writer) != leftovers;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mismatches.load(), 0);
}
