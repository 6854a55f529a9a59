#include "core/stop/StopToken.h"

#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace nubo {

/// What a source and its tokens share: the request, and the callbacks waiting for it.
class StopState
{
public:
    std::atomic<bool> stopped = false;
    std::mutex mutex;
    std::map<quint64, std::function<void()>> callbacks;
    quint64 nextId = 0;
};

bool StopToken::stopRequested() const
{
    return m_state && m_state->stopped.load(std::memory_order_acquire);
}

StopSource::StopSource() : m_state(std::make_shared<StopState>()) {}

bool StopSource::stopRequested() const
{
    return m_state->stopped.load(std::memory_order_acquire);
}

void StopSource::requestStop() const
{
    std::map<quint64, std::function<void()>> callbacks;
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->stopped.exchange(true, std::memory_order_acq_rel))
            return;
        callbacks.swap(m_state->callbacks);
    }
    for (auto& [id, callback] : callbacks)
        callback();
}

StopCallback::StopCallback(const StopToken& token, std::function<void()> callback) : m_state(token.m_state)
{
    if (!m_state)
        return;
    {
        const std::lock_guard lock(m_state->mutex);
        if (!m_state->stopped.load(std::memory_order_acquire)) {
            m_id = ++m_state->nextId;
            m_state->callbacks.emplace(m_id, std::move(callback));
            return;
        }
    }
    callback();
}

StopCallback::~StopCallback()
{
    if (!m_state || m_id == 0)
        return;
    const std::lock_guard lock(m_state->mutex);
    m_state->callbacks.erase(m_id);
}

} // namespace nubo
