#include "core/shell/Shell.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace nubo::Shell {

namespace {

// Once the deadline has passed: a polite request, one second, then no more asking, one second.
constexpr int kGraceMilliseconds = 1000;
// How soon a run notices that it was asked to stop.
constexpr int kStopSliceMilliseconds = 50;

// How long one look at a running tool waits when no one can stop it.
constexpr int kWaitSliceMilliseconds = 200;

int waitSlice(const QDeadlineTimer& deadline)
{
    // Never "for ever" (-1), nor a slice too large for an int.
    return int(std::clamp<qint64>(deadline.remainingTime(), 1, 60 * 60 * 1000));
}

// A file descriptor closed when it goes.
struct Descriptor
{
    explicit Descriptor(int descriptor) : fd(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] bool valid() const { return fd >= 0; }
    void close()
    {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
    int fd;
};

// Waits up to `milliseconds` for output and appends what came; false once the pipe has closed.
bool readSome(int descriptor, QByteArray& bytes, int milliseconds)
{
    pollfd wanted{descriptor, POLLIN, 0};
    const int ready = ::poll(&wanted, 1, milliseconds);
    if (ready <= 0)
        return true;
    char buffer[65536];
    const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
    if (got > 0) {
        bytes.append(buffer, got);
        return true;
    }
    return got < 0 && (errno == EINTR || errno == EAGAIN);
}

// Never destroyed: a run on a thread that outlives the program's end may still use it.
std::mutex& forkMutex()
{
    static std::mutex* const mutex = new std::mutex;
    return *mutex;
}

// A pipe whose ends close at an exec (the Mac has no pipe2). Only the tool's standard output is
// handed on, by dup2, which leaves the copy open.
bool closingPipe(int ends[2])
{
    if (::pipe(ends) != 0)
        return false;
    for (int i = 0; i < 2; ++i)
        ::fcntl(ends[i], F_SETFD, FD_CLOEXEC);
    return true;
}

// Whether output waits to be read, or the pipe has closed.
bool hasOutput(int descriptor)
{
    pollfd wanted{descriptor, POLLIN, 0};
    return ::poll(&wanted, 1, 0) > 0;
}

// The tool's status once it has ended: its exit code, or the number of the signal that ended
// it, so a crash is never mistaken for success. Nothing while it runs.
std::optional<int> exitStatus(pid_t tool)
{
    int status = 0;
    pid_t done = 0;
    do {
        done = ::waitpid(tool, &status, WNOHANG);
    } while (done < 0 && errno == EINTR);
    if (done == 0)
        return std::nullopt;
    if (done < 0)
        return -1;
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
}

// True when the tool ended within `milliseconds`.
bool waitFor(pid_t tool, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    while (true) {
        if (exitStatus(tool))
            return true;
        if (deadline.hasExpired())
            return false;
        ::usleep(10'000);
    }
}

// Collects a tool that never started.
void reap(pid_t tool)
{
    int status = 0;
    while (::waitpid(tool, &status, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

QStringList whichFolders()
{
    return {QStringLiteral("/opt/homebrew/bin"), QStringLiteral("/usr/local/bin"), QStringLiteral("/usr/bin")};
}

ShellResult run(const QString& executable, const QStringList& arguments, std::chrono::milliseconds timeout,
                StopToken stop)
{
    // A bare name would be looked up in some search path: a tool is always named by its full
    // path, so that what runs is exactly what the caller meant.
    if (!QDir::isAbsolutePath(executable) || executable.contains(QChar(0)))
        return {};
    for (const QString& argument : arguments) {
        if (argument.contains(QChar(0)))
            return {};
    }

    // Everything the child needs is made before the fork: in between the fork and the exec, a
    // copy of a program with many threads may only make the simplest system calls.
    std::vector<QByteArray> words{QFile::encodeName(executable)};
    for (const QString& argument : arguments)
        words.push_back(argument.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    std::vector<QByteArray> settings;
    for (char** entry = environ; entry && *entry; ++entry) {
        if (std::strncmp(*entry, "PATH=", 5) != 0)
            settings.emplace_back(*entry);
    }
    settings.push_back(QByteArray("PATH=") + kToolSearchPath);
    std::vector<char*> envp;
    for (QByteArray& setting : settings)
        envp.push_back(setting.data());
    envp.push_back(nullptr);

    // Our pipes get their close-at-exec mark after they are made: no other run may fork in
    // between and hand them to its tool, which would hold them open.
    std::unique_lock forking(forkMutex());
    const Descriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    int output[2] = {-1, -1};
    int failure[2] = {-1, -1};
    if (!nothing.valid() || !closingPipe(output))
        return {};
    Descriptor reader(output[0]);
    Descriptor writer(output[1]);
    if (!closingPipe(failure))
        return {};
    Descriptor failureReader(failure[0]);
    Descriptor failureWriter(failure[1]);

    // A plain fork and exec rather than QProcess: its own way of starting processes hides every
    // hand-off of the thread that runs a tool from ThreadSanitizer.
    const pid_t tool = ::fork();
    if (tool == 0) {
        // The tool leads a process group of its own, so that at the deadline whatever it started
        // (a script's children) stops with it instead of living on and holding the pipe.
        ::setpgid(0, 0);
        ::dup2(nothing.fd, STDIN_FILENO);
        ::dup2(writer.fd, STDOUT_FILENO);
        ::dup2(nothing.fd, STDERR_FILENO);
        ::execve(argv[0], argv.data(), envp.data());
        const int error = errno;
        [[maybe_unused]] const ssize_t written = ::write(failureWriter.fd, &error, sizeof error);
        ::_exit(127);
    }
    forking.unlock();
    writer.close();
    failureWriter.close();
    if (tool < 0)
        return {};
    // The failure pipe closes at the exec; an error number in it means the tool never started.
    int startError = 0;
    ssize_t got = 0;
    do {
        got = ::read(failureReader.fd, &startError, sizeof startError);
    } while (got < 0 && errno == EINTR);
    if (got > 0) {
        reap(tool);
        return {};
    }

    const QDeadlineTimer deadline(std::max(timeout, std::chrono::milliseconds(0)));
    // Whoever may stop the run is answered within a slice.
    const int slice = stop.stopPossible() ? kStopSliceMilliseconds : kWaitSliceMilliseconds;
    QByteArray bytes;
    std::optional<int> ended;
    bool open = true;
    while (!ended && !deadline.hasExpired() && !stop.stopRequested()) {
        if (open)
            open = readSome(reader.fd, bytes, std::min(waitSlice(deadline), slice));
        else
            ::usleep(useconds_t(std::min(waitSlice(deadline), slice)) * 1000);
        ended = exitStatus(tool);
    }
    if (ended) {
        // What the tool wrote before it ended is all there; what its children write later is not
        // waited for.
        while (open && hasOutput(reader.fd))
            open = readSome(reader.fd, bytes, 0);
        return {*ended, QString::fromUtf8(bytes)};
    }

    // Past the deadline, or asked to stop: the tool's whole group is asked to end, then killed.
    // Never 0 or below: kill(0) would signal our own process group, the app itself.
    const auto signalTool = [tool](int signal) {
        if (::kill(-tool, signal) != 0)
            ::kill(tool, signal);
    };
    const int grace = stop.stopRequested() ? kStopSliceMilliseconds : kGraceMilliseconds;
    signalTool(SIGTERM);
    if (!waitFor(tool, grace)) {
        signalTool(SIGKILL);
        (void)waitFor(tool, kGraceMilliseconds);
    }
    // The tool may be gone while something it started still ignores the request.
    ::kill(-tool, SIGKILL);
    return {};
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
