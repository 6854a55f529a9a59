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
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <tuple>
#include <signal.h>
#include <unistd.h>

using namespace nubo;
using nubo::test::eventually;
using namespace Qt::StringLiterals;

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
        tool("sh", "echo $$ > " + shellQuote(path("pid")).toUtf8() + "\ni=0; while [ ! -e " + gate + " ] && [ ! -e " +
                       fail + " ] && [ $i -lt 400 ]; do sleep 0.05; i=$((i+1)); done\n[ -e " + gate + " ]\n");
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

    [[nodiscard]] LaunchItem item(const char* label) const
    {
        const auto found = std::ranges::find(m_model->items(), QString::fromLatin1(label), &LaunchItem::label);
        EXPECT_TRUE(found != m_model->items().end()) << "not listed: " << label;
        return found == m_model->items().end() ? LaunchItem() : *found;
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

// Why a change fails (a refused prompt, a folder the user may not write to) is LaunchItemsTest's and
// DeleterTest's; whatever the reason, the list keeps the item as it was.
TEST_F(PerformanceModelTest, TheListChangesOnlyWhenTheSystemTookTheChange)
{
    EXPECT_FALSE(m_model->hasLoaded());
    loaded();
    EXPECT_EQ(std::tuple(m_model->hasLoaded(), m_model->snapshotCount(), m_model->enabledCount()),
              std::tuple(true, 2, 2));
    EXPECT_TRUE(m_model->itemsList().at(1).toMap().value(u"needsAdmin"_s).toBool()); // the daemon
    QSignalSpy failed(m_model.get(), &PerformanceModel::actionFailed);
    QSignalSpy changed(m_model.get(), &PerformanceModel::itemsChanged);
    // The password prompt for the daemon is refused: it stays enabled, listed and on disk.
    m_admin.outcome = AdminOutcome::Failed;
    m_model->toggle(item("com.sys.daemon").url);
    ASSERT_TRUE(failed.wait(10000));
    m_model->remove(item("com.sys.daemon").url);
    ASSERT_TRUE(failed.wait(10000));
    EXPECT_TRUE(item("com.sys.daemon").isEnabled);
    EXPECT_EQ(std::tuple(changed.count(), m_model->items().size()), std::tuple(0, 2));
    EXPECT_TRUE(QFile::exists(path("Library/LaunchDaemons/com.sys.daemon.plist")));
    // The user's own agent needs no prompt: it switches off in place, nothing about it changing
    // but the header's count, and then goes.
    const LaunchItem before = item("com.me.agent");
    m_model->toggle(before.url);
    ASSERT_TRUE(changed.wait(10000));
    LaunchItem expected = before;
    expected.isEnabled = false;
    EXPECT_EQ(item("com.me.agent"), expected);
    EXPECT_EQ(std::tuple(m_model->items().size(), m_model->enabledCount()), std::tuple(2, 1));
    m_model->remove(before.url);
    ASSERT_TRUE(changed.wait(10000));
    ASSERT_EQ(m_model->items().size(), 1);
    EXPECT_EQ(m_model->items().at(0).label, u"com.sys.daemon"_s);
    EXPECT_FALSE(QFile::exists(path("home/Library/LaunchAgents/com.me.agent.plist")));
}

// How an outcome is read from a tool is MaintenanceTest's; here a run again hides the old one until
// it ends, a second click is ignored and other tasks run beside it.
TEST_F(PerformanceModelTest, TasksRunSideBySideAndARunAgainHidesItsOutcomeUntilItEnds)
{
    m_model->run(u"verify"_s);
    EXPECT_TRUE(m_model->running().contains(u"verify"_s));
    ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 10000));
    EXPECT_EQ(m_model->outcomes().value(u"verify"_s), (MaintenanceTask::Outcome{true, u"Sin errores"_s}));
    hold();
    m_model->run(u"verify"_s);
    m_model->run(u"verify"_s);
    m_model->run(u"no-such-task"_s);
    EXPECT_EQ(m_model->runningList(), QStringList{u"verify"_s});
    m_model->run(u"snapshots"_s); // behind the (accepting) prompt, then recounted
    ASSERT_TRUE(eventually([&] { return m_model->outcomes().contains(u"snapshots"_s); }, 10000));
    EXPECT_EQ(m_model->outcomes().value(u"snapshots"_s), (MaintenanceTask::Outcome{true, u"Hecho"_s}));
    EXPECT_EQ(m_model->snapshotCount(), 2);
    EXPECT_EQ(m_model->runningList(), QStringList{u"verify"_s});
    EXPECT_FALSE(m_model->outcomes().contains(u"verify"_s));
    // A refused prompt reads "Cancelado"; a command that fails without a word reads "Error".
    m_admin.outcome = AdminOutcome::Failed;
    m_model->run(u"purge"_s);
    QFile(path("fail")).open(QIODevice::WriteOnly);
    ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 10000));
    EXPECT_EQ(m_model->outcomes().value(u"purge"_s), (MaintenanceTask::Outcome{false, u"Cancelado"_s}));
    EXPECT_EQ(m_model->outcomesMap().value(u"verify"_s).toMap().value(u"message"_s), u"Error"_s);
}

// The work ends at once rather than with the tool, and the tool is gone.
TEST_F(PerformanceModelTest, ATaskCancelledOrLeftRunningAtQuitEndsAtOnceAndLeavesNoProcessBehind)
{
    for (const bool quit : {false, true}) {
        SCOPED_TRACE(quit ? "the model goes" : "Cancelar");
        hold(); // the tool would run for twenty seconds
        QFile::remove(path("pid"));
        m_model->run(u"dock"_s);
        ASSERT_TRUE(eventually([&] { return QFileInfo(path("pid")).size() > 0; }, 10000));
        QFile written(path("pid"));
        ASSERT_TRUE(written.open(QIODevice::ReadOnly));
        const pid_t tool = pid_t(written.readAll().trimmed().toInt());
        ASSERT_GT(tool, 0);
        if (quit) {
            m_model.reset(); // as when the program quits
            EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(3)));
        } else {
            m_model->cancel(u"dock"_s);
            EXPECT_EQ(m_model->cancellingList(), QStringList{u"dock"_s});
            ASSERT_TRUE(eventually([&] { return m_model->running().isEmpty(); }, 3000));
            EXPECT_EQ(m_model->outcomes().value(u"dock"_s), (MaintenanceTask::Outcome{false, u"Cancelado"_s}));
            EXPECT_TRUE(m_model->cancellingList().isEmpty());
        }
        EXPECT_NE(::kill(tool, 0), 0);
    }
}

} // namespace
