#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace nubo {

/// Where a Linux desktop keeps its applications and what they leave behind, as data: the XDG data
/// folders whose "applications" folders hold desktop entries, Flatpak's installations, snapd's
/// folders, and the user's configuration, data and cache folders. Production builds it from the
/// environment (`forHome`); tests point every folder at a temporary tree.
struct DesktopPlaces
{
    /// Searched in this order; the first entry found for a desktop id hides any later one.
    QStringList dataFolders;
    /// The user's data folder, whose entries are programs the user installed.
    QString userData;
    QString userConfig;
    QString userCache;
    /// Flatpak's installations, the user's first, then the system's.
    QStringList flatpakInstallations;
    /// Where a command named without a folder is looked for (the session's PATH).
    QStringList programFolders;
    /// Where the packaging tools (dpkg-query, apt-get, flatpak, snap) are looked for; a tool found
    /// nowhere is never run.
    QStringList toolFolders;
    /// Where snapd exports the snaps' desktop entries, keeps their files and mounts them.
    QString snapEntries = QStringLiteral("/var/lib/snapd/desktop");
    QString snapFiles = QStringLiteral("/var/lib/snapd/snaps");
    QString snapMounts = QStringLiteral("/snap");

    /// The places of the user whose home is `home`. `environment` gives a variable's value (XDG_…),
    /// empty when unset or when the home is a prepared one that keeps its own folders.
    [[nodiscard]] static DesktopPlaces forHome(const QString& home, const std::function<QString(const char*)>& environment);

    /// Flatpak's installations for `home`: the user's, the system's, and any other the system's
    /// configuration names ("Path=" in /etc/flatpak/installations.d).
    [[nodiscard]] static QStringList flatpakInstallationsOf(const QString& home);
};

} // namespace nubo
