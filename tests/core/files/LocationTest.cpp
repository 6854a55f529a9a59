#include "core/files/Location.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;

namespace {

class LocationTest : public ::testing::Test
{
protected:
    QString path(const QString& relative) const { return m_dir.path() + QLatin1Char('/') + relative; }

    void writeFile(const QString& relative, qint64 bytes) const
    {
        QFile file(path(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(QByteArray(bytes, 'x')), bytes);
    }

    // The blocks a file really holds, as the file system reports them.
    qint64 blocks(const QString& relative) const
    {
        struct stat info {};
        EXPECT_EQ(lstat(QFile::encodeName(path(relative)).constData(), &info), 0);
        return static_cast<qint64>(info.st_blocks) * 512;
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST(TildePath, ReplacesTheHomePrefixAsPlainText)
{
    const QString home = QStringLiteral("/Users/ana");
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/ana"), home), QStringLiteral("~"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/ana/Library/Caches"), home), QStringLiteral("~/Library/Caches"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/anabel/x"), home), QStringLiteral("~bel/x"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Library/Caches"), home), QStringLiteral("/Library/Caches"));
    EXPECT_EQ(Location::tildePath(QStringLiteral("/Users/an"), home), QStringLiteral("/Users/an"));
}

TEST_F(LocationTest, FileCountsItsAllocatedBlocks)
{
    writeFile(QStringLiteral("one"), 10'000);
    EXPECT_EQ(Location::allocatedSize(path(QStringLiteral("one"))), blocks(QStringLiteral("one")));
    EXPECT_GE(Location::allocatedSize(path(QStringLiteral("one"))), 10'000);
}

TEST_F(LocationTest, FolderSumsEverythingInsideWithoutFollowingLinks)
{
    ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("tree/a/b/c")));
    writeFile(QStringLiteral("tree/top"), 5'000);
    writeFile(QStringLiteral("tree/a/b/c/deep"), 70'000);
    writeFile(QStringLiteral("tree/a/empty"), 0);
    writeFile(QStringLiteral("big"), 3'000'000);
    // A link to a large file outside the folder must not bring the file's size with it.
    ASSERT_EQ(symlink(QFile::encodeName(path(QStringLiteral("big"))).constData(),
                      QFile::encodeName(path(QStringLiteral("tree/link"))).constData()),
              0);
    // A link to a folder is not walked into either.
    ASSERT_EQ(symlink(QFile::encodeName(m_dir.path()).constData(),
                      QFile::encodeName(path(QStringLiteral("tree/a/loop"))).constData()),
              0);

    const qint64 expected = blocks(QStringLiteral("tree/top")) + blocks(QStringLiteral("tree/a/b/c/deep")) +
                            blocks(QStringLiteral("tree/link")) + blocks(QStringLiteral("tree/a/loop"));
    EXPECT_EQ(Location::allocatedSize(path(QStringLiteral("tree"))), expected);
    EXPECT_LT(Location::allocatedSize(path(QStringLiteral("tree"))), 1'000'000);
}

TEST_F(LocationTest, SparseFileCountsOnlyWhatIsAllocated)
{
    const QByteArray name = QFile::encodeName(path(QStringLiteral("sparse")));
    const int fd = open(name.constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(ftruncate(fd, 512LL * 1024 * 1024), 0);
    close(fd);
    EXPECT_LT(Location::allocatedSize(path(QStringLiteral("sparse"))), 1024 * 1024);
}

TEST_F(LocationTest, MissingItemsCountNothing)
{
    EXPECT_EQ(Location::allocatedSize(path(QStringLiteral("absent"))), 0);
    EXPECT_EQ(Location::allocatedSize(QString()), 0);
    EXPECT_EQ(Location::modificationDate(path(QStringLiteral("absent"))), std::nullopt);
}

TEST_F(LocationTest, OddNamesAreMeasured)
{
    const QString odd = QStringLiteral("-rf \"quoted\" back\\slash\nnew line ñ");
    writeFile(odd, 4'096);
    EXPECT_EQ(Location::allocatedSize(path(odd)), blocks(odd));

    // A name whose bytes are not UTF-8 still reaches the file system intact.
    const QByteArray raw = QFile::encodeName(m_dir.path()) + "/bad\xff\xfename";
    const int fd = open(raw.constData(), O_CREAT | O_WRONLY, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, "0123456789", 10), 10);
    close(fd);
    EXPECT_GT(Location::allocatedSize(m_dir.path()), blocks(odd));
}

TEST_F(LocationTest, ModificationDateIsTheItemsOwn)
{
    writeFile(QStringLiteral("dated"), 10);
    const timespec times[2] = {{1'600'000'000, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path(QStringLiteral("dated"))).constData(), times, 0), 0);
    EXPECT_EQ(Location::modificationDate(path(QStringLiteral("dated"))),
              QDateTime::fromMSecsSinceEpoch(1'700'000'000'250LL));

    // A dangling link has a date of its own even though its target is gone.
    ASSERT_EQ(symlink("/nonexistent/target", QFile::encodeName(path(QStringLiteral("dangling"))).constData()), 0);
    EXPECT_TRUE(Location::modificationDate(path(QStringLiteral("dangling"))).has_value());
}
