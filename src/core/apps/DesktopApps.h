#pragma once

#include "core/apps/DesktopEntry.h"
#include "core/apps/DesktopPlaces.h"
#include "core/apps/InstalledApp.h"
#include "core/cleanup/CleanItem.h"

#include <QList>
#include <QSet>
#include <QString>

namespace nubo {

class Metadata;
class Privacy;
class Safety;
class ToolRunner;

/// The applications of a Linux desktop: the desktop entries of the XDG data folders, the user's
/// first, Flatpak's and snapd's exports included, each told apart by where it came from and
/// described with what its packaging knows (version, size). Leftovers are only the folders named
/// exactly after the application's desktop id or its Flatpak id or snap name, never after a
/// name that another installed application shares.
///
/// Holds nothing but its services, which must outlive it; every function blocks on the disk or
/// on a packaging tool and is meant for background work.
class DesktopApps
{
public:
    DesktopApps(DesktopPlaces places, QString home, const Safety& safety, const Privacy& privacy,
                const Metadata& metadata, const ToolRunner& tools, QString locale);

    /// Every application a menu would show (entries of type Application, neither hidden nor
    /// marked not to be displayed, whose TryExec program exists), sorted by name as the user's
    /// language sorts it. Never fails: a tool that is missing leaves versions and sizes unknown.
    [[nodiscard]] QList<InstalledApp> load() const;

    /// What `app` left in the user's folders, largest first; each path once, each allowed by the
    /// safety gate and outside the folders privacy keeps closed.
    [[nodiscard]] QList<CleanItem> leftovers(const InstalledApp& app) const;

    [[nodiscard]] const DesktopPlaces& places() const { return m_places; }

private:
    struct Found
    {
        QString id;     ///< the desktop id: "org.gnome.Maps.desktop"
        QString path;   ///< the entry shown
        QString folder; ///< the data folder it was found under
        DesktopEntry entry;
        /// The packaged entry a user's entry of the same id overrides, if any.
        QString overridden;
        QString overriddenFolder;
    };

    [[nodiscard]] QList<Found> entries() const;
    [[nodiscard]] InstalledApp describe(const Found& found) const;
    void addPackaging(QList<InstalledApp>& apps) const;
    [[nodiscard]] QString resolved(const QString& program) const;
    /// What `tool` printed, by its full path; nothing when the tool is not on this machine.
    [[nodiscard]] QString ask(const QString& tool, const QStringList& arguments) const;
    /// The place in `flatpakInstallations` of the installation an entry under `folder` with the
    /// Flatpak id `id` belongs to; -1 for none.
    [[nodiscard]] qsizetype flatpakInstallation(const QString& folder, const QString& id) const;

    DesktopPlaces m_places;
    QString m_home;
    const Safety& m_safety;
    const Privacy& m_privacy;
    const Metadata& m_metadata;
    const ToolRunner& m_tools;
    QString m_locale;
};

} // namespace nubo
