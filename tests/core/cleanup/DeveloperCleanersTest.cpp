#include "CleanFixture.h"

#include "core/cleanup/DeveloperCleaners.h"
#include "core/cleanup/FolderCategories.h"
#include "core/cleanup/LargeOldFiles.h"
#include "core/files/Location.h"
#include "support/FixtureFiles.h"

#include <QFile>
#include <QLocale>

#include <fcntl.h>
#include <sys/stat.h>

using namespace nubo;
using nubo::testing::CleanFixture;

namespace {

using DeveloperCleanersTest = CleanFixture;

// Sets the last access and the last modification of `path` separately, `days` ago.
void stamp(const QByteArray& path, double accessDays, double changeDays)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const timespec stamps[2] = {{time_t(now - qint64(accessDays * 86400)), 0},
                                {time_t(now - qint64(changeDays * 86400)), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), stamps, 0), 0) << path.constData();
}

} // namespace

TEST_F(DeveloperCleanersTest, PackageCachesAreNeverCountedTwice)
{
    file(QStringLiteral("home/Library/Caches/Homebrew/downloads/x.tar.gz"), 40000);
    file(QStringLiteral("home/.npm/_cacache/content/y"), 20000);
    file(QStringLiteral("home/.cargo/registry/cache/z.crate"), 8192);
    folder(QStringLiteral("home/Library/Caches/pip")); // empty: nothing to free
    file(QStringLiteral("home/Library/Caches/com.example.app/c"));

    EXPECT_EQ(relative(DeveloperCleaners::packageCaches(*m_context)),
              (list({"home/Library/Caches/Homebrew", "home/.npm/_cacache", "home/.cargo/registry/cache"})));
    EXPECT_EQ(relative(FolderCategories::caches(*m_context)), list({"home/Library/Caches/com.example.app"}));
}

TEST_F(DeveloperCleanersTest, NodeModulesOfProjectsUntouchedForThirtyDays)
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

    // Only the stale projects' own node_modules folders, named by project, the largest first.
    const QList<CleanItem> items = DeveloperCleaners::staleNodeModules(*m_context);
    QStringList found = relative(items);
    found.sort();
    EXPECT_EQ(found, (list({"home/a1/a2/a3/a4/a5/a6/a7/a8/node_modules",
                            "home/code/no-package-old/node_modules", "home/code/old/node_modules"})));
    ASSERT_FALSE(items.isEmpty());
    EXPECT_EQ(items.first().name, QStringLiteral("old")); // it holds the nested folder too
    EXPECT_EQ(items.first().detail, QStringLiteral("~/code/old"));
    EXPECT_EQ(items.first().size, Location::allocatedSize(*items.first().url()));
}

TEST_F(DeveloperCleanersTest, NodeModulesWalkSkipsGatedFoldersLinksAndNamesThatAreNotText)
{
    const auto stale = [this](const QString& at) {
        file(at + QStringLiteral("/node_modules/m.js"));
        age(file(at + QStringLiteral("/package.json")), 60);
    };
    stale(QStringLiteral("home/Documents/proj"));
    stale(QStringLiteral("outside/proj"));
    test::makeLink(base(QStringLiteral("outside")), home(QStringLiteral("linked")));
    // A project whose folder name is not text could only be offered under a wrong name: here,
    // that of its twin whose name is the replacement character, which is offered once, as itself.
    stale(QStringLiteral("home/bad\uFFFD"));
    const QByteArray notText = QFile::encodeName(m_roots.home) + QByteArray("/bad\xff");
    test::writeBytes(notText + "/node_modules/m.js", "module");
    stamp(notText, 90, 90);

    m_fullDiskAccess = false;
    m_privacy->refresh();
    EXPECT_EQ(relative(DeveloperCleaners::staleNodeModules(*m_context)),
              list({"home/bad\xEF\xBF\xBD/node_modules"}));
    m_fullDiskAccess = true;
    m_privacy->refresh();
    QStringList found = relative(DeveloperCleaners::staleNodeModules(*m_context));
    found.sort();
    EXPECT_EQ(found, (list({"home/Documents/proj/node_modules", "home/bad\xEF\xBF\xBD/node_modules"})));
}

TEST_F(DeveloperCleanersTest, LargeOldFilesAtTheSizeAndAgeLimits)
{
    const qint64 limit = test::writeFile(base(QStringLiteral("home/Movies/trip.mov")), 64 * 1024);
    test::writeFile(base(QStringLiteral("home/big/under")), 48 * 1024);
    for (const char* path : {"home/big/recently-read", "home/big/old-but-fresh-change"})
        test::writeFile(base(QLatin1String(path)), 64 * 1024);
    // Last use is the later of access and change.
    const std::tuple<const char*, double, double> uses[] = {{"home/Movies/trip.mov", 200, 200},
                                                            {"home/big/under", 200, 200},
                                                            {"home/big/recently-read", 100, 200},
                                                            {"home/big/old-but-fresh-change", 200, 179}};
    for (const auto& [path, accessDays, changeDays] : uses)
        stamp(QFile::encodeName(base(QLatin1String(path))), accessDays, changeDays);

    const QList<CleanItem> items = LargeOldFiles::find(*m_context, limit);

    ASSERT_EQ(relative(items), list({"home/Movies/trip.mov"}));
    EXPECT_EQ(items[0].size, limit);
    const QString month =
        QLocale(QLocale::Spanish, QLocale::Spain)
            .toString(QDateTime::currentDateTime().addDays(-200).date(), QStringLiteral("MMM yyyy"));
    EXPECT_EQ(items[0].detail, QStringLiteral("~/Movies · último uso ") + month);
}

TEST_F(DeveloperCleanersTest, LargeOldFilesNeverOpenLibrariesPackagesOrHiddenFolders)
{
    for (const char* path :
         {"home/Library/big", "home/.hidden/big", "home/Pictures/Fotos.photoslibrary/originals/big",
          "home/code/node_modules/big", "home/Films/Cut.FCPBUNDLE/big", "home/Applications/big",
          "home/.Trash/big", "home/work/kept"})
        age(file(QLatin1String(path), 64 * 1024), 400);
    EXPECT_EQ(relative(LargeOldFiles::find(*m_context, 32 * 1024)), list({"home/work/kept"}));
}
