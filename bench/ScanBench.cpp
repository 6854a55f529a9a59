// nubo-scan-bench PATH [THREADS] [--cold] [--bare]: scans PATH with the real scanner and prints what
// it found, where the time went and the peak memory; the last line is the one scripts read.
// THREADS is how many folders are read at once (the scanner's own count by default).
// --cold first drops the page cache (root on Linux only; otherwise it says why and measures warm
// only), then scans cold and warm and times `du -s` the same two ways, in the same run.
// --bare walks with a bare parallel walker instead of the scanner (list folders, add up each
// entry's blocks, nothing else): the floor that the scanner is measured against.
#include "core/files/NativePath.h"
#include "core/safety/SafetyRules.h"
#include "core/scanner/DiskScanner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

qint64 countNodes(const nubo::FileNode& node)
{
    qint64 count = 1;
    for (const auto& child : node.children())
        count += countNodes(*child);
    return count;
}

// Drops the clean pages of the page cache, so that the next walk reads the disk.
bool dropCaches(std::string& why)
{
#ifdef __linux__
    ::sync();
    FILE* control = std::fopen("/proc/sys/vm/drop_caches", "w");
    if (!control) {
        why = std::string("cannot write /proc/sys/vm/drop_caches: ") + std::strerror(errno) +
              " (it takes root)";
        return false;
    }
    const bool written = std::fputs("3\n", control) >= 0;
    return std::fclose(control) == 0 && written;
#else
    why = "dropping the page cache is only done on Linux";
    return false;
#endif
}

// The floor: threads that share one stack of folders, list each and add up its entries' blocks.
qint64 bareWalk(const std::string& root, int threads)
{
    std::mutex lock;
    std::condition_variable wake;
    std::vector<std::string> folders{root};
    int busy = 0;
    std::atomic<qint64> total{0};
    const auto work = [&] {
        std::unique_lock held(lock);
        for (;;) {
            wake.wait(held, [&] { return !folders.empty() || busy == 0; });
            if (folders.empty())
                return;
            std::string folder = std::move(folders.back());
            folders.pop_back();
            ++busy;
            held.unlock();
            std::vector<std::string> found;
            qint64 bytes = 0;
            if (DIR* dir = ::opendir(folder.c_str())) {
                const int fd = ::dirfd(dir);
                while (const dirent* entry = ::readdir(dir)) {
                    if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
                        continue;
                    if (entry->d_type == DT_DIR) {
                        found.push_back(folder + '/' + entry->d_name);
                        continue;
                    }
                    struct stat info {};
                    if (::fstatat(fd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0)
                        bytes += qint64(info.st_blocks) * 512;
                }
                ::closedir(dir);
            }
            total += bytes;
            held.lock();
            for (auto& path : found)
                folders.push_back(std::move(path));
            --busy;
            wake.notify_all();
        }
    };
    std::vector<std::thread> pool;
    for (int i = 1; i < threads; ++i)
        pool.emplace_back(work);
    work();
    for (auto& thread : pool)
        thread.join();
    return total;
}

double seconds(const QElapsedTimer& clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
}

double timeDu(const QString& root)
{
    QElapsedTimer clock;
    clock.start();
    QProcess du;
    du.start(QStringLiteral("du"), {QStringLiteral("-s"), root});
    du.waitForFinished(-1);
    return seconds(clock);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    bool cold = false;
    bool bare = false;
    std::vector<const char*> positional; // raw, since a path need not be UTF-8
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--cold") == 0)
            cold = true;
        else if (std::strcmp(argv[i], "--bare") == 0)
            bare = true;
        else
            positional.push_back(argv[i]);
    }
    if (positional.empty() || positional.size() > 2) {
        std::fprintf(stderr, "usage: nubo-scan-bench PATH [THREADS] [--cold] [--bare]\n");
        return 2;
    }
    const QString root = nubo::NativePath::decode(positional[0]);
    const int threads =
        positional.size() == 2 ? std::max(1, std::atoi(positional[1])) : nubo::DiskScanner::foldersInFlight;

    nubo::DiskScanner::Timings timings;
    nubo::DiskScanner::Services services;
    services.helpers = threads - 1;
    services.skipPaths = nubo::SafetyRules::forHost().unscanned;
    nubo::DiskScanner scanner(services);
    scanner.setTimings(&timings);

    std::unique_ptr<nubo::FileNode> tree;
    qint64 bareBytes = 0;
    const auto walk = [&] {
        QElapsedTimer clock;
        clock.start();
        if (bare) {
            bareBytes = bareWalk(nubo::NativePath::encode(root).toStdString(), threads);
        } else {
            nubo::ScanProgress progress;
            tree = scanner.scan(root, progress);
        }
        return seconds(clock);
    };

    std::string why;
    const bool dropped = cold && dropCaches(why);
    if (cold && !dropped)
        std::printf("cold: not measured, %s; warm only\n", why.c_str());
    const double first = walk();
    if (dropped) {
        const double warm = walk();
        dropCaches(why);
        const double duCold = timeDu(root);
        const double duWarm = timeDu(root);
        std::printf("%s threads=%d cold_seconds=%.3f warm_seconds=%.3f du_cold_seconds=%.3f "
                    "du_warm_seconds=%.3f\n",
                    bare ? "bare" : "scanner", threads, first, warm, duCold, duWarm);
    }

    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("threads=%d peak_rss_mb=%.1f\n", threads, static_cast<double>(usage.ru_maxrss) / 1024.0);
    if (bare) {
        std::printf("bytes=%lld seconds=%.3f\n", static_cast<long long>(bareBytes), first);
        return 0;
    }
    std::printf("thread_seconds listing=%.3f deep=%.3f deep_walks=%d\n",
                static_cast<double>(timings.listingNanoseconds.load()) / 1e9,
                static_cast<double>(timings.deepNanoseconds.load()) / 1e9, timings.deepWalks.load());
    std::printf("items=%lld bytes=%lld nodes=%lld seconds=%.3f\n", static_cast<long long>(tree->itemCount()),
                static_cast<long long>(tree->size()), static_cast<long long>(countNodes(*tree)), first);
    return 0;
}
