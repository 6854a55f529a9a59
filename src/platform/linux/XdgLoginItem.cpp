#include "platform/linux/XdgLoginItem.h"

#include "core/files/Home.h"
#include "core/files/NativePath.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringList>

namespace nubo {

namespace {

const QLatin1String kEntry("/.config/autostart/nubo.desktop");

// A desktop entry is small; anything larger is not ours and is not read whole.
constexpr qint64 kMaxEntryBytes = 64 * 1024;

} // namespace

XdgLoginItem::XdgLoginItem(QString home, QString executable, QString installedEntry)
    : m_home(std::move(home)), m_executable(std::move(executable)), m_installedEntry(std::move(installedEntry))
{
}

QString XdgLoginItem::autostartEntry(const QString& installed, const QString& exec)
{
    // The installed entry's name, icon and words, starting this executable; what switches an
    // autostart entry off is left out, and it says that it is on.
    QStringList lines;
    bool inMainGroup = false;
    const auto closeMainGroup = [&] {
        lines << QStringLiteral("Exec=") + exec << QStringLiteral("X-GNOME-Autostart-enabled=true");
    };
    for (const QString& line : installed.split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(QLatin1Char('['))) {
            if (inMainGroup)
                closeMainGroup();
            inMainGroup = trimmed == QLatin1String("[Desktop Entry]");
        } else if (inMainGroup) {
            const QString key = trimmed.section(QLatin1Char('='), 0, 0).trimmed();
            if (key == QLatin1String("Exec") || key == QLatin1String("TryExec") || key == QLatin1String("Hidden") ||
                key == QLatin1String("X-GNOME-Autostart-enabled"))
                continue;
        }
        if (!trimmed.isEmpty())
            lines << trimmed;
    }
    if (inMainGroup)
        closeMainGroup();
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString XdgLoginItem::entryPath() const
{
    return m_home + kEntry;
}

QString XdgLoginItem::execValue(const QString& executable)
{
    if (!executable.startsWith(QLatin1Char('/')) || NativePath::hasEscapedBytes(executable))
        return {};
    for (const QChar c : executable) {
        if (c.category() == QChar::Other_Control || c.isSurrogate())
            return {};
    }
    // Inside double quotes the launcher takes ", `, $ and \ literally only after a backslash;
    // the entry's own string escaping then doubles every backslash again, and "%" introduces
    // field codes unless doubled.
    QString quoted;
    for (const QChar c : executable) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            quoted += QLatin1Char('\\');
        quoted += c;
    }
    quoted = QLatin1Char('"') + quoted + QLatin1Char('"');
    quoted.replace(QLatin1Char('%'), QLatin1String("%%"));
    quoted.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    return quoted;
}

bool XdgLoginItem::isRegistered() const
{
    const QString exec = execValue(m_executable);
    // Qt's file classes cannot reach a path holding bytes that are not UTF-8.
    if (exec.isEmpty() || NativePath::hasEscapedBytes(m_home))
        return false;
    const QFileInfo info(entryPath());
    if (!info.isFile() || info.size() > kMaxEntryBytes)
        return false;
    QFile file(info.filePath());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    bool inMainGroup = false;
    bool startsUs = false;
    for (QString line : lines) {
        line = line.trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inMainGroup = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        if (!inMainGroup)
            continue;
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals <= 0)
            continue;
        const QString key = line.left(equals).trimmed();
        const QString value = line.mid(equals + 1).trimmed();
        if (key == QLatin1String("Hidden") && value == QLatin1String("true"))
            return false;
        if (key == QLatin1String("X-GNOME-Autostart-enabled") && value == QLatin1String("false"))
            return false;
        if (key == QLatin1String("Exec"))
            startsUs = value == exec;
    }
    return startsUs;
}

bool XdgLoginItem::registerApp()
{
    const QString exec = execValue(m_executable);
    if (exec.isEmpty() || NativePath::hasEscapedBytes(m_home))
        return false;
    const QString path = entryPath();
    if (!QDir().mkpath(QFileInfo(path).path()))
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QString entry;
    QFile installed(m_installedEntry);
    if (!m_installedEntry.isEmpty() && installed.size() <= kMaxEntryBytes && installed.open(QIODevice::ReadOnly)) {
        const QString text = QString::fromUtf8(installed.readAll());
        if (text.contains(QLatin1String("[Desktop Entry]")))
            entry = autostartEntry(text, exec);
    }
    if (entry.isEmpty()) {
        // Not installed (started from a build): the least an entry needs.
        entry = QStringLiteral("[Desktop Entry]\n"
                               "Type=Application\n"
                               "Name=Nubo\n"
                               "Exec=") +
                exec +
                QStringLiteral("\n"
                               "X-GNOME-Autostart-enabled=true\n");
    }
    file.write(entry.toUtf8());
    if (!file.commit())
        return false;
    return isRegistered();
}

bool XdgLoginItem::unregisterApp()
{
    if (NativePath::hasEscapedBytes(m_home))
        return !isRegistered();
    const QFileInfo info(entryPath());
    // A folder or anything else that is not an entry file is left alone; it starts nothing.
    if (info.isFile() || info.isSymLink())
        QFile::remove(info.filePath());
    return !isRegistered();
}

std::unique_ptr<LoginItem> makeLoginItem()
{
    return std::make_unique<XdgLoginItem>(
        Home::url(), QCoreApplication::applicationFilePath(),
        QStandardPaths::locate(QStandardPaths::ApplicationsLocation, QStringLiteral(NUBO_BUNDLE_IDENTIFIER ".desktop")));
}

} // namespace nubo
