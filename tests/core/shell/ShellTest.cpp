#include "core/shell/Shell.h"

#include "support/FixtureFiles.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>
#include <vector>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

ShellResult sh(const QString& script, std::chrono::milliseconds timeout = 20s)
{
    return Shell::run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script}, timeout);
}

// Running, that is: a zombie waiting for its parent (init, for an orphan) has stopped already.
bool processExists(pid_t pid)
{
    if (::kill(pid, 0) != 0 && errno == ESRCH)
        return false;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return true;
    const QByteArray line = stat.readAll();
    const qsizetype close = line.lastIndexOf(')');
    return close < 0 || line.mid(close + 2, 1) != "Z";
}

TEST(Shell, StatusAndOutputComeBackAsTheToolLeftThem)
{
    const std::pair<const char*, ShellResult> cases[] = {
        {":", {0, QString()}},
        {"printf '  two\\nlines\\n\\n'; exit 3", {3, QStringLiteral("  two\nlines\n\n")}}, // never trimmed
        // cat would wait for ever on an inherited terminal; errors are discarded.
        {"cat; echo out; echo err >&2", {0, QStringLiteral("out\n")}},
        {"sleep 2 & echo done", {0, QStringLiteral("done\n")}}, // children left running are not awaited
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(sh(QString::fromUtf8(script)), expected) << script;

    const ShellResult killed = sh(QStringLiteral("echo before; kill -9 $$"));
    EXPECT_NE(killed.status, 0) << "a crash is never success";
    EXPECT_EQ(killed.output, QStringLiteral("before\n"));

    // a, a lone continuation byte, an invalid lead byte, a truncated sequence, b, an accent, NUL
    const QString decoded = sh(QStringLiteral("printf 'a\\200\\377\\342\\202b\\303\\251\\000z'")).output;
    EXPECT_TRUE(decoded.startsWith(QLatin1Char('a')));
    EXPECT_TRUE(decoded.contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(decoded.endsWith(QStringLiteral("bé") + QChar(0) + QLatin1Char('z')));
}

TEST(Shell, ToolThatCannotStartGivesMinusOne)
{
    QTemporaryDir dir;
    test::writeBytes(dir.filePath(QStringLiteral("plain")), "#!/bin/sh\necho hi\n"); // no execute bit
    // A bare name is never looked up in a search path: only full paths run.
    for (const QString& tool :
         {dir.filePath(QStringLiteral("missing")), dir.filePath(QStringLiteral("plain")), dir.path(),
          QStringLiteral("true"), QString()})
        EXPECT_EQ(Shell::run(tool, {}), (ShellResult{-1, QString()})) << tool.toStdString();
}

TEST(Shell, AToolPastItsDeadlineIsKilledWithEverythingItStarted)
{
    // The tool prints, then it and its child ignore SIGTERM and sleep far past the limit (exec
    // keeps the pid, and an ignored signal stays ignored across exec).
    QTemporaryDir dir;
    const QString pidFile = dir.filePath(QStringLiteral("pids"));
    QElapsedTimer clock;
    clock.start();
    const ShellResult result =
        sh(QStringLiteral(
               "echo started; trap '' TERM; sleep 60 & echo $! > '%1'; echo $$ >> '%1'; exec sleep 60")
               .arg(pidFile),
           1s);
    const qint64 elapsed = clock.elapsed();

    EXPECT_EQ(result, (ShellResult{-1, QString()})); // nothing of its output is kept
    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> pids = file.readAll().trimmed().split('\n');
    ASSERT_EQ(pids.size(), 2);
    for (const QByteArray& pid : pids) {
        // The last kill is delivered, not awaited; give the child a moment to act on it.
        QElapsedTimer wait;
        wait.start();
        while (processExists(pid_t(pid.toInt())) && wait.elapsed() < 5000)
            QThread::msleep(20);
        EXPECT_FALSE(processExists(pid_t(pid.toInt()))) << "pid " << pid.constData() << " still running";
    }
    // Not a speed check: the run must end by itself long before the tool's own 60 s sleep.
    EXPECT_GE(elapsed, 1000);
    EXPECT_LT(elapsed, 30000);
}

TEST(Shell, TenMegabytesOfOutputDoNotStall)
{
    const qint64 size = 10 * 1024 * 1024;
    const ShellResult result =
        sh(QStringLiteral("head -c %1 /dev/zero | tr '\\000' 'a'; echo end").arg(size), 60s);
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.output.size(), size + 4);
    EXPECT_TRUE(result.output.endsWith(QStringLiteral("aaend\n")));
}

TEST(Shell, EnvironmentIsOursWithTheFixedSearchPath)
{
    qputenv("NUBO_SHELL_PROBE", "kept");
    const ShellResult result = sh(QStringLiteral("printf '%s|%s' \"$PATH\" \"$NUBO_SHELL_PROBE\""));
    qunsetenv("NUBO_SHELL_PROBE");
    EXPECT_EQ(result.output, QString::fromLatin1(Shell::kToolSearchPath) + QStringLiteral("|kept"));
}

TEST(Shell, ArgumentsReachTheToolVerbatim)
{
    const QStringList odd{
        QStringLiteral("two words"),    QStringLiteral("say \"hi\""), QStringLiteral("it's"),
        QStringLiteral("back\\slash"),  QStringLiteral("new\nline"),  QStringLiteral("-rf"),
        QStringLiteral("$HOME `id` *"), QStringLiteral("ñandú"),      QString()};
    QString expected;
    for (const QString& argument : odd)
        expected += QLatin1Char('<') + argument + QLatin1Char('>');
    const QStringList arguments =
        QStringList{QStringLiteral("-c"), QStringLiteral("for a; do printf '<%s>' \"$a\"; done"),
                    QStringLiteral("sh")} +
        odd;
    EXPECT_EQ(Shell::run(QStringLiteral("/bin/sh"), arguments).output, expected);
}

TEST(Shell, RunsOnManyThreadsAtOnce)
{
    std::vector<ShellResult> results(4);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&results, i] { results[i] = sh(QStringLiteral("sleep 0.2; echo %1").arg(i)); });
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(results[i], (ShellResult{0, QStringLiteral("%1\n").arg(i)}));
}

TEST(Shell, WhichFindsTheFirstExecutableFileAndNothingOutsideTheFolders)
{
    // The first folder has a non-executable "tool", a link to the second's executable "tool" and a
    // folder "dir"; the second has the executable "tool" and a folder "dir".
    QTemporaryDir dir;
    const auto at = [&dir](const char* relative) { return dir.filePath(QString::fromLatin1(relative)); };
    test::makeDir(at("one/dir"));
    test::makeDir(at("two/dir"));
    test::writeBytes(at("one/tool"), "#!/bin/sh\n");
    test::writeScript(at("two/tool"), "");
    test::makeLink(at("two/tool"), at("one/linked"));
    const QStringList folders{at("one"), at("two")};

    EXPECT_EQ(Shell::which(QStringLiteral("tool"), folders), at("two/tool"));
    EXPECT_EQ(Shell::which(QStringLiteral("linked"), folders), at("one/linked"));
    for (const char* nothing : {"dir", "missing", "../two/tool", ""})
        EXPECT_EQ(Shell::which(QString::fromLatin1(nothing), folders), std::nullopt) << nothing;
    EXPECT_EQ(Shell::which(QStringLiteral("sh"), {}), std::nullopt);
    EXPECT_EQ(Shell::which(QStringLiteral("env")), QStringLiteral("/usr/bin/env"));
    EXPECT_EQ(Shell::which(QStringLiteral("no-such-tool-anywhere")), std::nullopt);
}

} // namespace
