#include "core/files/FolderListing.h"

#include <QFile>

#include <dirent.h>

#include <cstring>

namespace nubo::FolderListing {

bool roundTrips(const QByteArray& native)
{
#ifdef Q_OS_DARWIN
    // Qt normalises names on the way in and out here (composed in QString, decomposed on disk);
    // the Mac's file systems ignore the difference, so only bytes that are not UTF-8 are lost.
    return QString::fromUtf8(native).toUtf8() == native;
#else
    return QFile::encodeName(QFile::decodeName(native)) == native;
#endif
}

std::optional<QStringList> names(const QString& folder)
{
    const QByteArray native = QFile::encodeName(folder);
    DIR* directory = ::opendir(native.constData());
    if (!directory)
        return std::nullopt;
    QStringList result;
    while (const dirent* entry = ::readdir(directory)) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        const QByteArray bytes(name);
        if (!roundTrips(bytes))
            continue;
        result << QFile::decodeName(bytes);
    }
    ::closedir(directory);
    return result;
}

} // namespace nubo::FolderListing
