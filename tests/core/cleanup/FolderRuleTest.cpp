#include "CleanFixture.h"

#include "core/cleanup/CatalogRules.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/cleanup/FolderCategories.h"
#include "core/cleanup/FolderRule.h"
#include "core/files/Location.h"
#include "support/FixtureFiles.h"

#include <QFile>
#include <QHash>

#include <atomic>
#include <memory>
#include <thread>
#include <tuple>
#include <vector>

#include <sys/stat.h>

using namespace nubo;
using nubo::testing::CleanFixture;

namespace {

using FolderRuleTest = CleanFixture;

} // namespace

TEST_F(FolderRuleTest, TemporaryFoldersOfferOnlyOldNonEmptyEntries)
{
    // Entries either side of the three-day limit, bookkeeping files and empty entries.
    const std::tuple<const char*, qint64, double> entries[] = {
        {"four-days", 4096, 4}, {".DS_Store", 4096, 4}, {".localized", 4096, 4},
        {"zero", 0, 4},         {"two-days", 8192, 2},
    };
    for (const auto& [name, bytes, days] : entries)
        age(file(QStringLiteral("tmp-user/T/") + QLatin1String(name), bytes), days);
    file(QStringLiteral("tmp-user/T/old-folder/inner/data"), 20000);
    age(base(QStringLiteral("tmp-user/T/old-folder")), 4);
    age(folder(QStringLiteral("tmp-user/T/empty-folder")), 4);

    // Largest first, each sized as its whole tree.
    const QList<CleanItem> items = FolderCategories::temp(*m_context);
    EXPECT_EQ(relative(items), (list({"tmp-user/T/old-folder", "tmp-user/T/four-days"})));
    EXPECT_EQ(items.first().size, Location::allocatedSize(base(QStringLiteral("tmp-user/T/old-folder"))));
    EXPECT_GE(items.first().size, 20000);
}

TEST_F(FolderRuleTest, SharedTemporaryFolderOffersOnlyTheUsersOwnEntries)
{
    const QString mine = file(QStringLiteral("shared-tmp/mine"));
    const QString theirs = file(QStringLiteral("shared-tmp/theirs"));
    const QString theirsHere = file(QStringLiteral("tmp-user/T/theirs-in-private"));
    if (!giveAway(theirs) || !giveAway(theirsHere))
        GTEST_SKIP() << "this user may not give files away";
    for (const QString& path : {mine, theirs, theirsHere})
        age(path, 10);

    // The per-user folder comes first and does not ask who owns what; the shared one does.
    EXPECT_EQ(relative(FolderCategories::temp(*m_context)),
              (list({"tmp-user/T/theirs-in-private", "shared-tmp/mine"})));

    // A per-user folder every user may write to (a Linux TMPDIR of /tmp) is shared too, and is
    // listed once though the shared folders name it again.
    age(file(QStringLiteral("tmp-user/T/mine-here")), 10);
    ASSERT_EQ(::chmod(QFile::encodeName(base(QStringLiteral("tmp-user/T"))).constData(), 01777), 0);
    m_context->sharedTemporaries.prepend(base(QStringLiteral("tmp-user/T")));
    EXPECT_EQ(relative(FolderCategories::temp(*m_context)),
              (list({"tmp-user/T/mine-here", "shared-tmp/mine"})));
}

TEST_F(FolderRuleTest, AgeLimitOfDownloadsAndCaseOfInstallerExtensions)
{
    for (const char* name : {"Setup.DMG", "tool.pkg", "Xcode.xip", "Suite.MPKG", "readme.txt", ".pkg", "dmg"})
        age(file(QStringLiteral("home/Downloads/") + QLatin1String(name)), 1);
    age(file(QStringLiteral("home/Downloads/old-89")), 89);
    age(file(QStringLiteral("home/Downloads/old-91"), 16384), 91);

    QStringList installers = relative(FolderCategories::installers(*m_context));
    installers.sort();
    EXPECT_EQ(installers, (list({"home/Downloads/Setup.DMG", "home/Downloads/Suite.MPKG",
                                 "home/Downloads/Xcode.xip", "home/Downloads/tool.pkg"})));
    EXPECT_EQ(relative(FolderCategories::oldDownloads(*m_context)), list({"home/Downloads/old-91"}));
}

TEST_F(FolderRuleTest, ApplicationCachesLeavePackageManagersAndOurOwnFolderOut)
{
    for (const QString& name : FolderCategories::packageCacheNames())
        file(QStringLiteral("home/Library/Caches/") + name + QStringLiteral("/blob"));
    file(QStringLiteral("home/Library/Caches/app.nubo.Nubo/blob"));
    file(QStringLiteral("home/Library/Caches/com.spotify.client/data"), 40000);
    file(QStringLiteral("home/Library/Caches/com.apple.Safari/data"), 10000);
    m_workspace.applications.insert(QStringLiteral("com.spotify.client"),
                                    QStringLiteral("/Applications/Spotify.app"));
    m_context->ownBundleIdentifier = QStringLiteral("app.nubo.Nubo");

    // Named by their owners, with a link to the owner where it is installed, and no subtitle.
    const QList<CleanItem> items = FolderCategories::caches(*m_context);
    ASSERT_EQ(relative(items),
              (list({"home/Library/Caches/com.spotify.client", "home/Library/Caches/com.apple.Safari"})));
    EXPECT_EQ(items[0].name, QStringLiteral("Spotify"));
    EXPECT_EQ(items[0].appURL, QStringLiteral("/Applications/Spotify.app"));
    EXPECT_EQ(items[1].appURL, std::nullopt);
    for (const CleanItem& item : items)
        EXPECT_EQ(item.subtitle, std::nullopt);
}

TEST_F(FolderRuleTest, ArchivesAreFlattenedOneLevelAndLinksAreNeverOpened)
{
    const QString archives = QStringLiteral("home/Library/Developer/Xcode/Archives/");
    file(archives + QStringLiteral("2024-01-05/App 05-01-2024, 10.00.xcarchive/Info.plist"), 30000);
    file(archives + QStringLiteral("2024-02-01/Other.xcarchive/dSYMs/x"), 50000);
    folder(archives + QStringLiteral("2024-03-01"));
    file(QStringLiteral("elsewhere/precious/data"), 90000);
    test::makeLink(base(QStringLiteral("elsewhere/precious")), base(archives + QStringLiteral("link")));

    EXPECT_EQ(relative(FolderCategories::archives(*m_context)),
              (list({"home/Library/Developer/Xcode/Archives/2024-02-01/Other.xcarchive",
                     "home/Library/Developer/Xcode/Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive"})));
}

TEST_F(FolderRuleTest, DerivedDataIsNamedByProjectAndDeviceSupportKeepsPlatformOrder)
{
    file(QStringLiteral(
        "home/Library/Developer/Xcode/DerivedData/MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct/Build/x"));
    file(QStringLiteral("home/Library/Developer/Xcode/DerivedData/ModuleCache.noindex/y"));
    file(QStringLiteral("home/Library/Developer/Xcode/macOS DeviceSupport/14.0/big"), 90000);
    file(QStringLiteral("home/Library/Developer/Xcode/watchOS DeviceSupport/10.0/mid"), 50000);
    file(QStringLiteral("home/Library/Developer/Xcode/iOS DeviceSupport/17.0 (21A329)/small"), 8192);
    file(QStringLiteral("home/Library/Developer/Xcode/iOS DeviceSupport/16.0/smaller"), 4096);

    QStringList names;
    for (const CleanItem& item : FolderCategories::derivedData(*m_context))
        names << item.name;
    names.sort();
    EXPECT_EQ(names, (list({"ModuleCache.noindex", "MyApp"})));

    EXPECT_EQ(relative(FolderCategories::deviceSupport(*m_context)),
              (list({"home/Library/Developer/Xcode/iOS DeviceSupport/17.0 (21A329)",
                     "home/Library/Developer/Xcode/iOS DeviceSupport/16.0",
                     "home/Library/Developer/Xcode/watchOS DeviceSupport/10.0",
                     "home/Library/Developer/Xcode/macOS DeviceSupport/14.0"})));
}

TEST_F(FolderRuleTest, NothingTheSafetyGateRefusesIsOffered)
{
    // The top of the home holds protected folders (the Library, Downloads, the Trash) next to ordinary ones.
    for (const char* path : {"home/Projects/notes.txt", "home/Library/Keychains/login.keychain-db",
                             "home/Downloads/a", "home/.Trash/b"})
        file(QLatin1String(path));
    EXPECT_EQ(relative(FolderRule(*m_context).children(m_roots.home)), list({"home/Projects"}));
    EXPECT_EQ(relative(FolderRule(*m_context).children(home(QStringLiteral("Library")))), QStringList());
}

TEST_F(FolderRuleTest, GatedFoldersAreNotRead)
{
    file(QStringLiteral("home/.Trash/thrown"));
    file(QStringLiteral("home/Downloads/Setup.dmg"));
    file(QStringLiteral("home/Library/Containers/com.apple.mail/Data/Library/Mail Downloads/x/a.pdf"));
    file(QStringLiteral("home/Library/Application Support/MobileSync/Backup/00008030-001/Manifest.db"));
    using Rule = QList<CleanItem> (*)(const CleanContext&);
    const Rule gated[] = {FolderCategories::trash, FolderCategories::installers, FolderCategories::mail,
                          FolderCategories::backups};
    for (Rule rule : gated)
        EXPECT_EQ(rule(*m_context).size(), 1);

    m_fullDiskAccess = false;
    m_privacy->refresh();
    for (Rule rule : gated)
        EXPECT_TRUE(rule(*m_context).isEmpty());
}

TEST_F(FolderRuleTest, OddNamesAreOfferedExactlyAndNamesThatAreNotTextNever)
{
    QStringList odd = {QStringLiteral("-rf"), QStringLiteral("quo\"te's"), QStringLiteral("back\\slash"),
                       QStringLiteral("new\nline"), QStringLiteral("año ñandú")};
    for (const QString& name : odd)
        file(QStringLiteral("home/.Trash/") + name);
    test::writeBytes(QFile::encodeName(home(QStringLiteral(".Trash/"))) + "bad\xff\xfe.bin",
                     QByteArray(8192, 'x'));

    QStringList offered;
    for (const CleanItem& item : FolderCategories::trash(*m_context)) {
        EXPECT_TRUE(QFile::exists(*item.url())) << item.id.toStdString();
        offered << item.name;
    }
    offered.sort();
    odd.sort();
    EXPECT_EQ(offered, odd);
}

// Several scans start at once on the pool: the first to ask binds every rule, exactly once, and
// each category finds at once what it finds alone.
TEST_F(FolderRuleTest, EveryCategoryIsBoundOnceAndScansAtOnceAsItDoesAlone)
{
    for (int i = 0; i < 30; ++i) {
        file(QStringLiteral("home/Library/Caches/com.vendor%1.app/blob").arg(i), 4096 * (i + 1));
        file(QStringLiteral("home/.Trash/thrown%1").arg(i), 4096 * (i % 3 + 1));
        age(file(QStringLiteral("home/Downloads/Setup%1.dmg").arg(i)), i * 5);
    }
    file(QStringLiteral("home/Library/Developer/CoreSimulator/Caches/dyld/cache"));
    m_workspace.applications.insert(QStringLiteral("com.vendor3.app"),
                                    QStringLiteral("/Applications/Three.app"));
    m_context->orphans = [] {
        return QList<CleanItem>{CleanItem(QStringLiteral("/x"), QStringLiteral("Gone"), QStringLiteral("~/x"),
                                          9, CleanItem::Remove{QStringLiteral("/x")})};
    };
    const CleanCatalog::Rules rules = CatalogRules::make(std::make_shared<CleanContext>(*m_context));
    EXPECT_FALSE(rules(QStringLiteral("unknown")));
    std::atomic<int> binds = 0;
    // Docker's rule is held back: a row without a rule scans to nothing rather than failing.
    const CleanCatalog catalog([&binds, &rules](const QString& id) {
        ++binds;
        return id == QLatin1String("docker") ? CleanCategory::Scan() : rules(id);
    });

    const qsizetype rows = CleanCatalog::rows().size();
    QList<QList<CleanItem>> together(rows);
    std::vector<std::thread> threads;
    for (qsizetype i = 0; i < rows; ++i)
        threads.emplace_back([&, i] { together[i] = catalog.all().at(i).scan(); });
    for (std::thread& thread : threads)
        thread.join();
    QHash<QString, qsizetype> counts;
    QList<QList<CleanItem>> alone;
    for (const CleanCategory& category : catalog.all()) {
        alone << category.scan();
        counts.insert(category.id, alone.last().size());
    }

    // Each found what is there for it, the silent tool's category nothing, and at once the same.
    EXPECT_EQ(binds.load(), rows);
    EXPECT_EQ(counts.value(QStringLiteral("caches")), 30);
    EXPECT_EQ(counts.value(QStringLiteral("simulators")), 1);
    EXPECT_EQ(counts.value(QStringLiteral("orphans")), 1);
    EXPECT_EQ(counts.value(QStringLiteral("runtimes")), 0);
    EXPECT_EQ(counts.value(QStringLiteral("docker")), 0);
    EXPECT_EQ(together, alone);
}
