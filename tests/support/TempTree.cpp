#include "TempTree.h"

#include <QFile>
#include <dirent.h>
#include <filesystem>
#include <sys/stat.h>

namespace nubo::test {

namespace {

void list(const QByteArray& root, const std::string& relative, std::set<std::string>& out)
{
    const QByteArray folder = relative.empty() ? root : root + '/' + QByteArray::fromStdString(relative);
    DIR* dir = ::opendir(folder.constData());
    if (!dir)
        return;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string child = relative.empty() ? name : relative + "/" + name;
        out.insert(child);
        struct stat status
        {
        };
        const QByteArray full = root + '/' + QByteArray::fromStdString(child);
        if (::lstat(full.constData(), &status) == 0 && S_ISDIR(status.st_mode))
            list(root, child, out);
    }
    ::closedir(dir);
}

} // namespace

TempTree::TempTree() : m_root(QFile::encodeName(m_dir.path()))
{
    // Readable by others, so that a test acting as an ordinary user can walk it.
    ::chmod(m_root.constData(), 0755);
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

QString TempTree::path(const QByteArray& relative) const
{
    return QFile::decodeName(bytes(relative));
}

void TempTree::dir(const QByteArray& relative, mode_t mode) const
{
    makeDir(bytes(relative), mode);
}

qint64 TempTree::file(const QByteArray& relative, qint64 size)
{
    m_files.push_back(bytes(relative));
    return writeFile(m_files.back(), size);
}

void TempTree::link(const QByteArray& target, const QByteArray& relative) const
{
    makeLink(target, bytes(relative));
}

bool TempTree::exists(const QByteArray& relative) const
{
    return nubo::test::exists(bytes(relative));
}

qint64 TempTree::expectedBytes() const
{
    qint64 total = 0;
    for (const auto& file : m_files)
        total += blocksOf(file);
    return total;
}

qint64 TempTree::fileCount() const
{
    qint64 count = 0;
    for (const auto& file : m_files)
        count += nubo::test::exists(file) ? 1 : 0;
    return count;
}

std::set<std::string> TempTree::listing() const
{
    std::set<std::string> out;
    list(m_root, std::string(), out);
    return out;
}

std::set<std::string> TempTree::without(std::set<std::string> before, const std::set<std::string>& removed)
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

} // namespace nubo::test
