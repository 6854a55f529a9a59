#include "FixtureFiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::test {

namespace {

void makeParent(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash > 0)
        makeDir(path.left(slash));
}

} // namespace

bool fill(int fd, qint64 size)
{
#ifdef __linux__
    if (size >= (1 << 20) && ::posix_fallocate(fd, 0, size) == 0)
        return true;
#endif
    const QByteArray chunk(64 * 1024, 'x');
    for (qint64 left = size; left > 0;) {
        const qint64 n = std::min<qint64>(left, chunk.size());
        if (::write(fd, chunk.constData(), static_cast<size_t>(n)) != n)
            return false;
        left -= n;
    }
    return true;
}

void makeDir(const QByteArray& path, mode_t mode)
{
    QByteArray partial;
    const QList<QByteArray> parts = path.split('/');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        partial += (i == 0 ? QByteArray() : QByteArray("/")) + parts.at(i);
        if (parts.at(i).isEmpty())
            continue;
        if (::mkdir(partial.constData(), 0755) != 0 && errno != EEXIST)
            ADD_FAILURE() << "cannot make folder " << partial.constData() << ": " << errno;
    }
    if (mode != 0755 && ::chmod(path.constData(), mode) != 0)
        ADD_FAILURE() << "cannot set the mode of " << path.constData();
}

qint64 writeFile(const QByteArray& path, qint64 size)
{
    makeParent(path);
    const int fd = ::open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        ADD_FAILURE() << "cannot create " << path.constData() << ": " << errno;
        return 0;
    }
    if (!fill(fd, size))
        ADD_FAILURE() << "cannot fill " << path.constData();
    ::close(fd);
    return blocksOf(path);
}

void writeBytes(const QByteArray& path, const QByteArray& content)
{
    makeParent(path);
    const int fd = ::open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 || ::write(fd, content.constData(), size_t(content.size())) != ssize_t(content.size()))
        ADD_FAILURE() << "cannot write " << path.constData();
    if (fd >= 0)
        ::close(fd);
}

void makeLink(const QByteArray& target, const QByteArray& path)
{
    makeParent(path);
    if (::symlink(target.constData(), path.constData()) != 0)
        ADD_FAILURE() << "cannot link " << path.constData() << ": " << errno;
}

void writeScript(const QByteArray& path, const QByteArray& body)
{
    writeBytes(path, "#!/bin/sh\n" + body + "\n");
    if (::chmod(path.constData(), 0755) != 0)
        ADD_FAILURE() << "cannot make " << path.constData() << " executable";
}

QString copyProgram(const QString& program, const QString& path)
{
    makeParent(QFile::encodeName(path));
    if (!QFile::copy(program, path) ||
        !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        ADD_FAILURE() << "cannot copy " << program.toStdString() << " to " << path.toStdString();
    return path;
}

qint64 blocksOf(const QByteArray& path)
{
    struct stat info
    {
    };
    if (::lstat(path.constData(), &info) != 0)
        return 0;
    return static_cast<qint64>(info.st_blocks) * 512;
}

bool exists(const QByteArray& path)
{
    struct stat info
    {
    };
    return ::lstat(path.constData(), &info) == 0;
}

} // namespace nubo::test
