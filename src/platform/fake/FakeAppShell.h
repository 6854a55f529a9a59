#pragma once

#include "platform/AppShell.h"

#include <QList>

namespace nubo {

/// A shell integration for tests: records every presence switch and update check, offers
/// updates when `updates` is set, and lets a test play the user's reopening through `reopen()`.
class FakeAppShell final : public AppShell
{
public:
    void setPresence(Presence presence) override { presences.append(presence); }
    void setReopenHandler(std::function<void()> handler) override { m_reopen = std::move(handler); }
    [[nodiscard]] bool canCheckForUpdates() const override { return updates; }
    void startUpdater() override { ++starts; }
    void checkForUpdates() override { ++checks; }

    void reopen() const
    {
        if (m_reopen)
            m_reopen();
    }

    QList<Presence> presences;
    bool updates = false;
    int starts = 0;
    int checks = 0;

private:
    std::function<void()> m_reopen;
};

} // namespace nubo
