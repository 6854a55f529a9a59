#include "core/shell/Shell.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

#include <algorithm>
#include <limits>

#include <csignal>

#include <sys/types.h>
#include <unistd.h>

namespace nubo::Shell {

namespace {

// Once the deadline has passed: a polite request, one second, then no more asking, one second.
constexpr int kGraceMilliseconds = 1000;
// How soon a run notices that it was asked to stop.
constexpr int kStopSliceMilliseconds = 50;

int waitSlice(const QDeadlineTimer& deadline)
{
    // QProcess reads -1 as "for ever": never hand it that, nor a slice too large for an int.
    return int(std::clamp<qint64>(deadline.remainingTime(), 1, 60 * 60 * 1000));
}

} // namespace

QStringList whichFolders()
{
    return {QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin"), QStringLiteral("/usr/bin")};
}

ShellResult run(const QString& executable, const QStringList& arguments, std::chrono::milliseconds timeout,
                StopToken stop)
{
    // QProcess would look a bare name up in our own search path; a tool is always named by its
    // full path so that what runs is exactly what the caller meant.
    if (!QDir::isAbsolutePath(executable) || executable.contains(QChar(0)))
        return {};

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), QString::fromLatin1(kToolSearchPath));

    QProcess process;
    process.setProgram(executable);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    // The tool leads a process group of its own, so that at the deadline whatever it started
    // (a script's children) stops with it instead of living on and holding the pipe.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });

    const QDeadlineTimer deadline(std::max(timeout, std::chrono::milliseconds(0)));
    process.start();
    if (!process.waitForStarted(waitSlice(deadline)))
        return {};

    // waitForFinished keeps reading standard output into the process's buffer while it waits,
    // so the tool never blocks on a full pipe however much it writes.
    // Whoever may stop the run is answered within a slice.
    const int slice = stop.stopPossible() ? kStopSliceMilliseconds : std::numeric_limits<int>::max();
    while (process.state() != QProcess::NotRunning && !deadline.hasExpired() && !stop.stopRequested())
        process.waitForFinished(std::min(waitSlice(deadline), slice));

    if (process.state() != QProcess::NotRunning) {
        // Asked to stop, the tool gets one slice to end by itself; at the deadline, a second.
        const int grace = stop.stopRequested() ? kStopSliceMilliseconds : kGraceMilliseconds;
        const pid_t tool = pid_t(process.processId());
        // Never 0 or below: kill(0) would signal our own process group, the app itself. When the
        // tool could not get its own group, it alone is signalled.
        const auto signalTool = [tool](int signal) {
            if (tool > 0 && ::kill(-tool, signal) != 0)
                ::kill(tool, signal);
        };
        signalTool(SIGTERM);
        if (!process.waitForFinished(grace)) {
            signalTool(SIGKILL);
            process.waitForFinished(kGraceMilliseconds);
        }
        // The tool may be gone while something it started still ignores the request.
        if (tool > 0)
            ::kill(-tool, SIGKILL);
        process.closeReadChannel(QProcess::StandardOutput);
        return {};
    }

    const QByteArray bytes = process.readAllStandardOutput();
    int status = process.exitCode();
    // A tool ended by a signal reports the signal's number, as the system's process API does; a
    // crash is never mistaken for success.
    if (process.exitStatus() == QProcess::CrashExit && status == 0)
        status = -1;
    return {status, QString::fromUtf8(bytes)};
}

std::optional<QString> which(const QString& name, const QStringList& folders)
{
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QChar(0)) ||
        name == QLatin1String(".") || name == QLatin1String(".."))
        return std::nullopt;
    for (const QString& folder : folders) {
        const QString candidate = folder + QLatin1Char('/') + name;
        // Package managers install their tools as links, so the link is followed here.
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return candidate;
    }
    return std::nullopt;
}

std::optional<QString> which(const QString& name)
{
    return which(name, whichFolders());
}

} // namespace nubo::Shell
