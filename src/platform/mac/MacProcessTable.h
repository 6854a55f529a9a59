#pragma once

#include "platform/ProcessTable.h"

namespace nubo {

/// The macOS process table: libproc for processes, mach for the clock and the memory statistics.
/// Processor times of `proc_pid_rusage` are in mach absolute time units, the same host ticks as
/// `mach_absolute_time`, so one timebase converts both.
class MacProcessTable final : public ProcessTable
{
public:
    MacProcessTable();

    quint64 now() const override;
    Timebase timebase() const override { return m_timebase; }
    qsizetype listPids(std::span<qint32> pids) const override;
    qsizetype executablePath(qint32 pid, std::span<char> buffer) const override;
    std::optional<Usage> usage(qint32 pid) const override;
    qint64 physicalMemory() const override;
    std::optional<MemoryPages> memoryPages() const override;

private:
    Timebase m_timebase;
};

} // namespace nubo
