#include "../support/ModelWorld.h"
#include "models/app/ShellController.h"
#include "platform/fake/FakeAppShell.h"

#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;

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
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(m_shell.presences.last(), Presence::Regular);
    EXPECT_EQ(state().pane(), Pane::Apps);

    // The panel's cleanup row opens it on the home pane.
    controller.openMainWindow();
    EXPECT_EQ(shown.count(), 2);
    EXPECT_EQ(state().pane(), Pane::Home);
}

TEST_F(ShellControllerTest, BecomingActiveRefreshesTheDiskAndUpdatesAreCheckedOnlyWithAnUpdater)
{
    ShellController none(state(), m_shell);
    m_volume.answer = {1'000'000'000'000, 600'000'000'000, 550'000'000'000};
    none.applicationActivated();
    EXPECT_EQ(state().diskAvailable(), 600'000'000'000);
    EXPECT_FALSE(none.canCheckForUpdates());
    none.checkForUpdates();
    EXPECT_EQ(m_shell.checks, 0);

    m_shell.updates = true;
    ShellController some(state(), m_shell);
    EXPECT_TRUE(some.canCheckForUpdates());
    some.checkForUpdates();
    EXPECT_EQ(m_shell.checks, 1);
}

TEST_F(ShellControllerTest, MapCommandsScanTheCurrentScopeAndClimbOneLevel)
{
    file(QStringLiteral("home/Projects/app/data.bin"), 5 * 1024 * 1024);
    ShellController controller(state(), m_shell);
    QSignalSpy canGoUp(&controller, &ShellController::canGoUpChanged);
    EXPECT_FALSE(controller.canGoUp());
    controller.goUp(); // nothing scanned: nothing happens

    controller.rescan();
    EXPECT_EQ(state().pane(), Pane::Map);
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().map()->hasTree(); }, 10000));
    EXPECT_EQ(state().map()->scopePath(), m_roots.home);

    const MapNodeModel& children = *state().map()->children();
    int projects = -1;
    for (int row = 0; row < children.rowCount(); ++row) {
        if (children.nodeAt(row)->name() == QStringLiteral("Projects"))
            projects = row;
    }
    ASSERT_GE(projects, 0);
    state().map()->openRow(projects);
    EXPECT_TRUE(controller.canGoUp());
    EXPECT_GT(canGoUp.count(), 0);
    controller.goUp();
    EXPECT_FALSE(controller.canGoUp());
    EXPECT_EQ(state().map()->currentPath(), m_roots.home);
}
