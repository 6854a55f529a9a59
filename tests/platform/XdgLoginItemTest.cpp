#include "platform/linux/XdgLoginItem.h"

#include "core/files/NativePath.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <utility>

using namespace nubo;

// Installed, the program's entry is copied: its name, icon and actions stay, it starts this
// executable, and nothing in it switches the entry off.
TEST(XdgLoginItem, AnInstalledProgramStartsFromACopyOfItsOwnEntry)
{
    QTemporaryDir home;
    const QString installed = home.path() + QStringLiteral("/app.desktop");
    test::writeBytes(installed, "[Desktop Entry]\nName=Nubo\nIcon=app.nubo.Nubo\nExec=nubo\nTryExec=nubo\n"
                                "Hidden=true\n\n[Desktop Action x]\nExec=nubo --x\n");
    XdgLoginItem item(home.path(), QStringLiteral("/usr/bin/nubo"), installed);
    ASSERT_TRUE(item.registerApp());
    EXPECT_TRUE(item.isRegistered());
    QFile file(item.entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("[Desktop Entry]\nName=Nubo\nIcon=app.nubo.Nubo\nExec=\"/usr/bin/nubo\"\n"
                                         "X-GNOME-Autostart-enabled=true\n[Desktop Action x]\nExec=nubo --x\n"));
}

// Another copy of the program, keys of another group, a newline smuggling a line into the entry, or
// a folder in its place (left alone) never count as this program's entry.
TEST(XdgLoginItem, RegisteringWritesAnEntryThatStartsThisExecutableAndAnUnusableOneReadsAsOff)
{
    QTemporaryDir home;
    XdgLoginItem item(home.path(), QStringLiteral("/opt/Nubo 2/bin/nubo"));
    EXPECT_FALSE(item.isRegistered());
    EXPECT_TRUE(item.unregisterApp()); // nothing there is already "off"
    ASSERT_TRUE(item.registerApp());
    EXPECT_TRUE(item.isRegistered());
    EXPECT_EQ(item.entryPath(), home.path() + QStringLiteral("/.config/autostart/nubo.desktop"));
    QFile file(item.entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray entry = file.readAll();
    EXPECT_EQ(entry, QByteArray("[Desktop Entry]\nType=Application\nName=Nubo\nExec=\"/opt/Nubo 2/bin/nubo\"\n"
                                "X-GNOME-Autostart-enabled=true\n"));
    EXPECT_FALSE(XdgLoginItem(home.path(), QStringLiteral("/usr/bin/nubo")).isRegistered());

    for (const auto& [extra, on] :
         {std::pair{"Hidden=true\n", false}, std::pair{"X-GNOME-Autostart-enabled=false\n", false},
          std::pair{"[Desktop Action x]\nHidden=true\n", true}}) {
        test::writeBytes(item.entryPath(), entry + extra);
        EXPECT_EQ(item.isRegistered(), on) << extra;
    }
    ASSERT_TRUE(item.unregisterApp());
    EXPECT_FALSE(item.isRegistered() || QFile::exists(item.entryPath()));

    XdgLoginItem odd(home.path(), QStringLiteral("/opt/x\nHidden=false"));
    EXPECT_FALSE(odd.registerApp() || odd.isRegistered());

    ASSERT_TRUE(QDir().mkpath(item.entryPath()));
    EXPECT_FALSE(item.registerApp() || item.isRegistered());
    EXPECT_TRUE(item.unregisterApp());
    EXPECT_TRUE(QFileInfo(item.entryPath()).isDir());
}

TEST(XdgLoginItem, ExecQuotesWhatTheLauncherWouldReadOtherwise)
{
    // Inside quotes \, ", ` and $ get a backslash; the entry's string escaping doubles every
    // backslash; % is doubled so it is no field code.
    EXPECT_EQ(XdgLoginItem::execValue(QStringLiteral("/a/it's \"x\" $HOME `y` 100% \\z")),
              QStringLiteral("\"/a/it's \\\\\"x\\\\\" \\\\$HOME \\\\`y\\\\` 100%% \\\\\\\\z\""));
    EXPECT_EQ(XdgLoginItem::execValue(QStringLiteral("/-leading/dash")), QStringLiteral("\"/-leading/dash\""));
    // Paths an entry cannot carry faithfully.
    for (const QString& path : {QStringLiteral("/a/new\nline"), QStringLiteral("relative/nubo"),
                                NativePath::decode("/a/\xff/nubo")})
        EXPECT_TRUE(XdgLoginItem::execValue(path).isEmpty()) << path.toStdString();
}
