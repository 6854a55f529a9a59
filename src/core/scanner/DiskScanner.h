#pragma once

#include "core/scanner/FileNode.h"
#include "core/scanner/ScanProgress.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace nubo {

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
    /// The name the file manager shows for a folder at the top two levels and the scan's root.
    using DisplayName = std::function<QString(const QString& path)>;
    /// The system's word on whether a folder at the top two levels is a bundle; none leaves it
    /// to the folder's extension.
    using PackageTest = std::function<std::optional<bool>(const QString& path)>;
    /// Asked only of a folder on another device than the folder that lists it: whether the system
    /// holds it for another volume's mount point. None, or no test, makes every change of device
    /// a volume left alone. A Mac needs the system's answer: its firmlinks (/Users, /Applications,
    /// /usr/local, /System/Library/Caches…) lead from the system volume to the data volume
    /// without being mount points, and a whole-disk scan that did not enter them would miss the
    /// home folder.
    using VolumeTest = std::function<std::optional<bool>(const QString& path)>;

    struct Services
    {
        Gate isGated;              ///< default: nothing is gated
        DisplayName displayName;   ///< default: the last path component
        PackageTest isPackage;
        VolumeTest isVolume;
        /// Exact paths, of folders or files, never entered or counted (the system's own list).
        QStringList skipPaths;
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
    DiskScanner(const DiskScanner&) = delete;
    DiskScanner& operator=(const DiskScanner&) = delete;

    /// Scans the folder `root` and returns its node (never null). Blocking: call it off the GUI
    /// thread. When `progress` is cancelled the tree gathered so far is returned, stopped at a
    /// folder boundary. Unreadable or vanished items count as empty.
    [[nodiscard]] std::unique_ptr<FileNode> scan(const QString& root, ScanProgress& progress);

    /// Collects where time goes in later scans; null stops it. `timings` must outlive the scans.
    void setTimings(Timings* timings) { m_timings = timings; }

    /// Folder extensions the deep walk treats as bundles (exact, case-sensitive).
    [[nodiscard]] static const QSet<QString>& packageExtensions();
    /// "1 archivo pequeño", "N archivos pequeños".
    [[nodiscard]] static QString aggregateName(qint64 count);

private:
    struct Folder;
    struct Pending;
    class Walk;

    [[nodiscard]] bool skips(const QString& path) const;
    // Asked only when a folder's device differs from its lister's.
    [[nodiscard]] bool isOtherVolume(const QString& path) const;
    // A skip path may name a file (a Mac's sleep image): only files of the folders that hold one
    // are compared, so the walk does not build a path per file.
    [[nodiscard]] bool isSkippedFile(const QString& folder, const char* name) const;

    Services m_services;
    QSet<QString> m_skipParents;
    Timings* m_timings = nullptr;
};

} // namespace nubo
