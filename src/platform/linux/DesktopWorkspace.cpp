#include "platform/linux/DesktopWorkspace.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>

#include <sys/stat.h>
#include <unistd.h>

#include <climits>

namespace nubo {

namespace {

QString readLink(const QByteArray& link)
{
    char buffer[PATH_MAX];
    const ssize_t length = ::readlink(link.constData(), buffer, sizeof buffer);
    if (length <= 0 || static_cast<size_t>(length) >= sizeof buffer)
        return {};
    QString target = QFile::decodeName(QByteArray(buffer, static_cast<qsizetype>(length)));
    // The kernel marks an executable that was replaced or removed since the process started.
    const QLatin1String deleted(" (deleted)");
    if (target.endsWith(deleted))
        target.chop(deleted.size());
    return target;
}

QString processName(const QString& pidFolder)
{
    QFile comm(pidFolder + QStringLiteral("/comm"));
    if (!comm.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(comm.readAll()).trimmed();
}

} // namespace

void DesktopWorkspace::openUrl(const QString& url)
{
    const QUrl address(url);
    // macOS settings pages mean nothing here; handing them to xdg-open would only show an error.
    if (address.scheme().startsWith(QLatin1String("x-apple")))
        return;
    QDesktopServices::openUrl(address);
}

QString DesktopWorkspace::bundleOfExecutable(const QString& executable)
{
    const QLatin1String marker(".app/Contents/MacOS/");
    const qsizetype at = executable.lastIndexOf(marker);
    if (at <= 0 || executable.at(at - 1) == QLatin1Char('/'))
        return {};
    // The executable itself sits directly in MacOS; a deeper path belongs to something else.
    if (executable.indexOf(QLatin1Char('/'), at + marker.size()) >= 0)
        return {};
    return executable.left(at + 4);
}

QList<RunningApplication> DesktopWorkspace::runningApplications() const
{
    QList<RunningApplication> result;
    const uid_t me = ::getuid();
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString& entry : pids) {
        bool numeric = false;
        const qint64 pid = entry.toLongLong(&numeric);
        if (!numeric)
            continue;
        const QString folder = QStringLiteral("/proc/") + entry;
        struct stat info {};
        if (::stat(QFile::encodeName(folder).constData(), &info) != 0 || info.st_uid != me)
            continue;
        const QString executable = readLink(QFile::encodeName(folder + QStringLiteral("/exe")));
        if (executable.isEmpty())
            continue; // kernel threads and processes that are already gone
        RunningApplication app;
        app.pid = pid;
        app.bundlePath = bundleOfExecutable(executable);
        app.regular = !app.bundlePath.isEmpty();
        if (app.regular) {
            const QString file = app.bundlePath.mid(app.bundlePath.lastIndexOf(QLatin1Char('/')) + 1);
            app.name = file.chopped(4);
        } else {
            app.name = processName(folder);
        }
        result << app;
    }
    return result;
}

std::optional<QString> DesktopWorkspace::applicationLocation(const QString& bundleIdentifier) const
{
    // A desktop-file id is a file name: anything that could step out of the folder is no id.
    if (bundleIdentifier.isEmpty() || bundleIdentifier.contains(QLatin1Char('/')) ||
        bundleIdentifier.startsWith(QLatin1Char('.')))
        return std::nullopt;
    const QString found = QStandardPaths::locate(QStandardPaths::ApplicationsLocation,
                                                 bundleIdentifier + QStringLiteral(".desktop"));
    if (found.isEmpty())
        return std::nullopt;
    return found;
}

std::unique_ptr<Workspace> makeWorkspace()
{
    return std::make_unique<DesktopWorkspace>();
}

} // namespace nubo
