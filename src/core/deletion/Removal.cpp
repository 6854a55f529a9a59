#include "core/deletion/Removal.h"

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

// Removes the entry `name` of the folder open as `parent` (or a whole path with AT_FDCWD).
int removeAt(int parent, const char* name)
{
    struct stat status = {};
    if (::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? 0 : errno;
    if (!S_ISDIR(status.st_mode)) {
        if (::unlinkat(parent, name, 0) == 0 || errno == ENOENT)
            return 0;
        return errno;
    }

    const int folder = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) {
        const int openError = errno;
        // An empty folder that may not be listed can still be removed.
        if (::unlinkat(parent, name, AT_REMOVEDIR) == 0)
            return 0;
        return openError;
    }
    DIR* listing = ::fdopendir(folder);
    if (!listing) {
        const int listError = errno;
        ::close(folder);
        return listError;
    }
    // The names are read in full before any is removed: removing while reading may skip entries.
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(listing)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.emplace_back(entry->d_name);
        errno = 0;
    }
    int first = errno;
    for (const std::string& child : names) {
        if (const int error = removeAt(::dirfd(listing), child.c_str()))
            keepFirst(first, error);
    }
    ::closedir(listing);
    if (::unlinkat(parent, name, AT_REMOVEDIR) != 0 && errno != ENOENT)
        keepFirst(first, errno);
    return first;
}

} // namespace

Presence presence(const QString& path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) == 0)
        return Presence::Present;
    return errno == ENOENT || errno == ENOTDIR ? Presence::Absent : Presence::Unknown;
}

int removeRecursively(const QString& path)
{
    const QByteArray bytes = QFile::encodeName(path);
    if (bytes.isEmpty())
        return ENOENT;
    return removeAt(AT_FDCWD, bytes.constData());
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
