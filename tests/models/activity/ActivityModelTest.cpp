#include "models/activity/ActivityModel.h"
#include "models/app/Jobs.h"
#include "support/Column.h"
#include "support/Eventually.h"

#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/fake/FakeProcessTable.h"
#include "platform/fake/FakeWorkspace.h"

#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <tuple>

using namespace nubo;
using nubo::test::column;
using nubo::test::eventually;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kOwnPid = 10;

RunningApplication regularApp(qint64 pid, const QString& name)
{
    return {pid, name, u"/Applications/"_s + name + u".app"_s, false, false, true, false};
}

// A process table that takes a while to list and remembers whether two listings ever overlapped.
class SlowProcessTable final : public ProcessTable
{
public:
    quint64 now() const override { return inner.now(); }
    Timebase timebase() const override { return inner.timebase(); }
    qsizetype listPids(std::span<qint32> pids) const override
    {
        if (++inside > 1)
            overlapped = true;
        std::this_thread::sleep_for(40ms);
        --inside;
        return inner.listPids(pids);
    }
    qsizetype executablePath(qint32 pid, std::span<char> out) const override { return inner.executablePath(pid, out); }
    std::optional<Usage> usage(qint32 pid) const override { return inner.usage(pid); }
    qint64 physicalMemory() const override { return inner.physicalMemory(); }
    std::optional<MemoryPages> memoryPages() const override { return inner.memoryPages(); }

    FakeProcessTable inner;
    mutable std::atomic<int> inside = 0;
    mutable std::atomic<bool> overlapped = false;
};

class ActivityModelTest : public ::testing::Test
{
protected:
    // A sample still being taken when a test's model went reads this fixture's services.
    void TearDown() override { EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10))); }

    // Three regular apps (our own among them), a menu-bar agent and an ended app; the first two
    // regular apps hold the same memory.
    void SetUp() override
    {
        m_workspace.running = {regularApp(20, u"Zeta"_s), regularApp(30, u"Alpha"_s),
                               {40, u"Agent"_s, u"/Applications/Agent.app"_s, false, false, false, false},
                               {50, u"Ended"_s, u"/Applications/Ended.app"_s, false, false, true, true},
                               regularApp(kOwnPid, u"Nubo"_s)};
        for (const RunningApplication& app : m_workspace.running)
            m_table.inner.add(qint32(app.pid), (app.bundlePath + u"/Contents/MacOS/x"_s).toUtf8(), 0,
                              app.pid == kOwnPid ? 1000 : 5000);
        m_table.inner.pages = ProcessTable::MemoryPages{4096, 100, 0, 0, 0};
    }

    ActivityModel::Services services() { return {m_workspace, m_table, m_accessibility, m_login, kOwnPid, 1h, 20ms}; }

    static void refreshed(ActivityModel& model)
    {
        QSignalSpy spy(&model, &ActivityModel::refreshed);
        model.refresh();
        ASSERT_TRUE(spy.wait(5000));
    }

    FakeWorkspace m_workspace;
    SlowProcessTable m_table;
    FakeAccessibility m_accessibility;
    FakeLoginItem m_login;
};

TEST_F(ActivityModelTest, RefreshListsRegularRunningAppsAndSortsStably)
{
    ActivityModel model(services());
    EXPECT_FALSE(model.hasSampled());
    refreshed(model);
    EXPECT_TRUE(model.hasSampled());
    EXPECT_EQ(column(model.apps(), &AppUsage::name), (QStringList{u"Zeta"_s, u"Alpha"_s, u"Nubo"_s}));
    // 100 pages of 4 KiB.
    EXPECT_EQ(std::tuple(model.apps().at(0).memory, model.memoryUsed(), model.memoryTotal()),
              std::tuple(5000, 409600, m_table.inner.physical));
    // By memory Zeta and Alpha tie and keep the workspace's order; labels match exactly.
    model.setSortLabel(u"Memoria"_s);
    model.setSortLabel(u"memoria"_s);
    EXPECT_EQ(std::tuple(model.sort(), model.sortLabel()), std::tuple(ActivityModel::Sort::memory, u"Memoria"_s));
    EXPECT_EQ(column(model.sorted(), &AppUsage::name), (QStringList{u"Zeta"_s, u"Alpha"_s, u"Nubo"_s}));
    // A second sample measures processor time: Alpha was busy (helpers: UsageSamplerTest).
    m_table.inner.clock += 1'000'000'000;
    m_table.inner.processes[30].usage->cpuTime = 500'000'000;
    refreshed(model);
    model.setSort(ActivityModel::Sort::cpu);
    EXPECT_EQ(column(model.sorted(), &AppUsage::name), (QStringList{u"Alpha"_s, u"Zeta"_s, u"Nubo"_s}));
    EXPECT_DOUBLE_EQ(model.totalCPU(), 50.0);
}

TEST_F(ActivityModelTest, RefreshesNeverOverlapAndStartingTwiceRunsOneLoop)
{
    ActivityModel model(services());
    QSignalSpy spy(&model, &ActivityModel::refreshed);
    model.start();
    model.start();
    model.refresh();
    model.refresh();
    model.bump();
    // The first refresh, one that follows it for everything asked meanwhile, and the bump's.
    ASSERT_TRUE(eventually([&] { return spy.count() == 2; }, 5000));
    QTest::qWait(200);
    EXPECT_LE(spy.count(), 3);
    EXPECT_FALSE(m_table.overlapped.load());
}

// Without window actions or accessibility only quitting works, each action followed by a fresh
// sample, and nothing asks for trust. An action finds the app again by id and bundle, so a quit
// never reaches a program that took over an ended app's id.
TEST_F(ActivityModelTest, ActionsFindTheAppAgainAndUnsupportedOnesDoNothing)
{
    m_workspace.windowActions = false;
    m_accessibility.supported = false;
    ActivityModel model(services());
    refreshed(model);
    EXPECT_EQ(std::tuple(model.canHide(), model.canActivate(), model.canMinimize()), std::tuple(false, false, false));
    QSignalSpy spy(&model, &ActivityModel::refreshed);
    model.quit(20);
    model.forceQuit(30);
    model.hide(30);
    model.unhide(30);
    model.activate(20);
    model.hideAll();
    model.minimizeAll();
    model.ensureAccessibility();
    EXPECT_EQ(m_workspace.actions, (QStringList{u"terminate 20"_s, u"forceTerminate 30"_s}));
    EXPECT_EQ(m_accessibility.requests.load(), 0);
    EXPECT_TRUE(spy.wait(2000));

    // Zeta has quit and its id now belongs to something else; Alpha is gone altogether.
    m_workspace.actions.clear();
    m_workspace.running = {regularApp(20, u"Other"_s)};
    model.quit(model.apps().at(0));
    model.forceQuit(model.apps().at(1));
    model.quit(999); // never listed
    EXPECT_TRUE(m_workspace.actions.isEmpty());
}

TEST_F(ActivityModelTest, MinimisingWithoutTrustAsksAndDoesNothingAndTheAllActionsLeaveTheProgramItself)
{
    ActivityModel model(services());
    refreshed(model);
    QSignalSpy trust(&model, &ActivityModel::hasAccessibilityChanged);
    model.minimizeAll();
    model.minimize(20);
    EXPECT_EQ(m_accessibility.requests.load(), 2);
    QTest::qWait(100);
    EXPECT_TRUE(m_accessibility.minimized().isEmpty());
    EXPECT_FALSE(model.hasAccessibility());
    // Trust granted at the prompt: the same call goes ahead and the property says so.
    m_accessibility.grantOnRequest = true;
    model.minimize(20);
    ASSERT_TRUE(eventually([&] { return m_accessibility.minimized() == (QList<qint64>{20}); }, 5000));
    EXPECT_EQ(std::tuple(model.hasAccessibility(), trust.count()), std::tuple(true, 1));
    model.hideAll();
    EXPECT_EQ(m_workspace.actions, (QStringList{u"hide 20"_s, u"hide 30"_s}));
    model.minimizeAll();
    ASSERT_TRUE(eventually([&] { return m_accessibility.minimized().size() == 3; }, 5000));
    EXPECT_EQ(m_accessibility.minimized(), (QList<qint64>{20, 20, 30}));
    EXPECT_EQ(m_accessibility.requests.load(), 3);
}

// A refused registration leaves the switch off, and says so to a view that flipped it (the switch
// going on through the panel: MenuBarPanelTest).
TEST_F(ActivityModelTest, TheLoginSwitchShowsWhatTheSystemSays)
{
    m_login.registered = true;
    ActivityModel model(services());
    EXPECT_TRUE(model.launchAtLogin());
    QSignalSpy spy(&model, &ActivityModel::launchAtLoginChanged);
    // Only the refusal is logged, under the prefix a bug report is searched by.
    static QStringList logged;
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { logged << text; });
    model.setLaunchAtLogin(false);
    m_login.refuse = true;
    model.setLaunchAtLogin(true);
    qInstallMessageHandler(previous);
    EXPECT_EQ(std::tuple(model.launchAtLogin(), m_login.registered, spy.count()), std::tuple(false, false, 2));
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged.front().startsWith(u"Nubo: launch at login "_s)) << logged.front().toStdString();
}

} // namespace
