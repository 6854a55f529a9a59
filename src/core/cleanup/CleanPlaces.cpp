#include "core/cleanup/CleanPlaces.h"

#include "core/files/UserDirectories.h"

#include <utility>

namespace nubo {

namespace {

QList<CleanPlaces::PackageCache> cachesIn(const QString& home,
                                          std::initializer_list<std::pair<const char*, const char*>> table)
{
    QList<CleanPlaces::PackageCache> caches;
    for (const auto& [name, folder] : table)
        caches.append({QString::fromUtf8(name), home + QLatin1Char('/') + QString::fromUtf8(folder)});
    return caches;
}

} // namespace

CleanPlaces CleanPlaces::forMac(const QString& home)
{
    CleanPlaces places;
    places.system = HostSystem::Mac;
    places.caches = home + QStringLiteral("/Library/Caches");
    places.packageCacheNames = {QStringLiteral("Homebrew"), QStringLiteral("pip"),   QStringLiteral("Yarn"),
                                QStringLiteral("CocoaPods"), QStringLiteral("org.swift.swiftpm"),
                                QStringLiteral("go-build"), QStringLiteral("pnpm")};
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
    for (const auto& [name, folder] : {std::pair("pip", "pip"), std::pair("Yarn", "yarn"),
                                       std::pair("Go", "go-build"), std::pair("Composer", "composer"),
                                       std::pair("Deno", "deno")})
    {
        places.packageCaches.append({QString::fromUtf8(name), places.caches + QLatin1Char('/') + QString::fromUtf8(folder)});
        places.packageCacheNames.insert(QString::fromUtf8(folder));
    }
    places.logs = stateHome.isEmpty() ? home + QStringLiteral("/.local/state") : std::move(stateHome);
    places.trash = home + QStringLiteral("/.local/share/Trash");
    places.downloads = UserDirectories::downloads(home);
    places.installerExtensions = {QStringLiteral("deb"),      QStringLiteral("rpm"), QStringLiteral("appimage"),
                                  QStringLiteral("flatpakref"), QStringLiteral("flatpak"), QStringLiteral("run"),
                                  QStringLiteral("iso"),      QStringLiteral("img")};
    return places;
}

} // namespace nubo
