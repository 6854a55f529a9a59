#pragma once

#include "platform/AppShell.h"

namespace nubo {

/// Desktops without a Dock or an activation policy: the window comes and goes, the tray icon
/// stays, and there is no update service (the distribution's packages update the program).
class PlainAppShell final : public AppShell
{
public:
    void setPresence(Presence) override {}
    void setReopenHandler(std::function<void()>) override {}
    [[nodiscard]] bool canCheckForUpdates() const override { return false; }
    void startUpdater() override {}
    void checkForUpdates() override {}
};

} // namespace nubo
