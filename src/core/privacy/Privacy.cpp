#include "core/privacy/Privacy.h"

namespace nubo {

namespace {

constexpr const char* kGatedSuffixes[] = {
    "/Desktop",
    "/Documents",
    "/Downloads",
    "/Music",
    "/.Trash",
    "/Library/Containers",
    "/Library/Group Containers",
    "/Library/Mail",
    "/Library/Messages",
    "/Library/Safari",
    "/Library/Calendars",
    "/Library/Reminders",
    "/Library/HomeKit",
    "/Library/Mobile Documents",
    "/Library/CloudStorage",
    "/Library/Suggestions",
    "/Library/Application Support/AddressBook",
    "/Library/Application Support/MobileSync",
    "/Library/Application Support/CallHistoryDB",
    "/Library/Application Support/com.apple.TCC",
    "/Library/Application Support/Knowledge",
    "/Library/Biome",
    "/Library/Metadata/CoreSpotlight",
};

} // namespace

Privacy::Privacy(const QString& home, Probe probe) : m_probe(std::move(probe)), m_home(home)
{
    m_gated.reserve(std::size(kGatedSuffixes));
    for (const char* suffix : kGatedSuffixes)
        m_gated << home + QLatin1String(suffix);
}

bool Privacy::hasFullDiskAccess() const
{
    std::call_once(m_firstProbe, [this] {
        {
            const std::lock_guard lock(m_lock);
            if (m_known)
                return;
        }
        const bool answer = m_probe ? m_probe() : false;
        const std::lock_guard lock(m_lock);
        if (!m_known) { // a refresh that finished first has the newer answer
            m_answer = answer;
            m_known = true;
        }
    });
    const std::lock_guard lock(m_lock);
    return m_answer;
}

bool Privacy::refresh()
{
    const bool answer = m_probe ? m_probe() : false;
    const std::lock_guard lock(m_lock);
    m_answer = answer;
    m_known = true;
    return answer;
}

bool Privacy::isGated(const QString& path) const
{
    if (hasFullDiskAccess())
        return false;
    if (path.contains(QLatin1String(".photoslibrary")))
        return true;
    // Every guarded folder lies inside the home folder: other paths need no comparison at all.
    if (!path.startsWith(m_home))
        return false;
    for (const QString& entry : m_gated) {
        if (path.startsWith(entry) && (path.size() == entry.size() || path.at(entry.size()) == QLatin1Char('/')))
            return true;
    }
    return false;
}

} // namespace nubo
