#include "core/admin/Admin.h"
#include "core/admin/AdminScript.h"
#include "core/admin/ShellQuote.h"
#include "core/shell/Shell.h"
#include "platform/fake/FakeAdminRunner.h"

#include "support/AppleScriptText.h"

#include <gtest/gtest.h>

#include <utility>

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

TEST(ShellQuoteTest, RealShellReadsBackEveryTextAsOneWord)
{
    for (const QString& text : kOddTexts) {
        const QString line = QStringLiteral("printf '<%s>' ") + shellQuote(text);
        EXPECT_EQ(Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line}).output,
                  QLatin1Char('<') + text + QLatin1Char('>'))
            << text.toStdString();
    }
}

TEST(AdminScriptTest, RemovalOfTwoPathsReadsExactly)
{
    const AdminRequest request = AdminScript::forRemoval({QStringLiteral("/a"), QStringLiteral("/b c")});
    EXPECT_EQ(
        request.script,
        QStringLiteral("do shell script \"/bin/rm -rf -- \" & quoted form of \"/a\" & \" \" & quoted form of "
                       "\"/b c\" with administrator privileges"));
    EXPECT_EQ(request.commandLine, QStringLiteral("/bin/rm -rf -- '/a' '/b c'"));
}

// The script macOS runs and the command line other platforms run must say the same thing: read
// back as AppleScript would, the script hands the shell exactly the command line.
TEST(AdminScriptTest, ScriptAndCommandLineAgreeForOddTexts)
{
    QStringList paths;
    for (const QString& text : kOddTexts) {
        const AdminRequest command = AdminScript::forCommand(text);
        EXPECT_EQ(test::shellCommandOf(command.script), command.commandLine) << text.toStdString();
        EXPECT_EQ(command.commandLine, text);
        paths << QStringLiteral("/tmp/") + text;
    }
    const AdminRequest removal = AdminScript::forRemoval(paths);
    EXPECT_EQ(test::shellCommandOf(removal.script), removal.commandLine);
}

TEST(AdminRunTest, HandsTheScriptToTheRunnerAndAnswersOnlySuccess)
{
    FakeAdminRunner runner;
    const QString command = QStringLiteral("/usr/sbin/purge");
    // A script that cannot even be made is a failure for a command, not a success.
    for (const auto& [outcome, ok] :
         {std::pair{AdminOutcome::Succeeded, true}, std::pair{AdminOutcome::Failed, false},
          std::pair{AdminOutcome::Unavailable, false}}) {
        runner.outcome = outcome;
        EXPECT_EQ(Admin::run(runner, command), ok);
    }
    ASSERT_EQ(runner.requests().size(), 3);
    EXPECT_EQ(test::shellCommandOf(runner.requests().first().script), command);
    EXPECT_EQ(runner.requests().first().commandLine, command);
}

} // namespace
