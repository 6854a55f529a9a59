#include "platform/linux/DesktopWorkspace.h"

#include "core/files/NativePath.h"
#include "platform/fake/FakeWorkspace.h"

#include "support/FixtureFiles.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <tuple>
#include <utility>

using namespace nubo;

// A bundle nested in another's is its own; a deeper path, a plain program or a nameless ".app" is none.
TEST(DesktopWorkspace, AnExecutableBelongsToTheBundleRightAboveContentsMacOS)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/opt/X.app/Contents/MacOS/X", "/opt/X.app"},
        {"/A.app/Contents/Helpers/B.app/Contents/MacOS/b", "/A.app/Contents/Helpers/B.app"},
        {"/usr/bin/sleep", ""}, {"/X.app/Contents/MacOS/sub/tool", ""}, {"/.app/Contents/MacOS/x", ""}};
    for (const auto& [executable, bundle] : cases)
        EXPECT_EQ(DesktopWorkspace::bundleOfExecutable(QString::fromUtf8(executable)), QString::fromUtf8(bundle));
}

// An identifier is installed when its desktop file is, and never reaches outside the folder.
TEST(DesktopWorkspace, TheRegistryOfApplicationsIsTheDesktopFiles)
{
    QTemporaryDir dir;
    const QByteArray previous = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.path()));
    const QString entry = dir.filePath(QStringLiteral("applications/org.example.Tool.desktop"));
    test::writeBytes(entry, "[Desktop Entry]\nType=Application\nName=Tool\nExec=true\n");

    const DesktopWorkspace workspace;
    EXPECT_EQ(workspace.applicationLocation(QStringLiteral("org.example.Tool")), entry);
    for (const QString& none : {QStringLiteral("org.example.Missing"),
                                QStringLiteral("../applications/org.example.Tool"), QString()})
        EXPECT_FALSE(workspace.applicationLocation(none)) << none.toStdString();
    previous.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", previous);
}

// Only a bundle's outer process is regular and both leave the list when they end; a quit aimed at an
// id under another bundle's name is not sent (the id may have been taken over since the list was read).
TEST(DesktopWorkspace, AHelperFromTheSameBundleIsNotASecondApplication)
{
    QTemporaryDir dir;
    const QString bundle = dir.filePath(QStringLiteral("Pair.app"));
    const QString pair =
        test::copyProgram(QStringLiteral("/bin/sh"), dir.filePath(QStringLiteral("Pair.app/Contents/MacOS/Pair")));
    const QString helper =
        test::copyProgram(QStringLiteral("/bin/sleep"), dir.filePath(QStringLiteral("Pair.app/Contents/MacOS/h")));
    QProcess process;
    // "; exit" keeps the shell from replacing itself with the helper.
    process.start(pair, {QStringLiteral("-c"), QStringLiteral("\"$0\" 30; exit"), helper});
    ASSERT_TRUE(process.waitForStarted());

    DesktopWorkspace workspace;
    const auto ofBundle = [&] {
        QList<RunningApplication> found = workspace.runningApplications();
        found.removeIf([&](const RunningApplication& app) { return app.bundlePath != bundle; });
        std::partition(found.begin(), found.end(), [&](const auto& app) { return app.pid == process.processId(); });
        return found;
    };
    QList<RunningApplication> apps;
    for (int i = 0; i < 100 && apps.size() < 2; ++i) {
        QThread::msleep(20);
        apps = ofBundle();
    }
    ASSERT_EQ(apps.size(), 2);
    EXPECT_EQ(std::tuple(apps[0].pid, apps[0].regular, apps[0].name, apps[1].regular),
              std::tuple(process.processId(), true, QStringLiteral("Pair"), false));

    RunningApplication stale = apps[1];
    stale.bundlePath = dir.filePath(QStringLiteral("Other.app"));
    workspace.forceTerminate(stale);
    QThread::msleep(100);
    EXPECT_EQ(ofBundle().size(), 2);

    workspace.terminate(apps[1]); // the shell then exits by itself
    ASSERT_TRUE(process.waitForFinished(5000));
    EXPECT_TRUE(ofBundle().isEmpty());
}

// The file manager's name where it gives one; its echo of the path, no answer, or a path that is
// not UTF-8 (which could not name the item to the system) read as the last component.
TEST(Workspace, ADisplayNameComesFromTheSystemOrElseTheLastComponent)
{
    FakeWorkspace workspace;
    const QString odd = NativePath::decode("/Users/ana/caf\xe9");
    workspace.displayNames = {{QStringLiteral("/Users/ana/Library"), QStringLiteral("Biblioteca")},
                              {QStringLiteral("/Users/ana/Notas.txt"), QStringLiteral("/Users/ana/Notas.txt")},
                              {odd, QStringLiteral("café")}};
    EXPECT_EQ((QStringList{workspace.displayName(QStringLiteral("/Users/ana/Library")),
                           workspace.displayName(QStringLiteral("/Users/ana/Notas.txt")),
                           workspace.displayName(QStringLiteral("/Users/ana/Fotos/")), workspace.displayName(odd)}),
              (QStringList{QStringLiteral("Biblioteca"), QStringLiteral("Notas.txt"), QStringLiteral("Fotos"),
                           odd.section(QLatin1Char('/'), -1)}));
}
