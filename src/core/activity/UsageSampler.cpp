#include "core/activity/UsageSampler.h"

#include "core/files/NativePath.h"
#include "core/format/CheckedMath.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace nubo {

namespace {

// Tick conversions cannot overflow for any realistic uptime or processor time; if one does, the
// figures are nonsense and the fault is ours, so the program stops rather than show them.
quint64 multiplied(quint64 a, quint64 b)
{
    quint64 product = 0;
    if (__builtin_mul_overflow(a, b, &product))
        qFatal("UsageSampler: tick conversion overflows (%llu × %llu)", static_cast<unsigned long long>(a),
               static_cast<unsigned long long>(b));
    return product;
}

struct Match
{
    qint32 owner;
    QByteArray prefix; // the bundle's path bytes followed by "/"
};

struct MatchList
{
    std::vector<Match> exact;
    // The same bundles in the other Unicode normalisation form, tried only when no exact prefix
    // fits: the workspace and the kernel may spell an accented name differently (composed or
    // decomposed) although both mean the same folder.
    std::vector<Match> equivalent;
};

// Matching is done on the path's bytes, not on decoded text: two bundles whose names differ only
// in bytes that are not UTF-8 decode to the same text, and text matching would credit one's
// processes to the other. A bundle whose text lost such bytes matches nothing instead.
MatchList matchList(const QList<UsageSampler::App>& apps)
{
    MatchList matches;
    matches.exact.reserve(size_t(apps.size()));
    for (const UsageSampler::App& app : apps) {
        // An empty or root bundle would end in a bare "/" and swallow every process of the machine.
        const QString bundle = QDir::cleanPath(app.bundle);
        if (!bundle.startsWith(QLatin1Char('/')) || bundle == QLatin1String("/"))
            continue;
        const QByteArray exact = NativePath::encode(bundle) + '/';
        matches.exact.push_back({app.pid, exact});
        QByteArray previous = exact;
        for (const auto form : {QString::NormalizationForm_C, QString::NormalizationForm_D}) {
            const QByteArray other = NativePath::encode(bundle.normalized(form)) + '/';
            if (other != exact && other != previous)
                matches.equivalent.push_back({app.pid, other});
            previous = other;
        }
    }
    // An application nested inside another's bundle must be tried before the outer one.
    const auto longestFirst = [](const Match& a, const Match& b) {
        return a.prefix.size() > b.prefix.size();
    };
    std::stable_sort(matches.exact.begin(), matches.exact.end(), longestFirst);
    std::stable_sort(matches.equivalent.begin(), matches.equivalent.end(), longestFirst);
    return matches;
}

const Match* ownerOf(const std::vector<Match>& matches, const char* path, size_t length)
{
    for (const Match& match : matches) {
        const auto size = size_t(match.prefix.size());
        if (length >= size && std::memcmp(path, match.prefix.constData(), size) == 0)
            return &match;
    }
    return nullptr;
}

const Match* ownerOf(const MatchList& matches, const char* path, size_t length)
{
    const Match* match = ownerOf(matches.exact, path, length);
    return match ? match : ownerOf(matches.equivalent, path, length);
}

} // namespace

UsageSampler::UsageSampler(const ProcessTable& table)
    : m_table(table), m_previousTime(table.now()), m_timebase(table.timebase())
{
    if (m_timebase.denom == 0)
        qFatal("UsageSampler: the host clock's timebase has a zero denominator");
}

QHash<qint32, UsageSampler::Usage> UsageSampler::sample(const QList<App>& apps)
{
    const quint64 now = m_table.now();
    if (now < m_previousTime)
        qFatal("UsageSampler: the monotonic clock went backwards");
    const quint64 elapsed = now - m_previousTime;
    m_previousTime = now;

    const MatchList matches = matchList(apps);

    std::vector<qint32> pids(static_cast<size_t>(kMaxProcesses));
    std::vector<char> path(static_cast<size_t>(kPathBytes));
    const qsizetype listed =
        matches.exact.empty() ? 0 : std::clamp<qsizetype>(m_table.listPids(pids), 0, kMaxProcesses);

    const quint64 elapsedNs = multiplied(elapsed, m_timebase.numer) / m_timebase.denom;
    const double elapsedNsDouble = double(elapsedNs);
    // Under one nanosecond there is no interval to divide by: every share is 0.
    const bool measurable = multiplied(elapsed, m_timebase.numer) >= m_timebase.denom;

    QHash<qint32, Usage> usage;
    QHash<qint32, quint64> current;
    current.reserve(m_previous.size());
    for (qsizetype i = 0; i < listed; ++i) {
        const qint32 pid = pids[size_t(i)];
        if (pid <= 0)
            continue;
        const qsizetype reported = m_table.executablePath(pid, path);
        if (reported < 0)
            continue;
        const size_t bound = size_t(std::min(reported, kPathBytes));
        const void* zero = std::memchr(path.data(), 0, bound);
        const size_t length = zero ? size_t(static_cast<const char*>(zero) - path.data()) : bound;
        const Match* match = ownerOf(matches, path.data(), length);
        if (!match)
            continue;
        const std::optional<ProcessTable::Usage> process = m_table.usage(pid);
        if (!process)
            continue;

        const quint64 total = process->cpuTime;
        current.insert(pid, total);
        double share = 0;
        const auto old = m_previous.constFind(pid);
        if (old != m_previous.constEnd() && total >= *old && measurable) {
            const quint64 busyNs = multiplied(total - *old, m_timebase.numer) / m_timebase.denom;
            share = double(busyNs) / elapsedNsDouble * 100;
        }

        Usage& owner = usage[match->owner];
        owner.cpu += share;
        const quint64 limit = quint64(std::numeric_limits<qint64>::max());
        addChecked(owner.memory, qint64(std::min(process->footprint, limit)));
    }
    // Processes that ended, or no longer belong to a listed application, are forgotten here; a
    // restarted one comes back under a new id and starts again at 0 %.
    m_previous = std::move(current);
    return usage;
}

UsageSampler::SystemMemory UsageSampler::systemMemory(const ProcessTable& table)
{
    SystemMemory memory;
    memory.total = std::max<qint64>(table.physicalMemory(), 0);
    const std::optional<ProcessTable::MemoryPages> pages = table.memoryPages();
    if (!pages)
        return memory;

    // Application memory plus compressed plus wired, less what the system may drop at will.
    quint64 held = 0;
    quint64 bytes = 0;
    if (__builtin_add_overflow(pages->internal, pages->compressed, &held) ||
        __builtin_add_overflow(held, pages->wired, &held))
        return memory; // counts no kernel can report: treat as unreadable
    if (held <= pages->purgeable)
        return memory;
    if (__builtin_mul_overflow(held - pages->purgeable, pages->pageSize, &bytes) ||
        bytes > quint64(std::numeric_limits<qint64>::max()))
        return memory;
    memory.used = qint64(bytes);
    return memory;
}

} // namespace nubo
