#include "CleanFixture.h"

#include "core/cleanup/CatalogRules.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/cleanup/DeveloperCleaners.h"
#include "core/cleanup/FolderCategories.h"
#include "core/cleanup/FolderRule.h"
#include "core/cleanup/LargeOldFiles.h"
#include "support/Column.h"
#include "support/FixtureFiles.h"

#include <QFile>
#include <QHash>
#include <QLocale>
#include <QSet>

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <tuple>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using namespace nubo;
using nubo::testing::CleanFixture;

namespace {

class FolderRuleTest : public CleanFixture
{
protected:
    // Writes each path (below the base after `prefix`, UTF-8) changed `days` ago (left new when negative),
    // each one 4 KiB larger than the next.
    void make(double days, const char* prefix, std::initializer_list<const char*> paths) const
    {
        qint64 bytes = qint64(paths.size()) * 4096;
        for (const char* path : paths) {
            const QString written = file(QString::fromUtf8(prefix) + QString::fromUtf8(path), bytes);
            bytes -= 4096;
            if (days >= 0)
                age(written, days);
        }
    }
    QStringList sorted(const QList<CleanItem>& items) const
    {
        QStringList paths = relative(items);
        paths.sort();
        return paths;
    }
};

// Sets the last access and the last modification of `path` separately, `days` ago.
void stamp(const QByteArray& path, double accessDays, double changeDays)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const timespec stamps[2] = {{time_t(now - qint64(accessDays * 86400)), 0},
                                {time_t(now - qint64(changeDays * 86400)), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), stamps, 0), 0) << path.constData();
}

} // namespace

// One Mac holds something for every category. All rows scan at once on threads, as the pool runs
// them: the first to ask binds every rule, exactly once, and each row finds exactly its own
// entries, largest first (device support in platform order), nothing empty, too recent, of our
// own or of another rule. Without Full Disk Access the gated rows find nothing and the rest the same.
TEST_F(FolderRuleTest, EveryCategoryFindsItsOwnEntriesAtOnceAndGatedOnesNeedFullDiskAccess)
{
    // Each group's first entry is the largest, so every listing keeps the order written here,
    // except device support, which goes by platform.
    make(-1, "home/Library/Developer/Xcode/",
         {"Archives/2024-02-01/Other.xcarchive/dSYMs/x",
          "Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive/x",
          "DerivedData/MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct/Build/x", "DerivedData/ModuleCache.noindex/y",
          "macOS DeviceSupport/14.0/big", "watchOS DeviceSupport/10.0/mid",
          "iOS DeviceSupport/17.0 (21A329)/small", "iOS DeviceSupport/16.0/smaller"});
    make(-1, "home/Library/Caches/",
         {"Homebrew/dl/x.tar.gz", "com.spotify.client/d", "com.apple.Safari/d", "app.nubo.Nubo/blob"});
    make(-1, "home/",
         {".npm/_cacache/content/y", ".cargo/registry/cache/z.crate", ".Trash/-rf", ".Trash/quo\"te's",
          ".Trash/back\\slash", ".Trash/new\nline", ".Trash/año ñandú",
          "Library/Developer/CoreSimulator/Caches/dyld/c",
          "Library/Containers/com.apple.mail/Data/Library/Mail Downloads/x/a.pdf",
          "Library/Application Support/MobileSync/Backup/00008030-001/Manifest.db"});
    make(4, "tmp-user/T/", {"four-days", ".DS_Store", ".localized"});
    make(2, "tmp-user/T/", {"two-days"});
    make(1, "home/Downloads/",
         {"Setup.DMG", "Xcode.xip", "Suite.MPKG", "tool.pkg", "readme.txt", ".pkg", "dmg"});
    make(89, "home/Downloads/", {"old-89"});
    make(91, "home/Downloads/", {"old-91"});
    file(QStringLiteral("tmp-user/T/old-folder/inner/data"), 20000);
    file(QStringLiteral("elsewhere/precious/data"), 90000);
    age(file(QStringLiteral("tmp-user/T/zero"), 0), 4);
    for (const QString& name : FolderCategories::packageCacheNames())
        file(QStringLiteral("home/Library/Caches/") + name + QStringLiteral("/blob"), 4096);
    folder(QStringLiteral("home/.gradle/caches")); // empty: nothing to free
    folder(QStringLiteral("home/Library/Developer/Xcode/Archives/2024-03-01"));
    age(base(QStringLiteral("tmp-user/T/old-folder")), 4);
    age(folder(QStringLiteral("tmp-user/T/empty-folder")), 4);
    test::makeLink(base(QStringLiteral("elsewhere/precious")),
                   home(QStringLiteral("Library/Developer/Xcode/Archives/link"))); // never opened
    // A name that is not text could only be offered under a wrong name.
    test::writeBytes(QFile::encodeName(home(QStringLiteral(".Trash/"))) + "bad\xff\xfe.bin",
                     QByteArray(8192, 'x'));
    m_workspace.applications.insert(QStringLiteral("com.spotify.client"),
                                    QStringLiteral("/Applications/Spotify.app"));
    m_context->ownBundleIdentifier = QStringLiteral("app.nubo.Nubo");
    const QString gone = base(QStringLiteral("gone"));
    m_context->orphans = [gone] {
        return QList<CleanItem>{CleanItem(gone, gone, gone, 9, CleanItem::Remove{gone})};
    };
    const QString xcode = QStringLiteral("home/Library/Developer/Xcode/");
    const QHash<QString, QStringList> expected = {
        {QStringLiteral("temp"), list({"tmp-user/T/old-folder", "tmp-user/T/four-days"})},
        {QStringLiteral("installers"), list({"home/Downloads/Setup.DMG", "home/Downloads/Xcode.xip",
                                             "home/Downloads/Suite.MPKG", "home/Downloads/tool.pkg"})},
        {QStringLiteral("olddownloads"), list({"home/Downloads/old-91"})},
        {QStringLiteral("caches"),
         list({"home/Library/Caches/com.spotify.client", "home/Library/Caches/com.apple.Safari"})},
        // The application caches leave these out, so none is counted twice.
        {QStringLiteral("packages"),
         list({"home/.npm/_cacache", "home/.cargo/registry/cache", "home/Library/Caches/Homebrew",
               "home/Library/Caches/Yarn", "home/Library/Caches/pip", "home/Library/Caches/CocoaPods",
               "home/Library/Caches/org.swift.swiftpm", "home/Library/Caches/go-build"})},
        {QStringLiteral("archives"),
         QStringList{xcode + QStringLiteral("Archives/2024-02-01/Other.xcarchive"),
                     xcode + QStringLiteral("Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive")}},
        {QStringLiteral("deriveddata"),
         QStringList{xcode + QStringLiteral("DerivedData/MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct"),
                     xcode + QStringLiteral("DerivedData/ModuleCache.noindex")}},
        {QStringLiteral("devicesupport"),
         QStringList{xcode + QStringLiteral("iOS DeviceSupport/17.0 (21A329)"),
                     xcode + QStringLiteral("iOS DeviceSupport/16.0"),
                     xcode + QStringLiteral("watchOS DeviceSupport/10.0"),
                     xcode + QStringLiteral("macOS DeviceSupport/14.0")}},
        {QStringLiteral("simulators"), list({"home/Library/Developer/CoreSimulator/Caches/dyld"})},
        {QStringLiteral("trash"), list({"home/.Trash/-rf", "home/.Trash/quo\"te's", "home/.Trash/back\\slash",
                                        "home/.Trash/new\nline", "home/.Trash/año ñandú"})},
        {QStringLiteral("mail"),
         list({"home/Library/Containers/com.apple.mail/Data/Library/Mail Downloads/x"})},
        {QStringLiteral("backups"),
         list({"home/Library/Application Support/MobileSync/Backup/00008030-001"})},
        {QStringLiteral("orphans"), list({"gone"})},
    };
    const QHash<QString, QStringList> names = {
        {QStringLiteral("caches"), list({"Spotify", "Safari"})},
        {QStringLiteral("deriveddata"), list({"MyApp", "ModuleCache.noindex"})},
        {QStringLiteral("packages"),
         list({"npm", "Cargo", "Homebrew", "Yarn", "pip", "CocoaPods", "SwiftPM", "Go"})},
    };
    const CleanCatalog::Rules rules = CatalogRules::make(std::make_shared<CleanContext>(*m_context));
    EXPECT_FALSE(rules(QStringLiteral("unknown")));
    std::atomic<int> binds = 0;
    // Docker's rule is held back: a row without a rule scans to nothing rather than failing.
    const CleanCatalog catalog([&binds, &rules](const QString& id) {
        ++binds;
        return id == QLatin1String("docker") ? CleanCategory::Scan() : rules(id);
    });

    const QSet<QString> gated = {QStringLiteral("trash"), QStringLiteral("installers"),
                                 QStringLiteral("olddownloads"), QStringLiteral("mail"),
                                 QStringLiteral("backups")};
    for (const bool fullDiskAccess : {true, false}) {
        m_fullDiskAccess = fullDiskAccess;
        m_privacy->refresh();
        QList<QList<CleanItem>> found(CleanCatalog::rows().size());
        std::vector<std::thread> threads;
        for (qsizetype i = 0; i < found.size(); ++i)
            threads.emplace_back([&, i] { found[i] = catalog.all().at(i).scan(); });
        for (std::thread& thread : threads)
            thread.join();
        const QList<CleanCategory>& rows = catalog.all();
        for (qsizetype i = 0; i < rows.size(); ++i) {
            SCOPED_TRACE(rows.at(i).id.toStdString() + (fullDiskAccess ? "" : " without access"));
            const bool hidden = !fullDiskAccess && gated.contains(rows.at(i).id);
            EXPECT_EQ(relative(found.at(i)), hidden ? QStringList() : expected.value(rows.at(i).id));
            const QStringList shown = test::column(found.at(i), &CleanItem::name);
            EXPECT_EQ(shown, hidden ? QStringList() : names.value(rows.at(i).id, shown));
            // Only an installed owner gives a link to its app, and no row has a subtitle.
            for (const CleanItem& item : found.at(i)) {
                EXPECT_EQ(std::pair(item.appURL, item.subtitle),
                          std::pair(item.name == QLatin1String("Spotify")
                                        ? std::optional(QStringLiteral("/Applications/Spotify.app"))
                                        : std::nullopt,
                                    std::optional<QString>()));
            }
        }
    }
    EXPECT_EQ(binds.load(), CleanCatalog::rows().size());
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

TEST_F(FolderRuleTest, NothingTheSafetyGateRefusesIsOffered)
{
    // The top of the home holds protected folders (the Library, Downloads, the Trash) next to ordinary ones.
    for (const char* path : {"home/Projects/notes.txt", "home/Library/Keychains/login.keychain-db",
                             "home/Downloads/a", "home/.Trash/b"})
        file(QLatin1String(path));
    EXPECT_EQ(relative(FolderRule(*m_context).children(m_roots.home)), list({"home/Projects"}));
    EXPECT_EQ(relative(FolderRule(*m_context).children(home(QStringLiteral("Library")))), QStringList());
}

TEST_F(FolderRuleTest, StaleNodeModulesSkipGatedFoldersLinksAndNamesThatAreNotText)
{
    // Projects whose package.json, or folder, was touched either side of the limit.
    const auto project = [this](const QString& at, std::optional<double> packageDays, double folderDays) {
        file(at + QStringLiteral("/node_modules/dep/index.js"));
        if (packageDays)
            age(file(at + QStringLiteral("/package.json"), 100), *packageDays);
        age(base(at + QStringLiteral("/node_modules")), 60);
        age(base(at), folderDays);
    };
    project(QStringLiteral("home/code/old"), 31, 1);
    project(QStringLiteral("home/code/fresh-package"), 29, 60); // folder old, package.json fresh
    project(QStringLiteral("home/code/no-package-old"), std::nullopt, 31);
    project(QStringLiteral("home/code/no-package-fresh"), std::nullopt, 29);
    file(QStringLiteral("home/code/old/node_modules/dep/node_modules/inner/x.js")); // nested
    for (const char* skipped : {"home/.hidden/proj", "home/Library/proj", "home/Music/proj",
                                "home/code/Tool.app/Contents/proj", "home/b1/b2/b3/b4/b5/b6/b7/b8/b9"})
        project(QLatin1String(skipped), 60, 60);
    project(QStringLiteral("home/a1/a2/a3/a4/a5/a6/a7/a8"), 60, 60); // eight deep is still walked
    folder(QStringLiteral("home/code/empty/node_modules"));
    age(file(QStringLiteral("home/code/empty/package.json")), 60);
    age(base(QStringLiteral("home/code")), 60);
    project(QStringLiteral("home/Documents/proj"), 60, 60); // behind the privacy gate
    project(QStringLiteral("outside/proj"), 60, 60);
    test::makeLink(base(QStringLiteral("outside")), home(QStringLiteral("linked")));
    // A project whose folder name is not text could only be offered under a wrong name: here,
    // that of its twin whose name is the replacement character, which is offered once, as itself.
    project(QStringLiteral("home/bad\uFFFD"), 60, 60);
    const QByteArray notText = QFile::encodeName(m_roots.home) + QByteArray("/bad\xff");
    test::writeBytes(notText + "/node_modules/m.js", "module");
    stamp(notText, 90, 90);

    // Only the stale projects' own node_modules folders, named by project, the largest first.
    QStringList stale = list({"home/a1/a2/a3/a4/a5/a6/a7/a8/node_modules", "home/bad\uFFFD/node_modules",
                              "home/code/no-package-old/node_modules", "home/code/old/node_modules"});
    m_fullDiskAccess = false;
    m_privacy->refresh();
    EXPECT_EQ(sorted(DeveloperCleaners::staleNodeModules(*m_context)), stale);
    m_fullDiskAccess = true;
    m_privacy->refresh();
    const QList<CleanItem> items = DeveloperCleaners::staleNodeModules(*m_context);
    stale << QStringLiteral("home/Documents/proj/node_modules");
    stale.sort();
    EXPECT_EQ(sorted(items), stale);
    ASSERT_FALSE(items.isEmpty());
    // The first holds the nested folder too.
    EXPECT_EQ(std::tuple(items.first().name, items.first().detail),
              std::tuple(QStringLiteral("old"), QStringLiteral("~/code/old")));
}

TEST_F(FolderRuleTest, LargeOldFilesAtTheLimitsAndNeverInsideLibrariesPackagesOrHiddenFolders)
{
    // Last use is the later of access and change: path, KiB, days since access and since change.
    const std::tuple<const char*, int, double, double> files[] = {
        {"home/Movies/trip.mov", 64, 200, 200},
        {"home/big/under", 48, 200, 200},
        {"home/big/recently-read", 64, 100, 200},
        {"home/big/old-but-fresh-change", 64, 200, 179}};
    for (const auto& [path, kib, accessDays, changeDays] : files)
        stamp(QFile::encodeName(file(QLatin1String(path), kib * 1024)), accessDays, changeDays);
    const qint64 limit = test::blocksOf(base(QStringLiteral("home/Movies/trip.mov")));
    // As large and as old, but never opened.
    for (const char* path : {"home/Library/big", "home/Pictures/Fotos.photoslibrary/originals/big",
                             "home/.hidden/big", "home/code/node_modules/big", "home/Films/Cut.FCPBUNDLE/big",
                             "home/Applications/big", "home/.Trash/big"})
        age(file(QLatin1String(path), 64 * 1024), 400);

    const QList<CleanItem> items = LargeOldFiles::find(*m_context, limit);
    ASSERT_EQ(relative(items), list({"home/Movies/trip.mov"}));
    const QString month =
        QLocale(QLocale::Spanish, QLocale::Spain)
            .toString(QDateTime::currentDateTime().addDays(-200).date(), QStringLiteral("MMM yyyy"));
    EXPECT_EQ(std::tuple(items[0].size, items[0].detail),
              std::tuple(limit, QStringLiteral("~/Movies · último uso ") + month));
}
