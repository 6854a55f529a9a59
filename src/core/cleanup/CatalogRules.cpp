#include "core/cleanup/CatalogRules.h"

#include "core/cleanup/CommandCleaners.h"
#include "core/cleanup/DeveloperCleaners.h"
#include "core/cleanup/FolderCategories.h"
#include "core/cleanup/LargeOldFiles.h"
#include "core/cleanup/LinuxCategories.h"

#include <QHash>

namespace nubo::CatalogRules {

namespace {

using Rule = QList<CleanItem> (*)(const CleanContext&);

QList<CleanItem> simulators(const CleanContext& context)
{
    QList<CleanItem> items = FolderCategories::simulatorCaches(context);
    items << CommandCleaners::unavailableSimulators(context);
    return items;
}

QList<CleanItem> largeOld(const CleanContext& context)
{
    return LargeOldFiles::find(context);
}

QList<CleanItem> orphans(const CleanContext& context)
{
    return context.orphans ? context.orphans() : QList<CleanItem>();
}

const QHash<QString, Rule>& macTable()
{
    static const QHash<QString, Rule> rules = {
        {QStringLiteral("caches"), &FolderCategories::caches},
        {QStringLiteral("logs"), &FolderCategories::logs},
        {QStringLiteral("temp"), &FolderCategories::temp},
        {QStringLiteral("trash"), &FolderCategories::trash},
        {QStringLiteral("mail"), &FolderCategories::mail},
        {QStringLiteral("deriveddata"), &FolderCategories::derivedData},
        {QStringLiteral("devicesupport"), &FolderCategories::deviceSupport},
        {QStringLiteral("simulators"), &simulators},
        {QStringLiteral("runtimes"), &CommandCleaners::simulatorRuntimes},
        {QStringLiteral("packages"), &DeveloperCleaners::packageCaches},
        {QStringLiteral("archives"), &FolderCategories::archives},
        {QStringLiteral("node_modules"), &DeveloperCleaners::staleNodeModules},
        {QStringLiteral("docker"), &CommandCleaners::dockerItems},
        {QStringLiteral("installers"), &FolderCategories::installers},
        {QStringLiteral("olddownloads"), &FolderCategories::oldDownloads},
        {QStringLiteral("largeold"), &largeOld},
        {QStringLiteral("backups"), &FolderCategories::backups},
        {QStringLiteral("orphans"), &orphans},
    };
    return rules;
}

// Linux's rows are the Mac's rules where their shapes agree, reading Linux's places; the rows
// Linux does not show (Mail, Xcode, device backups) have no rule there.
const QHash<QString, Rule>& linuxTable()
{
    static const QHash<QString, Rule> rules = [] {
        QHash<QString, Rule> table;
        for (const CleanCategory& row : CleanCatalog::rows(HostSystem::Linux))
            table.insert(row.id, macTable().value(row.id));
        table.insert(QStringLiteral("logs"), &LinuxCategories::logs);
        table.insert(QStringLiteral("trash"), &LinuxCategories::trash);
        table.insert(QStringLiteral("orphans"), &LinuxCategories::orphans);
        return table;
    }();
    return rules;
}

} // namespace

CleanCatalog::Rules make(std::shared_ptr<const CleanContext> context)
{
    return [context = std::move(context)](const QString& categoryId) -> CleanCategory::Scan {
        if (!context)
            return {};
        const Rule rule =
            (context->places.system == HostSystem::Mac ? macTable() : linuxTable()).value(categoryId, nullptr);
        if (!rule)
            return {};
        return [context, rule] { return rule(*context); };
    };
}

} // namespace nubo::CatalogRules
