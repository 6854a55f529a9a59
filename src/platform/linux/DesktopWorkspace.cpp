#include "platform/linux/DesktopWorkspace.h"

#include "core/files/NativePath.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>
#include <QUrl>
#include <climits>
#include <csignal>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo {

namespace {

QString readLink(const QByteArray& link)
{
    char buffer[PATH_MAX];
    const ssize_t length = ::readlink(link.constData(), buffer, sizeof buffer);
    if (length <= 0 || static_cast<size_t>(length) >= sizeof buffer)
        return {};
    QString target = NativePath::decode(QByteArray(buffer, static_cast<qsizetype>(length)));
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

// The parent process id: the field after the command name, whose parentheses may enclose
// spaces and ")" themselves, so the last ")" ends it.
qint64 parentOf(const QString& pidFolder)
{
    QFile stat(pidFolder + QStringLiteral("/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.read(4096);
    const qsizetype close = line.lastIndexOf(')');
    if (close < 0)
        return 0;
    const QList<QByteArray> fields = line.mid(close + 1).simplified().split(' ');
    return fields.size() >= 2 ? fields.at(1).toLongLong() : 0;
}

// Sends `signal` to the application's process, but only to a process of this user that still
// runs from the same bundle: the id may have been reused since the list was read, and an id of
// 0 or below would signal whole process groups.
void signalApplication(const RunningApplication& app, int signal)
{
    if (app.pid <= 1 || app.pid > std::numeric_limits<pid_t>::max())
        return;
    const QString folder = QStringLiteral("/proc/") + QString::number(app.pid);
    struct stat info
    {
    };
    if (::stat(NativePath::encode(folder).constData(), &info) != 0 || info.st_uid != ::getuid())
        return;
    const QString executable = readLink(NativePath::encode(folder + QStringLiteral("/exe")));
    if (executable.isEmpty() || DesktopWorkspace::bundleOfExecutable(executable) != app.bundlePath)
        return;
    ::kill(pid_t(app.pid), signal); // a process that ended meanwhile is nothing to report
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

void DesktopWorkspace::reveal(const QString& path)
{
    // Desktop file managers have no common way to select an item: open the folder that holds it.
    // A folder whose name holds bytes that are not UTF-8 cannot be named by an address, and a
    // look-alike folder must never open in its place.
    const QString folder = QFileInfo(path).path();
    if (!QDir::isAbsolutePath(path) || NativePath::hasEscapedBytes(folder))
        return;
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
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
    struct Process
    {
        qint64 pid;
        qint64 parent;
        QString bundle;
        QString folder;
    };
    QList<Process> processes;
    QHash<qint64, qsizetype> byPid;
    const uid_t me = ::getuid();
    const QStringList pids =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString& entry : pids) {
        bool numeric = false;
        const qint64 pid = entry.toLongLong(&numeric);
        if (!numeric || pid <= 0)
            continue;
        const QString folder = QStringLiteral("/proc/") + entry;
        struct stat info
        {
        };
        if (::stat(NativePath::encode(folder).constData(), &info) != 0 || info.st_uid != me)
            continue;
        const QString executable = readLink(NativePath::encode(folder + QStringLiteral("/exe")));
        if (executable.isEmpty())
            continue; // kernel threads and processes that are already gone
        byPid.insert(pid, processes.size());
        processes.append({pid, parentOf(folder), bundleOfExecutable(executable), folder});
    }

    QList<RunningApplication> result;
    result.reserve(processes.size());
    for (const Process& process : processes) {
        RunningApplication app;
        app.pid = process.pid;
        app.bundlePath = process.bundle;
        if (!app.bundlePath.isEmpty()) {
            // Only the outermost process of a bundle is the application; the copies and helpers
            // it starts from its own bundle are its helpers, and the sampler credits them to it.
            const auto parent = byPid.constFind(process.parent);
            app.regular = parent == byPid.constEnd() || processes.at(*parent).bundle != app.bundlePath;
            const QString file = app.bundlePath.mid(app.bundlePath.lastIndexOf(QLatin1Char('/')) + 1);
            app.name = file.chopped(4);
        } else {
            app.name = processName(process.folder);
        }
        result << app;
    }
    return result;
}

bool DesktopWorkspace::canActivate() const
{
    return false;
}

bool DesktopWorkspace::canHide() const
{
    return false;
}

// Window actions need the desktop's window manager, which offers no common interface.
void DesktopWorkspace::activate(const RunningApplication&) {}
void DesktopWorkspace::hide(const RunningApplication&) {}
void DesktopWorkspace::unhide(const RunningApplication&) {}

void DesktopWorkspace::terminate(const RunningApplication& app)
{
    signalApplication(app, SIGTERM);
}

void DesktopWorkspace::forceTerminate(const RunningApplication& app)
{
    signalApplication(app, SIGKILL);
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
