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
#include <vector>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

// The script runs as "sh -c script sh arguments…", so "$@" is exactly `arguments`.
ShellResult sh(const QString& script, const QStringList& arguments = {},
               std::chrono::milliseconds timeout = 60s)
{
    return Shell::run(QStringLiteral("/bin/sh"),
                      QStringList{QStringLiteral("-c"), script, QStringLiteral("sh")} + arguments, timeout);
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

// Output is never trimmed; a crash gives its signal, never success; cat would wait for ever on an
// inherited terminal; errors are discarded; children left running are not awaited; the environment
// is ours with the fixed search path; arguments arrive verbatim; ten megabytes do not stall. Every
// row runs on its own thread, all at once.
TEST(Shell, StatusAndOutputComeBackAsTheToolLeftThemWhileOthersRun)
{
    const struct
    {
        const char* script;
        ShellResult expected;
        QStringList arguments = {};
    } rows[] = {
        {":", {0, QString()}},
        {"printf '  two\\nlines\\n\\n'; exit 3", {3, QStringLiteral("  two\nlines\n\n")}},
        {"echo before; kill -9 $$", {9, QStringLiteral("before\n")}},
        {"cat; echo out; echo err >&2", {0, QStringLiteral("out\n")}},
        {"sleep 2 & echo done", {0, QStringLiteral("done\n")}},
        {"printf '%s|%s' \"$PATH\" \"$NUBO_SHELL_PROBE\"",
         {0, QString::fromLatin1(Shell::kToolSearchPath) + QStringLiteral("|kept")}},
        {"for a; do printf '<%s>' \"$a\"; done",
         {0, QStringLiteral(
                 "<two words><say \"hi\"><it's><back\\slash><new\nline><-rf><$HOME `id` *><ñandú><>")},
         {QStringLiteral("two words"), QStringLiteral("say \"hi\""), QStringLiteral("it's"),
          QStringLiteral("back\\slash"), QStringLiteral("new\nline"), QStringLiteral("-rf"),
          QStringLiteral("$HOME `id` *"), QStringLiteral("ñandú"), QString()}},
        {"head -c 10485760 /dev/zero | tr '\\000' 'a'; echo end",
         {0, QString(10 * 1024 * 1024, u'a') + QStringLiteral("end\n")}},
    };
    qputenv("NUBO_SHELL_PROBE", "kept");
    std::vector<ShellResult> results(std::size(rows));
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::size(rows); ++i)
        threads.emplace_back(
            [&, i] { results[i] = sh(QString::fromUtf8(rows[i].script), rows[i].arguments); });
    for (std::thread& thread : threads)
        thread.join();
    qunsetenv("NUBO_SHELL_PROBE");
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].script);
        EXPECT_EQ(results[i].status, rows[i].expected.status);
        EXPECT_TRUE(results[i].output == rows[i].expected.output)
            << results[i].output.left(200).toStdString();
    }

    // a, a lone continuation byte, an invalid lead byte, a truncated sequence, b, an accent, NUL
    const QString decoded = sh(QStringLiteral("printf 'a\\200\\377\\342\\202b\\303\\251\\000z'")).output;
    EXPECT_TRUE(decoded.startsWith(QLatin1Char('a')));
    EXPECT_TRUE(decoded.contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(decoded.endsWith(QStringLiteral("bé") + QChar(0) + QLatin1Char('z')));
}

// A bare name is never looked up in a search path: only full paths run.
TEST(Shell, ToolThatCannotStartGivesMinusOne)
{
    QTemporaryDir dir;
    test::writeBytes(dir.filePath(QStringLiteral("plain")), "#!/bin/sh\necho hi\n"); // no execute bit
    for (const QString& tool :
         {dir.filePath(QStringLiteral("missing")), dir.filePath(QStringLiteral("plain")), dir.path(),
          QStringLiteral("true"), QString()})
        EXPECT_EQ(Shell::run(tool, {}), (ShellResult{-1, QString()})) << tool.toStdString();
}

// The tool prints, then it and its child ignore SIGTERM and sleep far past the limit (exec keeps
// the pid, and an ignored signal stays ignored across exec): both are killed, no output is kept.
TEST(Shell, AToolPastItsDeadlineIsKilledWithEverythingItStarted)
{
    QTemporaryDir dir;
    const QString pidFile = dir.filePath(QStringLiteral("pids"));
    QElapsedTimer clock;
    clock.start();
    const ShellResult result =
        sh(QStringLiteral(
               "echo started; trap '' TERM; sleep 60 & echo $! > '%1'; echo $$ >> '%1'; exec sleep 60")
               .arg(pidFile),
           {}, 1s);
    const qint64 elapsed = clock.elapsed();

    EXPECT_EQ(result, (ShellResult{-1, QString()}));
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

// The first folder has a non-executable "tool", a link to the second's executable "tool" and a
// folder "dir"; the second has the executable "tool" and a folder "dir".
TEST(Shell, WhichFindsTheFirstExecutableFileAndNothingOutsideTheFolders)
{
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
