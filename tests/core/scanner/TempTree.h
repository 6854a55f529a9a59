#pragma once

#include "core/scanner/FileNode.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <vector>

namespace nubo::test {

/// A real folder tree in a temporary folder, built by relative paths as raw bytes (so names that
/// are not UTF-8 can be made), remembering every regular file it wrote.
class TempTree
{
public:
    TempTree();
    /// Removes the tree by its bytes: Qt's own removal cannot reach names that are not UTF-8.
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    /// The root as the scanner receives it.
    [[nodiscard]] QString root() const;
    [[nodiscard]] QByteArray rootBytes() const { return m_root; }

    /// Creates the folder and every missing folder above it.
    void dir(const QByteArray& relative);
    /// Writes a file of `bytes` bytes (real data below 1 MiB, allocated blocks above), creating its
    /// folders; returns the blocks the file system reports for it.
    qint64 file(const QByteArray& relative, qint64 bytes);
    void link(const QByteArray& target, const QByteArray& relative);

    /// The allocated bytes the file system reports for all files written and still present.
    [[nodiscard]] qint64 expectedBytes() const;
    [[nodiscard]] qint64 fileCount() const;

private:
    QTemporaryDir m_dir;
    QByteArray m_root;
    std::vector<QByteArray> m_files;
};

/// Gives the open file `bytes` of allocated space: reserved where the system can, written elsewhere.
bool fill(int fd, qint64 bytes);

/// Blocks of one item as lstat reports them; 0 when it cannot be examined.
[[nodiscard]] qint64 blocksOf(const QByteArray& path);

/// The node whose path ends in `suffix`, searched depth first; null when none.
[[nodiscard]] const FileNode* find(const FileNode& node, const QString& suffix);

/// Checks the invariants of a scanned tree at every level: sizes add up (collapsed folders keep
/// theirs), children largest first, parent links right. Reports through gtest.
void expectConsistent(const FileNode& node);

/// Runs `work` in a child process as an unprivileged user when the tests run as root (a root
/// process reads every folder whatever its mode), and returns what it wrote. Fails the test when
/// the child cannot be run.
[[nodiscard]] QByteArray runUnprivileged(const std::function<QByteArray()>& work);

} // namespace nubo::test
