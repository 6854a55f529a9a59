#pragma once

#include <functional>
#include <memory>

#include <QtGlobal>

namespace nubo {

class StopState;

/// Whether whoever started a long piece of work has asked it to stop. Copies share one state; a
/// default token can never be stopped. Safe to use from any thread. (The standard library's own
/// stop token is missing from the C++ libraries some of our compilers ship.)
class StopToken
{
public:
    StopToken() = default;

    [[nodiscard]] bool stopRequested() const;
    /// False for a token no one can stop: work may then skip looking.
    [[nodiscard]] bool stopPossible() const { return m_state != nullptr; }

private:
    friend class StopSource;
    friend class StopCallback;
    explicit StopToken(std::shared_ptr<StopState> state) : m_state(std::move(state)) {}

    std::shared_ptr<StopState> m_state;
};

/// The side that asks: every token it gave sees the request.
class StopSource
{
public:
    StopSource();

    [[nodiscard]] StopToken token() const { return StopToken(m_state); }
    /// Asks once; the callbacks registered on the tokens run now, on this thread.
    void requestStop() const;
    [[nodiscard]] bool stopRequested() const;

private:
    std::shared_ptr<StopState> m_state;
};

/// Runs `callback` when a stop is requested while this object lives (at once, on the calling
/// thread, when it was requested already). A callback that has started belongs to the request,
/// so it must own what it uses.
class StopCallback
{
public:
    StopCallback(const StopToken& token, std::function<void()> callback);
    ~StopCallback();
    StopCallback(const StopCallback&) = delete;
    StopCallback& operator=(const StopCallback&) = delete;

private:
    std::shared_ptr<StopState> m_state;
    quint64 m_id = 0;
};

} // namespace nubo
