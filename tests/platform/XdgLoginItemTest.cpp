#include "platform/linux/XdgLoginItem.h"

#include "core/files/NativePath.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <utility>

using namespace nubo;

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(XdgLoginItem, RegisteringWritesAnEntryThatStartsThisExecutable)
{
    QTemporaryDir home;
    XdgLoginItem item(home.path(), QStringLiteral("/opt/Nubo 2/bin/nubo"));
    EXPECT_FALSE(item.isRegistered());
    EXPECT_TRUE(item.unregisterApp()); // nothing there is already "off"

    ASSERT_TRUE(item.registerApp());
    EXPECT_TRUE(item.isRegistered());
    EXPECT_EQ(item.entryPath(), home.path() + QStringLiteral("/.config/autostart/nubo.desktop"));
    EXPECT_EQ(contents(item.entryPath()), QByteArray("[Desktop Entry]\nType=Application\nName=Nubo\n"
                                                     "Exec=\"/opt/Nubo 2/bin/nubo\"\n"
                                                     "X-GNOME-Autostart-enabled=true\n"));

    // Another copy of the program does not count the entry as its own.
    EXPECT_FALSE(XdgLoginItem(home.path(), QStringLiteral("/usr/bin/nubo")).isRegistered());

    ASSERT_TRUE(item.unregisterApp());
    EXPECT_FALSE(item.isRegistered() || QFile::exists(item.entryPath()));
}

TEST(XdgLoginItem, ExecQuotesWhatTheLauncherWouldReadOtherwise)
{
    // Inside quotes \, ", ` and $ get a backslash; the entry's string escaping doubles every
    // backslash; % is doubled so it is no field code.
    EXPECT_EQ(XdgLoginItem::execValue(QStringLiteral("/a/it's \"x\" $HOME `y` 100% \\z")),
              QStringLiteral("\"/a/it's \\\\\"x\\\\\" \\\\$HOME \\\\`y\\\\` 100%% \\\\\\\\z\""));
    EXPECT_EQ(XdgLoginItem::execValue(QStringLiteral("/-leading/dash")),
              QStringLiteral("\"/-leading/dash\""));
    // Paths an entry cannot carry faithfully.
    for (const QString& path : {QStringLiteral("/a/new\nline"), QStringLiteral("relative/nubo"),
                                NativePath::decode("/a/\xff/nubo")})
        EXPECT_TRUE(XdgLoginItem::execValue(path).isEmpty()) << path.toStdString();
}

// The same keys in another group say nothing about the entry. A newline in the path would smuggle
// a second line into the entry: never registered. A folder in the entry's place is neither removed
// nor taken for an entry.
TEST(XdgLoginItem, AnEntrySwitchedOffOrUnusableReadsAsOff)
{
    QTemporaryDir home;
    XdgLoginItem item(home.path(), QStringLiteral("/opt/nubo"));
    ASSERT_TRUE(item.registerApp());
    const QByteArray entry = contents(item.entryPath());
    for (const auto& [extra, on] :
         {std::pair{"Hidden=true\n", false}, std::pair{"X-GNOME-Autostart-enabled=false\n", false},
          std::pair{"[Desktop Action x]\nHidden=true\n", true}}) {
        test::writeBytes(item.entryPath(), entry + extra);
        EXPECT_EQ(item.isRegistered(), on) << extra;
    }

    XdgLoginItem odd(home.path(), QStringLiteral("/opt/x\nHidden=false"));
    EXPECT_FALSE(odd.registerApp() || odd.isRegistered());

    ASSERT_TRUE(QFile::remove(item.entryPath()) && QDir().mkpath(item.entryPath()));
    EXPECT_FALSE(item.registerApp() || item.isRegistered());
    EXPECT_TRUE(item.unregisterApp());
    EXPECT_TRUE(QFileInfo(item.entryPath()).isDir());
}
