#include "core/deletion/Removal.h"

#include "core/files/NativePath.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo::Removal {

namespace {

// strerror_r comes in two flavours (GNU returns the text, XSI fills the buffer); either works.
[[maybe_unused]] const char* messageOf(int result, const char* buffer)
{
    return result == 0 ? buffer : "";
}
[[maybe_unused]] const char* messageOf(const char* result, const char*)
{
    return result ? result : "";
}

void keepFirst(int& first, int error)
{
    if (first == 0)
        first = error;
}

// One folder on the way down: which folder it is, its name in its parent, and what is left in it.
struct Level
{
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;
    std::vector<std::string> names;
    size_t next = 0;
};

// Reads the names in the folder open as `folder` (which stays open). The names are read in full
// before any is removed: removing while reading may skip entries.
int readLevel(int folder, std::string name, Level& level)
{
    struct stat status = {};
    if (::fstat(folder, &status) != 0)
        return errno;
    const int copy = ::dup(folder);
    if (copy < 0)
        return errno;
    DIR* listing = ::fdopendir(copy);
    if (!listing) {
        const int error = errno;
        ::close(copy);
        return error;
    }
    level = Level{status.st_dev, status.st_ino, std::move(name), {}, 0};
    errno = 0;
    while (const dirent* entry = ::readdir(listing)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            level.names.emplace_back(entry->d_name);
        errno = 0;
    }
    const int error = errno;
    ::closedir(listing);
    return error;
}

// Removes the folder at `top` and everything in it, walking down and up with one folder open at
// a time: a deep tree never runs out of file descriptors (a Mac app may hold only 256). Coming
// back up through "..", the folder reached must be the one left; if something moved the tree
// meanwhile the walk stops rather than remove anything somewhere else.
int removeFolder(const char* top, int current)
{
    int first = 0;
    std::vector<Level> stack(1);
    if (const int error = readLevel(current, std::string(), stack.back())) {
        ::close(current);
        return error;
    }
    while (true) {
        Level& level = stack.back();
        if (level.next < level.names.size()) {
            const std::string& name = level.names[level.next++];
            struct stat status = {};
            if (::fstatat(current, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
                if (errno != ENOENT)
                    keepFirst(first, errno);
                continue;
            }
            if (!S_ISDIR(status.st_mode)) {
                if (::unlinkat(current, name.c_str(), 0) != 0 && errno != ENOENT)
                    keepFirst(first, errno);
                continue;
            }
            // A volume mounted inside the item is not part of it: nothing on another volume goes.
            if (status.st_dev != stack.front().device) {
                keepFirst(first, EXDEV);
                continue;
            }
            const int child = ::openat(current, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (child < 0) {
                const int openError = errno;
                // An empty folder that may not be listed can still be removed.
                if (::unlinkat(current, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT)
                    keepFirst(first, openError);
                continue;
            }
            Level below;
            if (const int error = readLevel(child, name, below)) {
                keepFirst(first, error);
                ::close(child);
                continue;
            }
            ::close(current);
            current = child;
            stack.push_back(std::move(below));
            continue;
        }

        const std::string name = std::move(level.name);
        stack.pop_back();
        if (stack.empty()) {
            ::close(current);
            if (::rmdir(top) != 0 && errno != ENOENT)
                keepFirst(first, errno);
            return first;
        }
        const int parent = ::openat(current, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const int climbError = errno;
        ::close(current);
        struct stat status = {};
        if (parent < 0 || ::fstat(parent, &status) != 0 || status.st_dev != stack.back().device ||
            status.st_ino != stack.back().inode) {
            if (parent >= 0)
                ::close(parent);
            keepFirst(first, parent < 0 ? climbError : EBUSY);
            return first;
        }
        current = parent;
        if (::unlinkat(current, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT)
            keepFirst(first, errno);
    }
}

int removePath(const char* path)
{
    struct stat status = {};
    if (::lstat(path, &status) != 0)
        return errno == ENOENT ? 0 : errno;
    if (!S_ISDIR(status.st_mode)) {
        if (::unlink(path) == 0 || errno == ENOENT)
            return 0;
        return errno;
    }
    const int folder = ::open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) {
        const int openError = errno;
        if (::rmdir(path) == 0)
            return 0;
        return openError;
    }
    return removeFolder(path, folder);
}

} // namespace

Presence presence(const QString& path)
{
    struct stat status = {};
    if (::lstat(NativePath::encode(path).constData(), &status) == 0)
        return Presence::Present;
    return errno == ENOENT || errno == ENOTDIR ? Presence::Absent : Presence::Unknown;
}

int removeRecursively(const QString& path)
{
    const QByteArray bytes = NativePath::encode(path);
    if (bytes.isEmpty())
        return ENOENT;
    return removePath(bytes.constData());
}

bool isRightsFailure(int error)
{
    return error == EACCES || error == EPERM;
}

QString systemMessage(int error)
{
    char buffer[256] = {};
    return QString::fromLocal8Bit(messageOf(::strerror_r(error, buffer, sizeof buffer), buffer));
}

} // namespace nubo::Removal
