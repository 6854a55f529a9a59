#include "core/apps/AppCatalog.h"

#include "core/files/Location.h"
#include "core/files/NativePath.h"
#include "core/apps/BundleInfo.h"
#include "core/apps/BundleWalk.h"
#include "core/files/FolderListing.h"
#include "platform/Metadata.h"

#include <QCollator>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>
#include <sys/stat.h>

namespace nubo {

namespace {

// Only the roots' children and grandchildren are looked at: a bundle in a sub-folder of
// "/Applications" is found, one three folders down is not.
constexpr int kLoadDepth = 2;

// The file name without its extension (after the last dot); a name that is all extension
// (".app") gives an empty text.
QString baseName(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    QString name = clean.mid(clean.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot >= 0)
        name.truncate(dot);
    return name;
}

} // namespace

AppCatalog::AppCatalog(SystemRoots roots, const Safety& safety, const Privacy& privacy,
                       const Workspace& workspace, const Metadata& metadata)
    : m_roots(std::move(roots)), m_safety(safety), m_privacy(privacy), m_workspace(workspace),
      m_metadata(metadata)
{
}

AppCatalog::AppCatalog(SystemRoots roots, const Safety& safety, const Privacy& privacy, const Workspace& workspace,
                       const Metadata& metadata, DesktopPlaces places, const ToolRunner& tools)
    : AppCatalog(std::move(roots), safety, privacy, workspace, metadata)
{
    m_tools = &tools;
    // Names are read in the interface's language, in the user's own variant of it when it is one.
    const QLocale user;
    m_desktop.emplace(std::move(places), m_roots.home, safety, privacy, metadata, tools,
                      user.language() == QLocale::Spanish ? user.name() : QStringLiteral("es"));
}

AppRemoval AppCatalog::removalPlan(const InstalledApp& app) const
{
    return AppRemoval::of(app, m_roots.home, m_desktop ? m_desktop->places().toolFolders : QStringList());
}

AppRemoval AppCatalog::confirmedRemoval(const InstalledApp& app) const
{
    const AppRemoval plan = removalPlan(app);
    return m_tools ? AppRemoval::confirmed(plan, app, *m_tools) : plan;
}

QStringList AppCatalog::searchRoots() const
{
    return {m_roots.applications, m_roots.userApplications()};
}

QList<InstalledApp> AppCatalog::load() const
{
    if (m_desktop)
        return m_desktop->load();
    QList<InstalledApp> apps;
    for (const QString& root : searchRoots()) {
        BundleWalk::walk(NativePath::encode(root), kLoadDepth, false, [&](const BundleWalk::Entry& entry) {
            // The extension test is exact: "Foo.APP" is not listed, and neither is a link to an app.
            if (entry.isSymlink || !entry.name.endsWith(".app") || entry.name.size() <= 4)
                return;
            // A bundle whose name is not UTF-8 cannot be named faithfully as text: listing it would
            // offer to remove a path that does not exist and report it gone while it stays.
            if (!FolderListing::roundTrips(entry.path))
                return;
            if (std::optional<InstalledApp> app = describe(NativePath::decode(entry.path)))
                apps << std::move(*app);
        });
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(apps.begin(), apps.end(), [&collator](const InstalledApp& a, const InstalledApp& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return apps;
}

std::optional<InstalledApp> AppCatalog::describe(const QString& url) const
{
    if (url.isEmpty())
        return std::nullopt;
    const QVariantMap info = BundleInfo::dictionary(url);

    InstalledApp app;
    app.url = url;
    app.payload = url;
    // The name shown is the bundle's file name, as the Finder shows it: a bundle stored as
    // Foo.app reads Foo whatever display name it declares. The declared names only serve a
    // bundle whose file name is nothing but the extension.
    std::optional<QString> provisional = BundleInfo::text(info, QStringLiteral("CFBundleDisplayName"));
    if (!provisional)
        provisional = BundleInfo::text(info, QStringLiteral("CFBundleName"));
    const QString fileName = baseName(url);
    app.name = !fileName.isEmpty() ? fileName : provisional.value_or(fileName);
    app.bundleID = BundleInfo::identifier(info);
    app.version = BundleInfo::text(info, QStringLiteral("CFBundleShortVersionString"));
    app.lastUsed = m_metadata.lastUsedDate(url);
    if (!app.lastUsed)
        app.lastUsed = Location::accessDate(url);
    // The receipt is only tested for existence: it tells where the app came from, nothing more.
    app.isStore = QFileInfo::exists(url + QStringLiteral("/Contents/_MASReceipt/receipt"));
    return app;
}

std::optional<RunningApplication> AppCatalog::runningInstance(const InstalledApp& app) const
{
    const QString wanted = QDir::cleanPath(app.url);
    for (const RunningApplication& running : m_workspace.runningApplications()) {
        if (!running.bundlePath.isEmpty() && QDir::cleanPath(running.bundlePath) == wanted)
            return running;
    }
    return std::nullopt;
}

} // namespace nubo
