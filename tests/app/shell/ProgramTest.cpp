#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/types.h>

namespace {

// The program itself, started as a user or the session starts it, in a home of its own.
struct Started
{
    QTemporaryDir home;
    QProcess process;

    explicit Started(const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"HOME", "NUBO_HOME"})
            environment.insert(QString::fromLatin1(name), home.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.remove(QStringLiteral("DISPLAY"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(NUBO_EXECUTABLE), arguments);
    }
};

} // namespace

// Help and the version need no display; an unknown option is refused with one line and a
// failure, before any window.
TEST(Program, AnswersTheCommandLineTheWayQtProgramsDo)
{
    const struct
    {
        QStringList arguments;
        int exitCode;
        const char* says;
    } rows[] = {
        {{QStringLiteral("--version")}, 0, "Nubo "},
        {{QStringLiteral("--help")}, 0, "--version"},
        {{QStringLiteral("--borrar-todo")}, 1, "borrar-todo"},
    };
    for (const auto& row : rows) {
        Started run(row.arguments);
        ASSERT_TRUE(run.process.waitForFinished(20000)) << row.says;
        EXPECT_EQ(run.process.exitCode(), row.exitCode) << row.says;
        const QByteArray said = run.process.readAllStandardOutput() + run.process.readAllStandardError();
        EXPECT_TRUE(said.contains(row.says)) << said.toStdString();
    }
}

// Asked to stop by the session (logout, `kill`), the program ends the ordinary way.
TEST(Program, EndsCleanlyWhenTheSystemAsksItToStop)
{
#if defined(__SANITIZE_THREAD__)
    // The whole program under ThreadSanitizer reports Qt's own locks, which it cannot see (Qt is
    // not built with it); the program's threads are the suites' to check.
    GTEST_SKIP() << "the whole program under ThreadSanitizer";
#endif
    Started run({});
    ASSERT_TRUE(run.process.waitForStarted());
    // Before its first line runs, a program has no say over its signals: wait until it caught them.
    QFile status(QStringLiteral("/proc/%1/status").arg(run.process.processId()));
    if (!status.exists())
        GTEST_SKIP() << "no /proc to see when the program is up";
    const auto catches = [&status] {
        status.open(QIODevice::ReadOnly);
        const QByteArray text = status.readAll();
        status.close();
        const qsizetype at = text.indexOf("SigCgt:");
        return at >= 0 && (text.mid(at + 7, 17).trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1) != 0;
    };
    ASSERT_TRUE(QTest::qWaitFor(catches, 20000));
    ::kill(pid_t(run.process.processId()), SIGTERM);
    ASSERT_TRUE(run.process.waitForFinished(20000));
    EXPECT_EQ(run.process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(run.process.exitCode(), 0);
}
