#include "core/apps/DesktopPlaces.h"

#include "core/shell/Shell.h"

#include <QDir>
#include <QFile>

namespace nubo {

namespace {

QString absoluteOr(const QString& value, const QString& fallback)
{
    return value.startsWith(QLatin1Char('/')) ? QDir::cleanPath(value) : fallback;
}

} // namespace

DesktopPlaces DesktopPlaces::forHome(const QString& home, const std::function<QString(const char*)>& environment)
{
    DesktopPlaces places;
    places.userData = absoluteOr(environment("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
    places.userConfig = absoluteOr(environment("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    places.userCache = absoluteOr(environment("XDG_CACHE_HOME"), home + QStringLiteral("/.cache"));
    places.flatpakInstallations = flatpakInstallationsOf(home);
    places.programFolders = qEnvironmentVariable("PATH").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    places.programFolders << QString::fromUtf8(Shell::kToolSearchPath).split(QLatin1Char(':'));
    places.programFolders.removeDuplicates();
    places.toolFolders = Shell::whichFolders();

    places.dataFolders = {places.userData};
    QStringList system = environment("XDG_DATA_DIRS").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (system.isEmpty())
        system = {QStringLiteral("/usr/local/share"), QStringLiteral("/usr/share")};
    // Flatpak's and snapd's exports are named by the session's environment where they are
    // installed; they are searched anyway, so a session started without them still lists them.
    for (const QString& installation : std::as_const(places.flatpakInstallations))
        system << installation + QStringLiteral("/exports/share");
    system << places.snapEntries;
    for (const QString& folder : std::as_const(system)) {
        const QString clean = absoluteOr(folder, QString());
        if (!clean.isEmpty() && !places.dataFolders.contains(clean))
            places.dataFolders << clean;
    }
    return places;
}

QStringList DesktopPlaces::flatpakInstallationsOf(const QString& home)
{
    QStringList folders = {home + QStringLiteral("/.local/share/flatpak"), QStringLiteral("/var/lib/flatpak")};
    const QDir configured(QStringLiteral("/etc/flatpak/installations.d"));
    for (const QString& name : configured.entryList({QStringLiteral("*.conf")}, QDir::Files)) {
        QFile file(configured.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine().trimmed());
            if (line.startsWith(QLatin1String("Path=")) && line.size() > 6)
                folders << QDir::cleanPath(line.mid(5));
        }
    }
    return folders;
}

} // namespace nubo
