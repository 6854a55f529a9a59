#include "core/cleanup/CleanPlaces.h"

#include "core/files/UserDirectories.h"

#include <initializer_list>
#include <utility>

namespace nubo {

namespace {

QList<CleanPlaces::PackageCache> cachesIn(const QString& base,
                                          std::initializer_list<std::pair<const char*, const char*>> table)
{
    QList<CleanPlaces::PackageCache> caches;
    for (const auto& [name, folder] : table)
        caches.append({QString::fromUtf8(name), base + QLatin1Char('/') + QString::fromUtf8(folder)});
    return caches;
}

// The package caches kept in the applications' cache folder are named there so the caches row
// leaves them to the packages row, and no folder is counted twice.
void leaveToPackages(CleanPlaces& places)
{
    const QString prefix = places.caches + QLatin1Char('/');
    for (const CleanPlaces::PackageCache& cache : std::as_const(places.packageCaches)) {
        if (cache.folder.startsWith(prefix))
            places.packageCacheNames.insert(cache.folder.mid(prefix.size()));
    }
}

} // namespace

CleanPlaces CleanPlaces::forMac(const QString& home)
{
    CleanPlaces places;
    places.system = HostSystem::Mac;
    places.caches = home + QStringLiteral("/Library/Caches");
    places.packageCaches = cachesIn(home, {{"Homebrew", "Library/Caches/Homebrew"},
                                           {"npm", ".npm/_cacache"},
                                           {"pnpm", "Library/pnpm/store"},
                                           {"Yarn", "Library/Caches/Yarn"},
                                           {"pip", "Library/Caches/pip"},
                                           {"CocoaPods", "Library/Caches/CocoaPods"},
                                           {"SwiftPM", "Library/Caches/org.swift.swiftpm"},
                                           {"Go", "Library/Caches/go-build"},
                                           {"Gradle", ".gradle/caches"},
                                           {"Bun", ".bun/install/cache"},
                                           {"Cargo", ".cargo/registry/cache"}});
    leaveToPackages(places);
    // pnpm's metadata in the caches folder belongs with its store, which the packages row offers.
    places.packageCacheNames.insert(QStringLiteral("pnpm"));
    places.logs = home + QStringLiteral("/Library/Logs");
    places.trash = home + QStringLiteral("/.Trash");
    places.downloads = home + QStringLiteral("/Downloads");
    places.installerExtensions = {QStringLiteral("dmg"), QStringLiteral("pkg"), QStringLiteral("xip"),
                                  QStringLiteral("mpkg")};
    return places;
}

CleanPlaces CleanPlaces::forLinux(const QString& home, QString cacheHome, QString stateHome)
{
    CleanPlaces places;
    places.system = HostSystem::Linux;
    places.caches = cacheHome.isEmpty() ? home + QStringLiteral("/.cache") : std::move(cacheHome);
    // Go's module cache is read-only by design and goes through "go clean": it is not offered.
    places.packageCaches = cachesIn(home, {{"npm", ".npm/_cacache"},
                                           {"Gradle", ".gradle/caches"},
                                           {"Bun", ".bun/install/cache"},
                                           {"Cargo", ".cargo/registry/cache"},
                                           {"Maven", ".m2/repository"},
                                           {"pnpm", ".local/share/pnpm/store"}});
    places.packageCaches << cachesIn(places.caches, {{"pip", "pip"},
                                                     {"Yarn", "yarn"},
                                                     {"Go", "go-build"},
                                                     {"Composer", "composer"},
                                                     {"Deno", "deno"}});
    leaveToPackages(places);
    places.logs = stateHome.isEmpty() ? home + QStringLiteral("/.local/state") : std::move(stateHome);
    places.trash = home + QStringLiteral("/.local/share/Trash");
    places.downloads = UserDirectories::downloads(home);
    places.installerExtensions = {QStringLiteral("deb"),      QStringLiteral("rpm"), QStringLiteral("appimage"),
                                  QStringLiteral("flatpakref"), QStringLiteral("flatpak"), QStringLiteral("run"),
                                  QStringLiteral("iso"),      QStringLiteral("img")};
    return places;
}

} // namespace nubo
