#include "../support/ModelWorld.h"
#include "models/app/ShellController.h"
#include "platform/fake/FakeAppShell.h"

#include <tuple>

using namespace nubo;
using namespace nubo::test;

using ShellControllerTest = ModelWorld;

// How the window, the reopening and the map commands reach the controller is WindowShellTest's,
// and the panel's way back to the main window MenuBarPanelTest's. Here: becoming active refreshes
// the disk figures, and updates are checked only where there is an updater.
TEST_F(ShellControllerTest, BecomingActiveRefreshesTheDiskAndUpdatesAreCheckedOnlyWithAnUpdater)
{
    for (const bool updater : {false, true}) {
        FakeAppShell shell;
        shell.updates = updater;
        ShellController controller(state(), shell);
        const qint64 available = updater ? 600'000'000'000 : 500'000'000'000;
        m_volume.answer = {1'000'000'000'000, available, 0};
        controller.applicationActivated();
        controller.checkForUpdates();
        EXPECT_EQ(std::tuple(state().diskAvailable(), controller.canCheckForUpdates(), shell.checks),
                  std::tuple(available, updater, updater ? 1 : 0));
    }
}
