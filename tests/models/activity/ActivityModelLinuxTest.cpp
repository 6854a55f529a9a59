#include "models/activity/ActivityModel.h"
#include "models/app/Jobs.h"
#include "platform/fake/FakeLoginItem.h"
#include "platform/linux/DesktopWorkspace.h"
#include "platform/linux/ProcFsProcessTable.h"
#include "platform/linux/UnsupportedAccessibility.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;
using namespace std::chrono_literals;

namespace {

const AppUsage* find(const QList<AppUsage>& apps, qint64 pid)
{
    for (const AppUsage& app : apps) {
        if (app.pid == pid)
            return &app;
    }
    return nullptr;
}

// The real workspace, process table and signals: a program started from a bundle shows up with
// the memory it holds, quits on request, and is gone from the list after the bump.
TEST(ActivityModelLinux, ARealAppIsListedMeasuredAndQuit)
{
    QTemporaryDir dir;
    const QString bundle = dir.filePath(QStringLiteral("Sleeper.app"));
    const QString executable = bundle + QStringLiteral("/Contents/MacOS/Sleeper");
    ASSERT_TRUE(QDir().mkpath(bundle + QStringLiteral("/Contents/MacOS")));
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), executable));
    ASSERT_TRUE(QFile::setPermissions(executable, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QProcess child;
    child.start(executable, {QStringLiteral("60")});
    ASSERT_TRUE(child.waitForStarted());
    const qint64 pid = child.processId();

    DesktopWorkspace workspace;
    ProcFsProcessTable processes;
    UnsupportedAccessibility accessibility;
    FakeLoginItem login;
    // A sample still being taken when the model goes reads the services above: it ends first.
    const auto settled = qScopeGuard([] { EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10))); });
    ActivityModel model(
        {workspace, processes, accessibility, login, QCoreApplication::applicationPid(), 1h, 50ms});
    EXPECT_FALSE(model.canHide());
    EXPECT_FALSE(model.canMinimize());
    QSignalSpy refreshed(&model, &ActivityModel::refreshed);
    model.start();
    ASSERT_TRUE(refreshed.wait(5000));

    const AppUsage* app = find(model.apps(), pid);
    ASSERT_NE(app, nullptr);
    EXPECT_EQ(app->name, QStringLiteral("Sleeper"));
    EXPECT_EQ(app->bundleURL, bundle);
    EXPECT_GT(app->memory, 0);
    EXPECT_GT(model.memoryTotal(), 0);
    EXPECT_GT(model.memoryUsed(), 0);

    model.quit(int(pid));
    ASSERT_TRUE(child.waitForFinished(5000));
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit); // ended by the signal
    ASSERT_TRUE(refreshed.wait(5000));                  // the bump
    EXPECT_EQ(find(model.apps(), pid), nullptr);
}

} // namespace
