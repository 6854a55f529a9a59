#include "core/files/Location.h"

#include "core/files/NativePath.h"
#include "core/files/Home.h"
#include "core/format/CheckedMath.h"

#include <QDateTime>
#include <QFile>
#include <QTimeZone>

#include <fts.h>
#include <sys/stat.h>

namespace nubo::Location {

namespace {

qint64 blocksOf(const struct stat& info)
{
    return static_cast<qint64>(info.st_blocks) * 512;
}

} // namespace

QString tildePath(const QString& path, const QString& home)
{
    if (!path.startsWith(home))
        return path;
    return QLatin1Char('~') + path.mid(home.size());
}

QString tildePath(const QString& path)
{
    return tildePath(path, Home::url());
}

qint64 allocatedSize(const QString& path, const StopToken& stop)
{
    const QByteArray native = NativePath::encode(path);
    struct stat info {};
    if (lstat(native.constData(), &info) != 0)
        return 0;
    if (!S_ISDIR(info.st_mode))
        return blocksOf(info);

    char* roots[] = {const_cast<char*>(native.constData()), nullptr};
    FTS* walk = fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR, nullptr);
    if (!walk)
        return 0;
    qint64 total = 0;
    while (const FTSENT* entry = fts_read(walk)) {
        if (stop.stopRequested())
            break;
        switch (entry->fts_info) {
        case FTS_F:
        case FTS_SL:
        case FTS_SLNONE:
        case FTS_DEFAULT:
            addChecked(total, blocksOf(*entry->fts_statp));
            break;
        default: // folders, and entries that could not be read, count nothing
            break;
        }
    }
    fts_close(walk);
    return total;
}

namespace {

enum class Stamp { Modified, Accessed };

std::optional<QDateTime> dateOf(const QString& path, Stamp which)
{
    struct stat info {};
    if (lstat(NativePath::encode(path).constData(), &info) != 0)
        return std::nullopt;
#ifdef __APPLE__
    const timespec& stamp = which == Stamp::Modified ? info.st_mtimespec : info.st_atimespec;
#else
    const timespec& stamp = which == Stamp::Modified ? info.st_mtim : info.st_atim;
#endif
    const qint64 ms = static_cast<qint64>(stamp.tv_sec) * 1000 + stamp.tv_nsec / 1'000'000;
    // In UTC: a date read off the disk in background work never asks the C library for the local
    // zone while the interface thread may be asking it too; views convert it for display.
    return QDateTime::fromMSecsSinceEpoch(ms, QTimeZone::utc());
}

} // namespace

std::optional<QDateTime> modificationDate(const QString& path)
{
    return dateOf(path, Stamp::Modified);
}

std::optional<QDateTime> accessDate(const QString& path)
{
    return dateOf(path, Stamp::Accessed);
}

bool exists(const QString& path)
{
    struct stat info {};
    return ::lstat(NativePath::encode(path).constData(), &info) == 0;
}

} // namespace nubo::Location
