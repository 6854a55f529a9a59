#include "core/launch/LaunchItems.h"

#include "core/admin/ShellQuote.h"
#include "core/deletion/Deleter.h"
#include "core/naming/Naming.h"
#include "core/safety/Safety.h"
#include "core/shell/Shell.h"
#include "core/shell/ShellToolRunner.h"
#include "platform/fake/FakeAdminRunner.h"
#include "platform/fake/FakeWorkspace.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/AppleScriptText.h"
#include "support/FixtureFiles.h"
#include "support/PlistWriter.h"
#include "support/TemporaryMac.h"

#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <tuple>
#include <unistd.h>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

using test::PlistFormat;
using Scope = LaunchItem::Scope;

// A temporary Mac whose stand-in launchctl logs every call (arguments joined by "|") and answers
// what `script` wrote for it.
class LaunchItemsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_mac.isValid());
        QByteArray launchctl = "line=\"$1\"; shift; for a in \"$@\"; do line=\"$line|$a\"; done\n"
                               "printf '%s\\n' \"$line\" >> DIR/log\n"
                               "f=DIR/\"$(printf '%s' \"$line\" | tr '/|' '__')\"\n"
                               "[ -f \"$f.out\" ] && cat \"$f.out\"\n"
                               "[ -f \"$f.status\" ] && exit \"$(cat \"$f.status\")\"\n"
                               "exit 0\n";
        m_mac.tool("launchctl", launchctl.replace("DIR", shellQuote(m_mac.root()).toUtf8()));
    }

    [[nodiscard]] QString path(const char* relative) const { return m_mac.path(relative); }

    // Writes a job's property list (labelled unless `label` is empty) and gives the item it is.
    LaunchItem job(const char* relative, Scope scope, const QByteArray& label, const QByteArray& more = {},
                   PlistFormat format = PlistFormat::xml) const
    {
        const QByteArray key = label.isEmpty() ? QByteArray() : "<key>Label</key><string>" + label + "</string>";
        test::writeBytes(path(relative), test::plistDict(key + more, format));
        return {.url = path(relative), .label = QString::fromUtf8(label), .program = {}, .scope = scope,
                .name = {}, .appURL = {}};
    }

    void script(const QByteArray& call, const QByteArray& output, int status = 0) const
    {
        const QByteArray name = QByteArray(call).replace('/', '_').replace('|', '_');
        test::writeBytes(path((name + ".out").constData()), output);
        test::writeBytes(path((name + ".status").constData()), QByteArray::number(status));
    }

    [[nodiscard]] QStringList calls() const
    {
        QFile log(path("log"));
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                             : QStringList();
    }

    [[nodiscard]] LaunchItems items(const ToolRunner& runner) const
    {
        return LaunchItems(m_tools, runner, m_admin, m_deleter, m_naming, m_workspace);
    }
    [[nodiscard]] LaunchItems items() const { return items(m_shell); }

    // The privileged shell: the real /bin/sh, with the stand-in in the system launchctl's place.
    void adminRunsCommandLines()
    {
        m_admin.handler = [this](const AdminRequest& request) {
            EXPECT_EQ(test::shellCommandOf(request.script), request.commandLine);
            QString line = request.commandLine;
            line.replace(QStringLiteral("/bin/launchctl"), m_tools.launchctl);
            return Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line}).status == 0
                       ? AdminOutcome::Succeeded
                       : AdminOutcome::Failed;
        };
    }

    test::TemporaryMac m_mac;
    SystemTools& m_tools = m_mac.tools;
    ShellToolRunner m_shell;
    mutable FakeAdminRunner m_admin;
    mutable FakeWorkspace m_workspace;
    Safety m_safety{m_mac.roots(), SafetyRules::forMac()};
    Deleter m_deleter{m_safety, m_admin};
    Naming m_naming{Naming::lookupIn(m_workspace)};
};

TEST(LaunchListings, LabelsAreReadInEveryStyleAmongJunk)
{
    const QString disabled = QStringLiteral("disabled services = {\n"
                                            "\t\"com.old.on\" => true\n\t\"com.old.off\" => false\n\n"
                                            "\t\"com.new.on\" => disabled\r\n  \"com.new.off\" => enabled\n"
                                            "\"tight\"=>true\ntrue but no label\n\"unclosed => disabled\n"
                                            "\"\" => disabled\n\t\"com.says.true\" => untrue\n}\n");
    EXPECT_EQ(
        LaunchItems::parseDisabled(disabled),
        (QSet<QString>{QStringLiteral("com.old.on"), QStringLiteral("com.new.on"), QStringLiteral("tight")}));

    const QString loaded =
        QStringLiteral("PID\tStatus\tLabel\n-\t0\tcom.apple.idle\n812\t-9\tcom.apple.running\n\n"
                       "-\t-\tapplication.com.x.y.1234.5678  \nCould not find service\n12 only-two\n");
    EXPECT_EQ(LaunchItems::parseLoaded(loaded),
              (QSet<QString>{QStringLiteral("com.apple.idle"), QStringLiteral("com.apple.running"),
                             QStringLiteral("application.com.x.y.1234.5678")}));
}

// Agents answer to the gui domain, daemons to the system's; an unlabelled file goes by its name, a
// damaged one or a non-list is skipped; equal names keep the folder order.
TEST_F(LaunchItemsTest, LoadReadsTheThreeFoldersInBothFormats)
{
    job("home/Library/LaunchAgents/com.example.sync.plist", Scope::user, "com.example.sync",
        "<key>ProgramArguments</key><array><string>/Applications/Sync Tool.app/Contents/MacOS/sync</string>"
        "<string>-bg</string></array>");
    job("home/Library/LaunchAgents/nolabel.plist", Scope::user, {}, "<key>Program</key><string>/usr/bin/x</string>",
        PlistFormat::binary);
    test::writeBytes(path("home/Library/LaunchAgents/broken.plist"), "<?xml version=\"1.0\"?><plist><dict><key>");
    job("home/Library/LaunchAgents/notes.txt", Scope::user, "not.a.job");
    job("Library/LaunchAgents/homebrew.mxcl.postgresql@15.plist", Scope::agent, "homebrew.mxcl.postgresql@15",
        "<key>Disabled</key><true/>", PlistFormat::binary);
    job("Library/LaunchAgents/com.acme.helper.plist", Scope::agent, "com.acme.helper");
    job("Library/LaunchDaemons/com.spotify.client.plist", Scope::daemon, "com.spotify.client",
        "<key>Disabled</key><false/>", PlistFormat::binary);
    job("Library/LaunchDaemons/com.acme.helper.plist", Scope::daemon, "com.acme.helper");
    m_workspace.applications.insert(QStringLiteral("com.spotify.client"), QStringLiteral("/Applications/Spotify.app"));
    script("print-disabled|gui/501", "disabled services = {\n\t\"com.acme.helper\" => disabled\n}\n");
    script("print-disabled|system", "disabled services = {\n\t\"com.spotify.client\" => true\n}\n");
    script("list", "PID\tStatus\tLabel\n-\t0\tcom.acme.helper\n77\t0\tcom.example.sync\n");

    QStringList described; // path, label, program, scope, enabled, loaded, name, application
    for (const LaunchItem& item : items().load())
        described << QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                         .arg(item.url.mid(m_mac.root().size() + 1), item.label, item.program)
                         .arg(int(item.scope)).arg(int(item.isEnabled)).arg(int(item.isLoaded))
                         .arg(item.name, item.appURL.value_or(QStringLiteral("-")));
    EXPECT_EQ(calls(), (QStringList{QStringLiteral("print-disabled|gui/501"),
                                    QStringLiteral("print-disabled|system"), QStringLiteral("list")}));
    EXPECT_EQ(
        described.join(QLatin1Char('\n')),
        QStringLiteral(
            "Library/LaunchAgents/com.acme.helper.plist|com.acme.helper||1|0|1|Acme|-\n"
            "Library/LaunchDaemons/com.acme.helper.plist|com.acme.helper||2|1|1|Acme|-\n"
            "home/Library/LaunchAgents/nolabel.plist|nolabel|/usr/bin/x|0|1|0|nolabel|-\n"
            "Library/LaunchAgents/homebrew.mxcl.postgresql@15.plist|homebrew.mxcl.postgresql@15|"
            "|1|0|0|postgresql@15|-\n"
            "Library/LaunchDaemons/com.spotify.client.plist|com.spotify.client||2|0|0|Spotify|"
            "/Applications/Spotify.app\n"
            "home/Library/LaunchAgents/com.example.sync.plist|com.example.sync|"
            "/Applications/Sync Tool.app/Contents/MacOS/sync|0|1|1|Sync Tool|/Applications/Sync Tool.app"));
}

// A launchctl that fails every call (missing, or hanging past 5 s) only leaves labels out; a missing
// folder or none at all gives nothing rather than an error.
TEST_F(LaunchItemsTest, OddNamesAndAFailingLaunchctlNeitherBreakTheListNorLeakIntoCommands)
{
    const QByteArray odd = QFile::encodeName(path("Library/LaunchAgents")) + "/bad\xff\xfe.plist";
    test::writeBytes(odd, test::plistDict("<key>Label</key><string>com.odd</string>"));
    job("Library/LaunchAgents/a'b\n-c.plist", Scope::agent, "-a'b\"c\\d");
    const QList<LaunchItem> loaded = items().load();
    ASSERT_EQ(loaded.size(), 1);
    EXPECT_EQ(std::tuple(loaded[0].label, loaded[0].isEnabled, loaded[0].isLoaded),
              std::tuple(QStringLiteral("-a'b\"c\\d"), true, false));
    ScriptedToolRunner failing;
    EXPECT_TRUE(items(failing).load() == loaded);
    EXPECT_EQ(failing.calls().size(), 3);
    for (const ToolCall& call : failing.calls())
        EXPECT_EQ(call.timeout, 5s);

    QFile::remove(path("log"));
    EXPECT_TRUE(items().setEnabled(loaded[0], true));
    EXPECT_EQ(calls().value(0), QStringLiteral("enable|gui/501/-a'b\"c\\d"));
    EXPECT_EQ(::access(odd.constData(), F_OK), 0);
    ::unlink(odd.constData()); // the temporary folder cannot name this file to remove it

    m_tools.agents = path("missing");
    m_tools.userAgents.clear();
    EXPECT_TRUE(items(failing).load().isEmpty());
}

// Stopping a job that is not running fails, yet the switch and the removal stand, with no prompt; a
// file the gate refuses stays and is reported as failed.
TEST_F(LaunchItemsTest, AgentsAreSwitchedAndRemovedInTheUsersGuiDomainWithoutAPrompt)
{
    LaunchItem agent = job("home/Library/LaunchAgents/com.me.plist", Scope::user, "com.me");
    script("bootout|gui/501/com.me", "", 3);
    EXPECT_TRUE(items().setEnabled(agent, false));
    EXPECT_TRUE(items().setEnabled(agent, true));
    EXPECT_TRUE(items().remove(agent));
    EXPECT_FALSE(QFile::exists(agent.url));
    const QString stop = QStringLiteral("bootout|gui/501/com.me");
    const QString start = QStringLiteral("bootstrap|gui/501|") + agent.url;
    EXPECT_EQ(calls(), (QStringList{QStringLiteral("disable|gui/501/com.me"), stop,
                                    QStringLiteral("enable|gui/501/com.me"), start, stop}));

    agent.url = path("home/Library/LaunchAgents");
    EXPECT_FALSE(items().remove(agent));
    EXPECT_TRUE(QFileInfo(agent.url).isDir());
    EXPECT_TRUE(m_admin.requests().isEmpty());
}

// A refused prompt changes nothing; accepted, the command lines keep a quoted label one argument
// and enabling a running daemon succeeds although its bootstrap fails.
TEST_F(LaunchItemsTest, DaemonsChangeOnlyThroughThePromptAndKeepAQuotedLabelOneArgument)
{
    const LaunchItem item = job("Library/LaunchDaemons/daemon.plist", Scope::daemon, "com.x'y");
    m_admin.outcome = AdminOutcome::Failed;
    EXPECT_FALSE(items().setEnabled(item, false));
    EXPECT_FALSE(items().remove(item));
    EXPECT_TRUE(QFile::exists(item.url));
    EXPECT_TRUE(calls().isEmpty());

    adminRunsCommandLines();
    EXPECT_TRUE(items().setEnabled(item, false));
    script("bootstrap|system|" + QFile::encodeName(item.url), "", 37);
    EXPECT_TRUE(items().setEnabled(item, true));
    EXPECT_EQ(m_admin.requests().size(), 4);
    EXPECT_TRUE(items().remove(item));
    EXPECT_FALSE(QFile::exists(item.url));
    const QString stop = QStringLiteral("bootout|system/com.x'y");
    const QString start = QStringLiteral("bootstrap|system|") + item.url;
    EXPECT_EQ(calls(), (QStringList{QStringLiteral("disable|system/com.x'y"), stop,
                                    QStringLiteral("enable|system/com.x'y"), start, stop}));
}

} // namespace
