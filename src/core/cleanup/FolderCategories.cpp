#include "core/cleanup/FolderCategories.h"

#include "core/cleanup/FolderRule.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace nubo::FolderCategories {

namespace {

// A folder someone else owns, or that others may write to, is shared with other users.
bool isShared(const QString& folder)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(folder).constData(), &status) != 0)
        return true;
    return status.st_uid != ::getuid() || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

} // namespace

QList<CleanItem> caches(const CleanContext& context)
{
    return FolderRule(context).children(context.places.caches, context.places.packageCacheNames);
}

QList<CleanItem> logs(const CleanContext& context)
{
    return FolderRule(context).children(context.places.logs);
}

QList<CleanItem> temp(const CleanContext& context)
{
    const FolderRule rule(context);
    // The per-user folder of a Mac (or a TMPDIR of the user's own) holds only the user's files;
    // where it is a folder every user writes to, only what is ours is ours to remove.
    const QString own = QFileInfo(context.roots.temporary).canonicalFilePath();
    QList<CleanItem> items = rule.children(context.roots.temporary, {}, 3, isShared(context.roots.temporary));
    for (const QString& shared : context.sharedTemporaries) {
        if (own.isEmpty() || QFileInfo(shared).canonicalFilePath() != own)
            items << rule.children(shared, {}, 3, true);
    }
    return items;
}

QList<CleanItem> trash(const CleanContext& context)
{
    return FolderRule(context).children(context.places.trash);
}

QList<CleanItem> mail(const CleanContext& context)
{
    return FolderRule(context).children(
        context.home(QStringLiteral("Library/Containers/com.apple.mail/Data/Library/Mail Downloads")));
}

QList<CleanItem> derivedData(const CleanContext& context)
{
    return FolderRule(context).children(context.home(QStringLiteral("Library/Developer/Xcode/DerivedData")));
}

QList<CleanItem> deviceSupport(const CleanContext& context)
{
    const FolderRule rule(context);
    QList<CleanItem> items;
    for (const char* platform : {"iOS", "watchOS", "tvOS", "visionOS", "macOS"}) {
        items << rule.children(context.home(QStringLiteral("Library/Developer/Xcode/") + QLatin1String(platform) +
                                            QStringLiteral(" DeviceSupport")));
    }
    return items;
}

QList<CleanItem> simulatorCaches(const CleanContext& context)
{
    return FolderRule(context).children(context.home(QStringLiteral("Library/Developer/CoreSimulator/Caches")));
}

QList<CleanItem> archives(const CleanContext& context)
{
    return FolderRule(context).children(context.home(QStringLiteral("Library/Developer/Xcode/Archives")), {},
                                        std::nullopt, false, 1);
}

QList<CleanItem> installers(const CleanContext& context)
{
    QList<CleanItem> items = FolderRule(context).children(context.places.downloads);
    items.removeIf([&context](const CleanItem& item) {
        const QString path = item.url().value_or(QString());
        const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
        const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
        // A dot that begins the name (".pkg") starts no extension.
        if (dot <= slash + 1)
            return true;
        return !context.places.installerExtensions.contains(path.mid(dot + 1).toLower());
    });
    return items;
}

QList<CleanItem> oldDownloads(const CleanContext& context)
{
    return FolderRule(context).children(context.places.downloads, {}, 90, false);
}

QList<CleanItem> backups(const CleanContext& context)
{
    return FolderRule(context).children(
        context.home(QStringLiteral("Library/Application Support/MobileSync/Backup")));
}

} // namespace nubo::FolderCategories
