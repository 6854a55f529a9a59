#pragma once

#include "platform/ProcessTable.h"

#include <QHash>
#include <QList>
#include <QString>

namespace nubo {

/// Measures how much processor time and memory each running application uses now, from the
/// kernel's per-process accounting. Every process whose executable lies inside an application's
/// bundle counts towards that application, so helpers, renderers and services inside
/// "Contents" are included. Processor use is measured over the interval since the previous call
/// of `sample`, so the caller's cadence sets the averaging window, and an application's first
/// sample shows 0 %.
///
/// `sample` changes the sampler and must not run twice at the same time; `systemMemory` holds no
/// state and may run anywhere. The process table is borrowed and must outlive the sampler.
class UsageSampler
{
public:
    /// One running application: its main process id and its bundle path.
    struct App
    {
        qint32 pid = 0;
        QString bundle;
    };

    /// What one application uses: percent of one core (may exceed 100) and footprint in bytes.
    struct Usage
    {
        double cpu = 0;
        qint64 memory = 0;
        friend bool operator==(const Usage&, const Usage&) = default;
    };

    struct SystemMemory
    {
        qint64 used = 0;
        qint64 total = 0;
        friend bool operator==(const SystemMemory&, const SystemMemory&) = default;
    };

    /// At most this many process ids are considered per sample.
    static constexpr qsizetype kMaxProcesses = 4096;
    /// Room for one executable path, in bytes.
    static constexpr qsizetype kPathBytes = 4096;

    explicit UsageSampler(const ProcessTable& table);
    UsageSampler(const UsageSampler&) = delete;
    UsageSampler& operator=(const UsageSampler&) = delete;

    /// The usage of each application, keyed by its main process id. Applications none of whose
    /// processes could be read are absent.
    QHash<qint32, Usage> sample(const QList<App>& apps);

    /// Used and total memory of the machine, in bytes. Statistics that cannot be read (or make no
    /// sense) give used 0 with the physical total.
    [[nodiscard]] static SystemMemory systemMemory(const ProcessTable& table);

private:
    const ProcessTable& m_table;
    QHash<qint32, quint64> m_previous; // cumulative processor time per process at the last sample
    quint64 m_previousTime = 0;        // host clock at the last sample
    ProcessTable::Timebase m_timebase;
};

} // namespace nubo
