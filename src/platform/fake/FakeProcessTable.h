#pragma once

#include "platform/ProcessTable.h"

#include <QByteArray>
#include <QMap>

#include <atomic>

namespace nubo {

/// A process table for tests, scripted field by field: the clock, the timebase, the processes
/// (a path that cannot be read is a null QByteArray, accounting that cannot be read is empty) and
/// the memory statistics. Set it up before handing it to the code under test; reads are safe
/// from any thread as long as nothing changes it meanwhile.
class FakeProcessTable final : public ProcessTable
{
public:
    struct Process
    {
        QByteArray path; // raw bytes, as the kernel would give them; null when unreadable
        std::optional<Usage> usage;
    };

    quint64 clock = 1'000'000;
    Timebase base;
    QMap<qint32, Process> processes;
    bool listFails = false;
    /// Extra ids the "kernel" claims to have beyond those it writes (to check that callers honour
    /// their own buffer size).
    qsizetype overReport = 0;
    qint64 physical = 16LL * 1024 * 1024 * 1024;
    std::optional<MemoryPages> pages;

    /// Adds a process with the given path, processor time and footprint.
    void add(qint32 pid, const QByteArray& path, quint64 cpuTime, quint64 footprint)
    {
        processes.insert(pid, {path, Usage{cpuTime, footprint}});
    }

    mutable std::atomic<int> pathQueries = 0;
    mutable std::atomic<int> usageQueries = 0;

    quint64 now() const override { return clock; }
    Timebase timebase() const override { return base; }
    qsizetype listPids(std::span<qint32> pids) const override;
    qsizetype executablePath(qint32 pid, std::span<char> buffer) const override;
    std::optional<Usage> usage(qint32 pid) const override;
    qint64 physicalMemory() const override { return physical; }
    std::optional<MemoryPages> memoryPages() const override { return pages; }
};

} // namespace nubo
