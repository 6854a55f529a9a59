#include "core/cleanup/LargeOldFiles.h"

#include "core/cleanup/FolderRule.h"
#include "core/files/FolderListing.h"
#include "core/files/Location.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

#include <QFile>
#include <QLocale>

#include <algorithm>
#include <cstring>

#include <fts.h>
#include <sys/stat.h>

namespace nubo::LargeOldFiles {

namespace {

constexpr const char* kOpaqueExtensions[] = {
    "app", "photoslibrary", "musiclibrary", "fcpbundle", "logicx", "xcarchive", "imovielibrary", "sparsebundle",
    "bundle", "framework",
};

bool isOpaque(const char* name)
{
    const char* dot = std::strrchr(name, '.');
    if (!dot || dot == name)
        return false;
    const QByteArray extension = QByteArray(dot + 1).toLower();
    return std::any_of(std::begin(kOpaqueExtensions), std::end(kOpaqueExtensions),
                       [&extension](const char* candidate) { return extension == candidate; });
}

qint64 seconds(const timespec& stamp)
{
    return static_cast<qint64>(stamp.tv_sec);
}

qint64 lastUse(const struct stat& info)
{
#ifdef __APPLE__
    return std::max(seconds(info.st_atimespec), seconds(info.st_mtimespec));
#else
    return std::max(seconds(info.st_atim), seconds(info.st_mtim));
#endif
}

QString monthAndYear(qint64 secondsSinceEpoch)
{
    static const QLocale spanish(QLocale::Spanish, QLocale::Spain);
    return spanish.toString(QDateTime::fromSecsSinceEpoch(secondsSinceEpoch).date(), QStringLiteral("MMM yyyy"));
}

} // namespace

QList<CleanItem> find(const CleanContext& context, qint64 minSize, int days)
{
    const qint64 cutoff = context.currentTime().toSecsSinceEpoch() - qint64(days) * 86400;
    const QString& home = context.roots.home;
    const QByteArray root = QFile::encodeName(home);
    const QByteArray neverOpened[] = {root + "/Library", root + "/.Trash", root + "/Applications"};

    char* roots[] = {const_cast<char*>(root.constData()), nullptr};
    FTS* walk = ::fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR | FTS_XDEV, nullptr);
    if (!walk)
        return {};

    QList<CleanItem> items;
    while (FTSENT* entry = ::fts_read(walk)) {
        if (entry->fts_info == FTS_D && entry->fts_level > 0) {
            const char* name = entry->fts_name;
            const QByteArray path(entry->fts_path, qsizetype(entry->fts_pathlen));
            const bool skip = name[0] == '.' || std::strcmp(name, "node_modules") == 0 || isOpaque(name) ||
                              std::find(std::begin(neverOpened), std::end(neverOpened), path) !=
                                  std::end(neverOpened) ||
                              (FolderListing::roundTrips(path) && context.privacy.isGated(QFile::decodeName(path)));
            if (skip)
                ::fts_set(walk, entry, FTS_SKIP);
            continue;
        }
        if (entry->fts_info != FTS_F)
            continue;
        // The decision rests on the walk's own status record: files below the limit cost nothing more.
        const struct stat& info = *entry->fts_statp;
        const qint64 allocated = static_cast<qint64>(info.st_blocks) * 512;
        if (allocated < minSize || lastUse(info) >= cutoff)
            continue;
        const QByteArray native(entry->fts_path, qsizetype(entry->fts_pathlen));
        // A name that is not UTF-8 cannot be offered by its true name; it stays where it is.
        if (!FolderListing::roundTrips(native))
            continue;
        const QString path = QFile::decodeName(native);
        if (!context.safety.isAllowed(path))
            continue;
        const QString folder = path.left(path.lastIndexOf(QLatin1Char('/')));
        items << CleanItem(path, QFile::decodeName(QByteArray(entry->fts_name)),
                           Location::tildePath(folder, home) + QStringLiteral(" · último uso ") +
                               monthAndYear(lastUse(info)),
                           allocated, CleanItem::Remove{path});
    }
    ::fts_close(walk);
    sortBySize(items);
    return items;
}

} // namespace nubo::LargeOldFiles
