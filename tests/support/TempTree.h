#pragma once

#include "support/FixtureFiles.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nubo::test {

/// A real folder tree in a temporary folder, built by relative paths as raw bytes (so names that
/// are not UTF-8 can be made). It remembers every regular file it wrote and can list everything
/// below its root, so a test can prove that nothing but the expected items changed.
class TempTree
{
public:
    TempTree();
    /// Removes the tree by its bytes: Qt's own removal cannot reach names that are not UTF-8.
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    /// The root as the code under test receives it.
    [[nodiscard]] QString root() const;
    [[nodiscard]] QByteArray rootBytes() const { return m_root; }
    /// Absolute path, as bytes, of a path relative to the root.
    [[nodiscard]] QByteArray bytes(const QByteArray& relative) const { return m_root + '/' + relative; }
    /// The same as the text the program holds (lossy for names that are not UTF-8).
    [[nodiscard]] QString path(const QByteArray& relative) const;

    /// Creates the folder and every missing folder above it.
    void dir(const QByteArray& relative, mode_t mode = 0755) const;
    /// Writes a file of `size` bytes, creating its folders; returns its allocated bytes.
    qint64 file(const QByteArray& relative, qint64 size = 10);
    void link(const QByteArray& target, const QByteArray& relative) const;
    [[nodiscard]] bool exists(const QByteArray& relative) const;

    /// The allocated bytes the file system reports for all files written and still present.
    [[nodiscard]] qint64 expectedBytes() const;
    [[nodiscard]] qint64 fileCount() const;

    /// Every path below the root, relative to it, links not followed.
    [[nodiscard]] std::set<std::string> listing() const;
    /// `before` less the given items and everything below them.
    [[nodiscard]] static std::set<std::string> without(std::set<std::string> before,
                                                       const std::set<std::string>& removed);

private:
    QTemporaryDir m_dir;
    QByteArray m_root;
    std::vector<QByteArray> m_files;
};

} // namespace nubo::test
