#include "models/performance/PerformanceTexts.h"

#include <gtest/gtest.h>

using namespace nubo;

namespace {

LaunchItem launchItem(LaunchItem::Scope scope, const QString& label, const QString& name, const QString& program)
{
    LaunchItem item;
    item.url = QStringLiteral("/Library/LaunchAgents/") + label + QStringLiteral(".plist");
    item.scope = scope;
    item.label = label;
    item.name = name;
    item.program = program;
    return item;
}

} // namespace

TEST(PerformanceTextsTest, CountsNeverReadBelowNone)
{
    EXPECT_EQ(PerformanceTexts::snapshots(1), QStringLiteral("1 instantánea en el disco. "));
    EXPECT_EQ(PerformanceTexts::snapshots(-1), QStringLiteral("No hay instantáneas locales ahora mismo."));
    EXPECT_EQ(PerformanceTexts::activeCount(-3), QStringLiteral("0 ítems de inicio activos"));
}

TEST(PerformanceTextsTest, DetailsTellAnItemApartFromItsNameOnOneLine)
{
    // Named after its application: the label says which of its jobs this is.
    EXPECT_EQ(PerformanceTexts::details(launchItem(LaunchItem::Scope::agent, QStringLiteral("com.dropbox.updater"),
                                                   QStringLiteral("Dropbox"),
                                                   QStringLiteral("/Applications/Dropbox.app/Contents/MacOS/u"))),
              QStringLiteral("Todos los usuarios · com.dropbox.updater"));
    // Known only by its label: the program's file name is what is left to tell.
    EXPECT_EQ(PerformanceTexts::details(launchItem(LaunchItem::Scope::daemon, QStringLiteral("com.x.helper"),
                                                   QStringLiteral("com.x.helper"),
                                                   QStringLiteral("/Library/PrivilegedHelperTools/com.x.helper"))),
              QStringLiteral("Sistema · com.x.helper"));
    LaunchItem bare = launchItem(LaunchItem::Scope::user, QStringLiteral("job"), QStringLiteral("job"), QString());
    EXPECT_EQ(PerformanceTexts::details(bare), QStringLiteral("Tu usuario"));
    bare.program = QStringLiteral("/opt/tool/");
    EXPECT_EQ(PerformanceTexts::details(bare), QStringLiteral("Tu usuario · /opt/tool/"));

    // A switched-off item says so; a label with a line break stays on one line.
    LaunchItem odd = launchItem(LaunchItem::Scope::user, QStringLiteral("com.odd\nlabel"), QStringLiteral("Odd"),
                                QStringLiteral("/bin/true"));
    odd.isEnabled = false;
    EXPECT_EQ(PerformanceTexts::details(odd), QStringLiteral("Tu usuario · com.odd label · Desactivado"));
}
