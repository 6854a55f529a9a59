#include "models/performance/PerformanceModel.h"
#include "models/app/Jobs.h"
#include "support/Eventually.h"
#include "support/TemporaryMac.h"

#include "core/admin/ShellQuote.h"
#include "core/deletion/Deleter.h"
#include "core/launch/LaunchItems.h"
#include "core/maintenance/MaintenanceCatalog.h"
#include "core/naming/Naming.h"
#include "core/safety/Safety.h"
#include "core/shell/ShellToolRunner.h"
#include "platform/fake/FakeAdminRunner.h"
#include "platform/fake/FakeWorkspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>
#include <signal.h>
#include <unistd.h>

using namespace nubo;
using nubo::test::eventually;

namespace {

// A temporary Mac behind the real runner: launch folders with one agent of the user's and one
// daemon, a launchctl that accepts everything, a tmutil that lists two snapshots and a shell that
// stands in for every maintenance command, holding a task until the test lets it finish.
class PerformanceModelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_mac.isValid());
        tool("launchctl", "exit 0\n");
        tool("tmutil", "echo 'Snapshots for disk /:'\n"
                       "echo com.apple.TimeMachine.2026-01-01-000000.local\n"
                       "echo com.apple.TimeMachine.2026-01-02-000000.local\n");
        // A held command ends when the test releases it (success) or fails it (status 1, no output).
        const QByteArray gate = shellQuote(path("release")).toUtf8();
        const QByteArray fail = shellQuote(path("fail")).toUtf8();
        tool("sh", "echo $$ > " + shellQuote(path("pid")).toUtf8() + "\n"
                   "i=0; while [ ! -e " + gate + " ] && [ ! -e " + fail +
                       " ] && [ $i -lt 400 ]; do sleep 0.05; i=$((i+1)); done\n"
                       "[ -e " +
                       gate + " ]\n");
        release();
        plist("home/Library/LaunchAgents/com.me.agent.plist", "com.me.agent");
        plist("Library/LaunchDaemons/com.sys.daemon.plist", "com.sys.daemon");

        m_safety = std::make_unique<Safety>(m_mac.roots(), SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
        m_launchItems =
            std::make_shared<LaunchItems>(m_tools, m_shell, m_admin, *m_deleter, m_naming, m_workspace);
        m_maintenance = std::make_shared<MaintenanceCatalog>(m_tools, m_shell, m_admin);
        m_model = std::make_unique<PerformanceModel>(m_launchItems, m_maintenance);
    }

    void TearDown() override
    {
        // Work still running borrows the runners of this fixture: it ends before they go.
        m_model.reset();
        EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    }

    [[nodiscard]] QString path(const char* relative) const { return m_mac.path(relative); }
    void tool(const char* name, const QByteArray& body) const { m_mac.tool(name, body); }

    void plist(const char* relative, const QByteArray& label) const
    {
        QFile file(path(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                   "<key>Label</key><string>" +
                   label + "</string><key>Program</key><string>/usr/bin/true</string></dict></plist>\n");
    }

    void release() const { QFile(path("release")).open(QIODevice::WriteOnly); }
    void hold() const { QFile::remove(path("release")); }

    void loaded()
    {
        QSignalSpy spy(m_model.get(), &PerformanceModel::isLoadingChanged);
        m_model->load();
        EXPECT_TRUE(m_model->isLoading());
        ASSERT_TRUE(spy.wait(10000));
        ASSERT_FALSE(m_model->isLoading());
        ASSERT_EQ(m_model->items().size(), 2);
    }

    [[nodiscard]] const LaunchItem& item(const char* label) const
    {
        for (const LaunchItem& listed : m_model->items()) {
            if (listed.label == QLatin1String(label))
                return listed;
        }
        static const LaunchItem none;
        ADD_FAILURE() << "not listed: " << label;
        return none;
    }

    test::TemporaryMac m_mac;
    SystemTools& m_tools = m_mac.tools;
    ShellToolRunner m_shell;
    FakeAdminRunner m_admin;
    FakeWorkspace m_workspace;
    Naming m_naming;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<Deleter> m_deleter;
    std::shared_ptr<LaunchItems> m_launchItems;
    std::shared_ptr<MaintenanceCatalog> m_maintenance;
    std::unique_ptr<PerformanceModel> m_model;
};

TEST_F(PerformanceModelTest, LoadFillsTheItemsTheSnapshotCountAndTheEnabledCount)
{
    EXPECT_FALSE(m_model->hasLoaded());
    EXPECT_EQ(m_model->enabledCount(), 0);
    loaded();
    EXPECT_TRUE(m_model->hasLoaded());
    EXPECT_EQ(m_model->snapshotCount(), 2);
    EXPECT_EQ(m_model->enabledCount(), 2);
    EXPECT_TRUE(m_model->itemsList().at(1).toMap().value(QStringLiteral("needsAdmin")).toBool()); // the daemon
}

TEST_F(PerformanceModelTest, AToggleChangesTheListOnlyWhenTheSystemTookIt)
{
    loaded();
    QSignalSpy failed(m_model.get(), &PerformanceModel::actionFailed);
    QSignalSpy changed(m_model.get(), &PerformanceModel::itemsChanged);

    // WHEN the password prompt for the daemon is refused THEN it stays enabled.
    m_admin.outcome = AdminOutcome::Failed;
    m_model->toggle(item("com.sys.daemon").url);
    ASSERT_TRUE(failed.wait(10000));
    EXPECT_TRUE(item("com.sys.daemon").isEnabled);
    EXPECT_EQ(changed.count(), 0);

    // The user's agent switches off in place; nothing else about it changes but the header's count.
    const LaunchItem before = item("com.me.agent");
    m_model->toggle(before.url);
    ASSERT_TRUE(changed.wait(10000));
    LaunchItem expected = before;
    expected.isEnabled = false;
    EXPECT_EQ(item("com.me.agent"), expected);
    EXPECT_EQ(m_model->items().size(), 2);
    EXPECT_EQ(m_model->enabledCount(), 1);
}

TEST_F(PerformanceModelTest, AnItemThatCannotBeDeletedStaysListed)
{
    loaded();
    QSignalSpy failed(m_model.get(), &PerformanceModel::actionFailed);
    QSignalSpy changed(m_model.get(), &PerformanceModel::itemsChanged);
    m_admin.outcome = AdminOutcome::Failed;

    // A daemon whose stop was refused at the password prompt.
    m_model->remove(item("com.sys.daemon").url);
    ASSERT_TRUE(failed.wait(10000));
    EXPECT_EQ(m_model->items().size(), 2);
    EXPECT_TRUE(QFile::exists(path("Library/LaunchDaemons/com.sys.daemon.plist")));

    // Why a removal fails (a refused prompt, a folder the user may not write to) is LaunchItemsTest's
    // and DeleterTest's; whatever the reason the list keeps the item. Once nothing stands in the
    // way a removal goes through: the user's own agent needs no prompt.
    m_model->remove(item("com.me.agent").url);
    ASSERT_TRUE(changed.wait(10000));
    ASSERT_EQ(m_model->items().size(), 1);
    EXPECT_EQ(m_model->items().at(0).label, QStringLiteral("com.sys.daemon"));
    EXPECT_FALSE(QFile::exists(path("home/Library/LaunchAgents/com.me.agent.plist")));
}

TEST_F(PerformanceModelTest, RunningATaskAgainHidesItsOutcomeUntilItEnds)
{
    m_model->run(QStringLiteral("verify"));
    EXPECT_TRUE(m_model->running().contains(QStringLiteral("verify")));
    ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 10000));
    EXPECT_EQ(m_model->outcomes().value(QStringLiteral("verify")),
              (MaintenanceTask::Outcome{true, QStringLiteral("Sin errores")}));

    // WHEN it runs a second time THEN no outcome shows while it runs, and a second click is ignored.
    hold();
    m_model->run(QStringLiteral("verify"));
    m_model->run(QStringLiteral("verify"));
    m_model->run(QStringLiteral("no-such-task"));
    EXPECT_FALSE(m_model->outcomes().contains(QStringLiteral("verify")));
    EXPECT_EQ(m_model->runningList(), QStringList{QStringLiteral("verify")});
    QTest::qWait(200);
    EXPECT_FALSE(m_model->outcomes().contains(QStringLiteral("verify")));
    release();
    ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 10000));
    EXPECT_EQ(m_model->outcomesMap().value(QStringLiteral("verify")).toMap().value(QStringLiteral("message")),
              QStringLiteral("Sin errores"));
}

TEST_F(PerformanceModelTest, TasksRunSideBySideAndSnapshotsRecount)
{
    hold();
    m_model->run(QStringLiteral("dock"));
    m_model->run(QStringLiteral("snapshots")); // behind the (accepting) prompt, then recounted
    ASSERT_TRUE(eventually([&] { return m_model->outcomes().contains(QStringLiteral("snapshots")); }, 10000));
    EXPECT_EQ(m_model->snapshotCount(), 2);
    EXPECT_EQ(m_model->outcomes().value(QStringLiteral("snapshots")),
              (MaintenanceTask::Outcome{true, QStringLiteral("Hecho")}));
    EXPECT_TRUE(m_model->running().contains(QStringLiteral("dock")));

    // A command that fails without a word reads "Error"; a refused prompt reads "Cancelado".
    m_admin.outcome = AdminOutcome::Failed;
    m_model->run(QStringLiteral("purge"));
    QFile(path("fail")).open(QIODevice::WriteOnly);
    ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 10000));
    EXPECT_EQ(m_model->outcomes().value(QStringLiteral("purge")),
              (MaintenanceTask::Outcome{false, QStringLiteral("Cancelado")}));
    EXPECT_EQ(m_model->outcomes().value(QStringLiteral("dock")),
              (MaintenanceTask::Outcome{false, QStringLiteral("Error")}));
}

TEST_F(PerformanceModelTest, ATaskCancelledOrLeftRunningAtQuitEndsAtOnceAndLeavesNoProcessBehind)
{
    for (const bool quit : {false, true}) {
        SCOPED_TRACE(quit ? "the model goes" : "Cancelar");
        // GIVEN a task whose tool would run for twenty seconds
        hold();
        QFile::remove(path("pid"));
        m_model->run(QStringLiteral("dock"));
        ASSERT_TRUE(eventually([&] { return QFileInfo(path("pid")).size() > 0; }, 10000));
        QFile written(path("pid"));
        ASSERT_TRUE(written.open(QIODevice::ReadOnly));
        const pid_t tool = pid_t(written.readAll().trimmed().toInt());
        ASSERT_GT(tool, 0);

        // WHEN the user cancels it, or the model goes as it does when the program quits
        if (quit) {
            m_model.reset();
            EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(3)));
        } else {
            m_model->cancel(QStringLiteral("dock"));
            EXPECT_EQ(m_model->cancellingList(), QStringList{QStringLiteral("dock")});
            ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 3000));
            EXPECT_EQ(m_model->outcomes().value(QStringLiteral("dock")),
                      (MaintenanceTask::Outcome{false, QStringLiteral("Cancelado")}));
            EXPECT_TRUE(m_model->cancellingList().isEmpty());
        }
        // THEN the work ends at once rather than with the tool, and the tool is gone
        EXPECT_NE(::kill(tool, 0), 0);
    }
}

} // namespace
