#pragma once

#include "core/files/HostSystem.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace nubo {

/// Where one system keeps what the cleanup looks at, as data: the Mac's Library folders, or
/// Linux's XDG folders. The categories read their folders from here, so the same rule serves both
/// systems where their shapes agree; each system's value is built and tested on either.
struct CleanPlaces
{
    /// A package manager's download cache: its name as the row shows it, and its folder.
    struct PackageCache
    {
        QString name;
        QString folder;
    };

    HostSystem system = HostSystem::Mac;
    /// The folder whose entries are the applications' caches, one item each.
    QString caches;
    /// Names in `caches` that are the package managers', offered with the packages instead.
    QSet<QString> packageCacheNames;
    QList<PackageCache> packageCaches;
    /// The folder of the user's logs and crash reports.
    QString logs;
    /// The system's folder of crash reports, where only the user's own are offered; none unless
    /// set from the safety rules, which protect it.
    QString crashReports;
    /// The user's trash folder.
    QString trash;
    /// The folder the browser downloads into ("Descargas" on a Spanish Linux desktop).
    QString downloads;
    /// Extensions of downloaded installers, lower case, without the dot.
    QStringList installerExtensions;

    /// The Mac's places in `home`.
    [[nodiscard]] static CleanPlaces forMac(const QString& home);
    /// Linux's places in `home`: the XDG base folders at their defaults unless given (the
    /// environment's XDG_CACHE_HOME and XDG_STATE_HOME apply to the user's real home only), and
    /// the download folder the user's "user-dirs.dirs" names.
    [[nodiscard]] static CleanPlaces forLinux(const QString& home, QString cacheHome = {}, QString stateHome = {});
};

} // namespace nubo
