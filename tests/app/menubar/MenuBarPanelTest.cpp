#include "app/activity/ActivityWorld.h"
#include "support/Eventually.h"

#include "app/menubar/MenuBarPresenter.h"
#include "models/app/ShellController.h"
#include "platform/SymbolImages.h"
#include "platform/fake/FakeAppShell.h"

#include <tuple>

using namespace nubo;
using namespace nubo::test;

namespace {

constexpr qint64 GB = 1'000'000'000;

// The panel over the world's state and an activity model of nine running apps (our own among
// them) with footprints from 2.7 GB down.
class MenuBarPanelTest : public ActivityWorld
{
protected:
    void SetUp() override
    {
        ActivityWorld::SetUp();
        qint64 pid = 100;
        qint64 footprint = 3 * GB;
        for (const char* name : {"Safari", "Xcode", "Mail", "Música", "Fotos", "Notas", "Slack", "Zoom"})
            app(pid++, QString::fromUtf8(name), quint64(footprint -= 300'000'000));
        app(OwnPid, QStringLiteral("Nubo"), 90'000'000);
        m_table.physical = 16 * GB;
        m_table.pages = ProcessTable::MemoryPages{4096, 3'000'000, 0, 0, 0};
    }
    void TearDown() override
    {
        m_presenter.reset(); // the panel's window before the engine it was made in
        ActivityWorld::TearDown();
    }

    ShellController& controller()
    {
        if (!m_controller)
            m_controller = std::make_unique<ShellController>(state(), m_shell);
        return *m_controller;
    }

    // The panel on a plain page, the way the menu bar's window holds it, listing by memory.
    QQuickWindow* page()
    {
        activity().setSortLabel(QStringLiteral("Memoria"));
        refreshed();
        return window(R"(
import QtQuick
import QtQuick.Controls
import Nubo
import Nubo.Models
ApplicationWindow {
    id: page
    required property AppState appState
    required property ActivityModel activity
    required property ShellController shell
    width: 400; height: 720; visible: true
    color: Theme.windowBackground
    MenuBarPanel {
        objectName: "panel"
        x: 40; y: 24
        width: implicitWidth; height: implicitHeight
        appState: page.appState
        activity: page.activity
        shell: page.shell
    }
}
)",
                      {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                       {QStringLiteral("activity"), QVariant::fromValue(&activity())},
                       {QStringLiteral("shell"), QVariant::fromValue(&controller())}});
    }

    static QQuickItem* topApp(QQuickWindow& window, int index)
    {
        QQuickItem* row = nullptr;
        QMetaObject::invokeMethod(item(window, QStringLiteral("topApps")), "itemAt", Q_RETURN_ARG(QQuickItem*, row),
                                  Q_ARG(int, index));
        return row;
    }

    // Each listed app as "<name> <figure>".
    static QStringList shownApps(QQuickWindow& window)
    {
        QStringList names;
        for (int i = 0; i < item(window, QStringLiteral("topApps"))->property("count").toInt(); ++i) {
            const QVariantMap app = topApp(window, i)->property("app").toMap();
            names << app.value(QStringLiteral("name")).toString() + QLatin1Char(' ') +
                         app.value(QStringLiteral("figure")).toString();
        }
        return names;
    }

    static QString meterText(QQuickWindow& window, const QString& meter)
    {
        return item(window, meter)->findChild<QQuickItem*>(QStringLiteral("meterPercent"))->property("text").toString();
    }

    FakeAppShell m_shell;
    std::unique_ptr<ShellController> m_controller;
    std::unique_ptr<SymbolImages> m_symbols; // outlives the presenter that borrows it
    std::unique_ptr<MenuBarPresenter> m_presenter;
};

} // namespace

// One pass through the panel: its figures and the seven heaviest apps, force quit (which waits
// for its confirmation), the quick actions reaching their models, and the order by processor.
TEST_F(MenuBarPanelTest, WalkThroughThePanel)
{
    m_volume.answer = {1'000'000'000'000, 181'000'000'000, 181'000'000'000};
    QQuickWindow* window = page();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(meterText(*window, QStringLiteral("diskMeter")), QStringLiteral("82 %"));
    EXPECT_EQ(meterText(*window, QStringLiteral("memoryMeter")), QStringLiteral("77 %"));
    EXPECT_EQ(shownApps(*window),
              (QStringList{QStringLiteral("Safari 2,7 GB"), QStringLiteral("Xcode 2,4 GB"), QStringLiteral("Mail 2,1 GB"),
                           QStringLiteral("Música 1,8 GB"), QStringLiteral("Fotos 1,5 GB"),
                           QStringLiteral("Notas 1,2 GB"), QStringLiteral("Slack 900 MB")}));
    EXPECT_FALSE(item(*window, QStringLiteral("updatesRow"))->isVisible()) << "no updater on this platform";
    snapshot(*window, QSize(400, 720), QStringLiteral("menubar-panel"));

    QObject* confirmation = window->findChild<QObject*>(QStringLiteral("forceQuitConfirmation"));
    QQuickItem* first = topApp(*window, 0);
    ASSERT_TRUE(confirmation && first);
    QMetaObject::invokeMethod(first, "forceQuitRequested");
    ASSERT_TRUE(eventually([&] { return confirmation->property("opened").toBool(); }));
    snapshot(*window, QSize(400, 720), QStringLiteral("menubar-force-quit"));
    click(*item(*window, QStringLiteral("forceQuitCancel")));
    ASSERT_TRUE(eventually([&] { return !confirmation->property("visible").toBool(); }));
    EXPECT_TRUE(m_workspace.actions.isEmpty()) << "cancel ends nothing";
    QMetaObject::invokeMethod(first, "forceQuitRequested");
    ASSERT_TRUE(eventually([&] { return confirmation->property("opened").toBool(); }));
    click(*item(*window, QStringLiteral("forceQuitConfirm")));
    EXPECT_EQ(m_workspace.actions, QStringList{QStringLiteral("forceTerminate 100")});
    m_workspace.actions.clear();

    QSignalSpy shown(&controller(), &ShellController::mainWindowRequested);
    state().setSection(QStringLiteral("apps"));
    click(*item(*window, QStringLiteral("cleanupRow")));
    EXPECT_EQ(std::tuple(state().section(), shown.count(), m_shell.presences.last()),
              std::tuple(QStringLiteral("home"), 1, AppShell::Presence::Regular));
    click(*item(*window, QStringLiteral("hideAllRow")));
    EXPECT_EQ(m_workspace.actions.size(), 8) << "every app but ours";
    QQuickItem* toggle = item(*window, QStringLiteral("launchAtLoginRow"))->findChild<QQuickItem*>(QStringLiteral("toggle"));
    ASSERT_NE(toggle, nullptr);
    click(*toggle);
    ASSERT_TRUE(eventually([&] { return m_login.registered && toggle->property("checked").toBool(); }));
    QSignalSpy quit(&controller(), &ShellController::quitRequested);
    click(*item(*window, QStringLiteral("quitRow")));
    EXPECT_EQ(quit.count(), 1);

    // By processor share the figures turn into whole percentages.
    activity().setSortLabel(QStringLiteral("CPU"));
    EXPECT_TRUE(shownApps(*window).first().endsWith(QStringLiteral(" %")));
}

// Without a tray the panel opens on request and each appearance refreshes the disk figures; the
// click that took the focus from the panel (and so closed it) does not reopen it, a later one does.
TEST_F(MenuBarPanelTest, WithoutATrayThePanelOpensOnRequestAndRefreshesTheDisk)
{
    m_symbols = makeSymbolImages();
    m_presenter = std::make_unique<MenuBarPresenter>(*m_engine, state(), controller(), *m_symbols, false);
    ASSERT_NE(m_presenter->panel(), nullptr);
    // Closing the window with no tray and no Dock would leave no way back.
    EXPECT_EQ(std::tuple(controller().hasTray(), controller().keepsRunningWithoutWindow(false),
                         controller().keepsRunningWithoutWindow(true)),
              std::tuple(false, false, true));

    m_volume.answer = {1'000'000'000'000, 400'000'000'000, 400'000'000'000};
    QSignalSpy disk(&state(), &AppState::diskChanged);
    controller().showPanel();
    ASSERT_TRUE(eventually([&] { return m_presenter->panel()->isVisible(); }));
    ASSERT_TRUE(eventually([&] { return disk.count() == 1; }));
    EXPECT_EQ(state().diskAvailable(), 400'000'000'000);
    m_presenter->toggle();
    EXPECT_FALSE(m_presenter->panel()->isVisible());
    m_presenter->toggle();
    EXPECT_FALSE(m_presenter->panel()->isVisible());
    QTest::qWait(350);
    m_presenter->toggle();
    EXPECT_TRUE(m_presenter->panel()->isVisible());
}
