#pragma once

#include "platform/ProcessTable.h"

#include <QByteArray>
#include <QByteArrayView>

namespace nubo {

/// The Linux process table, read from /proc.
///
/// The host tick is one nanosecond of CLOCK_MONOTONIC (timebase 1/1); processor times, which
/// /proc gives in clock ticks of sysconf(_SC_CLK_TCK), are converted to nanoseconds with that
/// ratio. The footprint is RssAnon + VmSwap from /proc/<pid>/status: the process's own
/// anonymous memory, resident or swapped out. That is the nearest match of the macOS physical
/// footprint (dirty private memory, compressed or not), whereas VmRSS would count every shared
/// library page again in each helper, and the proportional figures of smaps_rollup cost a page
/// table walk per process. Used memory is MemTotal − MemAvailable of /proc/meminfo: what the
/// kernel could not hand to a new program without swapping.
///
/// Processes of other users cannot be read (their executable link is refused) and are skipped by
/// the sampler, which is what it wants: their applications are not the user's.
class ProcFsProcessTable final : public ProcessTable
{
public:
    /// `procRoot` is where /proc is mounted; tests point it elsewhere.
    explicit ProcFsProcessTable(QByteArray procRoot = QByteArrayLiteral("/proc"));

    quint64 now() const override;
    Timebase timebase() const override { return {1, 1}; }
    qsizetype listPids(std::span<qint32> pids) const override;
    qsizetype executablePath(qint32 pid, std::span<char> buffer) const override;
    std::optional<Usage> usage(qint32 pid) const override;
    qint64 physicalMemory() const override;
    std::optional<MemoryPages> memoryPages() const override;

    /// utime + stime, in clock ticks, of one /proc/<pid>/stat line; nothing when malformed. The
    /// command name in parentheses may itself hold spaces and ")".
    [[nodiscard]] static std::optional<quint64> parseCpuTicks(QByteArrayView stat);
    /// RssAnon + VmSwap of one /proc/<pid>/status, in bytes; nothing without RssAnon or when a
    /// figure is malformed.
    [[nodiscard]] static std::optional<quint64> parseFootprint(QByteArrayView status);
    /// The page counts of /proc/meminfo (1 KiB pages: MemTotal held, MemAvailable purgeable);
    /// nothing when either line is missing or malformed.
    [[nodiscard]] static std::optional<MemoryPages> parseMeminfo(QByteArrayView meminfo);
    /// Processor ticks in nanoseconds at `ticksPerSecond`, without the overflow of a plain
    /// product; nothing if even that does not fit.
    [[nodiscard]] static std::optional<quint64> ticksToNanoseconds(quint64 ticks, quint64 ticksPerSecond);

private:
    QByteArray m_root;
    quint64 m_ticksPerSecond;
};

} // namespace nubo
