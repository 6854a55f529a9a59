#include "DeletionFixture.h"

#include "core/shell/Shell.h"

#include <QFile>

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::test {

namespace {

void list(const QByteArray& root, const std::string& relative, std::set<std::string>& out)
{
    const QByteArray folder = root + (relative.empty() ? QByteArray() : "/" + QByteArray::fromStdString(relative));
    DIR* dir = ::opendir(folder.constData());
    if (!dir)
        return;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string child = relative.empty() ? name : relative + "/" + name;
        out.insert(child);
        struct stat status = {};
        const QByteArray full = root + "/" + QByteArray::fromStdString(child);
        if (::lstat(full.constData(), &status) == 0 && S_ISDIR(status.st_mode))
            list(root, child, out);
    }
    ::closedir(dir);
}

} // namespace

void DeletionFixture::SetUp()
{
    ASSERT_TRUE(m_dir.isValid());
    // The ordinary user of the rights tests must be able to reach the tree.
    ASSERT_EQ(::chmod(QFile::encodeName(m_dir.path()).constData(), 0755), 0);
    makeFolder("home");
    makeFolder("home/Library");
    makeFolder("home/Library/Caches");
    makeFolder("Library");
    makeFolder("tmp");
    makeFolder("work");
    SystemRoots roots{path("home"), path("Library"), path("tmp")};
    m_safety = std::make_unique<Safety>(roots);
    m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
}

void DeletionFixture::TearDown()
{
    // QTemporaryDir cannot reach names that are not UTF-8 (the very problem some tests are
    // about), so the system's rm clears the tree first.
    const ShellResult cleared = Shell::run(QStringLiteral("/bin/rm"), {QStringLiteral("-rf"), QStringLiteral("--"), m_dir.path()});
    EXPECT_EQ(cleared.status, 0);
}

QByteArray DeletionFixture::bytes(const QByteArray& relative) const
{
    return QFile::encodeName(m_dir.path()) + "/" + relative;
}

QString DeletionFixture::path(const QByteArray& relative) const
{
    return QFile::decodeName(bytes(relative));
}

void DeletionFixture::makeFolder(const QByteArray& relative, mode_t mode) const
{
    ASSERT_EQ(::mkdir(bytes(relative).constData(), mode), 0) << relative.constData() << ": " << errno;
    ASSERT_EQ(::chmod(bytes(relative).constData(), mode), 0);
}

void DeletionFixture::makeFile(const QByteArray& relative, qint64 size) const
{
    const int fd = ::open(bytes(relative).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    ASSERT_GE(fd, 0) << relative.constData() << ": " << errno;
    const QByteArray content(size, 'x');
    ASSERT_EQ(::write(fd, content.constData(), size_t(size)), ssize_t(size));
    ::close(fd);
}

void DeletionFixture::makeLink(const QByteArray& target, const QByteArray& relative) const
{
    ASSERT_EQ(::symlink(target.constData(), bytes(relative).constData()), 0);
}

bool DeletionFixture::exists(const QByteArray& relative) const
{
    struct stat status = {};
    return ::lstat(bytes(relative).constData(), &status) == 0;
}

std::set<std::string> DeletionFixture::tree() const
{
    std::set<std::string> out;
    list(QFile::encodeName(m_dir.path()), std::string(), out);
    return out;
}

std::set<std::string> DeletionFixture::without(std::set<std::string> before, const std::set<std::string>& removed)
{
    std::erase_if(before, [&removed](const std::string& entry) {
        for (const std::string& item : removed) {
            if (entry == item || entry.starts_with(item + "/"))
                return true;
        }
        return false;
    });
    return before;
}

DeletionResult DeletionFixture::run(const QList<DeletionItem>& items, bool allowAdmin)
{
    QFuture<DeletionResult> future = m_deleter->deleteItems(items, allowAdmin);
    future.waitForFinished();
    return future.result();
}

OrdinaryUser::OrdinaryUser(QList<QByteArray> locked) : m_locked(std::move(locked)), m_root(::geteuid() == 0)
{
    enter();
}

OrdinaryUser::~OrdinaryUser()
{
    restore();
}

void OrdinaryUser::handOver(const QByteArray& path)
{
    if (::geteuid() == 0) {
        EXPECT_EQ(::lchown(path.constData(), kNobody, kNobody), 0);
    }
}

void OrdinaryUser::enter()
{
    if (m_root) {
        // Group first: once the user id is nobody, the group may no longer be changed.
        m_active = ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0;
    } else {
        for (const QByteArray& folder : m_locked)
            ::chmod(folder.constData(), 0555);
        m_active = true;
    }
}

void OrdinaryUser::restore()
{
    if (m_root) {
        EXPECT_EQ(::seteuid(0), 0);
        EXPECT_EQ(::setegid(0), 0);
    } else {
        for (const QByteArray& folder : m_locked)
            ::chmod(folder.constData(), 0755);
    }
    m_active = false;
}

} // namespace nubo::test
