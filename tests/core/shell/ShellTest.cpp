#include "core/shell/Shell.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include <sys/stat.h>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

const QString kSh = QStringLiteral("/bin/sh");

ShellResult sh(const QString& script, std::chrono::milliseconds timeout = 20s)
{
    return Shell::run(kSh, {QStringLiteral("-c"), script}, timeout);
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

class ShellTest : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_dir.path() + QLatin1Char('/') + name; }

    void writeScript(const QString& name, const QByteArray& text, bool executable = true) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        ASSERT_EQ(::chmod(QFile::encodeName(path(name)).constData(), executable ? 0755 : 0644), 0);
    }

    QTemporaryDir m_dir;
};

TEST_F(ShellTest, SilentToolGivesZeroAndNothing)
{
    EXPECT_EQ(Shell::run(QStringLiteral("/bin/true"), {}), (ShellResult{0, QString()}));
}

TEST_F(ShellTest, ExitStatusAndOutputComeBackUntrimmed)
{
    EXPECT_EQ(sh(QStringLiteral("printf '  two\\nlines\\n\\n'; exit 3")), (ShellResult{3, QStringLiteral("  two\nlines\n\n")}));
}

TEST_F(ShellTest, ToolThatCannotStartGivesMinusOne)
{
    // GIVEN a missing file, a file without the execute bit, a folder and a bare name
    writeScript(QStringLiteral("plain"), "#!/bin/sh\necho hi\n", false);
    const ShellResult failed{-1, QString()};

    EXPECT_EQ(Shell::run(path(QStringLiteral("missing")), {}), failed);
    EXPECT_EQ(Shell::run(path(QStringLiteral("plain")), {}), failed);
    EXPECT_EQ(Shell::run(m_dir.path(), {}), failed);
    // A bare name is never looked up in a search path: only full paths run.
    EXPECT_EQ(Shell::run(QStringLiteral("true"), {}), failed);
    EXPECT_EQ(Shell::run(QString(), {}), failed);
}

TEST_F(ShellTest, ToolKilledBySignalIsNeverSuccess)
{
    const ShellResult result = sh(QStringLiteral("echo before; kill -9 $$"));
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(result.output, QStringLiteral("before\n"));
}

TEST_F(ShellTest, ToolIgnoringTerminateIsKilledAfterTheDeadline)
{
    // GIVEN a tool that prints, then ignores SIGTERM and sleeps far past the limit (exec keeps
    // the pid, and an ignored signal stays ignored across exec)
    const QString pidFile = path(QStringLiteral("pid"));
    const QString script = QStringLiteral("echo started; echo $$ > '%1'; trap '' TERM; exec sleep 60").arg(pidFile);

    QElapsedTimer clock;
    clock.start();
    const ShellResult result = sh(script, 1s);
    const qint64 elapsed = clock.elapsed();

    // THEN nothing of its output is kept, and it is gone
    EXPECT_EQ(result, (ShellResult{-1, QString()}));
    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const pid_t pid = pid_t(file.readAll().trimmed().toInt());
    ASSERT_GT(pid, 0);
    EXPECT_FALSE(processExists(pid)) << "pid " << pid << " still running";
    // Not a speed check: the run must end by itself long before the tool's own 60 s sleep.
    EXPECT_GE(elapsed, 1000);
    EXPECT_LT(elapsed, 30000);
    RecordProperty("elapsed_ms", int(elapsed));
}

TEST_F(ShellTest, WhatTheToolStartedStopsWithItAtTheDeadline)
{
    // GIVEN a script whose child ignores SIGTERM too and would outlive it
    const QString pidFile = path(QStringLiteral("pids"));
    const QString script =
        QStringLiteral("trap '' TERM; sleep 60 & echo $! > '%1'; echo $$ >> '%1'; wait").arg(pidFile);

    EXPECT_EQ(sh(script, 500ms), (ShellResult{-1, QString()}));

    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> pids = file.readAll().trimmed().split('\n');
    ASSERT_EQ(pids.size(), 2);
    for (const QByteArray& pid : pids) {
        // The signal is delivered, not awaited; give the child a moment to act on it.
        QElapsedTimer clock;
        clock.start();
        while (processExists(pid_t(pid.toInt())) && clock.elapsed() < 5000)
            QThread::msleep(20);
        EXPECT_FALSE(processExists(pid_t(pid.toInt()))) << "pid " << pid.constData() << " still running";
    }
}

TEST_F(ShellTest, ChildrenLeftRunningByAToolThatEndedInTimeAreNotWaitedFor)
{
    EXPECT_EQ(sh(QStringLiteral("sleep 2 & echo done"), 20s), (ShellResult{0, QStringLiteral("done\n")}));
}

TEST_F(ShellTest, TenMegabytesOfOutputDoNotStall)
{
    const qint64 size = 10 * 1024 * 1024;
    const ShellResult result = sh(QStringLiteral("head -c %1 /dev/zero | tr '\\000' 'a'; echo end").arg(size), 60s);
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.output.size(), size + 4);
    EXPECT_TRUE(result.output.endsWith(QStringLiteral("aaend\n")));
}

TEST_F(ShellTest, InvalidUtf8BecomesReplacementCharacters)
{
    // a, a lone continuation byte, an invalid lead byte, a truncated sequence, b, and an accent
    const ShellResult result = sh(QStringLiteral("printf 'a\\200\\377\\342\\202b\\303\\251\\000z'"));
    ASSERT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith(QLatin1Char('a')));
    EXPECT_TRUE(result.output.contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(result.output.endsWith(QStringLiteral("bé") + QChar(0) + QLatin1Char('z')));
}

TEST_F(ShellTest, EnvironmentIsOursWithTheFixedSearchPath)
{
    qputenv("NUBO_SHELL_PROBE", "kept");
    const ShellResult result = sh(QStringLiteral("printf '%s|%s' \"$PATH\" \"$NUBO_SHELL_PROBE\""));
    qunsetenv("NUBO_SHELL_PROBE");
    EXPECT_EQ(result.output, QString::fromLatin1(Shell::kToolSearchPath) + QStringLiteral("|kept"));
}

TEST_F(ShellTest, InputIsEmptyAndErrorsAreDiscarded)
{
    // cat would wait for ever on an inherited terminal or pipe; the null device ends it at once.
    EXPECT_EQ(sh(QStringLiteral("cat; echo out; echo err >&2"), 10s), (ShellResult{0, QStringLiteral("out\n")}));
}

TEST_F(ShellTest, ArgumentsReachTheToolVerbatim)
{
    const QStringList odd{QStringLiteral("two words"), QStringLiteral("say \"hi\""), QStringLiteral("it's"),
                          QStringLiteral("back\\slash"), QStringLiteral("new\nline"), QStringLiteral("-rf"),
                          QStringLiteral("$HOME `id` *"), QStringLiteral("ñandú"), QString()};
    QStringList arguments{QStringLiteral("-c"), QStringLiteral("for a; do printf '<%s>' \"$a\"; done"), QStringLiteral("sh")};
    arguments << odd;
    QString expected;
    for (const QString& argument : odd)
        expected += QLatin1Char('<') + argument + QLatin1Char('>');
    EXPECT_EQ(Shell::run(kSh, arguments).output, expected);
}

TEST_F(ShellTest, RunsOnManyThreadsAtOnce)
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

TEST_F(ShellTest, WhichFindsTheFirstExecutableFile)
{
    // GIVEN two folders: the first has a non-executable "tool" and a folder "dir", the second an
    // executable "tool", a link to it and a folder "dir"
    ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("one/dir")));
    ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("two/dir")));
    writeScript(QStringLiteral("one/tool"), "#!/bin/sh\n", false);
    writeScript(QStringLiteral("two/tool"), "#!/bin/sh\n");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("two/tool")), path(QStringLiteral("one/linked"))));
    const QStringList folders{path(QStringLiteral("one")), path(QStringLiteral("two"))};

    EXPECT_EQ(Shell::which(QStringLiteral("tool"), folders), path(QStringLiteral("two/tool")));
    EXPECT_EQ(Shell::which(QStringLiteral("linked"), folders), path(QStringLiteral("one/linked")));
    EXPECT_EQ(Shell::which(QStringLiteral("dir"), folders), std::nullopt);
    EXPECT_EQ(Shell::which(QStringLiteral("missing"), folders), std::nullopt);
    // Names that would reach outside the folders find nothing.
    EXPECT_EQ(Shell::which(QStringLiteral("../two/tool"), folders), std::nullopt);
    EXPECT_EQ(Shell::which(QString(), folders), std::nullopt);
    EXPECT_EQ(Shell::which(QStringLiteral("sh"), {}), std::nullopt);
}

TEST_F(ShellTest, WhichLooksInTheUsualFolders)
{
    EXPECT_EQ(Shell::which(QStringLiteral("env")), QStringLiteral("/usr/bin/env"));
    EXPECT_EQ(Shell::which(QStringLiteral("no-such-tool-anywhere")), std::nullopt);
}

} // namespace
