#include "core/cleanup/FolderRule.h"

#include "core/files/FolderListing.h"
#include "core/files/Location.h"
#include "core/naming/Naming.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

#include <QFile>

#include <algorithm>

#include <sys/stat.h>
#include <unistd.h>

namespace nubo {

namespace {

QString lastComponent(const QString& folder)
{
    return folder.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
}

QString withoutTrailingSlash(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

// Folders whose entries are named after the application that made them.
bool namesOwners(const QString& folderName)
{
    return folderName == QLatin1String("Caches") || folderName == QLatin1String("Logs") ||
           folderName == QLatin1String("HTTPStorages") || folderName == QLatin1String("WebKit");
}

} // namespace

void sortBySize(QList<CleanItem>& items)
{
    std::stable_sort(items.begin(), items.end(),
                     [](const CleanItem& a, const CleanItem& b) { return a.size > b.size; });
}

QList<CleanItem> FolderRule::children(const QString& folder, const QSet<QString>& excluding,
                                      std::optional<int> olderThanDays, bool ownedByUser, int flattenDepth) const
{
    std::optional<QDateTime> cutoff;
    if (olderThanDays)
        cutoff = m_context.currentTime().addSecs(-qint64(*olderThanDays) * 86400);
    return collect(withoutTrailingSlash(folder), excluding, cutoff, ownedByUser, flattenDepth);
}

QList<CleanItem> FolderRule::collect(const QString& folder, const QSet<QString>& excluding,
                                     const std::optional<QDateTime>& cutoff, bool ownedByUser,
                                     int flattenDepth) const
{
    // A guarded folder is not even listed: reading it would make the system ask the user.
    if (m_context.privacy.isGated(folder))
        return {};
    // Names that are not UTF-8 are left out by the listing: such an entry cannot be named
    // faithfully, so it is never measured, offered or deleted by a wrong name.
    const std::optional<QStringList> names = FolderListing::names(folder);
    if (!names)
        return {};

    const QString folderName = lastComponent(folder);
    QList<CleanItem> items;
    for (const QString& entryName : *names) {
        if (excluding.contains(entryName) || entryName == QLatin1String(".DS_Store") ||
            entryName == QLatin1String(".localized"))
            continue;
        const QString path = folder == QLatin1String("/") ? QLatin1Char('/') + entryName
                                                          : folder + QLatin1Char('/') + entryName;
        if (m_context.ownFolders.contains(path))
            continue;
        const QByteArray native = QFile::encodeName(path);

        struct stat info {};
        const bool statted = ::lstat(native.constData(), &info) == 0;
        // A link to a folder is an entry like a file: flattening never follows it elsewhere.
        if (flattenDepth >= 1 && statted && S_ISDIR(info.st_mode)) {
            items << collect(path, excluding, cutoff, ownedByUser, flattenDepth - 1);
            continue;
        }
        if (cutoff) {
            const std::optional<QDateTime> modified = Location::modificationDate(path);
            if (modified && *modified > *cutoff)
                continue;
        }
        if (ownedByUser && (!statted || info.st_uid != ::getuid()))
            continue;
        if (!m_context.safety.isAllowed(path))
            continue;
        const qint64 size = Location::allocatedSize(path);
        // Empty folders and files free nothing; dropping them before naming spares the lookups.
        if (size < 1)
            continue;
        CleanItem item = CleanItem::atPath(path, m_context.roots.home, m_context.nameOf(path), size);
        name(item, folderName, entryName);
        items << std::move(item);
    }
    sortBySize(items);
    return items;
}

void FolderRule::name(CleanItem& item, const QString& folderName, const QString& entryName) const
{
    if (folderName == QLatin1String("DerivedData")) {
        item.name = Naming::derivedDataName(entryName);
        return;
    }
    if (!namesOwners(folderName))
        return;
    const Naming::Resolved resolved = m_context.naming.resolve(entryName);
    if (!resolved.name.isEmpty())
        item.name = resolved.name;
    if (!resolved.appUrl.isEmpty())
        item.appURL = resolved.appUrl;
}

} // namespace nubo
