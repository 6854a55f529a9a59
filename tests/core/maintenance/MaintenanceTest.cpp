#include "core/maintenance/MaintenanceCatalog.h"
#include "core/shell/ShellToolRunner.h"
#include "platform/fake/FakeAdminRunner.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/AppleScriptText.h"
#include "support/FixtureFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <tuple>
#include <utility>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

class MaintenanceTest : public ::testing::Test
{
protected:
    [[nodiscard]] MaintenanceCatalog catalog() { return MaintenanceCatalog(m_tools, m_shell, m_admin); }

    QTemporaryDir m_dir;
    SystemTools m_tools;
    ShellToolRunner m_shell;
    FakeAdminRunner m_admin;
};

TEST_F(MaintenanceTest, OnlyAListingTheToolStandsByCountsSnapshots)
{
    // Headers and blank lines are not snapshots; a refusal may still print names, which are not
    // trusted; a missing tool counts none.
    const QList<std::pair<QByteArray, int>> cases = {
        {"printf 'Snapshots for disk /:\\n\\ncom.apple.TimeMachine.2024-05-01-101010.local\\n"
         "com.apple.TimeMachine.2024-05-02-101010.local\\n\\ncom.apple.TimeMachine.2024-05-03-101010."
         "local\\n'\n",
         3},
        {"echo com.apple.TimeMachine.2024-05-01-101010.local\nexit 1\n", 0},
        {"echo 'No snapshots'\n", 0},
    };
    m_tools.tmutil = m_dir.filePath(QStringLiteral("tmutil"));
    for (const auto& [body, count] : cases) {
        test::writeScript(m_tools.tmutil, body);
        EXPECT_EQ(catalog().localSnapshotCount(), count) << body.constData();
    }
    m_tools.tmutil = m_dir.filePath(QStringLiteral("missing"));
    EXPECT_EQ(catalog().localSnapshotCount(), 0);
}

// Error output is discarded, so a tool that only complains there reads "Error": the catalogue's
// own commands, whose Apple tools do not exist here, must read as failures, never "Sin errores".
// "\r\n" and padding are no reason; bytes that are not UTF-8 are shown as replacement characters.
TEST_F(MaintenanceTest, AnOutcomeReadsFromTheStatusAndTheLastLinePrinted)
{
    const QList<std::tuple<const char*, const char*, MaintenanceTask::Outcome>> cases = {
        {"dock", "echo lots of output", {true, QStringLiteral("Hecho")}},
        {"verify", "echo The volume appears to be OK", {true, QStringLiteral("Sin errores")}},
        {"verify", nullptr, {false, QStringLiteral("Error")}}, // nullptr: the catalogue's command
        {"launchservices", nullptr, {false, QStringLiteral("Error")}},
        {"x", "exit 1", {false, QStringLiteral("Error")}},
        {"x", "echo complaint >&2; exit 3", {false, QStringLiteral("Error")}},
        {"x",
         "printf 'Checking\\r\\n  Volume is damaged  \\r\\n\\n \\n'; exit 8",
         {false, QStringLiteral("Volume is damaged")}},
        {"x", "printf 'caf\\351 roto\\n'; exit 2", {false, QStringLiteral("caf\uFFFD roto")}},
    };
    for (const auto& [id, command, outcome] : cases) {
        MaintenanceTask task = MaintenanceCatalog::task(QString::fromUtf8(id)).value_or(MaintenanceTask());
        task.id = QString::fromUtf8(id);
        if (command)
            task.command = QString::fromUtf8(command);
        EXPECT_EQ(catalog().run(task), outcome) << id << " " << task.command.toStdString();
    }
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

// Administrator tasks go through the prompt as one command line, the others through the shell;
// each tool runs with its time limit.
TEST_F(MaintenanceTest, TasksRunThroughThePromptOrTheShellWithTheirTimeLimits)
{
    ScriptedToolRunner scripted;
    scripted.fallback = {0, QString()};
    const MaintenanceCatalog catalog(m_tools, scripted, m_admin);
    const MaintenanceTask dock = *MaintenanceCatalog::task(QStringLiteral("dock"));
    const MaintenanceTask dns = *MaintenanceCatalog::task(QStringLiteral("dns"));
    EXPECT_EQ(catalog.localSnapshotCount(), 0);
    EXPECT_EQ(catalog.run(dock), (MaintenanceTask::Outcome{true, QStringLiteral("Hecho")}));
    EXPECT_EQ(catalog.run(dns), (MaintenanceTask::Outcome{true, QStringLiteral("Hecho")}));
    EXPECT_EQ(
        scripted.calls(),
        (QList<ToolCall>{{m_tools.tmutil, {QStringLiteral("listlocalsnapshots"), QStringLiteral("/")}, 10s},
                         {QStringLiteral("/bin/sh"), {QStringLiteral("-c"), dock.command}, 600s}}));
    ASSERT_EQ(m_admin.requests().size(), 1);
    EXPECT_EQ(m_admin.requests()[0].commandLine, dns.command);
    EXPECT_EQ(test::shellCommandOf(m_admin.requests()[0].script), dns.command);

    // Refused, cancelled and failed all read the same, and nothing is retried.
    for (const AdminOutcome refusal : {AdminOutcome::Failed, AdminOutcome::Unavailable}) {
        m_admin.outcome = refusal;
        EXPECT_EQ(catalog.run(*MaintenanceCatalog::task(QStringLiteral("purge"))),
                  (MaintenanceTask::Outcome{false, QStringLiteral("Cancelado")}));
    }
    EXPECT_EQ(m_admin.requests().size(), 3);
}

} // namespace
