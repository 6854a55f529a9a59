#include "core/apps/DesktopApps.h"

#include "core/apps/PackagingOutput.h"
#include "core/files/FolderListing.h"
#include "core/files/Location.h"
#include "core/files/NativePath.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "core/shell/Shell.h"
#include "core/shell/ToolRunner.h"
#include "platform/Metadata.h"

#include <QCollator>
#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>
#include <chrono>
#include <sys/stat.h>

namespace nubo {

namespace {

using namespace std::chrono_literals;

constexpr auto kToolTime = 20s;
const QLatin1String kEntrySuffix(".desktop");

bool isRegularFile(const QString& path)
{
    struct stat info {};
    return ::lstat(NativePath::encode(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
}

QString stem(const QString& desktopId)
{
    return desktopId.endsWith(kEntrySuffix) ? desktopId.chopped(kEntrySuffix.size()) : desktopId;
}

QString fileName(const QString& path)
{
    return path.section(QLatin1Char('/'), -1);
}

// A snap's entries are "<snap>_<app>.desktop".
QString snapName(const DesktopEntry& entry, const QString& desktopId)
{
    const QString declared = entry.value(QStringLiteral("X-SnapInstanceName"));
    return declared.isEmpty() ? stem(desktopId).section(QLatin1Char('_'), 0, 0) : declared;
}

QString flatpakId(const DesktopEntry& entry, const QString& desktopId)
{
    const QString declared = entry.value(QStringLiteral("X-Flatpak"));
    return declared.isEmpty() ? stem(desktopId) : declared;
}

} // namespace

DesktopApps::DesktopApps(DesktopPlaces places, QString home, const Safety& safety, const Privacy& privacy,
                         const Metadata& metadata, const ToolRunner& tools, QString locale)
    : m_places(std::move(places)), m_home(std::move(home)), m_safety(safety), m_privacy(privacy),
      m_metadata(metadata), m_tools(tools), m_locale(std::move(locale))
{
}

QList<DesktopApps::Found> DesktopApps::entries() const
{
    QList<Found> found;
    QHash<QString, qsizetype> seen; // desktop id → its place in `found`, or -1 when not shown
    for (const QString& folder : m_places.dataFolders) {
        const QString base = folder + QStringLiteral("/applications");
        QStringList paths;
        QDirIterator walk(base, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (walk.hasNext())
            paths << walk.next();
        paths.sort();
        for (const QString& path : std::as_const(paths)) {
            // An entry whose name is not UTF-8 could not be named faithfully to a tool or the deleter.
            if (!FolderListing::roundTrips(NativePath::encode(path)))
                continue;
            const QString id = path.mid(base.size() + 1).replace(QLatin1Char('/'), QLatin1Char('-'));
            if (const auto earlier = seen.constFind(id); earlier != seen.cend()) {
                // The user's entry of a packaged application's id overrides it: the package
                // still decides how the application is removed.
                if (*earlier >= 0 && found[*earlier].folder == m_places.userData && folder != m_places.userData &&
                    found[*earlier].overridden.isEmpty()) {
                    found[*earlier].overridden = path;
                    found[*earlier].overriddenFolder = folder;
                }
                continue;
            }
            seen.insert(id, -1);
            const std::optional<DesktopEntry> entry = DesktopEntry::read(path);
            if (!entry || entry->value(QStringLiteral("Type")) != QLatin1String("Application") ||
                entry->flag(QStringLiteral("NoDisplay")) || entry->flag(QStringLiteral("Hidden")) ||
                entry->localized(QStringLiteral("Name"), m_locale).trimmed().isEmpty())
                continue;
            const QString tryExec = entry->value(QStringLiteral("TryExec"));
            if (!tryExec.isEmpty() && resolved(tryExec).isEmpty())
                continue;
            seen.insert(id, found.size());
            found.append({id, path, folder, *entry, {}, {}});
        }
    }
    return found;
}

QString DesktopApps::resolved(const QString& program) const
{
    if (program.startsWith(QLatin1Char('/')))
        return QFileInfo(program).isExecutable() ? program : QString();
    return Shell::which(program, m_places.programFolders).value_or(QString());
}

qsizetype DesktopApps::flatpakInstallation(const QString& folder, const QString& id) const
{
    const QLatin1String exports("/exports/share");
    if (folder.endsWith(exports))
        return m_places.flatpakInstallations.indexOf(folder.chopped(exports.size()));
    for (qsizetype i = 0; i < m_places.flatpakInstallations.size(); ++i) {
        if (Location::exists(m_places.flatpakInstallations.at(i) + QStringLiteral("/app/") + id))
            return i;
    }
    return -1;
}

InstalledApp DesktopApps::describe(const Found& found) const
{
    InstalledApp app;
    // How it is removed is read off the packaged entry when the user's only overrides it.
    const bool overrides = !found.overridden.isEmpty();
    const QString folder = overrides ? found.overriddenFolder : found.folder;
    const DesktopEntry packaged =
        overrides ? DesktopEntry::read(found.overridden).value_or(found.entry) : found.entry;
    app.url = overrides ? found.overridden : found.path;
    app.name = found.entry.localized(QStringLiteral("Name"), m_locale).simplified();
    app.origin = AppOrigin::Unmanaged;
    const QString program = packaged.program();
    const QString path = resolved(program);

    // An entry is a Flatpak's when Flatpak exported it or it says so; a distribution's entry that
    // merely shares a Flatpak's id is not.
    const bool declared = packaged.has(QStringLiteral("X-Flatpak"));
    const qsizetype installation =
        declared || folder.endsWith(QLatin1String("/exports/share"))
            ? flatpakInstallation(folder, flatpakId(packaged, found.id))
            : -1;
    if (declared || installation >= 0) {
        // The user's and the system's installations are the ones "flatpak uninstall" names by
        // a plain option; an application of another installation is left to the user.
        if (installation == 0 || installation == 1) {
            app.origin = AppOrigin::Flatpak;
            app.package = flatpakId(packaged, found.id);
            app.systemWide = installation == 1;
            const QString deployed =
                m_places.flatpakInstallations.at(installation) + QStringLiteral("/app/") + app.package;
            if (Location::exists(deployed))
                app.payload = deployed;
        }
    } else if (packaged.has(QStringLiteral("X-SnapInstanceName")) || folder == m_places.snapEntries) {
        app.origin = AppOrigin::Snap;
        app.package = snapName(packaged, found.id);
    } else if (folder == m_places.userData) {
        // The user's own launcher: the program goes with it only when it is a file of the home.
        const bool ownFile = path.startsWith(m_home + QLatin1Char('/')) && isRegularFile(path);
        app.origin = program.endsWith(QLatin1String(".appimage"), Qt::CaseInsensitive) ? AppOrigin::AppImage
                                                                                        : AppOrigin::Own;
        app.payload = ownFile ? path : QString();
        const QString version = packaged.value(QStringLiteral("X-AppImage-Version"));
        if (!version.isEmpty())
            app.version = version;
    }
    const QString used = app.payload.isEmpty() ? path : app.payload;
    if (!used.isEmpty()) {
        app.lastUsed = m_metadata.lastUsedDate(used);
        if (!app.lastUsed)
            app.lastUsed = Location::accessDate(used);
    }
    return app;
}

QString DesktopApps::ask(const QString& tool, const QStringList& arguments) const
{
    const std::optional<QString> program = Shell::which(tool, m_places.toolFolders);
    return program ? m_tools.run(*program, arguments, kToolTime).output : QString();
}

void DesktopApps::addPackaging(QList<InstalledApp>& apps) const
{
    const auto any = [&apps](AppOrigin origin) {
        return std::any_of(apps.cbegin(), apps.cend(), [origin](const InstalledApp& app) { return app.origin == origin; });
    };
    if (any(AppOrigin::Flatpak)) {
        const QString listed = ask(QStringLiteral("flatpak"), {QStringLiteral("list"), QStringLiteral("--app"),
                                                               QStringLiteral("--columns=application,installation,version")});
        for (const PackagingOutput::FlatpakApp& flatpak : PackagingOutput::flatpakApps(listed)) {
            for (InstalledApp& app : apps) {
                if (app.origin == AppOrigin::Flatpak && app.package == flatpak.id &&
                    app.systemWide == (flatpak.installation != QLatin1String("user")) && !flatpak.version.isEmpty())
                    app.version = flatpak.version;
            }
        }
    }
    if (any(AppOrigin::Snap)) {
        const QString listed = ask(QStringLiteral("snap"), {QStringLiteral("list")});
        for (const PackagingOutput::Snap& snap : PackagingOutput::snaps(listed)) {
            for (InstalledApp& app : apps) {
                if (app.origin != AppOrigin::Snap || app.package != snap.name)
                    continue;
                app.version = snap.version;
                const QString file = m_places.snapFiles + QLatin1Char('/') + snap.name + QLatin1Char('_') +
                                     snap.revision + QStringLiteral(".snap");
                if (Location::exists(file))
                    app.payload = file;
            }
        }
    }
    // Entries of the system's folders belong to the distribution's package that installed them;
    // one owner is needed, since a path two packages share cannot say which to remove.
    QStringList systemEntries;
    for (const InstalledApp& app : apps) {
        if (app.origin == AppOrigin::Unmanaged)
            systemEntries << app.url;
    }
    if (systemEntries.isEmpty())
        return;
    systemEntries.sort();
    QStringList arguments{QStringLiteral("-S")};
    const QHash<QString, QStringList> owners =
        PackagingOutput::owners(ask(QStringLiteral("dpkg-query"), arguments << systemEntries));
    QStringList packages;
    for (InstalledApp& app : apps) {
        const QStringList owner = owners.value(app.url);
        if (app.origin != AppOrigin::Unmanaged || owner.size() != 1)
            continue;
        app.origin = AppOrigin::Package;
        app.package = owner.first();
        packages << app.package;
    }
    if (packages.isEmpty())
        return;
    packages.removeDuplicates();
    packages.sort();
    arguments = {QStringLiteral("-W"), QStringLiteral("--showformat=${binary:Package}\\t${Version}\\t${Installed-Size}\\n")};
    for (const PackagingOutput::Package& package :
         PackagingOutput::packages(ask(QStringLiteral("dpkg-query"), arguments << packages))) {
        for (InstalledApp& app : apps) {
            if (app.origin != AppOrigin::Package || app.package != package.name)
                continue;
            if (!package.version.isEmpty())
                app.version = package.version;
            if (package.kibibytes)
                app.size = *package.kibibytes * 1024;
        }
    }
}

QList<InstalledApp> DesktopApps::load() const
{
    QList<InstalledApp> apps;
    for (const Found& found : entries())
        apps << describe(found);
    addPackaging(apps);
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(apps.begin(), apps.end(), [&collator](const InstalledApp& a, const InstalledApp& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return apps;
}

QList<CleanItem> DesktopApps::leftovers(const InstalledApp& app) const
{
    const QString id = fileName(app.url);
    QStringList keys{stem(id)};
    if (app.origin == AppOrigin::Flatpak && !keys.contains(app.package))
        keys << app.package;
    // A name another installed application answers to is not certainly this one's.
    QSet<QString> taken;
    QString userOverride;
    for (const Found& found : entries()) {
        if (found.path == app.url || found.overridden == app.url) {
            if (found.path != app.url)
                userOverride = found.path;
            continue;
        }
        taken << stem(found.id) << flatpakId(found.entry, found.id) << snapName(found.entry, found.id);
    }
    keys.removeIf([&taken](const QString& key) { return taken.contains(key) || !PackagingOutput::isPlainName(key); });

    QList<std::pair<QString, QString>> candidates; // path, the folder's label
    if (app.origin == AppOrigin::Flatpak && keys.contains(app.package))
        candidates.append({m_home + QStringLiteral("/.var/app/") + app.package, QStringLiteral(".var/app")});
    if (app.origin == AppOrigin::Snap && PackagingOutput::isPlainName(app.package) && !taken.contains(app.package))
        candidates.append({m_home + QStringLiteral("/snap/") + app.package, QStringLiteral("snap")});
    for (const QString& key : std::as_const(keys)) {
        candidates.append({m_places.userConfig + QLatin1Char('/') + key, QStringLiteral(".config")});
        candidates.append({m_places.userData + QLatin1Char('/') + key, QStringLiteral(".local/share")});
        candidates.append({m_places.userCache + QLatin1Char('/') + key, QStringLiteral(".cache")});
    }
    if (!userOverride.isEmpty())
        candidates.append({userOverride, QStringLiteral("applications")});

    QList<CleanItem> items;
    QSet<QString> offered;
    for (const auto& [path, label] : std::as_const(candidates)) {
        if (offered.contains(path) || !Location::exists(path) || m_privacy.isGated(path) || !m_safety.isAllowed(path))
            continue;
        offered.insert(path);
        items << CleanItem::atPath(path, m_home, label);
    }
    std::stable_sort(items.begin(), items.end(), [](const CleanItem& a, const CleanItem& b) { return a.size > b.size; });
    return items;
}

} // namespace nubo
