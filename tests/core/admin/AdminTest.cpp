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
const QStringList kOddTexts{QString(),
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
                            QStringLiteral("tab\there, ñandú, 表")};

// A real shell reads every quoted text back as one word, and the script macOS runs says what the
// command line other platforms run says: read back as AppleScript would, it hands the shell
// exactly that command line.
TEST(AdminScriptTest, OddTextsReachTheShellAsTheyAreOnEveryPlatform)
{
    QStringList paths;
    for (const QString& text : kOddTexts) {
        SCOPED_TRACE(text.toStdString());
        const QString line = QStringLiteral("printf '<%s>' ") + shellQuote(text);
        EXPECT_EQ(Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line}).output,
                  QLatin1Char('<') + text + QLatin1Char('>'));
        const AdminRequest command = AdminScript::forCommand(text);
        EXPECT_EQ(command.commandLine, text);
        EXPECT_EQ(test::shellCommandOf(command.script), text);
        paths << QStringLiteral("/tmp/") + text;
    }
    const AdminRequest removal = AdminScript::forRemoval(paths);
    EXPECT_EQ(test::shellCommandOf(removal.script), removal.commandLine);

    const AdminRequest two = AdminScript::forRemoval({QStringLiteral("/a"), QStringLiteral("/b c")});
    EXPECT_EQ(two.script,
              QStringLiteral("do shell script \"/bin/rm -rf -- \" & quoted form of \"/a\" & \" \" & "
                             "quoted form of \"/b c\" with administrator privileges"));
    EXPECT_EQ(two.commandLine, QStringLiteral("/bin/rm -rf -- '/a' '/b c'"));
}

// A refused or cancelled prompt, and a platform without one, are failures, never success.
TEST(AdminRunTest, HandsTheScriptToTheRunnerAndAnswersOnlySuccess)
{
    FakeAdminRunner runner;
    const QString command = QStringLiteral("/usr/sbin/purge");
    for (const auto& [outcome, ok] :
         {std::pair{AdminOutcome::Succeeded, true}, std::pair{AdminOutcome::Failed, false},
          std::pair{AdminOutcome::Unavailable, false}}) {
        runner.outcome = outcome;
        EXPECT_EQ(Admin::run(runner, command), ok);
    }
    ASSERT_EQ(runner.requests().size(), 3);
    EXPECT_EQ(test::shellCommandOf(runner.requests().first().script), command);
}

} // namespace
