#pragma once

#include "platform/Accessibility.h"

#include <QList>
#include <atomic>
#include <mutex>

namespace nubo {

/// Accessibility for tests: trusted or not as the test says, a request that grants trust only
/// when `grantOnRequest` is set, and a record of the applications whose windows were minimised
/// (safe to read from the test while background work writes it).
class FakeAccessibility final : public Accessibility
{
public:
    bool isSupported() const override { return supported; }
    bool isTrusted() const override { return supported && trusted; }
    bool requestTrust() override
    {
        ++requests;
        if (supported && grantOnRequest)
            trusted = true;
        return isTrusted();
    }
    void minimizeWindows(qint64 pid) override
    {
        const std::lock_guard lock(m_mutex);
        m_minimized << pid;
    }

    [[nodiscard]] QList<qint64> minimized() const
    {
        const std::lock_guard lock(m_mutex);
        return m_minimized;
    }

    bool supported = true;
    std::atomic<bool> trusted = false;
    bool grantOnRequest = false;
    std::atomic<int> requests = 0;

private:
    mutable std::mutex m_mutex;
    QList<qint64> m_minimized;
};

} // namespace nubo
