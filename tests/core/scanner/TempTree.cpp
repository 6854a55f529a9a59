#include "TempTree.h"

#include <gtest/gtest.h>

#include <QFile>

#include <cerrno>
#include <filesystem>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nubo::test {

TempTree::TempTree()
{
    // Readable by others, so that an unprivileged child can walk it.
    ::chmod(QFile::encodeName(m_dir.path()).constData(), 0755);
    m_root = QFile::encodeName(m_dir.path());
    m_dir.setAutoRemove(false);
}

TempTree::~TempTree()
{
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(m_root.toStdString()), ignored);
}

QString TempTree::root() const
{
    return m_dir.path();
}

void TempTree::dir(const QByteArray& relative)
{
    QByteArray path = m_root;
    for (const QByteArray& part : relative.split('/')) {
        if (part.isEmpty())
            continue;
        path += '/' + part;
        if (::mkdir(path.constData(), 0755) != 0 && errno != EEXIST)
            ADD_FAILURE() << "mkdir failed: " << path.constData();
    }
}

qint64 TempTree::file(const QByteArray& relative, qint64 bytes)
{
    const qsizetype slash = relative.lastIndexOf('/');
    if (slash > 0)
        dir(relative.left(slash));
    const QByteArray path = m_root + '/' + relative;
    const int fd = ::open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    if (fd < 0) {
        ADD_FAILURE() << "cannot create " << path.constData();
        return 0;
    }
    if (!fill(fd, bytes))
        ADD_FAILURE() << "cannot fill " << path.constData();
    ::close(fd);
    m_files.push_back(path);
    return blocksOf(path);
}

void TempTree::link(const QByteArray& target, const QByteArray& relative)
{
    if (::symlink(target.constData(), (m_root + '/' + relative).constData()) != 0)
        ADD_FAILURE() << "symlink failed";
}

qint64 TempTree::expectedBytes() const
{
    qint64 total = 0;
    for (const auto& path : m_files)
        total += blocksOf(path);
    return total;
}

qint64 TempTree::fileCount() const
{
    qint64 count = 0;
    struct stat info {};
    for (const auto& path : m_files)
        count += ::lstat(path.constData(), &info) == 0 ? 1 : 0;
    return count;
}

bool fill(int fd, qint64 bytes)
{
#ifdef __linux__
    if (bytes >= (1 << 20) && ::posix_fallocate(fd, 0, bytes) == 0)
        return true;
#endif
    const QByteArray chunk(64 * 1024, 'x');
    for (qint64 left = bytes; left > 0;) {
        const qint64 n = std::min<qint64>(left, chunk.size());
        if (::write(fd, chunk.constData(), static_cast<size_t>(n)) != n)
            return false;
        left -= n;
    }
    return true;
}

qint64 blocksOf(const QByteArray& path)
{
    struct stat info {};
    if (::lstat(path.constData(), &info) != 0)
        return 0;
    return static_cast<qint64>(info.st_blocks) * 512;
}

const FileNode* find(const FileNode& node, const QString& suffix)
{
    if (node.path().endsWith(suffix) && !node.isAggregate())
        return &node;
    for (const auto& child : node.children()) {
        if (const FileNode* hit = find(*child, suffix))
            return hit;
    }
    return nullptr;
}

void expectConsistent(const FileNode& node)
{
    if (node.children().empty())
        return;
    qint64 sum = 0;
    qint64 files = 0;
    qint64 previous = node.children().front()->size();
    for (const auto& child : node.children()) {
        EXPECT_EQ(child->parent(), &node) << child->path().toStdString();
        EXPECT_LE(child->size(), previous) << "children of " << node.path().toStdString() << " out of order";
        previous = child->size();
        sum += child->size();
        files += child->fileCount();
        expectConsistent(*child);
    }
    EXPECT_EQ(node.size(), sum) << node.path().toStdString();
    EXPECT_EQ(node.fileCount(), files) << node.path().toStdString();
}

QByteArray runUnprivileged(const std::function<QByteArray()>& work)
{
    if (::geteuid() != 0)
        return work();
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) {
        ADD_FAILURE() << "pipe failed";
        return {};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        if (::setgid(65534) != 0 || ::setuid(65534) != 0)
            ::_exit(3);
        const QByteArray answer = work();
        const bool written = ::write(pipeEnds[1], answer.constData(), static_cast<size_t>(answer.size())) ==
                             static_cast<ssize_t>(answer.size());
        ::_exit(written ? 0 : 4);
    }
    ::close(pipeEnds[1]);
    QByteArray answer;
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        answer.append(buffer, n);
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "unprivileged child failed";
    return answer;
}

} // namespace nubo::test
