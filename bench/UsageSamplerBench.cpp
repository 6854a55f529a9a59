// Prints what one usage sample costs on this machine: the sampler reads the executable path of
// every process and the accounting of every process inside a listed application. To measure at a
// realistic size it starts idle workers inside two temporary bundles until the machine runs the
// requested number of processes (default 500, of which 100 in the first bundle), then times a
// sample with no listed bundle, with the first listed, and with both (every worker read in full).
#include "core/activity/UsageSampler.h"
#include "platform/linux/ProcFsProcessTable.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <vector>

extern char** environ;

using namespace nubo;

namespace {

qsizetype processCount(const ProcessTable& table)
{
    std::vector<qint32> pids(static_cast<size_t>(UsageSampler::kMaxProcesses));
    return table.listPids(pids);
}

struct Timing
{
    double meanMs;
    double minMs;
};

Timing timeSamples(UsageSampler& sampler, const QList<UsageSampler::App>& apps, int rounds)
{
    (void)sampler.sample(apps);
    double total = 0;
    double best = 1e9;
    QElapsedTimer timer;
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        const auto usage = sampler.sample(apps);
        const double ms = double(timer.nsecsElapsed()) / 1e6;
        total += ms;
        best = std::min(best, ms);
        if (usage.size() > apps.size())
            std::printf("impossible\n");
    }
    return {total / rounds, best};
}

// Starts `count` idle copies of /bin/sleep from inside `bundle`/Contents/MacOS.
std::vector<pid_t> spawnWorkers(const QString& bundle, qsizetype count)
{
    QDir().mkpath(bundle + QStringLiteral("/Contents/MacOS"));
    const QString worker = bundle + QStringLiteral("/Contents/MacOS/worker");
    QFile::copy(QStringLiteral("/bin/sleep"), worker);
    QFile::setPermissions(worker, QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray program = QFile::encodeName(worker);
    std::vector<pid_t> workers;
    for (qsizetype i = 0; i < count; ++i) {
        char* args[] = {const_cast<char*>(program.constData()), const_cast<char*>("600"), nullptr};
        pid_t pid = 0;
        if (posix_spawn(&pid, program.constData(), nullptr, nullptr, args, environ) != 0)
            break;
        workers.push_back(pid);
    }
    return workers;
}

} // namespace

int main(int argc, char** argv)
{
    // argv[1]: processes on the machine while measuring; argv[2]: how many of them belong to an app.
    const qsizetype target = argc > 1 ? std::max(1, std::atoi(argv[1])) : 500;
    const qsizetype inApps = argc > 2 ? std::max(1, std::atoi(argv[2])) : 100;
    ProcFsProcessTable table;

    QTemporaryDir dir;
    const QString busyApp = dir.filePath(QStringLiteral("Bench.app"));
    const QString restApp = dir.filePath(QStringLiteral("Rest.app"));
    std::vector<pid_t> workers = spawnWorkers(busyApp, inApps);
    const qsizetype missing = std::max<qsizetype>(0, target - processCount(table));
    const std::vector<pid_t> rest = spawnWorkers(restApp, missing);

    const qsizetype seen = processCount(table);
    QList<UsageSampler::App> none;
    for (int i = 0; i < 12; ++i)
        none.append({100'000 + i, QStringLiteral("/Applications/App %1.app").arg(i)});
    QList<UsageSampler::App> some = none;
    some.append({workers.empty() ? 1 : qint32(workers.front()), busyApp});
    QList<UsageSampler::App> all = some;
    all.append({rest.empty() ? 2 : qint32(rest.front()), restApp});

    UsageSampler sampler(table);
    constexpr int kRounds = 50;
    const Timing pathsOnly = timeSamples(sampler, none, kRounds);
    const Timing typical = timeSamples(sampler, some, kRounds);
    const Timing worst = timeSamples(sampler, all, kRounds);

    QElapsedTimer timer;
    timer.start();
    UsageSampler::SystemMemory memory;
    for (int i = 0; i < kRounds; ++i)
        memory = UsageSampler::systemMemory(table);
    const double memoryMs = double(timer.nsecsElapsed()) / 1e6 / kRounds;

    const double per500 = 500.0 / double(std::max<qsizetype>(seen, 1));
    std::printf("processes seen: %lld\n", static_cast<long long>(seen));
    const auto line = [per500](const char* what, const Timing& timing) {
        std::printf("sample, %s: %.3f ms mean, %.3f ms best; %.3f ms mean per 500 processes\n", what,
                    timing.meanMs, timing.minMs, timing.meanMs * per500);
    };
    line("no process in a listed app (paths only)", pathsOnly);
    std::printf("  (%zu processes inside a listed app)\n", workers.size());
    line("some processes in a listed app", typical);
    line("every worker in a listed app (worst case)", worst);
    std::printf("systemMemory: %.3f ms (used %lld of %lld bytes)\n", memoryMs,
                static_cast<long long>(memory.used), static_cast<long long>(memory.total));

    workers.insert(workers.end(), rest.begin(), rest.end());
    for (pid_t pid : workers)
        ::kill(pid, SIGKILL);
    for (pid_t pid : workers)
        ::waitpid(pid, nullptr, 0);
    return 0;
}
