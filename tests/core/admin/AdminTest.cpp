#include "core/admin/Admin.h"
#include "core/admin/AdminScript.h"
#include "core/admin/ShellQuote.h"
#include "core/shell/Shell.h"
#include "platform/fake/FakeAdminRunner.h"

#include "support/AppleScriptText.h"

#include <gtest/gtest.h>

using namespace nubo;

namespace {

// Texts that break naive quoting in one language or the other.
const QStringList kOddTexts{
    QString(),
    QStringLiteral("plain"),
    QStringLiteral("two  spaces"),
    QStringLiteral("it's"),
    QStringLiteral("''"),
    QStringLiteral("say \"hi\""),
    QStringLiteral("back\\slash\\"),
    QStringLiteral("\\\""),
    QStringLiteral("\\n is not a newline"),
    QStringLiteral("real\nnewline"),
    QStringLiteral("-rf --"),
    QStringLiteral("$HOME $(id) `id` ; rm -rf nothing & | > *"),
    QStringLiteral("tab\there, ñandú, 表"),
};

// What the shell makes of a command line that prints its arguments one per bracket.
QString echoedBy(const QString& commandLine)
{
    return Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), commandLine}).output;
}

TEST(ShellQuoteTest, QuotesForPosixShells)
{
    EXPECT_EQ(shellQuote(QStringLiteral("it's")), QStringLiteral("'it'\\''s'"));
    EXPECT_EQ(shellQuote(QString()), QStringLiteral("''"));
    EXPECT_EQ(shellQuote(QStringLiteral("a b")), QStringLiteral("'a b'"));
}

TEST(ShellQuoteTest, RealShellReadsBackEveryTextAsOneWord)
{
    for (const QString& text : kOddTexts)
        EXPECT_EQ(echoedBy(QStringLiteral("printf '<%s>' ") + shellQuote(text)), QLatin1Char('<') + text + QLatin1Char('>'))
            << text.toStdString();
}

TEST(AdminScriptTest, LiteralEscapingDoublesBackslashesBeforeQuotes)
{
    EXPECT_EQ(AdminScript::escapeForLiteral(QStringLiteral("a\\\"b")), QStringLiteral("a\\\\\\\"b"));
    EXPECT_EQ(AdminScript::escapeForLiteral(QStringLiteral("plain 'single'")), QStringLiteral("plain 'single'"));
}

TEST(AdminScriptTest, RemovalOfTwoPathsReadsExactly)
{
    const AdminRequest request = AdminScript::forRemoval({QStringLiteral("/a"), QStringLiteral("/b c")});
    EXPECT_EQ(request.script,
              QStringLiteral("do shell script \"/bin/rm -rf -- \" & quoted form of \"/a\" & \" \" & quoted form of "
                             "\"/b c\" with administrator privileges"));
    EXPECT_EQ(request.commandLine, QStringLiteral("/bin/rm -rf -- '/a' '/b c'"));
}

TEST(AdminScriptTest, CommandScriptReadsExactly)
{
    const AdminRequest request = AdminScript::forCommand(QStringLiteral("/usr/bin/dscacheutil -flushcache; echo \"\\\""));
    EXPECT_EQ(request.script, QStringLiteral("do shell script \"/usr/bin/dscacheutil -flushcache; echo \\\"\\\\\\\"\" "
                                             "with administrator privileges"));
    EXPECT_EQ(request.commandLine, QStringLiteral("/usr/bin/dscacheutil -flushcache; echo \"\\\""));
}

// The script macOS runs and the command line other platforms run must say the same thing: read
// back as AppleScript would, the script hands the shell exactly the command line.
TEST(AdminScriptTest, ScriptAndCommandLineAgreeForOddTexts)
{
    for (const QString& text : kOddTexts) {
        const AdminRequest command = AdminScript::forCommand(text);
        EXPECT_EQ(test::shellCommandOf(command.script), command.commandLine) << text.toStdString();
        EXPECT_EQ(command.commandLine, text);
    }
    QStringList paths;
    for (const QString& text : kOddTexts)
        paths << QStringLiteral("/tmp/") + text;
    const AdminRequest removal = AdminScript::forRemoval(paths);
    EXPECT_EQ(test::shellCommandOf(removal.script), removal.commandLine);
}

TEST(AdminRunTest, HandsTheScriptToTheRunnerAndAnswersOnlySuccess)
{
    FakeAdminRunner runner;
    const QString command = QStringLiteral("/usr/sbin/purge");

    runner.outcome = AdminOutcome::Succeeded;
    EXPECT_TRUE(Admin::run(runner, command));
    runner.outcome = AdminOutcome::Failed;
    EXPECT_FALSE(Admin::run(runner, command));
    // A script that cannot even be made is a failure for a command, not a success.
    runner.outcome = AdminOutcome::Unavailable;
    EXPECT_FALSE(Admin::run(runner, command));

    ASSERT_EQ(runner.requests().size(), 3);
    EXPECT_EQ(runner.requests().first().script,
              QStringLiteral("do shell script \"/usr/sbin/purge\" with administrator privileges"));
    EXPECT_EQ(runner.requests().first().commandLine, command);
}

} // namespace
