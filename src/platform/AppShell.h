#pragma once

#include <functional>
#include <memory>

namespace nubo {

/// The program's place in the desktop around it: whether it shows in the Dock and the menu bar
/// or lives on as a menu-bar icon only, what happens when the user opens it again while it runs,
/// and the update service. Platforms without these keep the program as it is and offer no
/// updates; callers then hide the commands that would do nothing.
class AppShell
{
public:
    /// Regular: a Dock icon and a menu bar, while the main window is shown. Accessory: only the
    /// menu-bar icon, after the window was closed.
    enum class Presence
    {
        Regular,
        Accessory
    };

    virtual ~AppShell() = default;

    virtual void setPresence(Presence presence) = 0;
    /// `handler` runs on the user-interface thread when the user opens the running program again
    /// (its Dock icon, or launching it once more); it shows the main window.
    virtual void setReopenHandler(std::function<void()> handler) = 0;

    /// Whether an update service is built in; without one there is nothing to check.
    [[nodiscard]] virtual bool canCheckForUpdates() const = 0;
    /// Starts the update service's own schedule of background checks; called once at start-up.
    virtual void startUpdater() = 0;
    /// A check the user asked for, with the service's own progress and answer windows.
    virtual void checkForUpdates() = 0;
};

/// The shell integration of the platform the program was built for.
[[nodiscard]] std::unique_ptr<AppShell> makeAppShell();

} // namespace nubo
