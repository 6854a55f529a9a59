#pragma once

#include "core/scanner/FileNode.h"
#include "core/scanner/ScanProgress.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

namespace nubo {

class Privacy;

/// Builds the coarse tree of sizes the space map draws: sizes are the blocks items really take on
/// disk, small files are summed into one aggregate per folder, small folders below the root are
/// collapsed, bundles are single blocks, symbolic links are never followed or counted and other
/// volumes are never entered. Many folders are read at once, since a disk answers many requests
/// together: threads walk depth first and share out the folders they have not started with any
/// thread that runs dry, at every depth. Holds no state of a scan beyond the call, so one scanner
/// may serve several scans at once.
class DiskScanner
{
public:
    /// A file smaller than this goes into its folder's aggregate.
    static constexpr qint64 fileFloor = 2'097'152;
    /// A folder below the root smaller than this keeps no children.
    static constexpr qint64 collapseBelow = 4'194'304;
    /// How many folders a scan reads at once. The count follows the disk, not the processor: a
    /// folder tree that is not in memory is read at the speed of the requests kept in flight,
    /// and one in memory costs no more with many threads than with few.
    static constexpr int foldersInFlight = 24;

    /// True for a folder the scanner must not read (the Full Disk Access gate).
    using Gate = std::function<bool(const QString& path)>;
    /// The name the file manager shows for the scan's root.
    using DisplayName = std::function<QString(const QString& path)>;
    /// Whether the system treats a folder at the top two levels as a bundle.
    using PackageTest = std::function<bool(const QString& path)>;
    /// Whether a folder at the top two levels is a volume's mount point.
    using VolumeTest = std::function<bool(const QString& path)>;

    struct Services
    {
        Gate isGated;              ///< default: nothing is gated
        DisplayName displayName;   ///< default: the last path component
        PackageTest isPackage;     ///< default: the folder's extension is in packageExtensions()
        /// Default: the folder lies on another device than the folder that lists it. A Mac needs
        /// the system's answer instead: its firmlinks (/Users, /Applications, /usr/local…) lead
        /// from the system volume to the data volume without being mount points, and must be entered.
        VolumeTest isVolume;
        /// Exact paths, of folders or files, never entered or counted.
        QStringList skipPaths = DiskScanner::skipPaths();
        int helpers = foldersInFlight - 1; ///< threads besides the caller's
    };

    /// Where a scan's thread time went, summed over threads; for the benchmark.
    struct Timings
    {
        std::atomic<qint64> listingNanoseconds{0}; ///< listing the folders at depth 0 and 1
        std::atomic<qint64> deepNanoseconds{0};    ///< the deep walks below them
        std::atomic<int> deepWalks{0};
    };

    DiskScanner();
    explicit DiskScanner(Services services);
    /// The production set-up: the gate of `privacy`, which must outlive the scanner, and the
    /// platform's name for the scanned folder (the last path component without one).
    explicit DiskScanner(const Privacy& privacy, DisplayName displayName = {});
    DiskScanner(const DiskScanner&) = delete;
    DiskScanner& operator=(const DiskScanner&) = delete;

    /// Scans the folder `root` and returns its node (never null). Blocking: call it off the GUI
    /// thread. When `progress` is cancelled the tree gathered so far is returned, stopped at a
    /// folder boundary. Unreadable or vanished items count as empty.
    [[nodiscard]] std::unique_ptr<FileNode> scan(const QString& root, ScanProgress& progress);

    /// Collects where time goes in later scans; null stops it. `timings` must outlive the scans.
    void setTimings(Timings* timings) { m_timings = timings; }

    [[nodiscard]] static const QStringList& skipPaths();
    /// Folder extensions the deep walk treats as bundles (exact, case-sensitive).
    [[nodiscard]] static const QSet<QString>& packageExtensions();
    /// "1 archivo pequeño", "N archivos pequeños".
    [[nodiscard]] static QString aggregateName(qint64 count);

private:
    struct Folder;
    struct Pending;
    class Walk;

    [[nodiscard]] bool skips(const QString& path) const;
    // A skip path may name a file (a Mac's sleep image): only files of the folders that hold one
    // are compared, so the walk does not build a path per file.
    [[nodiscard]] bool isSkippedFile(const QString& folder, const char* name) const;

    Services m_services;
    QSet<QString> m_skipParents;
    Timings* m_timings = nullptr;
};

} // namespace nubo
