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
    // GIVEN Safari (in front), Xcode (hidden), Mensajes and Nubo itself running, a menu-bar agent
    // that is not listed, and a second sample in which Safari and Xcode were busy.
    void SetUp() override
    {
        UiWorld::SetUp();
        app(101, "Safari", 1'200'000'000);
        app(102, "Xcode", 3'400'000'000).hidden = true;
        app(103, "Mensajes", 2'000'000'000);
        app(kOwnPid, "Nubo", 95'000'000);
        m_workspace.running.first().active = true;
        RunningApplication& agent = app(104, "Agente", 20'000'000);
        agent.regular = false;
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

    [[nodiscard]] bool forceQuitAsked() const
    {
        return std::any_of(m_workspace.actions.cbegin(), m_workspace.actions.cend(),
                           [](const QString& action) { return action.startsWith(QLatin1String("forceTerminate")); });
    }

    FakeProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
    std::unique_ptr<ActivityModel> m_model;
};

} // namespace

TEST_F(ActivityViewsTest, TilesAndTableShowTheSampleInTheChosenOrder)
{
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    snapshots(*window, QStringLiteral("activity-results"));

    // The menu-bar agent is not an open app; Nubo itself is.
    EXPECT_EQ(text(in(item(*window, QStringLiteral("appsTile")), "statValue")), QStringLiteral("4"));

    QQuickItem* xcode = row(*window, 102);
    ASSERT_NE(xcode, nullptr);
    EXPECT_TRUE(in(xcode, "hiddenTag")->isVisible());
    EXPECT_FALSE(in(row(*window, 101), "hiddenTag")->isVisible());
    EXPECT_EQ(row(*window, 104), nullptr);

    // Ordered by processor first (Safari above Mensajes); the picker switches to memory, which
    // swaps them. Which order is right is ActivityModelTest's.
    EXPECT_LT(row(*window, 101)->y(), row(*window, 103)->y());
    QQuickItem* memory = visual(window->contentItem(), QStringLiteral("segment-Memoria"));
    ASSERT_NE(memory, nullptr);
    click(*memory);
    EXPECT_EQ(model().sort(), ActivityModel::Sort::memory);
    QTest::qWait(Settle * 2); // the rows slide into their new places
    EXPECT_LT(row(*window, 103)->y(), row(*window, 101)->y());
    snapshot(*window, DefaultSize, QStringLiteral("activity-by-memory-default"));

    // A refresh updates the figures of the rows in place: the row under the pointer is the same
    // item, so a click on it cannot be lost to a rebuilt table.
    QQuickItem* safari = row(*window, 101);
    m_table.clock += 1'000'000'000;
    m_table.processes[101].usage->cpuTime += 500'000'000;
    refreshed();
    QTest::qWait(Settle);
    EXPECT_EQ(row(*window, 101), safari);
    EXPECT_EQ(text(in(safari, "appCpu")), QStringLiteral("50.0 %"));
}

TEST_F(ActivityViewsTest, BeforeTheFirstSampleAndWithoutAModelTheScreenIsEmptyNotBroken)
{
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    snapshots(*window, QStringLiteral("activity-empty"));
    // Before the first sample nothing is known: no "0 %" and no claim that nothing is open.
    EXPECT_EQ(text(item(*window, QStringLiteral("emptyTable"))), QStringLiteral("Midiendo…"));
    EXPECT_EQ(text(in(item(*window, QStringLiteral("cpuTile")), "statValue")), QStringLiteral("—"));

    // A sample with no regular app running says so.
    m_workspace.running.clear();
    refreshed();
    QTest::qWait(Settle);
    EXPECT_EQ(text(item(*window, QStringLiteral("emptyTable"))), QStringLiteral("No hay apps abiertas"));
    snapshot(*window, MinimumSize, QStringLiteral("activity-none-open-minimum"));

    // The state built over prepared services has no activity model: the screen stays quiet.
    state().setSection(QStringLiteral("activity"));
    QQuickWindow& main = mainWindow();
    snapshot(main, DefaultSize, QStringLiteral("activity-no-model-default"));
    QQuickItem* hideAll = item(main, QStringLiteral("hideAll"));
    ASSERT_NE(hideAll, nullptr);
    EXPECT_FALSE(hideAll->isVisible());
}

TEST_F(ActivityViewsTest, ForceQuitNeverActsWithoutTheConfirmationsButton)
{
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    QTest::qWait(Settle);
    QObject* confirmation = window->findChild<QObject*>(QStringLiteral("forceQuitConfirmation"));
    ASSERT_NE(confirmation, nullptr);

    // WHEN the row's force-quit button is pressed THEN only the question shows.
    QQuickItem* button = in(row(*window, 102), "forceQuitAction");
    ASSERT_NE(button, nullptr);
    click(*button);
    QTest::qWait(Settle);
    EXPECT_TRUE(confirmation->property("visible").toBool());
    EXPECT_FALSE(forceQuitAsked());
    snapshots(*window, QStringLiteral("activity-force-quit"));

    // "Cancelar" closes it and nothing is ended, however long one waits.
    click(*item(*window, QStringLiteral("forceQuitCancel")));
    QTest::qWait(Settle);
    EXPECT_FALSE(confirmation->property("visible").toBool());
    EXPECT_FALSE(forceQuitAsked());

    // Escape is a cancel too.
    click(*in(row(*window, 102), "forceQuitAction"));
    QTest::qWait(Settle);
    ASSERT_TRUE(confirmation->property("visible").toBool());
    QTest::keyClick(window, Qt::Key_Escape);
    QTest::qWait(Settle);
    EXPECT_FALSE(confirmation->property("visible").toBool());
    EXPECT_FALSE(forceQuitAsked());

    // The confirmation's own button ends exactly the app it named.
    click(*in(row(*window, 102), "forceQuitAction"));
    QTest::qWait(Settle);
    click(*item(*window, QStringLiteral("forceQuitConfirm")));
    EXPECT_EQ(m_workspace.actions, QStringList{QStringLiteral("forceTerminate 102")});
}

TEST_F(ActivityViewsTest, TheContextMenuOffersShowForAHiddenAppAndAsksBeforeForceQuit)
{
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    QTest::qWait(Settle);

    QObject* menu = window->findChild<QObject*>(QStringLiteral("appMenu"));
    ASSERT_NE(menu, nullptr);
    click(*row(*window, 102), Qt::RightButton);
    QTest::qWait(Settle);
    ASSERT_TRUE(menu->property("visible").toBool());
    EXPECT_EQ(text(item(*window, QStringLiteral("menuHide"))), QStringLiteral("Mostrar"));
    snapshot(*window, DefaultSize, QStringLiteral("activity-menu-default"));

    // "Mostrar" shows the hidden app again.
    click(*item(*window, QStringLiteral("menuHide")));
    EXPECT_EQ(m_workspace.actions, QStringList{QStringLiteral("unhide 102")});
    QTest::qWait(Settle);

    // For a visible app the same entry hides it; "Forzar salida…" only asks.
    click(*row(*window, 101), Qt::RightButton);
    QTest::qWait(Settle);
    EXPECT_EQ(text(item(*window, QStringLiteral("menuHide"))), QStringLiteral("Ocultar"));
    click(*item(*window, QStringLiteral("menuForceQuit")));
    QTest::qWait(Settle);
    EXPECT_TRUE(window->findChild<QObject*>(QStringLiteral("forceQuitConfirmation"))->property("visible").toBool());
    EXPECT_FALSE(forceQuitAsked());
}

TEST_F(ActivityViewsTest, ToolbarActsOnEveryAppButNuboAndRowButtonsActOnTheirOwn)
{
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    QTest::qWait(Settle);

    click(*item(*window, QStringLiteral("hideAll"))); // which apps "all" takes: ActivityModelTest
    EXPECT_EQ(m_workspace.actions.filter(QStringLiteral("hide ")).size(), 3);
    click(*item(*window, QStringLiteral("minimizeAll")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_accessibility.minimized().size() == 3; }, 5000));

    m_workspace.actions.clear();
    QTest::qWait(Settle); // the bump after hiding has refreshed the table
    click(*in(row(*window, 103), "quitAction"));
    click(*in(row(*window, 101), "hideAction"));
    EXPECT_EQ(m_workspace.actions, (QStringList{QStringLiteral("terminate 103"), QStringLiteral("hide 101")}));
}

TEST_F(ActivityViewsTest, ActionsThePlatformCannotDoAreNotOffered)
{
    m_workspace.windowActions = false;
    m_accessibility.supported = false;
    sampled();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    QTest::qWait(Settle);

    EXPECT_FALSE(item(*window, QStringLiteral("hideAll"))->isVisible());
    EXPECT_FALSE(item(*window, QStringLiteral("minimizeAll"))->isVisible());
    QQuickItem* safari = row(*window, 101);
    EXPECT_FALSE(in(safari, "hideAction")->isVisible());
    EXPECT_FALSE(in(safari, "minimizeAction")->isVisible());
    EXPECT_TRUE(in(safari, "quitAction")->isVisible());

    click(*safari, Qt::RightButton);
    QTest::qWait(Settle);
    for (const char* absent : {"menuActivate", "menuMinimize", "menuHide"})
        EXPECT_FALSE(item(*window, QString::fromUtf8(absent))->isVisible()) << absent;
    EXPECT_TRUE(item(*window, QStringLiteral("menuQuit"))->isVisible());
    snapshot(*window, DefaultSize, QStringLiteral("activity-linux-menu-default"));
}
