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
#include <memory>
#include <unistd.h>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

using test::plistDict;
using test::PlistFormat;

// A temporary Mac: a home with its agents, the system-wide agents and daemons, and a stand-in
// launchctl that logs every call (arguments joined by "|") and prints the listings a test wrote.
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
        m_safety = std::make_unique<Safety>(m_mac.roots(), SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
        m_naming = std::make_unique<Naming>(Naming::lookupIn(m_workspace));
    }

    [[nodiscard]] QString path(const char* relative) const { return m_mac.path(relative); }
    void write(const char* relative, const QByteArray& bytes) const
    {
        test::writeBytes(path(relative), bytes);
    }

    // What the stand-in prints (and how it exits) when called with these arguments.
    void script(const QByteArray& call, const QByteArray& output, int status = 0) const
    {
        const QByteArray name = QByteArray(call).replace('/', '_').replace('|', '_');
        write((name + ".out").constData(), output);
        write((name + ".status").constData(), QByteArray::number(status));
    }

    [[nodiscard]] QStringList calls() const
    {
        QFile log(path("log"));
        if (!log.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    [[nodiscard]] LaunchItems items(const ToolRunner& runner) const
    {
        return LaunchItems(m_tools, runner, m_admin, *m_deleter, *m_naming, m_workspace);
    }
    [[nodiscard]] LaunchItems items() const { return items(m_shell); }

    // The privileged shell, played by the real /bin/sh with the system's launchctl swapped for
    // the stand-in (its path has no characters the shell would read).
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

    [[nodiscard]] LaunchItem job(const char* relative, const QString& label, LaunchItem::Scope scope) const
    {
        LaunchItem item;
        item.url = path(relative);
        item.label = label;
        item.scope = scope;
        return item;
    }

    test::TemporaryMac m_mac;
    SystemTools& m_tools = m_mac.tools;
    ShellToolRunner m_shell;
    mutable FakeAdminRunner m_admin;
    mutable FakeWorkspace m_workspace;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<Deleter> m_deleter;
    std::unique_ptr<Naming> m_naming;
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

TEST_F(LaunchItemsTest, LoadReadsTheThreeFoldersInBothFormats)
{
    write("home/Library/LaunchAgents/com.example.sync.plist",
          plistDict("<key>Label</key><string>com.example.sync</string><key>ProgramArguments</key>"
                    "<array><string>/Applications/Sync "
                    "Tool.app/Contents/MacOS/sync</string><string>-bg</string></array>"));
    write("home/Library/LaunchAgents/nolabel.plist",
          plistDict("<key>Program</key><string>/usr/local/bin/thing</string>", PlistFormat::binary));
    write("home/Library/LaunchAgents/broken.plist", "<?xml version=\"1.0\"?><plist><dict><key>Label");
    write("home/Library/LaunchAgents/notes.txt", plistDict("<key>Label</key><string>not.a.job</string>"));
    write("Library/LaunchAgents/homebrew.mxcl.postgresql@15.plist",
          plistDict("<key>Label</key><string>homebrew.mxcl.postgresql@15</string><key>Disabled</key><true/>",
                    PlistFormat::binary));
    write("Library/LaunchAgents/com.acme.helper.plist",
          plistDict("<key>Label</key><string>com.acme.helper</string>"));
    write("Library/LaunchDaemons/com.spotify.client.plist",
          plistDict("<key>Label</key><string>com.spotify.client</string><key>Disabled</key><false/>",
                    PlistFormat::binary));
    write("Library/LaunchDaemons/com.acme.helper.plist",
          plistDict("<key>Label</key><string>com.acme.helper</string>"));
    m_workspace.applications.insert(QStringLiteral("com.spotify.client"),
                                    QStringLiteral("/Applications/Spotify.app"));

    // Agents answer to the user's gui domain, daemons to the system's.
    script("print-disabled|gui/501", "disabled services = {\n\t\"com.acme.helper\" => disabled\n}\n");
    script("print-disabled|system", "disabled services = {\n\t\"com.spotify.client\" => true\n}\n");
    script("list", "PID\tStatus\tLabel\n-\t0\tcom.acme.helper\n77\t0\tcom.example.sync\n");

    const QList<LaunchItem> loaded = items().load();
    EXPECT_EQ(calls(), (QStringList{QStringLiteral("print-disabled|gui/501"),
                                    QStringLiteral("print-disabled|system"), QStringLiteral("list")}));

    // Path below the fixture, label, program, scope, enabled, loaded, name and application, one
    // line per item. Equal names keep the folder order: the agent before the daemon.
    QStringList described;
    for (const LaunchItem& item : loaded) {
        described << QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                         .arg(item.url.mid(m_mac.root().size() + 1), item.label, item.program)
                         .arg(int(item.scope))
                         .arg(int(item.isEnabled))
                         .arg(int(item.isLoaded))
                         .arg(item.name, item.appURL.value_or(QStringLiteral("-")));
    }
    EXPECT_EQ(
        described.join(QLatin1Char('\n')),
        QStringLiteral(
            "Library/LaunchAgents/com.acme.helper.plist|com.acme.helper||1|0|1|Acme|-\n"
            "Library/LaunchDaemons/com.acme.helper.plist|com.acme.helper||2|1|1|Acme|-\n"
            "home/Library/LaunchAgents/nolabel.plist|nolabel|/usr/local/bin/thing|0|1|0|nolabel|-\n"
            "Library/LaunchAgents/homebrew.mxcl.postgresql@15.plist|homebrew.mxcl.postgresql@15|"
            "|1|0|0|postgresql@15|-\n"
            "Library/LaunchDaemons/com.spotify.client.plist|com.spotify.client||2|0|0|Spotify|"
            "/Applications/Spotify.app\n"
            "home/Library/LaunchAgents/com.example.sync.plist|com.example.sync|"
            "/Applications/Sync Tool.app/Contents/MacOS/sync|0|1|1|Sync Tool|/Applications/Sync Tool.app"));
}

TEST_F(LaunchItemsTest, FailingLaunchctlOnlyLeavesLabelsOut)
{
    write("Library/LaunchDaemons/com.acme.d.plist", plistDict("<key>Label</key><string>com.acme.d</string>"));
    ScriptedToolRunner scripted; // every call fails, as when launchctl is missing or hangs
    const QList<LaunchItem> loaded = items(scripted).load();
    ASSERT_EQ(loaded.size(), 1);
    EXPECT_TRUE(loaded[0].isEnabled);
    EXPECT_FALSE(loaded[0].isLoaded);
    EXPECT_EQ(scripted.calls().size(), 3);
    for (const ToolCall& call : scripted.calls())
        EXPECT_EQ(call.timeout, 5s);

    // A folder that cannot be listed, and no folders at all, give nothing rather than an error.
    m_tools.daemons = path("missing");
    m_tools.userAgents.clear();
    EXPECT_TRUE(items(scripted).load().isEmpty());
}

TEST_F(LaunchItemsTest, NameThatIsNotUtf8IsNeverOfferedAndOddLabelsStayOneArgument)
{
    const QByteArray odd = QFile::encodeName(path("Library/LaunchAgents")) + "/bad\xff\xfe.plist";
    test::writeBytes(odd, plistDict("<key>Label</key><string>com.odd</string>"));
    write("Library/LaunchAgents/a'b\n-c.plist", plistDict("<key>Label</key><string>-a'b\"c\\d</string>"));

    const QList<LaunchItem> loaded = items().load();
    ASSERT_EQ(loaded.size(), 1);
    EXPECT_EQ(loaded[0].label, QStringLiteral("-a'b\"c\\d"));

    QFile::remove(path("log"));
    EXPECT_TRUE(items().setEnabled(loaded[0], true));
    EXPECT_EQ(calls().value(0), QStringLiteral("enable|gui/501/-a'b\"c\\d"));
    EXPECT_EQ(::access(odd.constData(), F_OK), 0);
    ::unlink(odd.constData()); // the temporary folder cannot name this file to remove it
}

TEST_F(LaunchItemsTest, AgentsAreSwitchedInTheUsersGuiDomainWithoutAPrompt)
{
    const LaunchItem agent = job("Library/LaunchAgents/com.acme.helper.plist",
                                 QStringLiteral("com.acme.helper"), LaunchItem::Scope::agent);
    // Stopping a job that is not running fails; the choice was still recorded.
    script("bootout|gui/501/com.acme.helper", "", 3);
    EXPECT_TRUE(items().setEnabled(agent, false));
    EXPECT_TRUE(items().setEnabled(agent, true));
    EXPECT_EQ(calls(), (QStringList{QStringLiteral("disable|gui/501/com.acme.helper"),
                                    QStringLiteral("bootout|gui/501/com.acme.helper"),
                                    QStringLiteral("enable|gui/501/com.acme.helper"),
                                    QStringLiteral("bootstrap|gui/501|") + agent.url}));
    EXPECT_TRUE(m_admin.requests().isEmpty());

    // When launchd does not take the choice, the switch must not claim it did.
    script("disable|gui/501/com.acme.helper", "", 1);
    EXPECT_FALSE(items().setEnabled(agent, false));
    m_tools.launchctl = path("missing");
    EXPECT_FALSE(items().setEnabled(agent, true));
}

// A refused prompt changes nothing. Once accepted, the daemon's command line runs through a real
// shell: a quote in the label must stay inside one argument.
TEST_F(LaunchItemsTest, DaemonsChangeOnlyThroughThePromptAndKeepAQuotedLabelOneArgument)
{
    write("Library/LaunchDaemons/daemon.plist", plistDict("<key>Label</key><string>com.x'y</string>"));
    const LaunchItem item =
        job("Library/LaunchDaemons/daemon.plist", QStringLiteral("com.x'y"), LaunchItem::Scope::daemon);
    m_admin.outcome = AdminOutcome::Failed;
    EXPECT_FALSE(items().setEnabled(item, false));
    EXPECT_FALSE(items().remove(item));
    EXPECT_TRUE(QFile::exists(item.url));
    EXPECT_TRUE(calls().isEmpty());

    adminRunsCommandLines();
    EXPECT_TRUE(items().setEnabled(item, false));
    // Enabling a daemon that is already running still succeeds: bootstrap fails, the line does not.
    script("bootstrap|system|" + QFile::encodeName(item.url), "", 37);
    EXPECT_TRUE(items().setEnabled(item, true));
    EXPECT_EQ(calls(),
              (QStringList{QStringLiteral("disable|system/com.x'y"), QStringLiteral("bootout|system/com.x'y"),
                           QStringLiteral("enable|system/com.x'y"),
                           QStringLiteral("bootstrap|system|") + item.url}));
    EXPECT_EQ(m_admin.requests().size(), 4);
}

TEST_F(LaunchItemsTest, RemoveStopsTheJobThenDeletesItsFile)
{
    write("home/Library/LaunchAgents/com.me.plist", plistDict("<key>Label</key><string>com.me</string>"));
    write("Library/LaunchDaemons/daemon.plist", plistDict("<key>Label</key><string>com.acme.d</string>"));
    const LaunchItem mine =
        job("home/Library/LaunchAgents/com.me.plist", QStringLiteral("com.me"), LaunchItem::Scope::user);
    script("bootout|gui/501/com.me", "", 3); // not running: removal goes on

    EXPECT_TRUE(items().remove(mine));
    EXPECT_FALSE(QFile::exists(mine.url));
    EXPECT_EQ(calls(), QStringList{QStringLiteral("bootout|gui/501/com.me")});

    adminRunsCommandLines();
    const LaunchItem system =
        job("Library/LaunchDaemons/daemon.plist", QStringLiteral("com.acme.d"), LaunchItem::Scope::daemon);
    EXPECT_TRUE(items().remove(system));
    EXPECT_FALSE(QFile::exists(system.url));
    EXPECT_EQ(calls().value(1), QStringLiteral("bootout|system/com.acme.d"));

    // A file the deletion service refuses (the gate's protected folder itself) stays, and says so.
    LaunchItem guarded = mine;
    guarded.url = path("home/Library/LaunchAgents");
    EXPECT_FALSE(items().remove(guarded));
    EXPECT_TRUE(QFileInfo(guarded.url).isDir());
}

} // namespace
