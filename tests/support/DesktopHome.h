#pragma once

// A Linux desktop in a temporary folder: the user's XDG folders, a system data folder, Flatpak's
// user and system installations, snapd's folders and a folder of programs, with real desktop
// entries and program files written into them.

#include "core/apps/DesktopPlaces.h"

#include <QString>

namespace nubo::test {

class DesktopHome
{
public:
    /// Everything lives under `root`, which must exist; the home is `root`/home.
    explicit DesktopHome(const QString& root);

    [[nodiscard]] const DesktopPlaces& places() const { return m_places; }
    [[nodiscard]] const QString& home() const { return m_home; }
    /// `root`/`relative`.
    [[nodiscard]] QString at(const QString& relative) const { return m_root + QLatin1Char('/') + relative; }
    /// The system's data folder (as /usr/share), and each Flatpak installation's exports.
    [[nodiscard]] QString systemData() const { return at(QStringLiteral("usr/share")); }
    [[nodiscard]] QString flatpakExports(bool systemWide) const;

    /// Writes "[Desktop Entry]", "Type=Application" and `keys` (one "Key=value" per line) as
    /// `id` under `dataFolder`'s applications folder; returns the entry's path.
    QString entry(const QString& dataFolder, const QString& id, const QString& keys) const;
    /// An executable file of `bytes` bytes; returns its path.
    QString program(const QString& path, qint64 bytes = 4096) const;
    /// A stand-in for a packaging tool in the tool folder (its answers are a scripted runner's);
    /// returns its full path, as the code names it.
    QString tool(const QString& name) const;
    /// A Flatpak deployed in an installation, with its exported entry naming it.
    QString flatpak(const QString& id, const QString& name, bool systemWide) const;

private:
    QString m_root;
    QString m_home;
    DesktopPlaces m_places;
};

} // namespace nubo::test
