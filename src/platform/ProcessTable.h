#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <span>

namespace nubo {

/// The kernel's process accounting, as the usage sampler needs it: every process id, each
/// process's executable path, its cumulative processor time and memory footprint, a monotonic
/// clock with its ratio to nanoseconds, and the machine's memory. Backends only call the system
/// and convert units; every decision (matching, differences, sums) is the sampler's.
///
/// Processor times and the clock share one unit, the host tick; `timebase()` converts ticks to
/// nanoseconds. Every call may run on any thread, also at the same time as another call.
class ProcessTable
{
public:
    /// The host tick's ratio to nanoseconds: nanoseconds = ticks × numer ÷ denom.
    struct Timebase
    {
        quint64 numer = 1;
        quint64 denom = 1;
    };

    /// What the kernel accounts for one process.
    struct Usage
    {
        quint64 cpuTime = 0;   // user + system processor time since the process started, host ticks
        quint64 footprint = 0; // memory the process itself holds, bytes
    };

    /// The machine's memory in pages, split the way the used-memory figure needs it.
    struct MemoryPages
    {
        quint64 pageSize = 0;
        quint64 internal = 0;   // memory that belongs to processes (anonymous)
        quint64 compressed = 0; // held by the compressor (or swapped)
        quint64 wired = 0;      // pinned by the kernel
        quint64 purgeable = 0;  // what the system may discard at will
    };

    virtual ~ProcessTable() = default;

    /// The monotonic host clock, in host ticks.
    [[nodiscard]] virtual quint64 now() const = 0;
    [[nodiscard]] virtual Timebase timebase() const = 0;

    /// Writes the ids of the running processes into `pids` and returns how many the system
    /// reported (which may be more than fit; only the first `pids.size()` are written), or a
    /// negative number when the list cannot be read.
    [[nodiscard]] virtual qsizetype listPids(std::span<qint32> pids) const = 0;

    /// Writes the process's executable path into `buffer` and returns its length in bytes, up to
    /// the first zero byte, or a negative number when the path cannot be read.
    [[nodiscard]] virtual qsizetype executablePath(qint32 pid, std::span<char> buffer) const = 0;

    /// The process's accounting, or nothing when it cannot be read (gone, another user's).
    [[nodiscard]] virtual std::optional<Usage> usage(qint32 pid) const = 0;

    /// The machine's physical memory in bytes.
    [[nodiscard]] virtual qint64 physicalMemory() const = 0;

    /// The current page counts, or nothing when the statistics cannot be read.
    [[nodiscard]] virtual std::optional<MemoryPages> memoryPages() const = 0;
};

/// The process table of the platform the program was built for.
[[nodiscard]] std::unique_ptr<ProcessTable> makeProcessTable();

} // namespace nubo
