#include "../support/ModelWorld.h"
#include "models/app/ShellController.h"
#include "platform/fake/FakeAppShell.h"

#include <QSignalSpy>
#include <QTest>
#include <tuple>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

using Presence = AppShell::Presence;

class ShellControllerTest : public ModelWorld
{
protected:
    FakeAppShell m_shell;
};

} // namespace

TEST_F(ShellControllerTest, PresenceFollowsTheMainWindowAndReopenBringsItBack)
{
    ShellController controller(state(), m_shell);
    controller.start();
    EXPECT_EQ(m_shell.starts, 1);
    QSignalSpy shown(&controller, &ShellController::mainWindowRequested);
    controller.mainWindowShown(true);
    controller.mainWindowShown(false);
    EXPECT_EQ(m_shell.presences, (QList<Presence>{Presence::Regular, Presence::Accessory}));
    // Reopening shows the window on the pane the user left, as a regular application again.
    state().setPane(Pane::Apps);
    m_shell.reopen();
    EXPECT_EQ(std::tuple(shown.count(), m_shell.presences.last(), state().pane()),
              std::tuple(1, Presence::Regular, Pane::Apps));
    // The panel's cleanup row opens it on the home pane.
    controller.openMainWindow();
    EXPECT_EQ(std::tuple(shown.count(), state().pane()), std::tuple(2, Pane::Home));
}

TEST_F(ShellControllerTest, BecomingActiveRefreshesTheDiskAndUpdatesAreCheckedOnlyWithAnUpdater)
{
    for (const bool updater : {false, true}) {
        m_shell.updates = updater;
        ShellController controller(state(), m_shell);
        const qint64 available = updater ? 600'000'000'000 : 500'000'000'000;
        m_volume.answer = {1'000'000'000'000, available, 0};
        controller.applicationActivated();
        controller.checkForUpdates();
        EXPECT_EQ(std::tuple(state().diskAvailable(), controller.canCheckForUpdates(), m_shell.checks),
                  std::tuple(available, updater, updater ? 1 : 0));
    }
}

// A scan from the menu leaves the pane alone; climbing stops at the scanned scope.
TEST_F(ShellControllerTest, MapCommandsScanTheCurrentScopeAndClimbOneLevel)
{
    file(u"home/Projects/app/data.bin"_s, 5 * 1024 * 1024);
    ShellController controller(state(), m_shell);
    QSignalSpy canGoUp(&controller, &ShellController::canGoUpChanged);
    controller.goUp(); // nothing scanned: nothing happens
    EXPECT_FALSE(controller.canGoUp());
    controller.rescan();
    EXPECT_EQ(state().pane(), Pane::Home);
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().map()->hasTree(); }, 10000));
    EXPECT_EQ(state().map()->scopePath(), m_roots.home);
    const MapNodeModel& children = *state().map()->children();
    for (int row = 0; row < children.rowCount(); ++row) {
        if (children.nodeAt(row)->name() == u"Projects"_s) {
            state().map()->openRow(row);
            break;
        }
    }
    ASSERT_TRUE(controller.canGoUp());
    EXPECT_GT(canGoUp.count(), 0);
    controller.goUp();
    EXPECT_EQ(std::tuple(controller.canGoUp(), state().map()->currentPath()), std::tuple(false, m_roots.home));
}
