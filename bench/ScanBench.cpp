// nubo-scan-bench PATH [HELPERS]: scans PATH once with the real scanner and prints what it found,
// where the time went and the peak memory; the last line is the one scripts read. HELPERS overrides
// the number of threads besides the caller's (one fewer than the cores by default).
#include "core/files/NativePath.h"
#include "core/scanner/DiskScanner.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <sys/resource.h>

namespace {

qint64 countNodes(const nubo::FileNode& node)
{
    qint64 count = 1;
    for (const auto& child : node.children())
        count += countNodes(*child);
    return count;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: nubo-scan-bench PATH [HELPERS]\n");
        return 2;
    }
    const QString root = nubo::NativePath::decode(argv[1]);

    nubo::DiskScanner::Timings timings;
    nubo::DiskScanner::Services services;
    if (argc == 3)
        services.helpers = std::max(0, std::atoi(argv[2]));
    nubo::DiskScanner scanner(services);
    scanner.setTimings(&timings);
    nubo::ScanProgress progress;

    QElapsedTimer clock;
    clock.start();
    const auto tree = scanner.scan(root, progress);
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;

    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("helpers=%d peak_rss_mb=%.1f\n", services.helpers,
                static_cast<double>(usage.ru_maxrss) / 1024.0);
    std::printf("thread_seconds listing=%.3f deep=%.3f deep_walks=%d\n",
                static_cast<double>(timings.listingNanoseconds.load()) / 1e9,
                static_cast<double>(timings.deepNanoseconds.load()) / 1e9, timings.deepWalks.load());
    std::printf("items=%lld bytes=%lld nodes=%lld seconds=%.3f\n", static_cast<long long>(tree->itemCount()),
                static_cast<long long>(tree->size()), static_cast<long long>(countNodes(*tree)), seconds);
    return 0;
}
