// The applications of a Linux desktop: desktop entries read as a menu reads them, the packaging
// tools' real output, the catalogue over a temporary XDG home, and how each kind is removed.

#include "core/apps/AppCatalog.h"
#include "core/apps/DesktopEntry.h"
#include "core/apps/PackagingOutput.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/fake/FakeMetadata.h"
#include "platform/fake/FakeWorkspace.h"
#include "platform/fake/ScriptedToolRunner.h"
#include "support/Column.h"
#include "support/DesktopHome.h"
#include "support/FixtureFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace nubo::test {
namespace {

using namespace Qt::StringLiterals;

// Captured from apt-get 2.6 on Debian 12 ("apt-get -s remove obconf", "… vim-common",
// "… python3.11"), and dpkg-query's answers for the same machine.
const QString kAptAlone = u"Reading package lists...\nBuilding dependency tree...\nReading state information...\n"
                          "The following packages will be REMOVED:\n  obconf\n"
                          "0 upgraded, 0 newly installed, 1 to remove and 132 not upgraded.\n"
                          "Remv obconf [1:2.0.4+git20150213-2+b1]\n"_s;
const QString kAptTakesVim = u"Reading package lists...\nThe following packages were automatically installed and are "
                             "no longer required:\n  libsodium23 vim-runtime xxd\nUse 'apt autoremove' to remove them.\n"
                             "The following packages will be REMOVED:\n  vim vim-common\n"
                             "0 upgraded, 0 newly installed, 2 to remove and 132 not upgraded.\n"
                             "Remv vim [2:9.0.1378-2+deb12u2]\nRemv vim-common [2:9.0.1378-2+deb12u2]\n"_s;
const QString kAptBroken = u"Reading package lists...\nThe following packages have unmet dependencies:\n python3 : "
                           "Depends: python3.11 (>= 3.11.2-1~) but it is not going to be installed\nE: Error, "
                           "pkgProblemResolver::Resolve generated breaks, this may be caused by held packages.\n"_s;

TEST(DesktopEntry, ReadsKeysLanguageAndCommandAsALauncherDoes)
{
    const DesktopEntry entry = DesktopEntry::parse(
        "# comment\n[Desktop Entry]\nName=Maps\nName[es]=Mapas\nName[es_MX]=\nComment=Line\\sone\\nline two\n"
        "Exec=env GTK_THEME=Adwaita:dark \"/opt/My Apps/run\" --flag \"a \\\\\"quoted\\\\\" word\" %U 100%%\n"
        "[Desktop Action new]\nName=Otra\nExec=other\n");
    EXPECT_EQ(entry.localized(u"Name"_s, u"es_MX.UTF-8@euro"_s), u"Mapas"_s); // an empty variant falls through
    EXPECT_EQ(entry.localized(u"Name"_s, u"de_DE"_s), u"Maps"_s);
    EXPECT_EQ(entry.value(u"Comment"_s), u"Line one\nline two"_s);
    EXPECT_EQ(entry.command(), QStringList({u"/opt/My Apps/run"_s, u"--flag"_s, u"a \"quoted\" word"_s, u"100%"_s}));

    const struct
    {
        const char* exec;
        QStringList command;
    } cases[] = {
        {"Exec=\"unbalanced", {}},
        {"Exec=env A=1", {}},
        {"Exec=/usr/bin/flatpak run --branch=stable --command=maps org.gnome.Maps @@u %U @@",
         {u"/usr/bin/flatpak"_s, u"run"_s, u"--branch=stable"_s, u"--command=maps"_s, u"org.gnome.Maps"_s, u"@@u"_s,
          u"@@"_s}},
    };
    for (const auto& [exec, command] : cases)
        EXPECT_EQ(DesktopEntry::parse(QByteArray("[Desktop Entry]\n") + exec).command(), command) << exec;
    EXPECT_TRUE(DesktopEntry::parse("Name=outside any group\n[Other]\nName=x").isEmpty());
}

TEST(PackagingOutput, ReadsTheToolsRealOutputAndSkipsWhatItCannotTrust)
{
    EXPECT_EQ(PackagingOutput::removals(kAptAlone), QStringList{u"obconf"_s});
    EXPECT_EQ(PackagingOutput::removals(kAptTakesVim), QStringList({u"vim"_s, u"vim-common"_s}));
    EXPECT_EQ(PackagingOutput::removals(kAptBroken), QStringList());
    EXPECT_EQ(PackagingOutput::removals(u"Remv -rf [1]\nRemv libc6:amd64 [2.36]\n"_s), QStringList{u"libc6"_s});

    const auto owners = PackagingOutput::owners(
        u"vim-common: /usr/share/applications/vim.desktop\ndiversion by dash from: /bin/sh\ndiversion by dash to: "
        "/bin/sh.distrib\ndash: /bin/sh\nlibgtk-3-0:amd64, libgtk-3-bin: /usr/share/applications/gtk.desktop\n"
        "dpkg-query: no path found matching pattern /x.desktop\n"_s);
    EXPECT_EQ(owners.value(u"/usr/share/applications/vim.desktop"_s), QStringList{u"vim-common"_s});
    EXPECT_EQ(owners.value(u"/usr/share/applications/gtk.desktop"_s), QStringList({u"libgtk-3-0"_s, u"libgtk-3-bin"_s}));
    EXPECT_EQ(owners.size(), 3);

    EXPECT_EQ(PackagingOutput::packages(u"obconf\t1:2.0.4+git20150213-2+b1\t898\nvim\t2:9.0\t\nbad name\t1\t2\n"_s),
              (QList<PackagingOutput::Package>{{u"obconf"_s, u"1:2.0.4+git20150213-2+b1"_s, 898},
                                               {u"vim"_s, u"2:9.0"_s, std::nullopt}}));
    // "snap list" and "flatpak list" are read through the catalogue below.
}

class DesktopAppsTest : public ::testing::Test
{
protected:
    DesktopAppsTest() : desktop(m_dir.path()) {}

    AppCatalog& catalog()
    {
        if (!m_catalog) {
            SystemRoots roots{desktop.home(), desktop.at(u"Library"_s), desktop.at(u"tmp"_s)};
            m_safety = std::make_unique<Safety>(roots, SafetyRules::forLinux());
            m_catalog = std::make_unique<AppCatalog>(roots, *m_safety, m_privacy, m_workspace, m_metadata,
                                                     desktop.places(), tools);
        }
        return *m_catalog;
    }
    InstalledApp named(const QString& name)
    {
        for (const InstalledApp& app : catalog().load()) {
            if (app.name == name)
                return app;
        }
        ADD_FAILURE() << "no " << name.toStdString();
        return {};
    }
    QString userData() const { return desktop.places().userData; }

    QTemporaryDir m_dir;
    DesktopHome desktop;
    ScriptedToolRunner tools;

private:
    Privacy m_privacy{u"/nowhere"_s, [] { return true; }};
    FakeWorkspace m_workspace;
    FakeMetadata m_metadata;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<AppCatalog> m_catalog;
};

// One home with every kind of application, and every kind of entry a menu does not show.
TEST_F(DesktopAppsTest, ListsWhatAMenuShowsEachWithWhereItCameFrom)
{
    const QString appImage = desktop.program(desktop.home() + u"/Applications/Tool-1.2.AppImage"_s, 50'000);
    desktop.entry(userData(), u"tool.desktop"_s, u"Name=Tool\nExec=\""_s + appImage + u"\" %U\nX-AppImage-Version=1.2"_s);
    const QString script = desktop.program(desktop.home() + u"/bin/notes"_s, 3'000);
    desktop.entry(userData(), u"notes.desktop"_s, u"Name=Notes\nExec="_s + script);
    desktop.program(desktop.at(u"usr/bin/obconf"_s));
    desktop.entry(desktop.systemData(), u"obconf.desktop"_s, u"Name=Openbox Configuration\nName[es]=Gestor de Openbox\nExec=obconf %f"_s);
    // The user's copy of a packaged entry renames it; the package still removes it.
    desktop.entry(desktop.systemData(), u"vim.desktop"_s, u"Name=Vim\nTryExec=obconf\nExec=vim %F"_s);
    desktop.entry(userData(), u"vim.desktop"_s, u"Name=Mi Vim\nExec=vim %F"_s);
    desktop.entry(desktop.systemData(), u"kde/local.desktop"_s, u"Name=Local build\nExec=/usr/local/bin/local"_s);
    desktop.flatpak(u"org.gnome.Maps"_s, u"Maps"_s, true);
    desktop.flatpak(u"com.example.Tool"_s, u"Example"_s, false);
    desktop.entry(desktop.places().snapEntries, u"firefox_firefox.desktop"_s,
                  u"Name=Firefox\nExec=env BAMF_DESKTOP_FILE_HINT=x /snap/bin/firefox %u\nX-SnapInstanceName=firefox"_s);
    writeFile(QFile::encodeName(desktop.places().snapFiles + u"/firefox_3358.snap"_s), 70'000);
    // Not shown: hidden by the user, not for menus, a missing TryExec, not an application, no name.
    desktop.entry(desktop.systemData(), u"gone.desktop"_s, u"Name=Gone\nExec=gone"_s);
    desktop.entry(userData(), u"gone.desktop"_s, u"Hidden=true"_s);
    desktop.entry(desktop.systemData(), u"helper.desktop"_s, u"Name=Helper\nExec=h\nNoDisplay=true"_s);
    desktop.entry(desktop.systemData(), u"missing.desktop"_s, u"Name=Missing\nTryExec=/nowhere/bin\nExec=x"_s);
    desktop.entry(desktop.systemData(), u"link.desktop"_s, u"Name=Link\nType=Link\nURL=https://example.com"_s);
    desktop.entry(desktop.systemData(), u"blank.desktop"_s, u"Exec=blank"_s);

    const QString systemEntries = desktop.systemData() + u"/applications/"_s;
    const QString dpkg = desktop.tool(u"dpkg-query"_s);
    tools.answer(dpkg,
                 {u"-S"_s, systemEntries + u"kde/local.desktop"_s, systemEntries + u"obconf.desktop"_s,
                  systemEntries + u"vim.desktop"_s},
                 {1, u"obconf: "_s + systemEntries + u"obconf.desktop\nvim-common: "_s + systemEntries +
                         u"vim.desktop\ndpkg-query: no path found matching pattern x\n"_s});
    tools.answer(dpkg,
                 {u"-W"_s, u"--showformat=${binary:Package}\\t${Version}\\t${Installed-Size}\\n"_s, u"obconf"_s,
                  u"vim-common"_s},
                 {0, u"obconf\t1:2.0.4\t898\nvim-common\t2:9.0\t420\n"_s});
    tools.answer(desktop.tool(u"flatpak"_s), {u"list"_s, u"--app"_s, u"--columns=application,installation,version"_s},
                 {0, u"org.gnome.Maps\tsystem\t45.1\ncom.example.Tool\tuser\t\n"_s});
    tools.answer(desktop.tool(u"snap"_s), {u"list"_s}, {0, u"Name Version Rev Tracking Publisher Notes\nfirefox 119.0 3358 latest/stable mozilla -\n"_s});

    const QList<InstalledApp> apps = catalog().load();
    EXPECT_EQ(column(apps, &InstalledApp::name),
              QStringList({u"Example"_s, u"Firefox"_s, u"Gestor de Openbox"_s, u"Local build"_s, u"Maps"_s,
                           u"Mi Vim"_s, u"Notes"_s, u"Tool"_s}));
    const struct
    {
        QString name;
        AppOrigin origin;
        QString package, version, payload;
        bool systemWide;
    } expected[] = {
        {u"Example"_s, AppOrigin::Flatpak, u"com.example.Tool"_s, {}, desktop.home() + u"/.local/share/flatpak/app/com.example.Tool"_s, false},
        {u"Firefox"_s, AppOrigin::Snap, u"firefox"_s, u"119.0"_s, desktop.places().snapFiles + u"/firefox_3358.snap"_s, false},
        {u"Gestor de Openbox"_s, AppOrigin::Package, u"obconf"_s, u"1:2.0.4"_s, {}, false},
        {u"Local build"_s, AppOrigin::Unmanaged, {}, {}, {}, false},
        {u"Maps"_s, AppOrigin::Flatpak, u"org.gnome.Maps"_s, u"45.1"_s, desktop.at(u"var/lib/flatpak/app/org.gnome.Maps"_s), true},
        {u"Mi Vim"_s, AppOrigin::Package, u"vim-common"_s, u"2:9.0"_s, {}, false},
        {u"Notes"_s, AppOrigin::Own, {}, {}, script, false},
        {u"Tool"_s, AppOrigin::AppImage, {}, u"1.2"_s, appImage, false},
    };
    for (const auto& want : expected) {
        const InstalledApp app = named(want.name);
        SCOPED_TRACE(want.name.toStdString());
        EXPECT_EQ(std::tuple(app.origin, app.package, app.version.value_or(QString()), app.payload, app.systemWide),
                  std::tuple(want.origin, want.package, want.version, want.payload, want.systemWide));
    }
    EXPECT_EQ(named(u"Gestor de Openbox"_s).size, 898 * 1024);
    // The overridden package's own entry is the one its removal takes away.
    EXPECT_EQ(named(u"Mi Vim"_s).url, systemEntries + u"vim.desktop"_s);
}

// Leftovers are named exactly by the desktop id, the Flatpak id or the snap's name, and never
// by a name another installed application also answers to.
TEST_F(DesktopAppsTest, LeftoversAreOnlyTheFoldersNamedExactlyForTheApplication)
{
    desktop.flatpak(u"org.gnome.Maps"_s, u"Maps"_s, false);
    desktop.entry(desktop.systemData(), u"obconf.desktop"_s, u"Name=Obconf\nExec=obconf"_s);
    desktop.entry(userData(), u"obconf.desktop"_s, u"Name=Mi Obconf\nExec=obconf"_s);
    desktop.entry(desktop.systemData(), u"maps.desktop"_s, u"Name=Other maps\nExec=maps"_s);
    for (const QString& relative : {u".var/app/org.gnome.Maps/data"_s, u".config/org.gnome.Maps/a"_s,
                                    u".cache/org.gnome.Maps/b"_s, u".config/obconf/rc.xml"_s,
                                    u".local/share/obconf/x"_s, u".config/Obconf/x"_s, u".config/maps/x"_s,
                                    u".config/Maps/x"_s})
        writeFile(QFile::encodeName(desktop.home() + u'/' + relative), 5'000);

    const auto leftovers = [this](const QString& name) {
        QStringList found = column(catalog().leftovers(named(name)), &CleanItem::id);
        for (QString& path : found)
            path.remove(desktop.home() + u'/');
        return found.sort(), found;
    };
    EXPECT_EQ(leftovers(u"Maps"_s),
              QStringList({u".cache/org.gnome.Maps"_s, u".config/org.gnome.Maps"_s, u".var/app/org.gnome.Maps"_s}));
    EXPECT_EQ(leftovers(u"Mi Obconf"_s),
              QStringList({u".config/obconf"_s, u".local/share/applications/obconf.desktop"_s, u".local/share/obconf"_s}));
    EXPECT_EQ(leftovers(u"Other maps"_s), QStringList{u".config/maps"_s});
}

TEST_F(DesktopAppsTest, EachKindIsRemovedByItsOwnPackagingAndAPackageOnlyWhenItGoesAlone)
{
    const auto app = [](AppOrigin origin, const QString& package, bool systemWide = false) {
        InstalledApp made;
        made.url = u"/usr/share/applications/x.desktop"_s;
        made.name = u"X"_s;
        made.origin = origin;
        made.package = package;
        made.systemWide = systemWide;
        made.payload = u"/home/ana/Apps/X.AppImage"_s;
        return made;
    };
    const QStringList folders = desktop.places().toolFolders;
    const QString flatpak = desktop.tool(u"flatpak"_s), apt = desktop.tool(u"apt-get"_s);
    const struct
    {
        InstalledApp app;
        QString commandLine;
        bool asAdministrator;
    } commands[] = {
        {app(AppOrigin::Flatpak, u"org.gnome.Maps"_s), u"'%1' 'uninstall' '--user' '--noninteractive' '-y' 'org.gnome.Maps'"_s.arg(flatpak), false},
        {app(AppOrigin::Flatpak, u"org.gnome.Maps"_s, true), u"'%1' 'uninstall' '--system' '--noninteractive' '-y' 'org.gnome.Maps'"_s.arg(flatpak), true},
        {app(AppOrigin::Package, u"obconf"_s), u"'%1' 'remove' '-y' 'obconf'"_s.arg(apt), true},
    };
    for (const auto& [made, line, admin] : commands) {
        const AppRemoval plan = AppRemoval::of(made, u"/home/ana"_s, folders);
        EXPECT_EQ(std::tuple(plan.commandLine(), plan.asAdministrator), std::tuple(line, admin));
    }
    // Nothing that could be read as an option or a second word ever reaches a tool, and a tool
    // that is not there is named rather than guessed at.
    for (const QString& bad : {u"-rf"_s, u"a b"_s, u"x;reboot"_s, QString()})
        EXPECT_EQ(AppRemoval::of(app(AppOrigin::Package, bad), {}, folders).refusal, AppRemoval::Refusal::NotPackaged);
    const AppRemoval noSnap = AppRemoval::of(app(AppOrigin::Snap, u"firefox"_s), {}, folders);
    EXPECT_EQ(std::tuple(noSnap.refusal, noSnap.others), std::tuple(AppRemoval::Refusal::ToolMissing, QStringList{u"snap"_s}));
    EXPECT_FALSE(AppRemoval::of(app(AppOrigin::Unmanaged, {}), {}, folders).item.has_value());
    const AppRemoval appImage = AppRemoval::of(app(AppOrigin::AppImage, {}), u"/home/ana"_s, folders);
    EXPECT_EQ(std::tuple(appImage.item->url(), appImage.item->companions, appImage.asAdministrator),
              std::tuple(std::optional(u"/home/ana/Apps/X.AppImage"_s), QStringList{u"/usr/share/applications/x.desktop"_s}, false));

    const QStringList simulate{u"-s"_s, u"remove"_s, u"obconf"_s};
    const struct
    {
        ShellResult simulated;
        AppRemoval::Refusal refusal;
        QStringList others;
    } packages[] = {
        {{0, kAptAlone}, AppRemoval::Refusal::None, {}},
        {{0, QString(kAptTakesVim).replace(u"vim-common"_s, u"obconf"_s)}, AppRemoval::Refusal::TakesOthers, {u"vim"_s}},
        {{100, kAptBroken}, AppRemoval::Refusal::PackagingSilent, {}},
        {{-1, {}}, AppRemoval::Refusal::PackagingSilent, {}},
    };
    for (const auto& [simulated, refusal, others] : packages) {
        tools.answer(apt, simulate, simulated);
        const InstalledApp package = app(AppOrigin::Package, u"obconf"_s);
        const AppRemoval confirmed = AppRemoval::confirmed(AppRemoval::of(package, {}, folders), package, tools);
        EXPECT_EQ(std::tuple(confirmed.refusal, confirmed.others, confirmed.item.has_value()),
                  std::tuple(refusal, others, refusal == AppRemoval::Refusal::None));
    }
}

} // namespace
} // namespace nubo::test
