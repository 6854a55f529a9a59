#include "platform/linux/DesktopWorkspace.h"

#include "support/FixtureFiles.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

using namespace nubo;

TEST(DesktopWorkspace, AnExecutableBelongsToTheBundleRightAboveContentsMacOS)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/opt/X.app/Contents/MacOS/X", "/opt/X.app"},
        {"/A.app/Contents/Helpers/B.app/Contents/MacOS/b", "/A.app/Contents/Helpers/B.app"},
        {"/usr/bin/sleep", ""},
        {"/X.app/Contents/MacOS/sub/tool", ""},
        {"/.app/Contents/MacOS/x", ""},
    };
    for (const auto& [executable, bundle] : cases)
        EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QString::fromUtf8(executable)),
                  QString::fromUtf8(bundle))
            << executable;
}

TEST(DesktopWorkspace, TheRegistryOfApplicationsIsTheDesktopFiles)
{
    QTemporaryDir dir;
    const QByteArray previous = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.path()));
    const QString entry = dir.filePath(QStringLiteral("applications/org.example.Tool.desktop"));
    test::writeBytes(entry, "[Desktop Entry]\nType=Application\nName=Tool\nExec=true\n");

    const DesktopWorkspace workspace;
    EXPECT_EQ(workspace.applicationLocation(QStringLiteral("org.example.Tool")), entry);
    EXPECT_FALSE(workspace.applicationLocation(QStringLiteral("org.example.Missing")));
    EXPECT_FALSE(workspace.applicationLocation(QStringLiteral("../applications/org.example.Tool")));
    EXPECT_FALSE(workspace.applicationLocation(QString()));
    if (previous.isNull())
        qunsetenv("XDG_DATA_HOME");
    else
        qputenv("XDG_DATA_HOME", previous);
}

namespace {

QList<RunningApplication> ofBundle(const Workspace& workspace, const QString& bundle)
{
    QList<RunningApplication> found;
    for (const RunningApplication& app : workspace.runningApplications()) {
        if (app.bundlePath == bundle)
            found << app;
    }
    return found;
}

} // namespace

// The outer process of a real bundle is its one regular application, found by its bundle (which
// instance of an app that is, AppCatalog decides: InstalledAppsTest); the helper it starts from
// its own bundle is listed but not regular, and both leave the list when they end.
TEST(DesktopWorkspace, AHelperFromTheSameBundleIsNotASecondApplication)
{
    // The bundle's main program is a shell that starts a second program from the same bundle.
    QTemporaryDir dir;
    const QString bundle = dir.filePath(QStringLiteral("Pair.app"));
    const QString pairProgram =
        test::copyProgram(QStringLiteral("/bin/sh"), bundle + QStringLiteral("/Contents/MacOS/Pair"));
    const QString helperProgram =
        test::copyProgram(QStringLiteral("/bin/sleep"), bundle + QStringLiteral("/Contents/MacOS/helper"));
    QProcess process;
    // "; exit" keeps the shell from replacing itself with the helper.
    process.start(pairProgram, {QStringLiteral("-c"), QStringLiteral("\"$0\" 30; exit"), helperProgram});
    ASSERT_TRUE(process.waitForStarted());

    DesktopWorkspace workspace;
    QList<RunningApplication> apps;
    for (int i = 0; i < 100 && apps.size() < 2; ++i) {
        QThread::msleep(20);
        apps = ofBundle(workspace, bundle);
    }
    ASSERT_EQ(apps.size(), 2);
    const auto outer =
        std::find_if(apps.begin(), apps.end(), [&](const auto& a) { return a.pid == process.processId(); });
    ASSERT_NE(outer, apps.end());
    EXPECT_TRUE(outer->regular);
    EXPECT_EQ(outer->name, QStringLiteral("Pair"));
    const RunningApplication helper = apps.at(outer == apps.begin() ? 1 : 0);
    EXPECT_FALSE(helper.regular);

    // A quit aimed at the helper's id under another bundle's name is not sent: the id may have
    // been taken over by another program since the list was read.
    RunningApplication stale = helper;
    stale.bundlePath = dir.filePath(QStringLiteral("Other.app"));
    workspace.forceTerminate(stale);
    QThread::msleep(100);
    EXPECT_EQ(ofBundle(workspace, bundle).size(), 2);

    workspace.terminate(helper); // the shell then exits by itself
    ASSERT_TRUE(process.waitForFinished(5000));
    EXPECT_TRUE(ofBundle(workspace, bundle).isEmpty());
    EXPECT_FALSE(workspace.canHide());
    EXPECT_FALSE(workspace.canActivate());
}
