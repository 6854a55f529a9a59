#include "core/files/UserDirectories.h"

#include "core/files/NativePath.h"

#include <QFile>
#include <QList>

#include <utility>

namespace nubo::UserDirectories {

namespace {

// Each configured folder by its key ("DOWNLOAD" for XDG_DOWNLOAD_DIR), in the file's order.
QList<std::pair<QString, QString>> read(const QString& home)
{
    QFile file(home + QStringLiteral("/.config/user-dirs.dirs"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<std::pair<QString, QString>> folders;
    // Lines read XDG_DOWNLOAD_DIR="$HOME/Descargas"; the file is written by xdg-user-dirs-update
    // and holds nothing else but comments.
    while (!file.atEnd()) {
        const QString line = NativePath::decode(file.readLine().trimmed());
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('#')) || equals < 0 || !line.startsWith(QLatin1String("XDG_")) ||
            !line.left(equals).endsWith(QLatin1String("_DIR")))
            continue;
        QString value = line.mid(equals + 1);
        if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
            value = value.mid(1, value.size() - 2);
        if (value.startsWith(QLatin1String("$HOME/")))
            value = home + value.mid(5);
        if (value.startsWith(QLatin1Char('/')) && value != home && !value.contains(QLatin1Char('$')))
            folders.append({line.mid(4, equals - 8), value});
    }
    return folders;
}

} // namespace

QStringList configured(const QString& home)
{
    QStringList folders;
    for (const auto& [key, folder] : read(home))
        folders << folder;
    return folders;
}

QString downloads(const QString& home)
{
    for (const auto& [key, folder] : read(home)) {
        if (key == QLatin1String("DOWNLOAD"))
            return folder;
    }
    return home + QStringLiteral("/Downloads");
}

} // namespace nubo::UserDirectories
