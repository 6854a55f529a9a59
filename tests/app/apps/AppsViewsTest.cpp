#include "app/support/UiWorld.h"

#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {

// The apps screen in the main window over a prepared machine: a store application that left
// data in the Library, a few more applications, one of them in the user's own folder.
class AppsViewsTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000};
        bundle(QStringLiteral("Applications/Writer.app"), QStringLiteral("com.acme.writer"), 300'000);
        file(QStringLiteral("Applications/Writer.app/Contents/_MASReceipt/receipt"), 10);
        bundle(QStringLiteral("Applications/Paint.app"), QStringLiteral("com.acme.paint"), 900'000);
        bundle(QStringLiteral("Applications/Café Studio.app"), QStringLiteral("com.cafe.studio"), 120'000);
        bundle(QStringLiteral("Applications/Utilities/Terminal Pro.app"), QStringLiteral("com.pro.term"),
               40'000);
        bundle(QStringLiteral("home/Applications/Zeta.app"), QStringLiteral("org.zeta.app"), 200'000);
        file(QStringLiteral("home/Library/Preferences/com.acme.writer.plist"), 2000);
        file(QStringLiteral("home/Library/Caches/com.acme.writer/blob"), 30'000);
        file(QStringLiteral("home/Library/Application Support/Writer/db"), 60'000);
        file(QStringLiteral("home/Library/Saved Application State/com.acme.writer.savedState/w"), 4000);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        m_metadata.lastUsed.insert(writer(), now.addDays(-3));
        m_metadata.lastUsed.insert(path(QStringLiteral("Applications/Paint.app")), now.addDays(-400));
        m_metadata.lastUsed.insert(path(QStringLiteral("Applications/Café Studio.app")), now.addDays(-30));
        m_metadata.lastUsed.insert(path(QStringLiteral("Applications/Utilities/Terminal Pro.app")),
                                   now.addDays(-60));
        m_metadata.lastUsed.insert(path(QStringLiteral("home/Applications/Zeta.app")), now.addDays(-100));
        m_icons->known.insert(writer(), QColor(0x34, 0x78, 0xF6));
    }

    AppsModel& apps() { return *state().apps(); }
    QString writer() const { return path(QStringLiteral("Applications/Writer.app")); }

    QQuickWindow& openPane()
    {
        QQuickWindow& window = mainWindow();
        state().setSection(QStringLiteral("apps"));
        EXPECT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
        QTest::qWait(Settle);
        return window;
    }

    static QQuickItem* button(QQuickWindow& window, const QString& text)
    {
        QList<QQuickItem*> all = window.findChildren<QQuickItem*>();
        all += drawn(window);
        for (QQuickItem* candidate : all) {
            if (candidate->isVisible() && candidate->property("text").toString() == text &&
                candidate->metaObject()->indexOfSignal("clicked()") >= 0)
                return candidate;
        }
        return nullptr;
    }

    // Chooses an application by clicking its row in the list.
    void choose(QQuickWindow& window, const QString& name)
    {
        for (QQuickItem* row : visibleNamed(window, QStringLiteral("appRow"))) {
            if (row->property("app").toMap().value(QStringLiteral("name")).toString() == name) {
                click(*row);
                ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().leftoversLoading(); }, 10000));
                QTest::qWait(Settle);
                return;
            }
        }
        ADD_FAILURE() << "no row for " << name.toStdString();
    }
};

} // namespace

// One pass through the screen: the list narrowed by search and ordered by last use, the detail
// of a running store app whose bundle cannot be unticked, uninstalling cancelled, then confirmed
// while a running copy keeps the removal busy (what it takes and keeps is AppsModelTest's).
TEST_F(AppsViewsTest, WalkThroughTheScreen)
{
    m_quitObeys = false;
    m_workspace.running = {{4242, QStringLiteral("Writer"), writer(), false, false, true}};
    QQuickWindow& window = openPane();
    EXPECT_EQ(visibleNamed(window, QStringLiteral("appRow")).size(), 5);
    EXPECT_TRUE(named(window, QStringLiteral("appsEmptyDetail")).isVisible());
    snapshots(window, QStringLiteral("apps-list"));
    // Writer has the system's icon; the others, which the system draws none for, keep a tile.
    for (QQuickItem* row : visibleNamed(window, QStringLiteral("appRow"))) {
        const QString name = row->property("app").toMap().value(QStringLiteral("name")).toString();
        EXPECT_EQ(in(row, "appIconPicture")->isVisible(), name == QStringLiteral("Writer")) << name.toStdString();
    }

    // Typing into the search field, as a user does: accents and case do not matter.
    click(named(window, QStringLiteral("appsSearch")));
    for (const char key : {'C', 'A', 'F', 'E'})
        QTest::keyClick(&window, key);
    QTest::qWait(Settle);
    EXPECT_EQ(apps().query(), QStringLiteral("CAFE"));
    EXPECT_EQ(visibleNamed(window, QStringLiteral("appRow")).size(), 1);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(&window, Qt::Key_Backspace);
    QTest::qWait(Settle);
    EXPECT_TRUE(apps().query().isEmpty());
    // The order menu: "Último uso" puts the app used three days ago first.
    click(named(window, QStringLiteral("sortButton")));
    QTest::qWait(Settle);
    QQuickItem* lastUse = button(window, QStringLiteral("Último uso"));
    ASSERT_NE(lastUse, nullptr);
    snapshot(window, DefaultSize, QStringLiteral("apps-sort-menu-default"));
    click(*lastUse);
    QTest::qWait(Settle);
    const QList<QQuickItem*> shown = visibleNamed(window, QStringLiteral("appRow"));
    ASSERT_FALSE(shown.isEmpty());
    EXPECT_EQ(shown.front()->property("app").toMap().value(QStringLiteral("name")), QStringLiteral("Writer"));

    // An app without store receipt nor process shows neither tag; Writer shows both.
    choose(window, QStringLiteral("Paint"));
    EXPECT_FALSE(named(window, QStringLiteral("storeTag")).isVisible() || named(window, QStringLiteral("runningTag")).isVisible());
    choose(window, QStringLiteral("Writer"));
    EXPECT_TRUE(named(window, QStringLiteral("appDetail")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("appsEmptyDetail")).isVisible());
    EXPECT_TRUE(named(window, QStringLiteral("storeTag")).isVisible() && named(window, QStringLiteral("runningTag")).isVisible());
    snapshots(window, QStringLiteral("apps-detail"));
    // Five rows, but the bundle, always removed, has no tick to take away.
    QList<QQuickItem*> checks = visibleNamed(window, QStringLiteral("removalCheck"));
    ASSERT_EQ(checks.size(), 4);
    const qint64 all = apps().removalSize();
    // The largest leftover unticks, and leaves the removal.
    click(*checks.at(0));
    QTest::qWait(Settle);
    EXPECT_EQ(visibleNamed(window, QStringLiteral("removalCheck")).at(0)->property("mode").toString(), QStringLiteral("off"));
    EXPECT_LT(apps().removalSize(), all);

    // "Desinstalar" only asks; "Cancelar" leaves everything.
    click(named(window, QStringLiteral("uninstallButton")));
    QTest::qWait(Settle);
    ASSERT_FALSE(visibleNamed(window, QStringLiteral("confirmationTitle")).isEmpty());
    snapshot(window, DefaultSize, QStringLiteral("apps-confirmation-default"));
    QQuickItem* cancel = button(window, QStringLiteral("Cancelar"));
    ASSERT_NE(cancel, nullptr);
    click(*cancel);
    QTest::qWait(Settle);
    EXPECT_FALSE(apps().isRemoving() || state().hasToast());
    EXPECT_TRUE(exists(QStringLiteral("Applications/Writer.app/Contents/Info.plist")));
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Preferences/com.acme.writer.plist")));
    EXPECT_EQ(apps().selection(), writer());

    // Confirmed, the removal disables the button and the ticks; then the app leaves the list.
    click(named(window, QStringLiteral("uninstallButton")));
    QTest::qWait(Settle);
    QQuickItem* confirm = visibleNamed(window, QStringLiteral("confirmButton")).value(0);
    ASSERT_NE(confirm, nullptr);
    click(*confirm);
    QTest::qWait(Settle);
    ASSERT_TRUE(apps().isRemoving());
    QQuickItem& uninstall = named(window, QStringLiteral("uninstallButton"));
    EXPECT_FALSE(uninstall.isEnabled());
    QQuickItem* leftover = visibleNamed(window, QStringLiteral("removalCheck")).value(1);
    ASSERT_NE(leftover, nullptr);
    EXPECT_FALSE(leftover->isEnabled());
    snapshot(window, DefaultSize, QStringLiteral("apps-removing-default"));
    click(uninstall);
    QTest::qWait(Settle);
    EXPECT_TRUE(visibleNamed(window, QStringLiteral("confirmationTitle")).isEmpty());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isRemoving(); }, 15000));
    QTest::qWait(Settle);
    EXPECT_FALSE(exists(QStringLiteral("Applications/Writer.app")));
    EXPECT_TRUE(named(window, QStringLiteral("appsEmptyDetail")).isVisible());
    EXPECT_EQ(visibleNamed(window, QStringLiteral("appRow")).size(), 4);
    EXPECT_TRUE(state().hasToast());
}

namespace {

// The apps screen on a Linux desktop: a Flatpak with data in the home, an AppImage of the user's,
// and a distribution package that cannot go without taking others.
class LinuxAppsViewsTest : public UiWorld
{
protected:
    LinuxAppsViewsTest() { m_system = HostSystem::Linux; }
};

} // namespace

TEST_F(LinuxAppsViewsTest, APackageThatWouldTakeOthersShowsWhyAndCannotBeUninstalled)
{
    m_desktop->flatpak(QStringLiteral("org.gnome.Maps"), QStringLiteral("Mapas"), false);
    file(QStringLiteral("home/.var/app/org.gnome.Maps/data"), 80'000);
    file(QStringLiteral("home/.config/org.gnome.Maps/settings"), 2'000);
    const QString image = m_desktop->program(path(QStringLiteral("home/Aplicaciones/Editor.AppImage")), 90'000);
    m_desktop->entry(m_desktop->places().userData, QStringLiteral("editor.desktop"),
                     QStringLiteral("Name=Editor\nExec=") + image + QStringLiteral("\nX-AppImage-Version=2.1"));
    const QString entry = m_desktop->entry(m_desktop->systemData(), QStringLiteral("obconf.desktop"),
                                           QStringLiteral("Name=Openbox Configuration\nName[es]=Configuración de Openbox\nExec=obconf"));
    m_tools.answer(m_desktop->tool(QStringLiteral("dpkg-query")), {QStringLiteral("-S"), entry},
                   {0, QStringLiteral("obconf: ") + entry});
    m_tools.answer(m_desktop->tool(QStringLiteral("apt-get")), {QStringLiteral("-s"), QStringLiteral("remove"), QStringLiteral("obconf")},
                   {0, QStringLiteral("Remv obconf [1:2.0.4]\nRemv openbox-menu [0.8]\n")});

    // Seen in the dark appearance, the light one being the Mac screen's above.
    const QPalette light = QGuiApplication::palette();
    QGuiApplication::setPalette(darkPalette());
    QQuickWindow& window = mainWindow();
    state().setSection(QStringLiteral("apps"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().apps()->sizesLoaded(); }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(visibleNamed(window, QStringLiteral("appRow")).size(), 3);
    snapshots(window, QStringLiteral("apps-linux-list"));

    for (const QString& name : {QStringLiteral("Mapas"), QStringLiteral("Configuración de Openbox")}) {
        for (QQuickItem* row : visibleNamed(window, QStringLiteral("appRow"))) {
            if (row->property("app").toMap().value(QStringLiteral("name")).toString() == name)
                click(*row);
        }
        ASSERT_TRUE(QTest::qWaitFor([this] { return !state().apps()->leftoversLoading(); }, 10000));
        QTest::qWait(Settle);
        snapshots(window, name == QStringLiteral("Mapas") ? QStringLiteral("apps-linux-flatpak")
                                                           : QStringLiteral("apps-linux-refused"));
    }
    EXPECT_EQ(text(named(window, QStringLiteral("removalRefusal"))),
              QStringLiteral("Nubo no la desinstala: quitar el paquete obconf quitaría también openbox-menu."));
    EXPECT_FALSE(named(window, QStringLiteral("uninstallButton")).isEnabled());
    // Nor can the model be made to: nothing starts and no command is run.
    state().apps()->uninstall();
    EXPECT_FALSE(state().apps()->isRemoving() || !adminCommands().isEmpty() || !m_commandsRun.isEmpty());
    QGuiApplication::setPalette(light);
}
