#include "platform/fake/FakeProcessTable.h"

#include <algorithm>
#include <cstring>

namespace nubo {

qsizetype FakeProcessTable::listPids(std::span<qint32> pids) const
{
    if (listFails)
        return -1;
    size_t written = 0;
    for (auto it = processes.cbegin(); it != processes.cend() && written < pids.size(); ++it)
        pids[written++] = it.key();
    return processes.size() + overReport;
}

qsizetype FakeProcessTable::executablePath(qint32 pid, std::span<char> buffer) const
{
    ++pathQueries;
    const auto it = processes.constFind(pid);
    if (it == processes.cend() || it->path.isNull())
        return -1;
    // Like the kernel: the bytes that fit, zero-terminated.
    const size_t length = std::min(size_t(it->path.size()), buffer.size() - 1);
    std::memcpy(buffer.data(), it->path.constData(), length);
    buffer[length] = '\0';
    return qsizetype(length);
}

std::optional<ProcessTable::Usage> FakeProcessTable::usage(qint32 pid) const
{
    ++usageQueries;
    const auto it = processes.constFind(pid);
    return it == processes.cend() ? std::nullopt : it->usage;
}

} // namespace nubo
