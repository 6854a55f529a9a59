#include "platform/linux/ThemeAppIcons.h"

#include "core/apps/DesktopEntry.h"
#include "core/apps/DesktopPlaces.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QSettings>

#include <algorithm>

namespace nubo {

namespace {

const QStringList kExtensions{QStringLiteral(".png"), QStringLiteral(".svg"), QStringLiteral(".xpm")};
// The sizes themes ship, smallest first.
constexpr int kSizes[] = {16, 22, 24, 32, 48, 64, 96, 128, 256, 512};

QString genericName()
{
    return QStringLiteral("application-x-executable");
}

// A picture file drawn to fit a square of `pixels`, its proportions kept.
QImage load(const QString& file, int pixels)
{
    QImageReader reader(file);
    const QSize natural = reader.size();
    if (natural.isValid() && !natural.isEmpty())
        reader.setScaledSize(natural.scaled(pixels, pixels, Qt::KeepAspectRatio));
    else
        reader.setScaledSize(QSize(pixels, pixels));
    return reader.read();
}

// The folders a theme keeps icons in at one size, in both layouts themes use: applications'
// own first, then the file types', where the generic program icon lives.
QStringList sizeFolders(const QString& side)
{
    QStringList folders;
    for (const char* context : {"apps", "mimetypes"}) {
        const QString name = QString::fromLatin1(context);
        folders << side + QLatin1Char('/') + name << name + QLatin1Char('/') + side;
    }
    return folders;
}

// What `theme` inherits, read off its index in the first folder that has it.
QStringList inherited(const QStringList& iconFolders, const QString& theme)
{
    for (const QString& folder : iconFolders) {
        const QString index = folder + QLatin1Char('/') + theme + QStringLiteral("/index.theme");
        if (!QFileInfo::exists(index))
            continue;
        const QSettings settings(index, QSettings::IniFormat);
        return settings.value(QStringLiteral("Icon Theme/Inherits")).toStringList();
    }
    return {};
}

} // namespace

ThemeAppIcons::ThemeAppIcons(QStringList iconFolders, QStringList pixmapFolders, const QString& theme)
    : m_iconFolders(std::move(iconFolders)), m_pixmapFolders(std::move(pixmapFolders))
{
    // The user's theme and what it inherits, then the two themes desktops most often ship (where
    // the generic program icon is), then the fallback theme every theme ends in.
    QStringList queue{theme};
    while (!queue.isEmpty() && m_themes.size() < 6) {
        const QString next = queue.takeFirst().trimmed();
        if (next.isEmpty() || m_themes.contains(next))
            continue;
        m_themes << next;
        queue << inherited(m_iconFolders, next);
    }
    m_themes.removeAll(QStringLiteral("hicolor"));
    for (const QString& common : {QStringLiteral("Adwaita"), QStringLiteral("breeze"), QStringLiteral("hicolor")}) {
        if (!m_themes.contains(common))
            m_themes << common;
    }
}

QString ThemeAppIcons::lookUp(const QString& name, int pixels) const
{
    // A name is a plain file name: nothing that climbs out of the theme's folders.
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.startsWith(QLatin1Char('.')))
        return {};
    QList<int> sizes;
    for (const int size : kSizes) {
        if (size >= pixels)
            sizes << size;
    }
    for (auto size = std::rbegin(kSizes); size != std::rend(kSizes); ++size) {
        if (*size < pixels)
            sizes << *size;
    }
    QStringList subfolders;
    for (const int size : std::as_const(sizes))
        subfolders << sizeFolders(QString::number(size) + QLatin1Char('x') + QString::number(size))
                   << sizeFolders(QString::number(size));
    subfolders << sizeFolders(QStringLiteral("scalable"));
    for (const QString& theme : m_themes) {
        for (const QString& folder : m_iconFolders) {
            const QString base = folder + QLatin1Char('/') + theme + QLatin1Char('/');
            if (!QFileInfo(base).isDir())
                continue;
            for (const QString& sub : std::as_const(subfolders)) {
                for (const QString& extension : kExtensions) {
                    const QString file = base + sub + QLatin1Char('/') + name + extension;
                    if (QFileInfo(file).isFile())
                        return file;
                }
            }
        }
    }
    for (const QString& folder : m_pixmapFolders) {
        for (const QString& extension : kExtensions) {
            const QString file = folder + QLatin1Char('/') + name + extension;
            if (QFileInfo(file).isFile())
                return file;
        }
    }
    return {};
}

QImage ThemeAppIcons::icon(const QString& path, int pixels) const
{
    if (pixels <= 0)
        return {};
    QString name;
    if (path.endsWith(QLatin1String(".desktop"))) {
        if (const std::optional<DesktopEntry> entry = DesktopEntry::read(path))
            name = entry->value(QStringLiteral("Icon"));
    }
    if (name.startsWith(QLatin1Char('/'))) {
        const QImage image = load(name, pixels);
        if (!image.isNull())
            return image;
        name.clear();
    }
    // An entry may name its icon with the file's extension, which the theme's name omits.
    for (const QString& extension : kExtensions) {
        if (name.endsWith(extension))
            name.chop(extension.size());
    }
    QString file = lookUp(name, pixels);
    if (file.isEmpty())
        file = lookUp(genericName(), pixels);
    return file.isEmpty() ? QImage() : load(file, pixels);
}

std::unique_ptr<AppIcons> makeAppIcons()
{
    const QString home = QDir::homePath();
    const DesktopPlaces places =
        DesktopPlaces::forHome(home, [](const char* name) { return qEnvironmentVariable(name); });
    QStringList iconFolders{home + QStringLiteral("/.icons")};
    QStringList pixmapFolders;
    for (const QString& folder : places.dataFolders) {
        iconFolders << folder + QStringLiteral("/icons");
        pixmapFolders << folder + QStringLiteral("/pixmaps");
    }
    QString theme = QIcon::themeName();
    if (theme.isEmpty())
        theme = QStringLiteral("hicolor");
    return std::make_unique<ThemeAppIcons>(iconFolders, pixmapFolders, theme);
}

} // namespace nubo
