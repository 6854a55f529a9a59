#include "support/DesktopHome.h"

#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>

namespace nubo::test {

DesktopHome::DesktopHome(const QString& root) : m_root(root), m_home(root + QStringLiteral("/home"))
{
    m_places.userData = m_home + QStringLiteral("/.local/share");
    m_places.userConfig = m_home + QStringLiteral("/.config");
    m_places.userCache = m_home + QStringLiteral("/.cache");
    m_places.flatpakInstallations = {m_home + QStringLiteral("/.local/share/flatpak"), at(QStringLiteral("var/lib/flatpak"))};
    m_places.snapEntries = at(QStringLiteral("var/lib/snapd/desktop"));
    m_places.snapFiles = at(QStringLiteral("var/lib/snapd/snaps"));
    m_places.snapMounts = at(QStringLiteral("snap"));
    m_places.programFolders = {at(QStringLiteral("usr/bin"))};
    m_places.toolFolders = {at(QStringLiteral("tools"))};
    m_places.dataFolders = {m_places.userData, systemData(), flatpakExports(false), flatpakExports(true),
                            m_places.snapEntries};
    for (const QString& folder : m_places.dataFolders)
        makeDir(folder + QStringLiteral("/applications"));
    for (const QString& folder : {m_places.userConfig, m_places.userCache, m_places.snapFiles})
        makeDir(folder);
}

QString DesktopHome::flatpakExports(bool systemWide) const
{
    return m_places.flatpakInstallations.at(systemWide ? 1 : 0) + QStringLiteral("/exports/share");
}

QString DesktopHome::entry(const QString& dataFolder, const QString& id, const QString& keys) const
{
    const QString path = dataFolder + QStringLiteral("/applications/") + id;
    writeBytes(QFile::encodeName(path), "[Desktop Entry]\nType=Application\n" + keys.toUtf8() + '\n');
    return path;
}

QString DesktopHome::program(const QString& path, qint64 bytes) const
{
    writeFile(QFile::encodeName(path), bytes);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

QString DesktopHome::tool(const QString& name) const
{
    return program(at(QStringLiteral("tools/") + name), 10);
}

QString DesktopHome::flatpak(const QString& id, const QString& name, bool systemWide) const
{
    writeFile(QFile::encodeName(m_places.flatpakInstallations.at(systemWide ? 1 : 0) + QStringLiteral("/app/") + id +
                                 QStringLiteral("/current/files/bin/app")),
              20'000);
    return entry(flatpakExports(systemWide), id + QStringLiteral(".desktop"),
                 QStringLiteral("Name=%1\nExec=/usr/bin/flatpak run --branch=stable %2\nX-Flatpak=%2").arg(name, id));
}

} // namespace nubo::test
