#include "platform/linux/DesktopWorkspace.h"

#include "core/apps/AppCatalog.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/linux/DesktopMetadata.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;

TEST(DesktopWorkspace, AnExecutableBelongsToTheBundleRightAboveContentsMacOS)
{
    EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QStringLiteral("/opt/X.app/Contents/MacOS/X")),
              QStringLiteral("/opt/X.app"));
    EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(
                  QStringLiteral("/A.app/Contents/Helpers/B.app/Contents/MacOS/b")),
              QStringLiteral("/A.app/Contents/Helpers/B.app"));
    EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QStringLiteral("/usr/bin/sleep")), QString());
    EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QStringLiteral("/X.app/Contents/MacOS/sub/tool")),
              QString());
    EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QStringLiteral("/.app/Contents/MacOS/x")), QString());
}

// A real process started from a Mac-shaped bundle is found as that bundle's running instance,
// and a second copy of the same app elsewhere is not taken for it.
TEST(DesktopWorkspace, ARealProcessIsTheRunningInstanceOfItsBundle)
{
    QTemporaryDir dir;
    const QString bundle = dir.filePath(QStringLiteral("Applications/Sleeper.app"));
    const QString executable =
        test::copyProgram(QStringLiteral("/bin/sleep"), bundle + QStringLiteral("/Contents/MacOS/Sleeper"));

    QProcess process;
    process.start(executable, {QStringLiteral("30")});
    ASSERT_TRUE(process.waitForStarted());

    DesktopWorkspace workspace;
    DesktopMetadata metadata;
    SystemRoots roots{dir.filePath(QStringLiteral("home")), dir.filePath(QStringLiteral("Library")),
                      dir.filePath(QStringLiteral("tmp"))};
    roots.applications = dir.filePath(QStringLiteral("Applications"));
    const Safety safety(roots);
    const Privacy privacy(roots.home, [] { return true; });
    const AppCatalog catalog(roots, safety, privacy, workspace, metadata);

    InstalledApp app = *catalog.describe(bundle);
    const std::optional<RunningApplication> running = catalog.runningInstance(app);
    ASSERT_TRUE(running);
    EXPECT_EQ(running->pid, process.processId());
    EXPECT_EQ(running->name, QStringLiteral("Sleeper"));
    EXPECT_TRUE(running->regular);
    EXPECT_FALSE(metadata.lastUsedDate(bundle));

    InstalledApp copy = app;
    copy.url = dir.filePath(QStringLiteral("home/Applications/Sleeper.app"));
    EXPECT_FALSE(catalog.runningInstance(copy));

    process.kill();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_FALSE(catalog.runningInstance(app));
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
