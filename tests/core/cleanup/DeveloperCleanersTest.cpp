#include "CleanFixture.h"

#include "core/cleanup/DeveloperCleaners.h"
#include "core/cleanup/FolderCategories.h"
#include "core/cleanup/LargeOldFiles.h"
#include "core/files/Location.h"

#include <QFile>
#include <QLocale>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using nubo::testing::CleanFixture;

namespace {

class DeveloperCleanersTest : public CleanFixture
{
protected:
    // A file holding exactly `allocated` bytes on disk, without writing them; false where the
    // file system cannot be made to give that exact figure.
    bool allocate(const QString& relative, qint64 allocated)
    {
        const QString path = base(relative);
        folder(relative.left(relative.lastIndexOf(QLatin1Char('/'))));
        const QByteArray native = QFile::encodeName(path);
        // Large files may need a block of bookkeeping counted with their data: shrink the
        // length until the figure lands on the target.
        for (qint64 length = allocated; length > allocated - 64 * 4096; length -= 4096) {
            ::unlink(native.constData());
            const int fd = ::open(native.constData(), O_CREAT | O_WRONLY, 0644);
            if (fd < 0)
                return false;
            const bool reserved = ::posix_fallocate(fd, 0, length) == 0;
            ::close(fd);
            struct stat info {};
            if (!reserved || ::stat(native.constData(), &info) != 0)
                return false;
            if (qint64(info.st_blocks) * 512 == allocated)
                return true;
            if (qint64(info.st_blocks) * 512 < allocated)
                return false;
        }
        return false;
    }
};

constexpr qint64 kLimit = LargeOldFiles::kMinimumSize;

} // namespace

TEST_F(DeveloperCleanersTest, PackageCachesAreNamedByToolAndNeverCountedTwice)
{
    file(QStringLiteral("home/Library/Caches/Homebrew/downloads/x.tar.gz"), 40000);
    file(QStringLiteral("home/.npm/_cacache/content/y"), 20000);
    file(QStringLiteral("home/.cargo/registry/cache/z.crate"), 8192);
    folder(QStringLiteral("home/Library/Caches/pip"));       // empty: nothing to free
    file(QStringLiteral("home/Library/Caches/com.example.app/c"));

    const QList<CleanItem> packages = DeveloperCleaners::packageCaches(*m_context);
    ASSERT_EQ(relative(packages), (list({"home/Library/Caches/Homebrew", "home/.npm/_cacache",
                                               "home/.cargo/registry/cache"})));
    EXPECT_EQ(packages[0].name, QStringLiteral("Homebrew"));
    EXPECT_EQ(packages[1].name, QStringLiteral("npm"));
    EXPECT_EQ(packages[2].name, QStringLiteral("Cargo"));
    EXPECT_EQ(packages[1].detail, QStringLiteral("~/.npm/_cacache"));

    EXPECT_EQ(relative(FolderCategories::caches(*m_context)), list({"home/Library/Caches/com.example.app"}));
}

TEST_F(DeveloperCleanersTest, NodeModulesOfProjectsUntouchedForThirtyDays)
{
    // GIVEN projects whose package.json, or folder, was touched either side of the limit
    const auto project = [this](const QString& at, std::optional<double> packageDays, double folderDays,
                                double modulesDays = 60) {
        file(at + QStringLiteral("/node_modules/dep/index.js"));
        if (packageDays)
            age(file(at + QStringLiteral("/package.json"), 100), *packageDays);
        age(base(at + QStringLiteral("/node_modules")), modulesDays);
        age(base(at), folderDays);
    };
    project(QStringLiteral("home/code/old"), 31, 1);
    project(QStringLiteral("home/code/fresh-package"), 29, 60); // folder old, package.json fresh
    project(QStringLiteral("home/code/no-package-old"), std::nullopt, 31);
    project(QStringLiteral("home/code/no-package-fresh"), std::nullopt, 29);
    file(QStringLiteral("home/code/old/node_modules/dep/node_modules/inner/x.js")); // nested
    project(QStringLiteral("home/.hidden/proj"), 60, 60);
    project(QStringLiteral("home/Library/proj"), 60, 60);
    project(QStringLiteral("home/Music/proj"), 60, 60);
    project(QStringLiteral("home/code/Tool.app/Contents/proj"), 60, 60);
    folder(QStringLiteral("home/code/empty/node_modules"));
    age(file(QStringLiteral("home/code/empty/package.json")), 60);
    // Eight folders deep the walk still looks inside; nine deep it does not.
    project(QStringLiteral("home/a1/a2/a3/a4/a5/a6/a7/a8"), 60, 60);
    project(QStringLiteral("home/b1/b2/b3/b4/b5/b6/b7/b8/b9"), 60, 60);
    age(base(QStringLiteral("home/code")), 60);

    // WHEN the walk runs
    QList<CleanItem> items = DeveloperCleaners::staleNodeModules(*m_context);

    // THEN only the stale projects' own node_modules folders are offered, named by project
    QStringList found = relative(items);
    found.sort();
    EXPECT_EQ(found, (list({"home/a1/a2/a3/a4/a5/a6/a7/a8/node_modules", "home/code/no-package-old/node_modules",
                                  "home/code/old/node_modules"})));
    const auto old = std::find_if(items.cbegin(), items.cend(), [](const CleanItem& item) { return item.name == QLatin1String("old"); });
    ASSERT_NE(old, items.cend());
    EXPECT_EQ(old->detail, QStringLiteral("~/code/old"));
    EXPECT_EQ(old->size, Location::allocatedSize(*old->url()));
    EXPECT_EQ(items.first().id, old->id); // it holds the nested folder too, so it is the largest
}

TEST_F(DeveloperCleanersTest, NodeModulesWalkSkipsGatedFoldersLinksAndNamesThatAreNotText)
{
    const auto stale = [this](const QString& at) {
        file(at + QStringLiteral("/node_modules/m.js"));
        age(file(at + QStringLiteral("/package.json")), 60);
    };
    stale(QStringLiteral("home/Documents/proj"));
    stale(QStringLiteral("outside/proj"));
    ASSERT_EQ(::symlink(QFile::encodeName(base(QStringLiteral("outside"))).constData(),
                        QFile::encodeName(home(QStringLiteral("linked"))).constData()),
              0);
    // A project whose folder name is not text could only be offered under a wrong name: here,
    // that of its twin whose name is the replacement character, which is offered once, as itself.
    stale(QStringLiteral("home/bad\uFFFD"));
    const QByteArray notText = QFile::encodeName(m_roots.home) + QByteArray("/bad\xff");
    ASSERT_EQ(::mkdir(notText.constData(), 0755), 0);
    ASSERT_EQ(::mkdir((notText + "/node_modules").constData(), 0755), 0);
    const int fd = ::open((notText + "/node_modules/m.js").constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::write(fd, "module", 6), 6);
    ::close(fd);
    const timespec old[2] = {{time_t(QDateTime::currentSecsSinceEpoch() - 90 * 86400), 0},
                             {time_t(QDateTime::currentSecsSinceEpoch() - 90 * 86400), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, notText.constData(), old, 0), 0);

    m_fullDiskAccess = false;
    m_privacy->refresh();
    EXPECT_EQ(relative(DeveloperCleaners::staleNodeModules(*m_context)),
              QStringList{QStringLiteral("home/bad\uFFFD/node_modules")});
    m_fullDiskAccess = true;
    m_privacy->refresh();
    QStringList found = relative(DeveloperCleaners::staleNodeModules(*m_context));
    found.sort();
    EXPECT_EQ(found, (QStringList{QStringLiteral("home/Documents/proj/node_modules"),
                                  QStringLiteral("home/bad\uFFFD/node_modules")}));
}

TEST_F(DeveloperCleanersTest, LargeOldFilesAtTheSizeAndAgeLimits)
{
    // GIVEN files of exactly the limit and one block under it, used long ago or recently
    if (!allocate(QStringLiteral("home/Movies/trip.mov"), kLimit) ||
        !allocate(QStringLiteral("home/big/under"), kLimit - 4096) ||
        !allocate(QStringLiteral("home/big/recently-read"), kLimit) ||
        !allocate(QStringLiteral("home/big/old-but-fresh-change"), kLimit))
        GTEST_SKIP() << "this file system cannot reserve exact sizes";
    for (const char* path : {"home/Movies/trip.mov", "home/big/under"})
        age(base(QLatin1String(path)), 200);
    // Last use is the later of access and change.
    const auto stamp = [this](const char* path, double accessDays, double changeDays) {
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        const timespec stamps[2] = {{time_t(now - qint64(accessDays * 86400)), 0},
                                    {time_t(now - qint64(changeDays * 86400)), 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(base(QLatin1String(path))).constData(), stamps, 0), 0);
    };
    stamp("home/big/recently-read", 100, 200);
    stamp("home/big/old-but-fresh-change", 200, 179);

    const QList<CleanItem> items = LargeOldFiles::find(*m_context);

    ASSERT_EQ(relative(items), list({"home/Movies/trip.mov"}));
    EXPECT_EQ(items[0].size, kLimit);
    EXPECT_EQ(items[0].name, QStringLiteral("trip.mov"));
    const QString month = QLocale(QLocale::Spanish, QLocale::Spain)
                              .toString(QDateTime::currentDateTime().addDays(-200).date(), QStringLiteral("MMM yyyy"));
    EXPECT_EQ(items[0].detail, QStringLiteral("~/Movies · último uso ") + month);
}

TEST_F(DeveloperCleanersTest, LargeOldFilesNeverOpenLibrariesPackagesOrHiddenFolders)
{
    for (const char* path : {"home/Library/big", "home/.hidden/big", "home/Pictures/Fotos.photoslibrary/originals/big",
                             "home/code/node_modules/big", "home/Films/Cut.FCPBUNDLE/big", "home/Applications/big",
                             "home/.Trash/big", "home/work/kept"}) {
        if (!allocate(QLatin1String(path), kLimit))
            GTEST_SKIP() << "this file system cannot reserve exact sizes";
        age(base(QLatin1String(path)), 400);
    }
    EXPECT_EQ(relative(LargeOldFiles::find(*m_context)), list({"home/work/kept"}));
}
