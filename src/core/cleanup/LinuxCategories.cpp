#include "core/cleanup/LinuxCategories.h"

#include "core/apps/DesktopPlaces.h"
#include "core/cleanup/FolderRule.h"
#include "core/files/Location.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

namespace nubo::LinuxCategories {

namespace {

QString lastComponent(const QString& path)
{
    return path.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
}

// A rotated or current log file: "app.log", "app.log.1", "app.log.2.gz".
bool isLogName(const QString& name)
{
    return name.endsWith(QLatin1String(".log")) || name.contains(QLatin1String(".log."));
}

} // namespace

QList<CleanItem> logs(const CleanContext& context)
{
    const FolderRule rule(context);
    QList<CleanItem> items = rule.children(context.places.logs, {}, 7, false, 3);
    items.removeIf([](const CleanItem& item) { return !isLogName(lastComponent(item.id)); });
    const QString previousSession = context.home(QStringLiteral(".xsession-errors.old"));
    if (Location::exists(previousSession) && !context.privacy.isGated(previousSession) &&
        context.safety.isAllowed(previousSession)) {
        if (const qint64 size = Location::allocatedSize(previousSession); size > 0)
            items << CleanItem::atPath(previousSession, context.roots.home, context.nameOf(previousSession), size);
    }
    if (!context.places.crashReports.isEmpty())
        items << rule.children(context.places.crashReports, {}, std::nullopt, true);
    sortBySize(items);
    return items;
}

QList<CleanItem> trash(const CleanContext& context)
{
    const QString info = context.places.trash + QStringLiteral("/info/");
    QList<CleanItem> items = FolderRule(context).children(context.places.trash + QStringLiteral("/files"));
    for (CleanItem& item : items) {
        const QString entry = info + lastComponent(item.id) + QStringLiteral(".trashinfo");
        if (Location::exists(entry))
            item.companions << entry;
    }
    return items;
}

QList<CleanItem> orphans(const CleanContext& context)
{
    const FolderRule rule(context);
    const QStringList installations = DesktopPlaces::flatpakInstallationsOf(context.roots.home);
    QList<CleanItem> items = rule.children(context.home(QStringLiteral(".var/app")));
    items.removeIf([&installations](const CleanItem& item) {
        const QString id = lastComponent(item.id);
        for (const QString& installation : installations) {
            if (Location::exists(installation + QStringLiteral("/app/") + id))
                return true;
        }
        return false;
    });
    QList<CleanItem> snaps = rule.children(context.home(QStringLiteral("snap")));
    snaps.removeIf(
        [](const CleanItem& item) { return Location::exists(QStringLiteral("/snap/") + lastComponent(item.id)); });
    items << snaps;
    sortBySize(items);
    return items;
}

} // namespace nubo::LinuxCategories
