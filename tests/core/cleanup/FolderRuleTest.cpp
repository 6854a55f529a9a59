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

using namespace nubo;
using namespace Qt::StringLiterals;
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
        for (const QString& path : list(paths, prefix)) {
            file(path, bytes);
            bytes -= 4096;
            if (days >= 0)
                age(base(path), days);
        }
    }
    QStringList sorted(const QList<CleanItem>& items) const
    {
        QStringList paths = relative(items);
        paths.sort();
        return paths;
    }
};

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
         {"Archives/2024-02-01/Other.xcarchive/dSYMs/x", "Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive/x",
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
    make(1, "home/Downloads/", {"Setup.DMG", "Xcode.xip", "Suite.MPKG", "tool.pkg", "readme.txt", ".pkg", "dmg"});
    make(89, "home/Downloads/", {"old-89"});
    make(91, "home/Downloads/", {"old-91"});
    file(u"tmp-user/T/old-folder/inner/data"_s, 20000);
    file(u"elsewhere/precious/data"_s, 90000);
    age(file(u"tmp-user/T/zero"_s, 0), 4);
    for (const QString& name : m_context->places.packageCacheNames)
        file(u"home/Library/Caches/"_s + name + u"/blob"_s, 4096);
    folder(u"home/.gradle/caches"_s); // empty: nothing to free
    folder(u"home/Library/Developer/Xcode/Archives/2024-03-01"_s);
    age(base(u"tmp-user/T/old-folder"_s), 4);
    age(folder(u"tmp-user/T/empty-folder"_s), 4);
    test::makeLink(base(u"elsewhere/precious"_s), home(u"Library/Developer/Xcode/Archives/link"_s)); // never opened
    // A name that is not text could only be offered under a wrong name.
    test::writeBytes(QFile::encodeName(home(u".Trash/"_s)) + "bad\xff\xfe.bin", QByteArray(8192, 'x'));
    m_workspace.applications.insert(u"com.spotify.client"_s, u"/Applications/Spotify.app"_s);
    m_context->ownFolders = {home(u"Library/Caches/app.nubo.Nubo"_s)};
    const QString gone = base(u"gone"_s);
    m_context->orphans = [gone] { return QList<CleanItem>{CleanItem(gone, gone, gone, 9, CleanItem::Remove{gone})}; };
    const char* xcode = "home/Library/Developer/Xcode/";
    // clang-format off
    const QHash<QString, QStringList> expected = {
        {u"temp"_s, list({"tmp-user/T/old-folder", "tmp-user/T/four-days"})},
        {u"installers"_s, list({"Setup.DMG", "Xcode.xip", "Suite.MPKG", "tool.pkg"}, "home/Downloads/")},
        {u"olddownloads"_s, list({"home/Downloads/old-91"})},
        {u"caches"_s, list({"com.spotify.client", "com.apple.Safari"}, "home/Library/Caches/")},
        // The application caches leave these out, so none is counted twice.
        {u"packages"_s, list({"home/.npm/_cacache", "home/.cargo/registry/cache"}) +
                        list({"Homebrew", "Yarn", "pip", "CocoaPods", "org.swift.swiftpm", "go-build"},
                             "home/Library/Caches/")},
        {u"archives"_s, list({"Archives/2024-02-01/Other.xcarchive",
                              "Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive"}, xcode)},
        {u"deriveddata"_s, list({"DerivedData/MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct",
                                 "DerivedData/ModuleCache.noindex"}, xcode)},
        {u"devicesupport"_s, list({"iOS DeviceSupport/17.0 (21A329)", "iOS DeviceSupport/16.0",
                                   "watchOS DeviceSupport/10.0", "macOS DeviceSupport/14.0"}, xcode)},
        {u"simulators"_s, list({"home/Library/Developer/CoreSimulator/Caches/dyld"})},
        {u"trash"_s, list({"-rf", "quo\"te's", "back\\slash", "new\nline", "año ñandú"}, "home/.Trash/")},
        {u"mail"_s, list({"home/Library/Containers/com.apple.mail/Data/Library/Mail Downloads/x"})},
        {u"backups"_s, list({"home/Library/Application Support/MobileSync/Backup/00008030-001"})},
        {u"orphans"_s, list({"gone"})},
    };
    const QHash<QString, QStringList> names = {
        {u"caches"_s, list({"Spotify", "Safari"})},
        {u"deriveddata"_s, list({"MyApp", "ModuleCache.noindex"})},
        {u"packages"_s, list({"npm", "Cargo", "Homebrew", "Yarn", "pip", "CocoaPods", "SwiftPM", "Go"})},
    };
    // clang-format on
    const CleanCatalog::Rules rules = CatalogRules::make(std::make_shared<CleanContext>(*m_context));
    EXPECT_FALSE(rules(u"unknown"_s));
    std::atomic<int> binds = 0;
    // Docker's rule is held back: a row without a rule scans to nothing rather than failing.
    const CleanCatalog catalog([&binds, &rules](const QString& id) {
        ++binds;
        return id == u"docker"_s ? CleanCategory::Scan() : rules(id);
    });

    const QSet<QString> gated = {u"trash"_s, u"installers"_s, u"olddownloads"_s, u"mail"_s, u"backups"_s};
    for (const bool fullDiskAccess : {true, false}) {
        grantFullDiskAccess(fullDiskAccess);
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
                const bool spotify = item.name == u"Spotify"_s;
                EXPECT_EQ(std::pair(item.appURL, item.subtitle),
                          std::pair(spotify ? std::optional(u"/Applications/Spotify.app"_s) : std::nullopt,
                                    std::optional<QString>()));
            }
        }
    }
    EXPECT_EQ(binds.load(), CleanCatalog::rows().size());
}

// A Linux home at Linux's own places: each row finds its entries under the XDG folders and the
// download folder the user's desktop names; a trashed file goes with its information entry; only
// Flatpak and snap data whose application is installed nowhere counts as left behind. The Mac's
// rows that cannot exist on Linux are not shown there.
TEST_F(FolderRuleTest, ALinuxHomeIsCleanedAtLinuxsOwnPlaces)
{
    test::writeBytes(home(u".config/user-dirs.dirs"_s), "XDG_DOWNLOAD_DIR=\"$HOME/Descargas\"\n");
    make(-1, "home/",
         {".npm/_cacache/z", ".m2/repository/q", ".cache/pip/http/y", ".cache/thumbnails/x", ".cache/Nubo/own",
          ".local/share/Trash/files/viejo.txt", ".local/share/Trash/files/quo\"te's", ".var/app/org.gone.App/x",
          "snap/gone-snap/common/x", ".var/app/org.kept.App/x", ".local/share/flatpak/app/org.kept.App/current",
          ".local/share/Trash/info/viejo.txt.trashinfo"});
    make(10, "home/", {".local/state/app/app.log.1", ".xsession-errors.old", "crash/_usr_bin_x.1000.crash",
                       ".local/state/app/history"});
    make(1, "home/", {".local/state/new.log", "Descargas/tool.deb", "Descargas/app.AppImage", "Descargas/notes.txt"});
    make(91, "home/Descargas/", {"old"});
    const auto safety = std::make_unique<Safety>(m_roots, SafetyRules::forLinux());
    auto context = std::make_shared<CleanContext>(*safety, *m_privacy, *m_naming, m_tools, m_roots);
    context->places = CleanPlaces::forLinux(m_roots.home);
    context->places.crashReports = home(u"crash"_s);
    context->ownFolders = {home(u".cache/Nubo"_s)};
    context->sharedTemporaries = {};

    const QHash<QString, QStringList> expected = {
        {u"caches"_s, list({"home/.cache/thumbnails"})},
        {u"packages"_s, list({"home/.npm/_cacache", "home/.m2/repository", "home/.cache/pip"})},
        {u"trash"_s, list({"viejo.txt", "quo\"te's"}, "home/.local/share/Trash/files/")},
        {u"orphans"_s, list({"home/.var/app/org.gone.App", "home/snap/gone-snap"})},
        {u"logs"_s, list({"home/.local/state/app/app.log.1", "home/.xsession-errors.old",
                          "home/crash/_usr_bin_x.1000.crash"})},
        {u"installers"_s, list({"tool.deb", "app.AppImage"}, "home/Descargas/")},
        {u"olddownloads"_s, list({"home/Descargas/old"})},
    };
    const CleanCatalog::Rules rules = CatalogRules::make(context);
    QStringList shown;
    for (const CleanCategory& row : CleanCatalog::rows(HostSystem::Linux)) {
        SCOPED_TRACE(row.id.toStdString());
        shown << row.id;
        ASSERT_TRUE(rules(row.id));
        const QList<CleanItem> found = rules(row.id)();
        EXPECT_EQ(relative(found), expected.value(row.id));
        if (row.id == u"trash"_s && found.size() == 2) {
            EXPECT_EQ(std::pair(found.at(0).companions, found.at(1).companions),
                      std::pair(QStringList{home(u".local/share/Trash/info/viejo.txt.trashinfo"_s)}, QStringList()));
        }
    }
    EXPECT_EQ(shown, list({"caches", "logs", "temp", "trash", "packages", "node_modules", "docker", "installers",
                           "olddownloads", "largeold", "orphans"}));
    EXPECT_FALSE(rules(u"deriveddata"_s));
}

TEST_F(FolderRuleTest, SharedTemporaryFolderOffersOnlyTheUsersOwnEntries)
{
    const QString mine = file(u"shared-tmp/mine"_s);
    const QString theirs = file(u"shared-tmp/theirs"_s);
    const QString theirsHere = file(u"tmp-user/T/theirs-in-private"_s);
    if (!giveAway(theirs) || !giveAway(theirsHere))
        GTEST_SKIP() << "this user may not give files away";
    for (const QString& path : {mine, theirs, theirsHere})
        age(path, 10);

    // The per-user folder comes first and does not ask who owns what; the shared one does.
    EXPECT_EQ(relative(FolderCategories::temp(*m_context)), list({"tmp-user/T/theirs-in-private", "shared-tmp/mine"}));
    // A per-user folder every user may write to (a Linux TMPDIR of /tmp) is shared too, and is
    // listed once though the shared folders name it again.
    age(file(u"tmp-user/T/mine-here"_s), 10);
    ASSERT_EQ(::chmod(QFile::encodeName(base(u"tmp-user/T"_s)).constData(), 01777), 0);
    m_context->sharedTemporaries.prepend(base(u"tmp-user/T"_s));
    EXPECT_EQ(relative(FolderCategories::temp(*m_context)), list({"tmp-user/T/mine-here", "shared-tmp/mine"}));
}

// The top of the home holds protected folders (the Library, Downloads, the Trash) next to ordinary ones.
TEST_F(FolderRuleTest, NothingTheSafetyGateRefusesIsOffered)
{
    for (const QString& path :
         list({"Projects/notes.txt", "Library/Keychains/login.keychain-db", "Downloads/a", ".Trash/b"}, "home/"))
        file(path);
    EXPECT_EQ(relative(FolderRule(*m_context).children(m_roots.home)), list({"home/Projects"}));
    EXPECT_EQ(relative(FolderRule(*m_context).children(home(u"Library"_s))), QStringList());
    // What is offered is named as the file manager names it.
    m_context->displayName = [](const QString& path) { return u"«"_s + path.section(u'/', -1) + u"»"_s; };
    EXPECT_EQ(FolderRule(*m_context).children(m_roots.home).value(0).name, u"«Projects»"_s);
}

TEST_F(FolderRuleTest, StaleNodeModulesSkipGatedFoldersLinksAndNamesThatAreNotText)
{
    // Projects whose package.json, or folder, was touched either side of the limit.
    const auto project = [this](const QString& at, std::optional<double> packageDays, double folderDays) {
        file(at + u"/node_modules/dep/index.js"_s);
        if (packageDays)
            age(file(at + u"/package.json"_s, 100), *packageDays);
        age(base(at + u"/node_modules"_s), 60);
        age(base(at), folderDays);
    };
    project(u"home/code/old"_s, 31, 1);
    project(u"home/code/fresh-package"_s, 29, 60); // folder old, package.json fresh
    project(u"home/code/no-package-old"_s, std::nullopt, 31);
    project(u"home/code/no-package-fresh"_s, std::nullopt, 29);
    file(u"home/code/old/node_modules/dep/node_modules/inner/x.js"_s); // nested
    // Stale, but hidden, in a skipped home folder, in a package, nine deep, or behind the privacy
    // gate in Documents (found with Full Disk Access only).
    for (const QString& path : list({".hidden/proj", "Library/proj", "Music/proj", "code/Tool.app/Contents/proj",
                                     "b1/b2/b3/b4/b5/b6/b7/b8/b9", "Documents/proj"}, "home/"))
        project(path, 60, 60);
    project(u"home/a1/a2/a3/a4/a5/a6/a7/a8"_s, 60, 60); // eight deep is still walked
    folder(u"home/code/empty/node_modules"_s);
    age(file(u"home/code/empty/package.json"_s), 60);
    age(base(u"home/code"_s), 60);
    project(u"outside/proj"_s, 60, 60);
    test::makeLink(base(u"outside"_s), home(u"linked"_s));
    // A project whose folder name is not text could only be offered under a wrong name: here,
    // that of its twin whose name is the replacement character, which is offered once, as itself.
    project(u"home/bad\uFFFD"_s, 60, 60);
    const QByteArray notText = QFile::encodeName(m_roots.home) + QByteArray("/bad\xff");
    test::writeBytes(notText + "/node_modules/m.js", "module");
    age(notText, 90, 90);

    // Only the stale projects' own node_modules folders, named by project, the largest first;
    // the one in Documents, behind the privacy gate, only with Full Disk Access.
    QStringList stale = list({"a1/a2/a3/a4/a5/a6/a7/a8/node_modules", "bad\uFFFD/node_modules",
                              "code/no-package-old/node_modules", "code/old/node_modules"}, "home/");
    grantFullDiskAccess(false);
    EXPECT_EQ(sorted(DeveloperCleaners::staleNodeModules(*m_context)), stale);
    grantFullDiskAccess(true);
    const QList<CleanItem> items = DeveloperCleaners::staleNodeModules(*m_context);
    stale << u"home/Documents/proj/node_modules"_s;
    stale.sort();
    EXPECT_EQ(sorted(items), stale);
    ASSERT_FALSE(items.isEmpty());
    // The first holds the nested folder too.
    EXPECT_EQ(std::tuple(items.first().name, items.first().detail), std::tuple(u"old"_s, u"~/code/old"_s));
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
        age(QFile::encodeName(file(QString::fromUtf8(path), kib * 1024)), accessDays, changeDays);
    const qint64 limit = test::blocksOf(base(u"home/Movies/trip.mov"_s));
    // As large and as old, but never opened.
    for (const QString& path : list({"Library/big", "Pictures/Fotos.photoslibrary/originals/big", ".hidden/big",
                                     "code/node_modules/big", "Films/Cut.FCPBUNDLE/big", "Applications/big",
                                     ".Trash/big"}, "home/"))
        age(file(path, 64 * 1024), 400);

    const QList<CleanItem> items = LargeOldFiles::find(*m_context, limit);
    ASSERT_EQ(relative(items), list({"home/Movies/trip.mov"}));
    const QString month = QLocale(QLocale::Spanish, QLocale::Spain)
                              .toString(QDateTime::currentDateTime().addDays(-200).date(), u"MMM yyyy"_s);
    EXPECT_EQ(std::tuple(items[0].size, items[0].detail), std::tuple(limit, u"~/Movies · último uso "_s + month));
}
