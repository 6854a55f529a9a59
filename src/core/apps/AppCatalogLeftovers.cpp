// The leftover half of AppCatalog: what one installed application left in the Library folders,
// and the identifier-named data of applications that are no longer installed.
#include "core/files/NativePath.h"
#include "core/apps/AppCatalog.h"
#include "core/apps/BundleInfo.h"
#include "core/apps/BundleWalk.h"
#include "core/apps/LeftoverKeys.h"
#include "core/files/FolderListing.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace nubo {

namespace {

struct LibraryRow
{
    const char* folder;
    bool nameMatching;
};

// Name matching is confined to the folders that applications commonly name after themselves
// rather than after their identifier; everywhere else only the identifier counts.
constexpr LibraryRow kUserLibraryRows[] = {
    {"Application Support", true},
    {"Caches", true},
    {"Preferences", false},
    {"Preferences/ByHost", false},
    {"Containers", false},
    {"Group Containers", false},
    {"Saved Application State", false},
    {"HTTPStorages", false},
    {"WebKit", false},
    {"Logs", true},
    {"LaunchAgents", false},
    {"Application Scripts", false},
    {"Cookies", false},
};

constexpr LibraryRow kSystemLibraryRows[] = {
    {"Application Support", true},
    {"Caches", true},
    {"Preferences", false},
    {"LaunchAgents", false},
    {"LaunchDaemons", false},
    {"PrivilegedHelperTools", false},
    {"Logs", true},
};

enum class OrphanRule
{
    asIs,
    savedState,
    notCookies
};

struct OrphanRow
{
    const char* folder;
    OrphanRule rule;
};

constexpr OrphanRow kOrphanRows[] = {
    {"Containers", OrphanRule::asIs},          {"Saved Application State", OrphanRule::savedState},
    {"HTTPStorages", OrphanRule::notCookies},  {"WebKit", OrphanRule::asIs},
    {"Application Support", OrphanRule::asIs},
};

// Bundles inside bundles (extensions, services, helpers) are found down to this depth.
constexpr int kInstalledDepth = 6;

QString firstComponent(const QString& subFolder)
{
    return subFolder.section(QLatin1Char('/'), 0, 0);
}

std::optional<QString> candidateFor(const QString& name, OrphanRule rule)
{
    switch (rule) {
    case OrphanRule::asIs:
        return name;
    case OrphanRule::savedState: {
        const QLatin1String ending(".savedState");
        if (!name.endsWith(ending))
            return std::nullopt;
        return name.chopped(ending.size());
    }
    case OrphanRule::notCookies:
        if (name.endsWith(QLatin1String(".binarycookies")))
            return std::nullopt;
        return name;
    }
    return std::nullopt;
}

// Data of system components and shared app-group containers is never offered as an orphan, nor
// anything that does not look like a reverse-domain identifier.
bool plausibleIdentifier(const QString& candidate)
{
    if (candidate.split(QLatin1Char('.'), Qt::SkipEmptyParts).size() < 3)
        return false;
    if (candidate.startsWith(QLatin1Char('.')) || candidate.contains(QLatin1Char(' ')) ||
        candidate.contains(QLatin1String("..")))
        return false;
    const QString lower = candidate.toLower();
    return !lower.startsWith(QLatin1String("com.apple.")) && !lower.startsWith(QLatin1String("group."));
}

void sortLargestFirst(QList<CleanItem>& items)
{
    std::stable_sort(items.begin(), items.end(),
                     [](const CleanItem& a, const CleanItem& b) { return a.size > b.size; });
}

} // namespace

bool AppCatalog::otherAppOwns(const QString& entryName, const InstalledApp& besides) const
{
    QString identifier = entryName;
    for (const char* ending : {".plist", ".savedState", ".binarycookies"}) {
        const QLatin1String suffix(ending);
        if (identifier.endsWith(suffix))
            identifier.chop(suffix.size());
    }
    const std::optional<QString> location = m_workspace.applicationLocation(identifier);
    if (!location)
        return false;
    return QDir::cleanPath(*location) != QDir::cleanPath(besides.url);
}

QList<CleanItem> AppCatalog::leftovers(const InstalledApp& app) const
{
    if (m_desktop)
        return m_desktop->leftovers(app);
    const LeftoverKeys keys = LeftoverKeys::of(app);
    QList<CleanItem> result;
    QSet<QString> taken;

    const auto accept = [&](const QString& path, const QString& subFolder) {
        if (taken.contains(path) || !m_safety.isAllowed(path))
            return;
        taken.insert(path);
        result << CleanItem::atPath(path, m_roots.home, firstComponent(subFolder));
    };

    const auto search = [&](const QString& library, const LibraryRow* rows, size_t count) {
        for (size_t row = 0; row < count; ++row) {
            const QString subFolder = QString::fromUtf8(rows[row].folder);
            const bool byName = rows[row].nameMatching;
            const QString folder = library + QLatin1Char('/') + subFolder;
            if (m_privacy.isGated(folder))
                continue;
            const std::optional<QStringList> entries = FolderListing::names(folder);
            if (!entries)
                continue;
            for (const QString& entry : *entries) {
                const QString lower = entry.toLower();
                bool accepted = false;
                bool skipNameTest = false;

                if (keys.idUsable()) {
                    const QString& id = *keys.id;
                    const QString dotted = id + QLatin1Char('.');
                    if (lower == id) {
                        accepted = true;
                    } else if (lower.startsWith(dotted)) {
                        // A helper's identifier, the app's own ".plist" or ".savedState", or a
                        // related app's identifier: it is ours unless another installed app claims it.
                        if (otherAppOwns(entry, app))
                            skipNameTest = true;
                        else
                            accepted = true;
                    } else if (lower.endsWith(QLatin1Char('.') + id) ||
                               lower.contains(QLatin1Char('.') + dotted)) {
                        accepted = true; // group.<id>, TEAMID.<id>.shared and the like
                    }
                }
                if (!accepted && !skipNameTest && byName && keys.nameUsable())
                    accepted = lower == keys.name || lower == keys.compact;
                if (accepted) {
                    accept(folder + QLatin1Char('/') + entry, subFolder);
                    continue;
                }
                // A vendor folder (Acme) holding the app's own folder (Writer): the inner folder is
                // the leftover, never the vendor's folder, which other apps of the vendor share.
                if (byName && keys.vendor && lower == *keys.vendor) {
                    const QString vendorFolder = folder + QLatin1Char('/') + entry;
                    const QStringList children = FolderListing::names(vendorFolder).value_or(QStringList());
                    for (const QString& child : children) {
                        const QString childLower = child.toLower();
                        if (childLower == keys.name || childLower == keys.compact ||
                            childLower == keys.stripped) {
                            accept(vendorFolder + QLatin1Char('/') + child, subFolder);
                            break;
                        }
                    }
                }
            }
        }
    };

    search(m_roots.userLibrary(), kUserLibraryRows, std::size(kUserLibraryRows));
    search(m_roots.library, kSystemLibraryRows, std::size(kSystemLibraryRows));
    sortLargestFirst(result);
    return result;
}

QSet<QString> AppCatalog::installedIdentifiers() const
{
    QSet<QString> identifiers;
    const QStringList roots{m_roots.applications, m_roots.userApplications(), m_roots.systemApplications,
                            m_roots.utilities()};
    for (const QString& root : roots) {
        // Package contents are walked on purpose: extensions and services inside an installed
        // app have their own identifiers, and their data must not pass for an orphan's.
        BundleWalk::walk(NativePath::encode(root), kInstalledDepth, true, [&](const BundleWalk::Entry& entry) {
            if (!entry.name.endsWith(".app") && !entry.name.endsWith(".appex") &&
                !entry.name.endsWith(".xpc"))
                return;
            if (const std::optional<QString> id = BundleInfo::identifier(BundleInfo::dictionary(entry.path)))
                identifiers.insert(id->toLower());
        });
    }
    return identifiers;
}

QList<CleanItem> AppCatalog::orphanedLeftovers() const
{
    if (m_desktop)
        return {};
    const QSet<QString> installed = installedIdentifiers();
    // Sorted, so "some installed identifier begins with the candidate and a dot" is one binary search.
    QStringList sortedInstalled(installed.cbegin(), installed.cend());
    std::sort(sortedInstalled.begin(), sortedInstalled.end());

    const auto isInstalled = [&](const QString& candidate) {
        const QString c = candidate.toLower();
        if (installed.contains(c))
            return true;
        // The data of an installed app's helper or extension: the candidate extends an installed id.
        for (qsizetype dot = c.indexOf(QLatin1Char('.')); dot > 0;
             dot = c.indexOf(QLatin1Char('.'), dot + 1)) {
            if (installed.contains(c.left(dot)))
                return true;
        }
        // The data of a prefix of an installed app's identifier.
        const QString prefix = c + QLatin1Char('.');
        const auto next = std::lower_bound(sortedInstalled.cbegin(), sortedInstalled.cend(), prefix);
        if (next != sortedInstalled.cend() && next->startsWith(prefix))
            return true;
        return m_workspace.applicationLocation(candidate).has_value();
    };

    QList<CleanItem> result;
    const QString library = m_roots.userLibrary();
    for (const OrphanRow& row : kOrphanRows) {
        const QString subFolder = QString::fromUtf8(row.folder);
        const QString folder = library + QLatin1Char('/') + subFolder;
        if (m_privacy.isGated(folder))
            continue;
        const std::optional<QStringList> entries = FolderListing::names(folder);
        if (!entries)
            continue;
        for (const QString& entry : *entries) {
            const std::optional<QString> candidate = candidateFor(entry, row.rule);
            if (!candidate || !plausibleIdentifier(*candidate) || isInstalled(*candidate))
                continue;
            const QString path = folder + QLatin1Char('/') + entry;
            if (!m_safety.isAllowed(path))
                continue;
            CleanItem item = CleanItem::atPath(path, m_roots.home, *candidate);
            item.detail = subFolder;
            // An empty container of a removed app frees nothing: not worth a row.
            if (item.size > 0)
                result << std::move(item);
        }
    }
    sortLargestFirst(result);
    return result;
}

} // namespace nubo
