#include "app/support/UiWorld.h"
#include "support/Eventually.h"

#include "app/ui/UiEngine.h"
#include "models/app/ShellController.h"
#include "platform/fake/FakeAppShell.h"
#include "platform/fake/FakeWorkspace.h"

#include <QElapsedTimer>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <atomic>

using namespace nubo;
using namespace nubo::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 MiB = 1'048'576;

// The main window with its shell controller over a fake platform shell; the state is made here
// over an access probe the test can flip, and a workspace that records the pages it opens.
class WindowShellTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000};
    }
    void TearDown() override
    {
        m_engine.reset();
        m_controller.reset();
        m_ownState.reset();
        UiWorld::TearDown();
    }

    AppState& grantedState()
    {
        m_granted = true;
        return ownState();
    }
    AppState& ownState()
    {
        if (!m_ownState)
            m_ownState = std::make_unique<AppState>(
                AppState::Services{m_probePrivacy, m_volume, m_toast, m_services, &m_openPages});
        return *m_ownState;
    }

    QQuickWindow& shellWindow(AppState& state)
    {
        m_controller = std::make_unique<ShellController>(state, m_shell);
        m_controller->start();
        QQuickWindow* window = UiEngine::loadMainWindow(*m_engine, state, m_controller.get());
        EXPECT_NE(window, nullptr);
        UiEngine::attachShell(*window, *m_controller);
        QTest::qWait(Settle);
        return *window;
    }

    QObject* sheet(QQuickWindow& window) const
    {
        return window.findChild<QObject*>(QStringLiteral("permissionSheet"));
    }

    std::atomic<bool> m_granted = false;
    std::atomic<int> m_probes = 0;
    Privacy m_probePrivacy{QStringLiteral("/nowhere"), [this] {
                               ++m_probes;
                               return m_granted.load();
                           }};
    FakeWorkspace m_openPages;
    FakeAppShell m_shell;
    std::unique_ptr<AppState> m_ownState;
    std::unique_ptr<ShellController> m_controller;
};

} // namespace

TEST_F(WindowShellTest, ClickingASidebarRowSwitchesThePane)
{
    QQuickWindow& window = shellWindow(grantedState());
    for (const char* pane : {"map", "performance", "home"}) {
        click(named(window, QStringLiteral("pane:") + QString::fromUtf8(pane)));
        EXPECT_EQ(ownState().section(), QString::fromUtf8(pane));
    }
    EXPECT_EQ(ownState().sectionIndex(), 0);
}

TEST_F(WindowShellTest, TheCleanBadgeFollowsTheSelectionAndTheMapBadgeCountsMarks)
{
    QQuickWindow& window = shellWindow(grantedState());
    QQuickItem* cleanRow = visual(window.contentItem(), QStringLiteral("pane:clean"));
    QQuickItem* mapRow = visual(window.contentItem(), QStringLiteral("pane:map"));
    ASSERT_TRUE(cleanRow && mapRow);
    QQuickItem* cleanBadge = visual(cleanRow, QStringLiteral("badge"));
    QQuickItem* mapBadge = visual(mapRow, QStringLiteral("badge"));
    ASSERT_TRUE(cleanBadge && mapBadge);
    EXPECT_FALSE(cleanBadge->isVisible());
    EXPECT_FALSE(mapBadge->isVisible());

    // A safe category finds 1.2 GB (claimed at discovery) and starts selected.
    const QString safe = categoriesSelectedByDefault(true).first();
    file(QStringLiteral("home/Library/Caches/big"), 10);
    const QString home = m_roots.home;
    rule(safe, [home] {
        return QList<CleanItem>{
            CleanItem::atPath(home + QStringLiteral("/Library/Caches/big"), home, std::nullopt, 1'200'000'000)};
    });
    ownState().clean()->scan();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !ownState().clean()->isScanning(); }, 10000));
    EXPECT_TRUE(cleanBadge->isVisible());
    EXPECT_EQ(ownState().cleanBadge(), QStringLiteral("1,2 GB"));
    ownState().clean()->toggleCategory(safe);
    EXPECT_FALSE(cleanBadge->isVisible()) << "nothing selected: no badge";

    // Two marked folders of several megabytes: the badge says 2, not their size.
    file(QStringLiteral("home/Projects/a/x.bin"), 5 * MiB);
    file(QStringLiteral("home/Archive/y.bin"), 6 * MiB);
    ownState().map()->scanHome();
    ASSERT_TRUE(QTest::qWaitFor([this] { return ownState().map()->hasTree(); }, 10000));
    const MapNodeModel& rows = *ownState().map()->children();
    for (int row = 0; row < rows.rowCount(); ++row) {
        if (rows.nodeAt(row)->name() == QStringLiteral("Projects") || rows.nodeAt(row)->name() == QStringLiteral("Archive"))
            ownState().map()->toggleMarkRow(row);
    }
    EXPECT_TRUE(mapBadge->isVisible());
    EXPECT_EQ(mapBadge->childItems().first()->property("text").toString(), QStringLiteral("2"));
    snapshot(window, DefaultSize, QStringLiteral("main-badges-default"));
}

TEST_F(WindowShellTest, NotNowClosesTheGuidanceWithoutTouchingAccess)
{
    QQuickWindow& window = shellWindow(ownState());
    ASSERT_TRUE(ownState().showPermissions());
    QObject* guidance = sheet(window);
    ASSERT_NE(guidance, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([guidance] { return guidance->property("opened").toBool(); }, 2000));
    snapshots(window, QStringLiteral("permission-sheet"));
    EXPECT_TRUE(item(window, QStringLiteral("fullDiskAccessCard"))->isVisible());

    click(named(window, QStringLiteral("openSettingsButton")));
    EXPECT_EQ(m_openPages.openedUrls.size(), 1);
    EXPECT_TRUE(guidance->property("visible").toBool()) << "opening the settings keeps the sheet";

    const int probes = m_probes;
    click(named(window, QStringLiteral("notNowButton")));
    QTest::qWait(Settle);
    EXPECT_FALSE(ownState().showPermissions());
    EXPECT_FALSE(guidance->property("visible").toBool());
    EXPECT_FALSE(ownState().hasFullDiskAccess());
    EXPECT_EQ(m_probes, probes) << "dismissing probes nothing";
    // The card stays as the reminder, and its check finds nothing new.
    EXPECT_TRUE(item(window, QStringLiteral("fullDiskAccessCard"))->isVisible());
    click(named(window, QStringLiteral("cardCheck")));
    EXPECT_EQ(m_probes, probes + 1);
    EXPECT_FALSE(ownState().showPermissions());
}

TEST_F(WindowShellTest, TheGuidanceClosesBySelfSoonAfterAccessAppears)
{
    QQuickWindow& window = shellWindow(ownState());
    QObject* guidance = sheet(window);
    ASSERT_NE(guidance, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([guidance] { return guidance->property("opened").toBool(); }, 2000));
    EXPECT_EQ(guidance->property("pollInterval").toInt(), 2000);
    QTest::qWait(300);
    EXPECT_TRUE(guidance->property("visible").toBool());

    // The user grants access in the settings; the sheet's own polling sees it within one period.
    m_granted = true;
    QElapsedTimer waited;
    waited.start();
    ASSERT_TRUE(eventually([&] { return !guidance->property("visible").toBool(); }, 3000));
    EXPECT_LT(waited.elapsed(), 2600);
    EXPECT_TRUE(ownState().hasFullDiskAccess());
    EXPECT_FALSE(item(window, QStringLiteral("fullDiskAccessCard"))->isVisible());
}

TEST_F(WindowShellTest, ClosingKeepsTheAppAsAnAccessoryAndReopeningShowsTheWindow)
{
    QQuickWindow& window = shellWindow(grantedState());
    ASSERT_TRUE(window.isVisible());
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Regular);

    window.close();
    ASSERT_TRUE(eventually([&] { return !window.isVisible(); }));
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Accessory);

    m_shell.reopen();
    ASSERT_TRUE(eventually([&] { return window.isVisible(); }));
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Regular);
}

TEST_F(WindowShellTest, MenuCommandsScanAgainClimbAndOfferOnlyWhatExists)
{
    file(QStringLiteral("home/Projects/app/data.bin"), 5 * MiB);
    QQuickWindow& window = shellWindow(grantedState());
    window.requestActivate();
    ASSERT_TRUE(eventually([&] { return window.isActive() || QGuiApplication::focusWindow() == &window; }));

    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(ownState().section(), QStringLiteral("map"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return ownState().map()->hasTree(); }, 10000));

    const MapNodeModel& children = *ownState().map()->children();
    for (int row = 0; row < children.rowCount(); ++row) {
        if (children.nodeAt(row)->name() == QStringLiteral("Projects"))
            ownState().map()->openRow(row);
    }
    ASSERT_TRUE(ownState().map()->canGoUp());
    QTest::keyClick(&window, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_FALSE(ownState().map()->canGoUp());

    // The window's own menu: no updater here, no tray in the test, so the panel is offered.
    click(named(window, QStringLiteral("appMenuButton")));
    QTest::qWait(Settle);
    QQuickItem* updates = visual(window.contentItem(), QStringLiteral("menuUpdates"));
    QQuickItem* panel = visual(window.contentItem(), QStringLiteral("menuPanel"));
    ASSERT_TRUE(updates && panel);
    EXPECT_FALSE(updates->isVisible());
    EXPECT_TRUE(panel->isVisible());
    QSignalSpy panelAsked(m_controller.get(), &ShellController::panelRequested);
    click(*panel);
    EXPECT_EQ(panelAsked.count(), 1);
}
