#include "CleanFixture.h"

#include "core/cleanup/DeveloperCleaners.h"
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

// The application caches leave these same folders out, so none is counted twice.
TEST_F(DeveloperCleanersTest, PackageCachesAreFoundWhereEachToolKeepsThem)
{
    file(QStringLiteral("home/Library/Caches/Homebrew/downloads/x.tar.gz"), 40000);
    file(QStringLiteral("home/.npm/_cacache/content/y"), 20000);
    file(QStringLiteral("home/.cargo/registry/cache/z.crate"), 8192);
    folder(QStringLiteral("home/Library/Caches/pip")); // empty: nothing to free

    EXPECT_EQ(relative(DeveloperCleaners::packageCaches(*m_context)),
              (list({"home/Library/Caches/Homebrew", "home/.npm/_cacache", "home/.cargo/registry/cache"})));
}

TEST_F(DeveloperCleanersTest, StaleNodeModulesSkipGatedFoldersLinksAndNamesThatAreNotText)
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
    QStringList stale = {QStringLiteral("home/a1/a2/a3/a4/a5/a6/a7/a8/node_modules"),
                         QStringLiteral("home/bad\uFFFD/node_modules"),
                         QStringLiteral("home/code/no-package-old/node_modules"),
                         QStringLiteral("home/code/old/node_modules")};
    m_fullDiskAccess = false;
    m_privacy->refresh();
    QStringList found = relative(DeveloperCleaners::staleNodeModules(*m_context));
    found.sort();
    EXPECT_EQ(found, stale);
    m_fullDiskAccess = true;
    m_privacy->refresh();
    const QList<CleanItem> items = DeveloperCleaners::staleNodeModules(*m_context);
    found = relative(items);
    found.sort();
    stale << QStringLiteral("home/Documents/proj/node_modules");
    stale.sort();
    EXPECT_EQ(found, stale);
    ASSERT_FALSE(items.isEmpty());
    EXPECT_EQ(items.first().name, QStringLiteral("old")); // it holds the nested folder too
    EXPECT_EQ(items.first().detail, QStringLiteral("~/code/old"));
    EXPECT_EQ(items.first().size, Location::allocatedSize(*items.first().url()));
}

TEST_F(DeveloperCleanersTest, LargeOldFilesAtTheLimitsAndNeverInsideLibrariesPackagesOrHiddenFolders)
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
    // As large and as old, but never opened.
    for (const char* path : {"home/Library/big", "home/Pictures/Fotos.photoslibrary/originals/big",
                             "home/.hidden/big", "home/code/node_modules/big", "home/Films/Cut.FCPBUNDLE/big",
                             "home/Applications/big", "home/.Trash/big"})
        age(file(QLatin1String(path), 64 * 1024), 400);

    const QList<CleanItem> items = LargeOldFiles::find(*m_context, limit);

    ASSERT_EQ(relative(items), list({"home/Movies/trip.mov"}));
    EXPECT_EQ(items[0].size, limit);
    const QString month =
        QLocale(QLocale::Spanish, QLocale::Spain)
            .toString(QDateTime::currentDateTime().addDays(-200).date(), QStringLiteral("MMM yyyy"));
    EXPECT_EQ(items[0].detail, QStringLiteral("~/Movies · último uso ") + month);
}
