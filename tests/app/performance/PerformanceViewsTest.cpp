#include "app/support/UiWorld.h"

#include "core/admin/ShellQuote.h"
#include "core/deletion/Deleter.h"
#include "core/launch/LaunchItems.h"
#include "core/maintenance/MaintenanceCatalog.h"
#include "core/naming/Naming.h"
#include "core/safety/Safety.h"
#include "core/shell/ShellToolRunner.h"
#include "models/app/Jobs.h"
#include "models/performance/PerformanceModel.h"
#include "support/FixtureFiles.h"
#include "support/PlistWriter.h"
#include "support/TemporaryMac.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {


// The performance screen beside a stand-in sidebar, at the width the main window gives it.
const QByteArray kScreen = besideSidebar("PerformanceView", "PerformanceModel");

// A temporary Mac behind the real runner: the three launch folders with an app's agent, a
// running agent of the user's, a switched-off agent and a system daemon; a launchctl that lists
// what runs (held until the test opens its gate) and accepts every change; a tmutil with one
// snapshot; and a shell standing in for the maintenance commands, where the disk check waits for
// its own gate and the font cache fails with the tool's reason.
class PerformanceViewsTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        ASSERT_TRUE(m_mac.isValid());
        const QByteArray listGate = shellQuote(mac("list-go")).toUtf8();
        writeScript(m_tools.launchctl,
                    "if [ \"$1\" = list ]; then\n"
                    "  i=0; while [ ! -e " + listGate + " ] && [ $i -lt 400 ]; do sleep 0.05; i=$((i+1)); done\n"
                    "  printf 'PID\\tStatus\\tLabel\\n412\\t0\\tcom.dropbox.agent\\n-\\t0\\tcom.me.sync\\n'\n"
                    "fi\nexit 0\n");
        writeScript(m_tools.tmutil, "echo 'Snapshots for disk /:'\n"
                                    "echo com.apple.TimeMachine.2026-11-20-101010.local\n");
        const QByteArray verifyGate = shellQuote(mac("verify-go")).toUtf8();
        writeScript(m_tools.shell,
                    "case \"$2\" in\n"
                    "  *diskutil*) i=0; while [ ! -e " + verifyGate +
                        " ] && [ $i -lt 400 ]; do sleep 0.05; i=$((i+1)); done; [ -e " + verifyGate + " ] ;;\n"
                    "  *atsutil*) echo 'Comprobando…'; echo 'atsutil: permiso denegado'; exit 1 ;;\n"
                    "  *) exit 0 ;;\n"
                    "esac\n");
        openListGate();

        plist("home/Library/LaunchAgents/com.dropbox.agent.plist",
              {{QStringLiteral("Label"), QStringLiteral("com.dropbox.agent")},
               {QStringLiteral("Program"), QStringLiteral("/Applications/Dropbox.app/Contents/MacOS/DropboxAgent")}});
        plist("home/Library/LaunchAgents/com.me.sync.plist",
              {{QStringLiteral("Label"), QStringLiteral("com.me.sync")},
               {QStringLiteral("ProgramArguments"),
                QVariantList{QStringLiteral("/Users/me/bin/sync-it's.sh"), QStringLiteral("--quiet")}}});
        plist("Library/LaunchAgents/org.old.helper.plist",
              {{QStringLiteral("Label"), QStringLiteral("org.old.helper")},
               {QStringLiteral("Program"), QStringLiteral("/usr/local/bin/old-helper")},
               {QStringLiteral("Disabled"), true}});
        plist("Library/LaunchDaemons/com.vendor.daemon.plist",
              {{QStringLiteral("Label"), QStringLiteral("com.vendor.daemon")},
               {QStringLiteral("Program"), QStringLiteral("/Library/PrivilegedHelperTools/com.vendor.daemon")}},
              PlistFormat::binary);

        m_safety = std::make_unique<Safety>(m_mac.roots(), SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
        m_launchItems = std::make_shared<LaunchItems>(m_tools, m_shell, m_admin, *m_deleter, m_naming, m_workspace);
        m_maintenance = std::make_shared<MaintenanceCatalog>(m_tools, m_shell, m_admin);
        m_model = std::make_unique<PerformanceModel>(m_launchItems, m_maintenance);
    }

    void TearDown() override
    {
        openVerifyGate();
        UiWorld::TearDown(); // the views go before the model they bind to
        // Work still running borrows the runners of this fixture: it ends before they go.
        m_model.reset();
        EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    }

    [[nodiscard]] QString mac(const char* relative) const { return m_mac.path(relative); }

    // Jobs ship in both forms; the daemon's is binary.
    void plist(const char* relative, const QVariantMap& content, PlistFormat format = PlistFormat::xml) const
    {
        writeBytes(mac(relative), plistBytes(content, format));
    }

    void openListGate() const { writeBytes(mac("list-go"), "go"); }
    void closeListGate() const { QFile::remove(mac("list-go")); }
    void openVerifyGate() const { writeBytes(mac("verify-go"), "go"); }

    QQuickWindow* screen()
    {
        return window(kScreen, {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                                {QStringLiteral("model"), QVariant::fromValue(m_model.get())}});
    }

    // The screen once its first load has landed.
    QQuickWindow* loadedScreen(qsizetype expected = 4)
    {
        QQuickWindow* shown = screen();
        if (shown) {
            EXPECT_TRUE(QTest::qWaitFor([&, expected] { return m_model->items().size() == expected && !m_model->isLoading(); }, 15000));
        }
        QTest::qWait(UiWorld::Settle);
        return shown;
    }

    static QQuickItem* launchRow(QQuickWindow& window, const char* label)
    {
        return visual(window.contentItem(), QStringLiteral("launchItem-") + QString::fromUtf8(label));
    }

    static QQuickItem* task(QQuickWindow& window, const char* id)
    {
        return visual(window.contentItem(), QStringLiteral("task-") + QString::fromUtf8(id));
    }

    // Scrolls the page so that `target` shows, as a user would before clicking it.
    static void bringIntoView(QQuickWindow& window, QQuickItem& target)
    {
        QQuickItem* page = item(window, QStringLiteral("performancePage"));
        ASSERT_NE(page, nullptr);
        const QPointF at = target.mapToItem(page->property("contentItem").value<QQuickItem*>(), QPointF(0, 0));
        const qreal room = page->property("contentHeight").toReal() - page->height();
        page->setProperty("contentY", std::clamp(at.y() - page->height() / 2, 0.0, std::max(room, 0.0)));
        QTest::qWait(50);
    }

    TemporaryMac m_mac;
    SystemTools& m_tools = m_mac.tools;
    ShellToolRunner m_shell;
    Naming m_naming;
    std::unique_ptr<Safety> m_safety;
    std::unique_ptr<Deleter> m_deleter;
    std::shared_ptr<LaunchItems> m_launchItems;
    std::shared_ptr<MaintenanceCatalog> m_maintenance;
    std::unique_ptr<PerformanceModel> m_model;
};

} // namespace

TEST_F(PerformanceViewsTest, FirstShowingLoadsOnceAndSearchingGivesWayToTheItems)
{
    closeListGate();
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->isLoading(); }, 5000));
    snapshots(*window, QStringLiteral("performance-searching"));
    EXPECT_TRUE(item(*window, QStringLiteral("searching"))->isVisible());
    EXPECT_FALSE(item(*window, QStringLiteral("noItems"))->isVisible());
    // Nothing has been counted yet, so no count and no "no snapshots" claim shows.
    EXPECT_EQ(item(*window, QStringLiteral("activeCount"))->opacity(), 0.0);
    EXPECT_FALSE(in(task(*window, "snapshots"), "taskExtra")->isVisible());

    openListGate();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_model->isLoading(); }, 15000));
    QTest::qWait(Settle);
    EXPECT_FALSE(item(*window, QStringLiteral("searching"))->isVisible());
    EXPECT_EQ(text(item(*window, QStringLiteral("activeCount"))), QStringLiteral("3 ítems de inicio activos"));

    QQuickItem* dropbox = launchRow(*window, "com.dropbox.agent");
    ASSERT_NE(dropbox, nullptr);
    EXPECT_TRUE(in(dropbox, "runningTag")->isVisible());
    EXPECT_FALSE(in(dropbox, "itemLock")->isVisible());
    QQuickItem* daemon = launchRow(*window, "com.vendor.daemon");
    ASSERT_NE(daemon, nullptr);
    EXPECT_TRUE(in(daemon, "itemLock")->isVisible());
    EXPECT_FALSE(in(daemon, "runningTag")->isVisible());
    EXPECT_EQ(text(in(launchRow(*window, "org.old.helper"), "toggle")), QStringLiteral("Activar"));
    snapshots(*window, QStringLiteral("performance-results"));

    // "Actualizar" reads everything again; the login-items link opens the settings page.
    QSignalSpy loading(m_model.get(), &PerformanceModel::isLoadingChanged);
    click(*item(*window, QStringLiteral("refresh")));
    EXPECT_GE(loading.count(), 1);
    click(*item(*window, QStringLiteral("loginItemsLink")));
    EXPECT_EQ(m_workspace.openedUrls,
              QStringList{QStringLiteral("x-apple.systempreferences:com.apple.LoginItems-Settings.extension")});
}

TEST_F(PerformanceViewsTest, WithNothingInstalledOrNoModelTheScreenSaysSo)
{
    for (const char* file : {"home/Library/LaunchAgents/com.dropbox.agent.plist",
                             "home/Library/LaunchAgents/com.me.sync.plist",
                             "Library/LaunchAgents/org.old.helper.plist",
                             "Library/LaunchDaemons/com.vendor.daemon.plist"})
        ASSERT_TRUE(QFile::remove(mac(file)));
    writeScript(m_tools.tmutil, "exit 1\n");
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_model->isLoading(); }, 15000));
    snapshots(*window, QStringLiteral("performance-empty"));
    EXPECT_TRUE(item(*window, QStringLiteral("noItems"))->isVisible());

    state().setSection(QStringLiteral("performance"));
    QQuickWindow& main = mainWindow();
    snapshot(main, DefaultSize, QStringLiteral("performance-no-model-default"));
    QQuickItem* refresh = item(main, QStringLiteral("refresh"));
    ASSERT_NE(refresh, nullptr);
    EXPECT_FALSE(refresh->isEnabled());
}

// A refused prompt is PerformanceModelTest's; a confirmed removal is the odd name's below.
TEST_F(PerformanceViewsTest, RemovalAsksFirstAndCancelLeavesTheItemAndItsFile)
{
    QQuickWindow* window = loadedScreen();
    ASSERT_NE(window, nullptr);
    const QString file = mac("home/Library/LaunchAgents/com.me.sync.plist");
    QObject* removal = window->findChild<QObject*>(QStringLiteral("launchItemRemoval"));
    ASSERT_NE(removal, nullptr);

    // WHEN "Eliminar" is chosen in the menu THEN only the question shows.
    click(*in(launchRow(*window, "com.me.sync"), "itemMore"));
    QTest::qWait(Settle);
    click(*item(*window, QStringLiteral("menuRemove")));
    QTest::qWait(Settle);
    ASSERT_TRUE(removal->property("visible").toBool());
    snapshots(*window, QStringLiteral("performance-removal"));
    EXPECT_TRUE(QFile::exists(file));

    click(*item(*window, QStringLiteral("removalCancel")));
    QTest::qWait(Settle * 2);
    EXPECT_FALSE(removal->property("visible").toBool());
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(m_model->items().size(), 4);
}

// A job whose file name starts with "-" and whose label holds quotes, a backslash, markup and a
// line break: the row shows it as plain text on one line, and only the confirmed removal deletes
// exactly that file.
TEST_F(PerformanceViewsTest, AnOddlyNamedItemReadsAsPlainTextAndGoesOnlyWhenConfirmed)
{
    const QString label = QStringLiteral("-x \"q\" \\ <b>bold</b>\nline");
    const QString file = mac("home/Library/LaunchAgents/-x \"q\" \\ b.plist");
    writeBytes(file, plistBytes(QVariantMap{{QStringLiteral("Label"), label},
                                            {QStringLiteral("Program"), QStringLiteral("/bin/true")}},
                                PlistFormat::xml));
    QQuickWindow* window = loadedScreen(5);
    ASSERT_NE(window, nullptr);
    QQuickItem* odd = visual(window->contentItem(), QStringLiteral("launchItem-") + label);
    ASSERT_NE(odd, nullptr);
    const QString details = text(in(odd, "itemDetails"));
    EXPECT_TRUE(details.startsWith(QStringLiteral("Tu usuario · "))) << details.toStdString();
    EXPECT_FALSE(details.contains(QLatin1Char('\n')));
    EXPECT_EQ(in(odd, "itemDetails")->property("textFormat").toInt(), int(Qt::PlainText));
    snapshot(*window, DefaultSize, QStringLiteral("performance-odd-name-default"));

    click(*in(odd, "itemMore"));
    QTest::qWait(Settle);
    click(*item(*window, QStringLiteral("menuRemove")));
    QTest::qWait(Settle);
    EXPECT_TRUE(QFile::exists(file));
    click(*item(*window, QStringLiteral("removalConfirm")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->items().size() == 4; }, 10000));
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_TRUE(QFile::exists(mac("home/Library/LaunchAgents/com.me.sync.plist")));
    EXPECT_TRUE(QFile::exists(mac("home/Library/LaunchAgents/com.dropbox.agent.plist")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return visual(window->contentItem(), QStringLiteral("launchItem-") + label) == nullptr; }, 5000));
}

TEST_F(PerformanceViewsTest, SwitchFollowsWhatTheSystemAcceptedAndTheMenuCopiesTheProgram)
{
    QQuickWindow* window = loadedScreen();
    ASSERT_NE(window, nullptr);

    // The daemon's password prompt is refused: it still reads "Desactivar".
    m_admin.outcome = AdminOutcome::Failed;
    QSignalSpy failed(m_model.get(), &PerformanceModel::actionFailed);
    click(*in(launchRow(*window, "com.vendor.daemon"), "toggle"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed.count() > 0; }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(text(in(launchRow(*window, "com.vendor.daemon"), "toggle")), QStringLiteral("Desactivar"));

    // The user's agent switches off.
    click(*in(launchRow(*window, "com.me.sync"), "toggle"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return text(in(launchRow(*window, "com.me.sync"), "toggle")) == QStringLiteral("Activar"); }, 10000));

    // "Copiar ruta del programa" copies the program, quote and all, not the property list.
    click(*in(launchRow(*window, "com.me.sync"), "itemMore"));
    QTest::qWait(Settle);
    click(*item(*window, QStringLiteral("menuCopyProgram")));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/Users/me/bin/sync-it's.sh"));
}

TEST_F(PerformanceViewsTest, ARunningTaskCanBeCancelledFromItsOwnButtonAndThenShowsItsOutcome)
{
    QQuickWindow* window = loadedScreen();
    ASSERT_NE(window, nullptr);
    QQuickItem* verify = task(*window, "verify");
    ASSERT_NE(verify, nullptr);
    bringIntoView(*window, *verify);

    // WHEN the disk check starts THEN its button turns into "Cancelar".
    QQuickItem* run = in(verify, "taskRun");
    click(*run);
    EXPECT_TRUE(m_model->running().contains(QStringLiteral("verify")));
    QTest::qWait(Settle);
    EXPECT_EQ(text(run), QStringLiteral("Cancelar"));

    // Other tasks still start, and each shows its own outcome: the font cache fails with the
    // tool's last line, the Dock restart succeeds.
    QQuickItem* fonts = task(*window, "fonts");
    bringIntoView(*window, *fonts);
    click(*in(fonts, "taskRun"));
    QQuickItem* dock = task(*window, "dock");
    bringIntoView(*window, *dock);
    click(*in(dock, "taskRun"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->outcomes().size() == 2; }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(text(in(fonts, "taskOutcomeText")), QStringLiteral("atsutil: permiso denegado"));
    EXPECT_EQ(text(in(dock, "taskOutcomeText")), QStringLiteral("Hecho"));
    EXPECT_FALSE(in(verify, "taskOutcome")->isVisible());
    EXPECT_TRUE(in(verify, "taskBusy")->isVisible());
    snapshot(*window, DefaultSize, QStringLiteral("performance-tasks-default"));

    // Cancelled, it says so; run again, it ends with its own outcome.
    click(*run);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->running().isEmpty(); }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(text(in(verify, "taskOutcomeText")), QStringLiteral("Cancelado"));
    EXPECT_EQ(text(run), QStringLiteral("Ejecutar"));
    click(*run);
    openVerifyGate();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->running().isEmpty(); }, 10000));
    window->resize(MinimumSize);
    QTest::qWait(Settle);
    bringIntoView(*window, *verify);
    EXPECT_EQ(text(in(verify, "taskOutcomeText")), QStringLiteral("Sin errores"));
    EXPECT_TRUE(in(verify, "taskOutcome")->isVisible());
    snapshot(*window, MinimumSize, QStringLiteral("performance-tasks-minimum"));
}

// The screen sits in the stack of panes from start-up; it reads the launch items the first time
// it shows, not at launch, and coming back to it does not read them again.
TEST_F(PerformanceViewsTest, ThePaneLoadsOnItsFirstShowingOnly)
{
    QQuickWindow* window = this->window(R"(
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo
import Nubo.Models
ApplicationWindow {
    id: win
    required property AppState appState
    required property PerformanceModel model
    property int pane: 0
    width: 1280; height: 820; visible: true
    StackLayout {
        anchors.fill: parent
        currentIndex: win.pane
        Item {}
        PerformanceView { appState: win.appState; model: win.model }
    }
}
)",
                                        {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                                         {QStringLiteral("model"), QVariant::fromValue(m_model.get())}});
    ASSERT_NE(window, nullptr);
    QSignalSpy loading(m_model.get(), &PerformanceModel::isLoadingChanged);
    QTest::qWait(Settle);
    EXPECT_EQ(loading.count(), 0);
    EXPECT_FALSE(m_model->hasLoaded());

    window->setProperty("pane", 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->hasLoaded() && !m_model->isLoading(); }, 15000));
    EXPECT_EQ(loading.count(), 2); // on, then off

    window->setProperty("pane", 0);
    QTest::qWait(50);
    window->setProperty("pane", 1);
    QTest::qWait(Settle);
    EXPECT_EQ(loading.count(), 2);
}
