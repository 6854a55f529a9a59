#include "app/support/UiWorld.h"
#include "models/app/Jobs.h"
#include "support/Eventually.h"

#include "app/menubar/MenuBarPresenter.h"
#include "models/activity/ActivityModel.h"
#include "models/app/ShellController.h"
#include "platform/SymbolImages.h"
#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeAppShell.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakeProcessTable.h"
#include "platform/fake/FakeWorkspace.h"

#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kOwnPid = 10;
constexpr qint64 GB = 1'000'000'000;

// The panel over the world's state and a fixture activity model: nine running apps (our own
// among them) with different footprints, listed by memory.
class MenuBarPanelTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        const char* names[] = {"Safari", "Xcode", "Mail", "Música", "Fotos", "Notas", "Slack", "Zoom"};
        qint64 pid = 100;
        qint64 footprint = 3 * GB;
        for (const char* name : names)
            addApp(pid++, QString::fromUtf8(name), footprint -= 300'000'000);
        addApp(kOwnPid, QStringLiteral("Nubo"), 90'000'000);
        m_table.physical = 16 * GB;
        m_table.pages = ProcessTable::MemoryPages{4096, 3'000'000, 0, 0, 0};
    }
    // The views go first (with the engine), then what they bound to.
    void TearDown() override
    {
        m_presenter.reset();
        UiWorld::TearDown();
        m_controller.reset();
        m_activity.reset();
        EXPECT_TRUE(nubo::Jobs::waitForAll(std::chrono::seconds(10)));
    }

    void addApp(qint64 pid, const QString& name, qint64 footprint)
    {
        RunningApplication app;
        app.pid = pid;
        app.name = name;
        app.bundlePath = QStringLiteral("/Applications/") + name + QStringLiteral(".app");
        app.regular = true;
        m_workspace.running.append(app);
        m_table.add(qint32(pid), (app.bundlePath + QStringLiteral("/Contents/MacOS/x")).toUtf8(), 0,
                    quint64(footprint));
    }

    ActivityModel& activity()
    {
        if (!m_activity) {
            m_activity = std::make_unique<ActivityModel>(
                ActivityModel::Services{m_workspace, m_table, m_accessibility, m_login, kOwnPid, 1h, 20ms});
            m_activity->setSortLabel(QStringLiteral("Memoria"));
            QSignalSpy refreshed(m_activity.get(), &ActivityModel::refreshed);
            m_activity->refresh();
            EXPECT_TRUE(refreshed.wait(5000));
        }
        return *m_activity;
    }

    ShellController& controller()
    {
        if (!m_controller)
            m_controller = std::make_unique<ShellController>(state(), m_shell);
        return *m_controller;
    }

    // The panel on a plain page, the way the menu bar's window holds it.
    QQuickWindow* page()
    {
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

    QStringList shownApps(QQuickWindow& window) const
    {
        QStringList names;
        QQuickItem* repeater = item(window, QStringLiteral("topApps"));
        for (int i = 0; i < repeater->property("count").toInt(); ++i) {
            QQuickItem* row = nullptr;
            QMetaObject::invokeMethod(repeater, "itemAt", Q_RETURN_ARG(QQuickItem*, row), Q_ARG(int, i));
            const QVariantMap app = row->property("app").toMap();
            names << app.value(QStringLiteral("name")).toString() + QLatin1Char(' ') +
                         app.value(QStringLiteral("figure")).toString();
        }
        return names;
    }

    static QString meterText(QQuickWindow& window, const QString& meter)
    {
        return item(window, meter)->findChild<QQuickItem*>(QStringLiteral("meterPercent"))->property("text").toString();
    }

    FakeWorkspace m_workspace;
    FakeProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
    FakeAppShell m_shell;
    std::unique_ptr<ActivityModel> m_activity;
    std::unique_ptr<ShellController> m_controller;
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
    ASSERT_NE(confirmation, nullptr);
    QQuickItem* first = nullptr;
    QMetaObject::invokeMethod(item(*window, QStringLiteral("topApps")), "itemAt", Q_RETURN_ARG(QQuickItem*, first),
                              Q_ARG(int, 0));
    ASSERT_NE(first, nullptr);
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
    EXPECT_EQ(state().section(), QStringLiteral("home"));
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(m_shell.presences.last(), AppShell::Presence::Regular);
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

TEST_F(MenuBarPanelTest, WithoutATrayThePanelOpensOnRequestAndRefreshesTheDisk)
{
    (void)activity();
    const std::unique_ptr<SymbolImages> symbols = makeSymbolImages();
    m_presenter = std::make_unique<MenuBarPresenter>(*m_engine, state(), controller(), *symbols, false);
    ASSERT_NE(m_presenter->panel(), nullptr);
    EXPECT_FALSE(controller().hasTray());
    EXPECT_FALSE(controller().keepsRunningWithoutWindow(false)) << "no way back without a tray or a Dock";
    EXPECT_TRUE(controller().keepsRunningWithoutWindow(true));

    m_volume.answer = {1'000'000'000'000, 400'000'000'000, 400'000'000'000};
    QSignalSpy disk(&state(), &AppState::diskChanged);
    controller().showPanel();
    ASSERT_TRUE(eventually([&] { return m_presenter->panel()->isVisible(); }));
    ASSERT_TRUE(eventually([&] { return disk.count() == 1; })); // each appearance refreshes the figures
    EXPECT_EQ(state().diskAvailable(), 400'000'000'000);
    m_presenter->toggle();
    EXPECT_FALSE(m_presenter->panel()->isVisible());
    // The click that took the focus from the panel (and so closed it) does not reopen it…
    m_presenter->toggle();
    EXPECT_FALSE(m_presenter->panel()->isVisible());
    // …a later one does.
    QTest::qWait(350);
    m_presenter->toggle();
    EXPECT_TRUE(m_presenter->panel()->isVisible());
}
