#include "platform/linux/ProcFsProcessTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <string_view>

namespace nubo {

namespace {

// Parses the unsigned decimal number at the start of `text` (after blanks), advancing past it.
std::optional<quint64> number(std::string_view& text)
{
    size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
        ++at;
    const size_t start = at;
    quint64 value = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        if (__builtin_mul_overflow(value, 10u, &value) ||
            __builtin_add_overflow(value, quint64(text[at] - '0'), &value))
            return std::nullopt;
    }
    if (at == start)
        return std::nullopt;
    text.remove_prefix(at);
    return value;
}

// The value of a "Key:   1234 kB" line, in bytes. Absent key: nothing, with `found` false.
std::optional<quint64> kibibytes(std::string_view text, std::string_view key, bool& found)
{
    found = false;
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line = text.substr(at, end - at);
        at = end + 1;
        if (line.size() <= key.size() || line.substr(0, key.size()) != key || line[key.size()] != ':')
            continue;
        found = true;
        line.remove_prefix(key.size() + 1);
        const std::optional<quint64> value = number(line);
        const size_t unit = line.find_first_not_of(" \t");
        if (!value || unit == std::string_view::npos || line.substr(unit) != "kB")
            return std::nullopt;
        quint64 bytes = 0;
        if (__builtin_mul_overflow(*value, 1024u, &bytes))
            return std::nullopt;
        return bytes;
    }
    return std::nullopt;
}

// Reads a small /proc file whole into `buffer`; the number of bytes, or -1.
template <size_t N> qsizetype readSmall(const char* path, std::array<char, N>& buffer)
{
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    size_t filled = 0;
    bool failed = false;
    while (filled < buffer.size()) {
        const ssize_t got = ::read(fd, buffer.data() + filled, buffer.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        failed = got < 0;
        if (got <= 0)
            break;
        filled += size_t(got);
    }
    ::close(fd);
    return failed ? -1 : qsizetype(filled);
}

std::string_view view(QByteArrayView bytes)
{
    return {bytes.data(), size_t(bytes.size())};
}

} // namespace

ProcFsProcessTable::ProcFsProcessTable(QByteArray procRoot)
    : m_root(std::move(procRoot)), m_ticksPerSecond(quint64(std::max(::sysconf(_SC_CLK_TCK), 1L)))
{
}

quint64 ProcFsProcessTable::now() const
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return quint64(time.tv_sec) * 1'000'000'000u + quint64(time.tv_nsec);
}

qsizetype ProcFsProcessTable::listPids(std::span<qint32> pids) const
{
    DIR* folder = ::opendir(m_root.constData());
    if (!folder)
        return -1;
    qsizetype count = 0;
    while (const dirent* entry = ::readdir(folder)) {
        std::string_view name(entry->d_name);
        std::string_view rest = name;
        const std::optional<quint64> pid = number(rest);
        // Only entries that are wholly a process id; "self", "sys" and friends are not.
        if (!pid || !rest.empty() || name.front() < '0' || *pid > quint64(std::numeric_limits<qint32>::max()))
            continue;
        if (size_t(count) < pids.size())
            pids[size_t(count)] = qint32(*pid);
        ++count;
    }
    ::closedir(folder);
    return count;
}

qsizetype ProcFsProcessTable::executablePath(qint32 pid, std::span<char> buffer) const
{
    if (buffer.empty())
        return -1;
    std::array<char, 256> link{};
    if (std::snprintf(link.data(), link.size(), "%s/%d/exe", m_root.constData(), pid) >= int(link.size()))
        return -1;
    const ssize_t length = ::readlink(link.data(), buffer.data(), buffer.size() - 1);
    if (length < 0)
        return -1;
    buffer[size_t(length)] = '\0';
    return qsizetype(length);
}

std::optional<ProcessTable::Usage> ProcFsProcessTable::usage(qint32 pid) const
{
    std::array<char, 256> file{};
    std::array<char, 4096> text{};

    if (std::snprintf(file.data(), file.size(), "%s/%d/stat", m_root.constData(), pid) >= int(file.size()))
        return std::nullopt;
    qsizetype length = readSmall(file.data(), text);
    if (length < 0)
        return std::nullopt;
    const std::optional<quint64> ticks = parseCpuTicks(QByteArrayView(text.data(), length));
    if (!ticks)
        return std::nullopt;
    const std::optional<quint64> cpuTime = ticksToNanoseconds(*ticks, m_ticksPerSecond);
    if (!cpuTime)
        return std::nullopt;

    std::snprintf(file.data(), file.size(), "%s/%d/status", m_root.constData(), pid);
    length = readSmall(file.data(), text);
    if (length < 0)
        return std::nullopt;
    const std::optional<quint64> footprint = parseFootprint(QByteArrayView(text.data(), length));
    if (!footprint)
        return std::nullopt;
    return Usage{*cpuTime, *footprint};
}

qint64 ProcFsProcessTable::physicalMemory() const
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    qint64 bytes = 0;
    if (pages <= 0 || pageSize <= 0 || __builtin_mul_overflow(qint64(pages), qint64(pageSize), &bytes))
        return 0;
    return bytes;
}

std::optional<ProcessTable::MemoryPages> ProcFsProcessTable::memoryPages() const
{
    std::array<char, 8192> text{};
    const qsizetype length = readSmall((m_root + "/meminfo").constData(), text);
    if (length < 0)
        return std::nullopt;
    return parseMeminfo(QByteArrayView(text.data(), length));
}

std::optional<quint64> ProcFsProcessTable::parseCpuTicks(QByteArrayView stat)
{
    // "pid (comm) state ppid …": the name may hold anything, so fields are counted from the last
    // ")". utime and stime are fields 14 and 15, the 12th and 13th after the name.
    std::string_view text = view(stat);
    const size_t close = text.rfind(')');
    if (close == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(close + 1);
    std::array<quint64, 2> times{};
    for (int field = 3; field <= 15; ++field) {
        if (text.empty() || text.front() != ' ')
            return std::nullopt;
        text.remove_prefix(1);
        if (field >= 14) {
            // A blank here would mean an empty field and every later one shifted.
            if (text.empty() || text.front() < '0' || text.front() > '9')
                return std::nullopt;
            const std::optional<quint64> value = number(text);
            if (!value || (!text.empty() && text.front() != ' ' && text.front() != '\n'))
                return std::nullopt;
            times[size_t(field - 14)] = *value;
        } else {
            const size_t end = text.find(' ');
            if (end == 0 || end == std::string_view::npos)
                return std::nullopt;
            text.remove_prefix(end);
        }
    }
    quint64 total = 0;
    if (__builtin_add_overflow(times[0], times[1], &total))
        return std::nullopt;
    return total;
}

std::optional<quint64> ProcFsProcessTable::parseFootprint(QByteArrayView status)
{
    bool found = false;
    const std::optional<quint64> anonymous = kibibytes(view(status), "RssAnon", found);
    if (!anonymous)
        return std::nullopt;
    // Without swap configured the line may be missing; a present but malformed one is not trusted.
    const std::optional<quint64> swapped = kibibytes(view(status), "VmSwap", found);
    if (found && !swapped)
        return std::nullopt;
    quint64 total = 0;
    if (__builtin_add_overflow(*anonymous, swapped.value_or(0), &total))
        return std::nullopt;
    return total;
}

std::optional<ProcessTable::MemoryPages> ProcFsProcessTable::parseMeminfo(QByteArrayView meminfo)
{
    bool found = false;
    const std::optional<quint64> total = kibibytes(view(meminfo), "MemTotal", found);
    const std::optional<quint64> available = kibibytes(view(meminfo), "MemAvailable", found);
    if (!total || !available)
        return std::nullopt;
    MemoryPages pages;
    pages.pageSize = 1024;
    pages.internal = *total / 1024;
    pages.purgeable = *available / 1024;
    return pages;
}

std::optional<quint64> ProcFsProcessTable::ticksToNanoseconds(quint64 ticks, quint64 ticksPerSecond)
{
    if (ticksPerSecond == 0)
        return std::nullopt;
    constexpr quint64 kSecond = 1'000'000'000u;
    quint64 whole = 0;
    quint64 part = 0;
    quint64 nanoseconds = 0;
    if (__builtin_mul_overflow(ticks / ticksPerSecond, kSecond, &whole) ||
        __builtin_mul_overflow(ticks % ticksPerSecond, kSecond, &part) ||
        __builtin_add_overflow(whole, part / ticksPerSecond, &nanoseconds))
        return std::nullopt;
    return nanoseconds;
}

std::unique_ptr<ProcessTable> makeProcessTable()
{
    return std::make_unique<ProcFsProcessTable>();
}

} // namespace nubo
