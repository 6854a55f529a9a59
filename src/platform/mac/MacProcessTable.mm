#include "platform/mac/MacProcessTable.h"

#import <Foundation/Foundation.h>

#include <libproc.h>
#include <mach/mach.h>
#include <mach/mach_time.h>
#include <mach/vm_page_size.h>
#include <sys/resource.h>

#include <algorithm>
#include <climits>

namespace nubo {

MacProcessTable::MacProcessTable()
{
    mach_timebase_info_data_t info{};
    // A failed call leaves denom 0, which the sampler refuses loudly rather than divide by.
    if (mach_timebase_info(&info) == KERN_SUCCESS)
        m_timebase = {info.numer, info.denom};
    else
        m_timebase = {0, 0};
}

quint64 MacProcessTable::now() const
{
    return mach_absolute_time();
}

qsizetype MacProcessTable::listPids(std::span<qint32> pids) const
{
    const size_t bytes = std::min(pids.size_bytes(), size_t(INT_MAX));
    // Returns the number of ids written (bytes ÷ sizeof(int)), or -1.
    const int count = proc_listallpids(pids.data(), int(bytes));
    return count < 0 ? -1 : qsizetype(count);
}

qsizetype MacProcessTable::executablePath(qint32 pid, std::span<char> buffer) const
{
    if (buffer.empty())
        return -1;
    const uint32_t size = uint32_t(std::min(buffer.size(), size_t(PROC_PIDPATHINFO_MAXSIZE)));
    // Returns the length of the path, 0 or -1 when it cannot be read; the text is zero-terminated.
    const int length = proc_pidpath(pid, buffer.data(), size);
    if (length <= 0)
        return -1;
    return qsizetype(std::min(size_t(length), buffer.size() - 1));
}

std::optional<ProcessTable::Usage> MacProcessTable::usage(qint32 pid) const
{
    rusage_info_v4 info{};
    if (proc_pid_rusage(pid, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&info)) != 0)
        return std::nullopt;
    return Usage{info.ri_user_time + info.ri_system_time, info.ri_phys_footprint};
}

qint64 MacProcessTable::physicalMemory() const
{
    const unsigned long long bytes = [NSProcessInfo processInfo].physicalMemory;
    return bytes > static_cast<unsigned long long>(LLONG_MAX) ? LLONG_MAX : qint64(bytes);
}

std::optional<ProcessTable::MemoryPages> MacProcessTable::memoryPages() const
{
    vm_statistics64_data_t statistics{};
    mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
    // mach_host_self() hands out a send right each time; give it back so polling does not leak.
    const mach_port_t host = mach_host_self();
    const kern_return_t result =
        host_statistics64(host, HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&statistics), &count);
    mach_port_deallocate(mach_task_self(), host);
    if (result != KERN_SUCCESS)
        return std::nullopt;
    MemoryPages pages;
    pages.pageSize = quint64(vm_kernel_page_size);
    pages.internal = statistics.internal_page_count;
    pages.compressed = statistics.compressor_page_count;
    pages.wired = statistics.wire_count;
    pages.purgeable = statistics.purgeable_count;
    return pages;
}

std::unique_ptr<ProcessTable> makeProcessTable()
{
    return std::make_unique<MacProcessTable>();
}

} // namespace nubo
