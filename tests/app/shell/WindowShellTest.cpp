#include "app/support/UiWorld.h"
#include "support/Eventually.h"

#include "app/ui/UiEngine.h"
#include "models/app/ShellController.h"
#include "platform/fake/FakeAppShell.h"
#include "platform/fake/FakeWorkspace.h"

#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <tuple>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

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
        // The toast stays until dismissed, however slowly a sanitizer build draws the snapshots.
        m_toast = std::chrono::minutes(1);
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000}; // a 1 TB Mac, 82 % full
    }
    void TearDown() override
    {
        m_engine.reset();
        m_controller.reset();
        m_ownState.reset();
        UiWorld::TearDown();
    }

    AppState& ownState()
    {
        if (!m_ownState)
            m_ownState = std::make_unique<AppState>(
                AppState::Services{m_probePrivacy, m_volume, m_toast, m_services, &m_openPages});
        return *m_ownState;
    }

    QQuickWindow& shellWindow()
    {
        m_controller = std::make_unique<ShellController>(ownState(), m_shell);
        m_controller->start();
        QQuickWindow* window = UiEngine::loadMainWindow(*m_engine, ownState(), m_controller.get());
        EXPECT_NE(window, nullptr);
        UiEngine::attachShell(*window, *m_controller);
        QTest::qWait(Settle);
        return *window;
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

// One pass through the window with access granted: the panes, the sidebar's badges, the map's
// keyboard commands, the toast, the window's own menu, and closing to the menu bar and reopening.
TEST_F(WindowShellTest, WalkThroughTheWindow)
{
    file(u"home/Projects/a/x.bin"_s, 5 * MiB);
    file(u"home/Archive/y.bin"_s, 6 * MiB);
    m_granted = true;
    QQuickWindow& window = shellWindow();
    EXPECT_EQ(window.minimumSize(), MinimumSize);
    for (const QSize size : {DefaultSize, MinimumSize}) {
        const QString suffix = size == DefaultSize ? u"default"_s : u"minimum"_s;
        ownState().setSection(u"home"_s);
        const QImage home = snapshot(window, size, u"main-home-"_s + suffix);
        ASSERT_EQ(home.size(), size * window.devicePixelRatio());
        EXPECT_GT(distinctColours(home), 8) << "the window looks empty";
        ownState().setSection(u"map"_s);
        EXPECT_NE(snapshot(window, size, u"main-map-"_s + suffix), home);
    }
    for (const char* pane : {"map", "performance", "home"}) {
        click(named(window, u"pane:"_s + QString::fromUtf8(pane)));
        EXPECT_EQ(ownState().section(), QString::fromUtf8(pane));
    }

    // The clean badge shows while a found category is selected.
    QQuickItem* cleanBadge = in(&named(window, u"pane:clean"_s), "badge");
    QQuickItem* mapBadge = in(&named(window, u"pane:map"_s), "badge");
    ASSERT_TRUE(cleanBadge && mapBadge);
    EXPECT_FALSE(cleanBadge->isVisible() || mapBadge->isVisible());
    const QString safe = categoriesSelectedByDefault(true).first();
    file(u"home/Library/Caches/big"_s, 10);
    const QString home = m_roots.home;
    rule(safe, [home] {
        return QList<CleanItem>{CleanItem::atPath(home + u"/Library/Caches/big"_s, home, std::nullopt, 1'200'000'000)};
    });
    ownState().clean()->scan();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !ownState().clean()->isScanning(); }, 10000));
    EXPECT_TRUE(cleanBadge->isVisible());
    ownState().clean()->toggleCategory(safe);
    EXPECT_FALSE(cleanBadge->isVisible()) << "nothing selected: no badge";

    // Ctrl+R scans the map without leaving the pane; Ctrl+Up climbs.
    window.requestActivate();
    ASSERT_TRUE(eventually([&] { return window.isActive() || QGuiApplication::focusWindow() == &window; }));
    QTest::keyClick(&window, Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return ownState().map()->hasTree() && !ownState().map()->isScanning(); }, 10000));
    EXPECT_EQ(ownState().section(), u"home"_s);
    MapModel& map = *ownState().map();
    const auto row = [&map](const char* name) {
        for (int at = 0; at < map.children()->rowCount(); ++at) {
            if (map.children()->nodeAt(at)->name() == QLatin1String(name))
                return at;
        }
        return -1;
    };
    map.openRow(row("Projects"));
    ASSERT_TRUE(map.canGoUp());
    QTest::keyClick(&window, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_FALSE(map.canGoUp());
    // Two marked folders of several megabytes: the map badge says 2, not their size.
    map.toggleMarkRow(row("Projects"));
    map.toggleMarkRow(row("Archive"));
    EXPECT_TRUE(mapBadge->isVisible());
    EXPECT_EQ(mapBadge->childItems().first()->property("text").toString(), u"2"_s);
    snapshot(window, DefaultSize, u"main-badges-default"_s);

    // The toast of a deletion floats over the detail, inside the window at both sizes.
    ownState().report(5'000'000'000, 2);
    QQuickItem& toast = named(window, u"toast"_s);
    for (const QSize size : {DefaultSize, MinimumSize}) {
        // It fades in over frames, which a sanitizer build draws slowly.
        EXPECT_TRUE(QTest::qWaitFor([&toast] { return toast.isVisible(); }, 5000));
        snapshot(window, size, u"main-toast-"_s + (size == DefaultSize ? u"default"_s : u"minimum"_s));
        EXPECT_TRUE(QTest::qWaitFor([&] { return toast.y() + toast.height() <= qreal(size.height()); }, 5000))
            << toast.y() + toast.height() << " > " << size.height();
    }
    EXPECT_TRUE(named(window, u"freedToday"_s).isVisible());
    const QString said = toast.property("headline").toString();
    ownState().dismissToast();
    // While it slides away it still says what it said, never an empty box.
    EXPECT_TRUE(toast.isVisible());
    EXPECT_EQ(toast.property("headline").toString(), said);
    EXPECT_FALSE(said.isEmpty());
    QTest::qWait(Settle * 2);
    EXPECT_FALSE(toast.isVisible());

    // The window's own menu offers "Subir un nivel" once there is a level to climb (so it heard
    // the change), no updates here and, with no tray in the test, the panel.
    map.openRow(row("Projects"));
    click(named(window, u"appMenuButton"_s));
    QTest::qWait(Settle);
    QQuickItem* goUp = visual(window.contentItem(), u"menuGoUp"_s);
    QQuickItem* updates = visual(window.contentItem(), u"menuUpdates"_s);
    QQuickItem* panel = visual(window.contentItem(), u"menuPanel"_s);
    ASSERT_TRUE(goUp && updates && panel);
    EXPECT_EQ(std::tuple(goUp->isEnabled(), updates->isVisible(), panel->isVisible()), std::tuple(true, false, true));
    QSignalSpy panelAsked(m_controller.get(), &ShellController::panelRequested);
    click(*panel);
    EXPECT_EQ(panelAsked.count(), 1);

    // Closing keeps the app as an accessory; reopening shows the window again on the pane left.
    ownState().setSection(u"performance"_s);
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Regular);
    window.close();
    ASSERT_TRUE(eventually([&] { return !window.isVisible(); }));
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Accessory);
    m_shell.reopen();
    ASSERT_TRUE(eventually([&] { return window.isVisible(); }));
    EXPECT_EQ(std::tuple(m_shell.presences.last(), ownState().section()),
              std::tuple(AppShell::Presence::Regular, u"performance"_s));
}

// Without access the guidance opens: "Ahora no" closes it without touching access, and once
// reopened it closes by itself within one poll after access appears.
TEST_F(WindowShellTest, ThePermissionGuidance)
{
    QQuickWindow& window = shellWindow();
    ASSERT_TRUE(ownState().showPermissions());
    auto* guidance = window.findChild<QObject*>(u"permissionSheet"_s);
    ASSERT_NE(guidance, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([guidance] { return guidance->property("opened").toBool(); }, 2000));
    snapshots(window, u"permission-sheet"_s);
    QQuickItem& card = named(window, u"fullDiskAccessCard"_s);
    EXPECT_TRUE(card.isVisible());

    click(named(window, u"openSettingsButton"_s));
    EXPECT_EQ(m_openPages.openedUrls.size(), 1);
    EXPECT_TRUE(guidance->property("visible").toBool()) << "opening the settings keeps the sheet";
    const int probes = m_probes;
    click(named(window, u"notNowButton"_s));
    QTest::qWait(Settle);
    EXPECT_FALSE(ownState().showPermissions() || guidance->property("visible").toBool() ||
                 ownState().hasFullDiskAccess());
    EXPECT_EQ(m_probes, probes) << "dismissing probes nothing";
    // The card stays as the reminder, and its check finds nothing new.
    EXPECT_TRUE(card.isVisible());
    click(named(window, u"cardCheck"_s));
    EXPECT_EQ(m_probes, probes + 1);
    EXPECT_FALSE(ownState().showPermissions());

    // The user grants access in the settings; the sheet's own polling sees it within one period.
    ownState().setShowPermissions(true);
    ASSERT_TRUE(QTest::qWaitFor([guidance] { return guidance->property("opened").toBool(); }, 2000));
    m_granted = true;
    ASSERT_TRUE(eventually([&] { return !guidance->property("visible").toBool(); }, 2600));
    EXPECT_TRUE(ownState().hasFullDiskAccess());
    EXPECT_FALSE(card.isVisible());
}

// The shared pieces the feature screens use, on one page so their looks can be checked (how the
// confirmation answers is each screen's own test).
TEST_F(WindowShellTest, SharedPiecesCheckCirclesAndTheDeleteConfirmation)
{
    QQuickWindow* gallery = window(R"(
import QtQuick
import QtQuick.Controls
import Nubo
ApplicationWindow {
    width: 640; height: 420; visible: true
    color: Theme.windowBackground
    Row {
        x: 24; y: 24; spacing: 16
        CheckCircle { objectName: "off"; mode: "off" }
        CheckCircle { objectName: "partial"; mode: "partial" }
        CheckCircle { objectName: "on"; mode: "on"; tint: Theme.green }
    }
    DeleteConfirmation { objectName: "confirmation"; count: 3; size: 1200000000 }
}
)");
    ASSERT_NE(gallery, nullptr);
    QObject* confirmation = gallery->findChild<QObject*>(u"confirmation"_s);
    ASSERT_NE(confirmation, nullptr);
    QMetaObject::invokeMethod(confirmation, "open");
    snapshot(*gallery, QSize(640, 420), u"shared-pieces"_s);
}
