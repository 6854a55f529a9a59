#include "app/support/UiWorld.h"
#include "models/app/Jobs.h"

#include "models/activity/ActivityModel.h"
#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakeProcessTable.h"
#include "support/FixtureFiles.h"

#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kOwnPid = 10;

// The activity screen beside a stand-in sidebar, at the width the main window gives it.
const QByteArray kScreen = besideSidebar("ActivityView", "ActivityModel");

class ActivityViewsTest : public UiWorld
{
protected:
    // GIVEN Safari (in front), Xcode (hidden), Mensajes and Nubo itself running, and a menu-bar
    // agent that is not listed.
    void SetUp() override
    {
        UiWorld::SetUp();
        app(101, "Safari", 1'200'000'000);
        app(102, "Xcode", 3'400'000'000).hidden = true;
        app(103, "Mensajes", 2'000'000'000);
        app(kOwnPid, "Nubo", 95'000'000);
        m_workspace.running.first().active = true;
        app(104, "Agente", 20'000'000).regular = false;
        m_table.pages = ProcessTable::MemoryPages{16384, 400'000, 80'000, 0, 90'000};
        m_table.physical = 17'179'869'184;
        m_accessibility.trusted = true;
    }

    void TearDown() override
    {
        UiWorld::TearDown(); // the views go before the model they bind to
        m_model.reset();
        EXPECT_TRUE(nubo::Jobs::waitForAll(std::chrono::seconds(10)));
    }

    RunningApplication& app(qint64 pid, const char* name, quint64 memory)
    {
        RunningApplication running;
        running.pid = pid;
        running.name = QString::fromUtf8(name);
        running.bundlePath = QStringLiteral("/Applications/") + running.name + QStringLiteral(".app");
        running.regular = true;
        m_workspace.running << running;
        m_table.add(qint32(pid), (running.bundlePath + QStringLiteral("/Contents/MacOS/main")).toUtf8(), 0, memory);
        return m_workspace.running.last();
    }

    ActivityModel& model()
    {
        if (!m_model)
            m_model = std::make_unique<ActivityModel>(
                ActivityModel::Services{m_workspace, m_table, m_accessibility, m_login, kOwnPid, 1h, 20ms});
        return *m_model;
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

    void refreshed()
    {
        QSignalSpy spy(&model(), &ActivityModel::refreshed);
        model().refresh();
        ASSERT_TRUE(spy.wait(5000));
        QTest::qWait(Settle);
    }

    QQuickWindow* screen()
    {
        return window(kScreen, {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                                {QStringLiteral("model"), QVariant::fromValue(&model())}});
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

    FakeProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
    std::unique_ptr<ActivityModel> m_model;
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
    EXPECT_TRUE(in(row(*window, 102), "hiddenTag")->isVisible());
    EXPECT_FALSE(in(row(*window, 101), "hiddenTag")->isVisible());

    // Ordered by processor first (Safari above Mensajes); the picker switches to memory, which
    // swaps them. Which order is right is ActivityModelTest's.
    EXPECT_LT(row(*window, 101)->y(), row(*window, 103)->y());
    press(visual(window->contentItem(), QStringLiteral("segment-Memoria")));
    EXPECT_EQ(model().sort(), ActivityModel::Sort::memory);
    QTest::qWait(Settle); // the rows slide into their new places
    EXPECT_LT(row(*window, 103)->y(), row(*window, 101)->y());
    snapshot(*window, DefaultSize, QStringLiteral("activity-by-memory-default"));

    // A refresh updates the rows in place: the row under the pointer is the same item, so a
    // click on it cannot be lost to a rebuilt table.
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
    // The toolbar acts on every app but Nubo (which apps "all" takes: ActivityModelTest); row
    // buttons act on their own.
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

    // Force quit from the row or the menu only asks; "Cancelar" and Escape end nothing.
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
    // The confirmation's own button ends exactly the app it named.
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

// Where the platform cannot hide or minimise, those actions are not offered.
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
    EXPECT_EQ((QList<bool>{item(*window, QStringLiteral("hideAll"))->isVisible(),
                           item(*window, QStringLiteral("minimizeAll"))->isVisible(),
                           in(safari, "hideAction")->isVisible(), in(safari, "minimizeAction")->isVisible(),
                           in(safari, "quitAction")->isVisible()}),
              (QList<bool>{false, false, false, false, true}));
    press(safari, Qt::RightButton);
    for (const char* absent : {"menuActivate", "menuMinimize", "menuHide"})
        EXPECT_FALSE(item(*window, QString::fromUtf8(absent))->isVisible()) << absent;
    EXPECT_TRUE(item(*window, QStringLiteral("menuQuit"))->isVisible());
    snapshot(*window, DefaultSize, QStringLiteral("activity-linux-menu-default"));
}
