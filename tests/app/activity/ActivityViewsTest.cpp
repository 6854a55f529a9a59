#include "app/activity/ActivityWorld.h"

#include <utility>

using namespace nubo;
using namespace nubo::test;

namespace {

// The activity screen beside a stand-in sidebar, at the width the main window gives it.
const QByteArray kScreen = besideSidebar("ActivityView", "ActivityModel");

// Safari (in front), Xcode (hidden), Mensajes and Nubo itself running, and a menu-bar agent that
// is not listed.
class ActivityViewsTest : public ActivityWorld
{
protected:
    void SetUp() override
    {
        ActivityWorld::SetUp();
        app(101, QStringLiteral("Safari"), 1'200'000'000).active = true;
        app(102, QStringLiteral("Xcode"), 3'400'000'000).hidden = true;
        app(103, QStringLiteral("Mensajes"), 2'000'000'000);
        app(OwnPid, QStringLiteral("Nubo"), 95'000'000);
        app(104, QStringLiteral("Agente"), 20'000'000).regular = false;
        m_table.pages = ProcessTable::MemoryPages{16384, 400'000, 80'000, 0, 90'000};
        m_table.physical = 17'179'869'184;
        m_accessibility.trusted = true;
    }

    // Two samples a second apart: Xcode used 80 % of a core, Safari 13 %.
    void sampled()
    {
        refreshed();
        m_table.clock += 1'000'000'000;
        m_table.processes[101].usage->cpuTime = 130'000'000;
        m_table.processes[102].usage->cpuTime = 800'000'000;
        refreshed();
    }

    QQuickWindow* screen()
    {
        return window(kScreen, {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                                {QStringLiteral("model"), QVariant::fromValue(&activity())}});
    }

    static QQuickItem* row(QQuickWindow& window, qint64 pid)
    {
        return visual(window.contentItem(), QStringLiteral("appRow-") + QString::number(pid));
    }

    // Clicks `target` and lets a menu or a question open or close.
    static void press(QQuickItem* target, Qt::MouseButton button = Qt::LeftButton)
    {
        ASSERT_NE(target, nullptr);
        click(*target, button);
        QTest::qWait(Settle);
    }
};

} // namespace

// One pass through the screen: nothing claimed before the first sample, the table in both
// orders, rows updated in place, the context menu, the toolbar and row buttons, force quit (which
// never acts without its confirmation), no app open, and the main window without a model.
TEST_F(ActivityViewsTest, WalkThroughTheScreen)
{
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    snapshots(*window, QStringLiteral("activity-empty"));
    EXPECT_EQ(text(item(*window, QStringLiteral("emptyTable"))), QStringLiteral("Midiendo…"));
    EXPECT_EQ(text(in(item(*window, QStringLiteral("cpuTile")), "statValue")), QStringLiteral("—"));
    sampled();
    snapshots(*window, QStringLiteral("activity-results"));
    ASSERT_TRUE(row(*window, 101) && row(*window, 102) && row(*window, 103));
    EXPECT_EQ(row(*window, 104), nullptr);
    EXPECT_EQ(std::pair(in(row(*window, 102), "hiddenTag")->isVisible(), in(row(*window, 101), "hiddenTag")->isVisible()),
              std::pair(true, false));

    // Ordered by processor first (Safari above Mensajes); the picker switches to memory, which
    // swaps them once the rows have slid. Which order is right is ActivityModelTest's.
    EXPECT_LT(row(*window, 101)->y(), row(*window, 103)->y());
    press(visual(window->contentItem(), QStringLiteral("segment-Memoria")));
    EXPECT_EQ(activity().sort(), ActivityModel::Sort::memory);
    QTest::qWait(Settle);
    EXPECT_LT(row(*window, 103)->y(), row(*window, 101)->y());
    snapshot(*window, DefaultSize, QStringLiteral("activity-by-memory-default"));

    // A refresh updates the row under the pointer in place, so a click on it is never lost.
    QQuickItem* safari = row(*window, 101);
    m_table.clock += 1'000'000'000;
    m_table.processes[101].usage->cpuTime += 500'000'000;
    refreshed();
    EXPECT_EQ(row(*window, 101), safari);
    EXPECT_EQ(text(in(safari, "appCpu")), QStringLiteral("50.0 %"));

    // The context menu offers "Mostrar" for the hidden app and "Ocultar" for a visible one.
    QObject* menu = window->findChild<QObject*>(QStringLiteral("appMenu"));
    ASSERT_NE(menu, nullptr);
    press(row(*window, 102), Qt::RightButton);
    ASSERT_TRUE(menu->property("visible").toBool());
    EXPECT_EQ(text(item(*window, QStringLiteral("menuHide"))), QStringLiteral("Mostrar"));
    snapshot(*window, DefaultSize, QStringLiteral("activity-menu-default"));
    press(item(*window, QStringLiteral("menuHide")));
    press(row(*window, 101), Qt::RightButton);
    EXPECT_EQ(text(item(*window, QStringLiteral("menuHide"))), QStringLiteral("Ocultar"));
    press(item(*window, QStringLiteral("menuHide")));
    EXPECT_EQ(m_workspace.actions, (QStringList{QStringLiteral("unhide 102"), QStringLiteral("hide 101")}));
    // The toolbar reaches every app but Nubo (which ones: ActivityModelTest); row buttons their own.
    m_workspace.actions.clear();
    press(item(*window, QStringLiteral("hideAll")));
    EXPECT_EQ(m_workspace.actions.filter(QStringLiteral("hide ")).size(), 3);
    press(item(*window, QStringLiteral("minimizeAll")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_accessibility.minimized().size() == 3; }, 5000));
    m_workspace.actions.clear();
    press(in(row(*window, 103), "quitAction"));
    press(in(row(*window, 101), "hideAction"));
    EXPECT_EQ(m_workspace.actions, (QStringList{QStringLiteral("terminate 103"), QStringLiteral("hide 101")}));
    m_workspace.actions.clear();

    // Force quit from the row or the menu only asks; "Cancelar" and Escape end nothing, and the
    // confirmation's own button ends exactly the app it named.
    QObject* confirmation = window->findChild<QObject*>(QStringLiteral("forceQuitConfirmation"));
    ASSERT_NE(confirmation, nullptr);
    press(in(row(*window, 102), "forceQuitAction"));
    EXPECT_TRUE(confirmation->property("visible").toBool());
    snapshots(*window, QStringLiteral("activity-force-quit"));
    press(item(*window, QStringLiteral("forceQuitCancel")));
    EXPECT_FALSE(confirmation->property("visible").toBool());
    press(row(*window, 101), Qt::RightButton);
    press(item(*window, QStringLiteral("menuForceQuit")));
    ASSERT_TRUE(confirmation->property("visible").toBool());
    QTest::keyClick(window, Qt::Key_Escape);
    QTest::qWait(Settle);
    EXPECT_FALSE(confirmation->property("visible").toBool());
    EXPECT_TRUE(m_workspace.actions.isEmpty());
    press(in(row(*window, 102), "forceQuitAction"));
    press(item(*window, QStringLiteral("forceQuitConfirm")));
    EXPECT_EQ(m_workspace.actions, QStringList{QStringLiteral("forceTerminate 102")});

    m_workspace.running.clear();
    refreshed();
    EXPECT_EQ(text(item(*window, QStringLiteral("emptyTable"))), QStringLiteral("No hay apps abiertas"));
    snapshot(*window, MinimumSize, QStringLiteral("activity-none-open-minimum"));
    state().setSection(QStringLiteral("activity"));
    QQuickWindow& main = mainWindow();
    snapshot(main, DefaultSize, QStringLiteral("activity-no-model-default"));
    EXPECT_FALSE(named(main, QStringLiteral("hideAll")).isVisible());
}

// Where the platform cannot hide or minimise, neither the buttons nor the menu offer it.
TEST_F(ActivityViewsTest, ActionsThePlatformCannotDoAreNotOffered)
{
    m_workspace.windowActions = false;
    m_accessibility.supported = false;
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    QTest::qWait(Settle);
    QQuickItem* safari = row(*window, 101);
    ASSERT_NE(safari, nullptr);
    press(safari, Qt::RightButton);
    QList<bool> shown;
    for (const char* name : {"hideAll", "minimizeAll", "menuActivate", "menuMinimize", "menuHide", "menuQuit"})
        shown << item(*window, QString::fromUtf8(name))->isVisible();
    for (const char* name : {"hideAction", "minimizeAction", "quitAction"})
        shown << in(safari, name)->isVisible();
    EXPECT_EQ(shown, (QList<bool>{false, false, false, false, false, true, false, false, true}));
    snapshot(*window, DefaultSize, QStringLiteral("activity-linux-menu-default"));
}
