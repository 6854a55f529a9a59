#include "core/admin/ShellQuote.h"
#include "core/maintenance/MaintenanceCatalog.h"
#include "core/shell/ShellToolRunner.h"
#include "platform/fake/FakeAdminRunner.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/AppleScriptText.h"
#include "support/FixtureFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

class MaintenanceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_tools.tmutil = m_dir.filePath(QStringLiteral("tmutil"));
    }

    // A stand-in tool: a shell script that records its arguments and then runs `body`.
    void writeTool(const QString& path, const QByteArray& body) const
    {
        test::writeScript(path, "printf '%s\\n' \"$@\" > " +
                                    shellQuote(m_dir.filePath(QStringLiteral("args"))).toUtf8() + "\n" +
                                    body);
    }

    [[nodiscard]] QByteArray recordedArguments() const
    {
        QFile file(m_dir.filePath(QStringLiteral("args")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] MaintenanceTask::Outcome runAsUser(const QString& command,
                                                     const QString& id = QStringLiteral("x"))
    {
        MaintenanceTask task;
        task.id = id;
        task.command = command;
        return MaintenanceCatalog(m_tools, m_shell, m_admin).run(task);
    }

    QTemporaryDir m_dir;
    SystemTools m_tools;
    ShellToolRunner m_shell;
    FakeAdminRunner m_admin;
};

TEST(MaintenanceCatalogTable, EightTasksInOrderWithTheirCommandsAndRights)
{
    const QList<std::tuple<const char*, bool, const char*>> expected = {
        {"snapshots", true, "/usr/bin/tmutil thinlocalsnapshots / 999999999999 4"},
        {"purge", true, "/usr/sbin/purge"},
        {"dns", true, "/usr/bin/dscacheutil -flushcache; /usr/bin/killall -HUP mDNSResponder"},
        {"launchservices", false,
         "/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/"
         "lsregister"
         " -kill -r -domain local -domain system -domain user"},
        {"spotlight", true, "/usr/bin/mdutil -E /"},
        {"fonts", false,
         "/usr/bin/atsutil databases -removeUser; /usr/bin/atsutil server -shutdown; /usr/bin/atsutil server "
         "-ping"},
        {"verify", false, "/usr/sbin/diskutil verifyVolume /"},
        {"dock", false, "/usr/bin/killall Dock; /usr/bin/killall Finder"},
    };
    const QList<MaintenanceTask>& all = MaintenanceCatalog::all();
    ASSERT_EQ(all.size(), expected.size());
    for (qsizetype i = 0; i < all.size(); ++i) {
        const auto& [id, admin, command] = expected[i];
        EXPECT_EQ(all[i].id, QString::fromUtf8(id));
        EXPECT_EQ(all[i].needsAdmin, admin) << id;
        EXPECT_EQ(all[i].command, QString::fromUtf8(command)) << id;
    }
    EXPECT_EQ(MaintenanceCatalog::task(QStringLiteral("spotlight"))->caution,
              QStringLiteral("Spotlight tardará un rato en volver a indexar todo."));
    EXPECT_FALSE(MaintenanceCatalog::task(QStringLiteral("verify"))->caution.has_value());
    EXPECT_FALSE(MaintenanceCatalog::task(QStringLiteral("nothing")).has_value());
}

TEST_F(MaintenanceTest, SnapshotListingWithHeaderAndBlankLinesCountsItsSnapshots)
{
    writeTool(m_tools.tmutil,
              "printf 'Snapshots for disk /:\\n\\ncom.apple.TimeMachine.2024-05-01-101010.local\\n"
              "com.apple.TimeMachine.2024-05-02-101010.local\\n\\n"
              "com.apple.TimeMachine.2024-05-03-101010.local\\n'\n");
    EXPECT_EQ(MaintenanceCatalog(m_tools, m_shell, m_admin).localSnapshotCount(), 3);
    EXPECT_EQ(recordedArguments(), "listlocalsnapshots\n/\n");
}

TEST_F(MaintenanceTest, SnapshotCountIsZeroWhenTheToolFailsOrIsMissing)
{
    // A refusal may still print names; they are not trusted.
    writeTool(m_tools.tmutil, "echo com.apple.TimeMachine.2024-05-01-101010.local\nexit 1\n");
    EXPECT_EQ(MaintenanceCatalog(m_tools, m_shell, m_admin).localSnapshotCount(), 0);
    writeTool(m_tools.tmutil, "echo 'No snapshots'\n");
    EXPECT_EQ(MaintenanceCatalog(m_tools, m_shell, m_admin).localSnapshotCount(), 0);

    m_tools.tmutil = m_dir.filePath(QStringLiteral("missing"));
    EXPECT_EQ(MaintenanceCatalog(m_tools, m_shell, m_admin).localSnapshotCount(), 0);
}

TEST_F(MaintenanceTest, ToolsRunWithTheirTimeLimits)
{
    ScriptedToolRunner scripted;
    scripted.fallback = {0, QString()};
    const MaintenanceCatalog catalog(m_tools, scripted, m_admin);
    (void)catalog.localSnapshotCount();
    (void)catalog.run(*MaintenanceCatalog::task(QStringLiteral("dock")));
    const QList<ToolCall> calls = scripted.calls();
    ASSERT_EQ(calls.size(), 2);
    EXPECT_EQ(calls[0].timeout, 10s);
    EXPECT_EQ(calls[1], (ToolCall{QStringLiteral("/bin/sh"),
                                  {QStringLiteral("-c"),
                                   QStringLiteral("/usr/bin/killall Dock; /usr/bin/killall Finder")},
                                  600s}));
}

TEST_F(MaintenanceTest, SuccessReadsHechoExceptForTheDiskCheck)
{
    EXPECT_EQ(runAsUser(QStringLiteral("echo lots of output"), QStringLiteral("dock")),
              (MaintenanceTask::Outcome{true, QStringLiteral("Hecho")}));
    EXPECT_EQ(runAsUser(QStringLiteral("echo The volume appears to be OK"), QStringLiteral("verify")),
              (MaintenanceTask::Outcome{true, QStringLiteral("Sin errores")}));
}

TEST_F(MaintenanceTest, FailureShowsTheLastLineTheToolPrinted)
{
    EXPECT_EQ(runAsUser(QStringLiteral("exit 1")),
              (MaintenanceTask::Outcome{false, QStringLiteral("Error")}));
    // Error output is discarded, so a tool that only complains there still reads "Error".
    EXPECT_EQ(runAsUser(QStringLiteral("echo complaint >&2; exit 3")),
              (MaintenanceTask::Outcome{false, QStringLiteral("Error")}));
    EXPECT_EQ(runAsUser(QStringLiteral("printf 'Checking\\r\\n  Volume is damaged  \\r\\n\\n \\n'; exit 8")),
              (MaintenanceTask::Outcome{false, QStringLiteral("Volume is damaged")}));
    EXPECT_EQ(runAsUser(QStringLiteral("printf 'caf\\351 roto\\n'; exit 2")).message,
              QStringLiteral("caf\uFFFD roto"));
}

TEST_F(MaintenanceTest, RealCatalogueCommandsWithoutTheirToolsFail)
{
    // None of the Apple tools exist here: the shell cannot find them, prints nothing on standard
    // output and fails, which must read as a failure, never as "Sin errores".
    const MaintenanceCatalog catalog(m_tools, m_shell, m_admin);
    EXPECT_EQ(catalog.run(*MaintenanceCatalog::task(QStringLiteral("verify"))),
              (MaintenanceTask::Outcome{false, QStringLiteral("Error")}));
    EXPECT_FALSE(catalog.run(*MaintenanceCatalog::task(QStringLiteral("launchservices"))).ok);
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

TEST_F(MaintenanceTest, AdministratorTasksGoThroughThePromptAsOneCommandLine)
{
    const MaintenanceCatalog catalog(m_tools, m_shell, m_admin);
    const MaintenanceTask dns = *MaintenanceCatalog::task(QStringLiteral("dns"));
    EXPECT_EQ(catalog.run(dns), (MaintenanceTask::Outcome{true, QStringLiteral("Hecho")}));
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
