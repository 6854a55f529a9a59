#include "core/privacy/Permissions.h"

#include "core/files/NativePath.h"
#include "platform/Workspace.h"

#include <QFile>

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace nubo::Permissions {

bool canReadProtectedData(const QString& home)
{
    const QByteArray database =
        NativePath::encode(home + QStringLiteral("/Library/Application Support/com.apple.TCC/TCC.db"));
    if (const int fd = ::open(database.constData(), O_RDONLY | O_CLOEXEC); fd >= 0) {
        ::close(fd);
        return true;
    }
    const QByteArray safari = NativePath::encode(home + QStringLiteral("/Library/Safari"));
    if (DIR* dir = ::opendir(safari.constData())) {
        // Listing, not just opening, is what the system refuses without the grant.
        errno = 0;
        while (::readdir(dir)) {
        }
        const bool listed = errno == 0;
        ::closedir(dir);
        return listed;
    }
    return false;
}

bool hasFullDiskAccess(const QString& home)
{
#ifdef __APPLE__
    return canReadProtectedData(home);
#else
    Q_UNUSED(home);
    return true;
#endif
}

void openFullDiskAccessSettings(Workspace& workspace)
{
    workspace.openUrl(QString::fromLatin1(kFullDiskAccessSettingsUrl));
}

} // namespace nubo::Permissions
