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
#include <array>

using namespace nubo;
using namespace nubo::test;

namespace {

// The performance screen beside a stand-in sidebar, in a stack of panes: `pane` 0 hides it.
const QByteArray kScreen = besideSidebar("PerformanceView", "PerformanceModel");

// A temporary Mac behind the real runner: the three launch folders with an app's agent, a
// running agent of the user's, a switched-off agent and a system daemon; a launchctl that lists
// what runs (held while the list gate is closed) and accepts every change; a tmutil with one
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
        writeBytes(mac("list-go"), "go");

        // Jobs ship in both forms; the daemon's is binary.
        const auto job = [this](const char* relative, const char* label, QVariantMap content,
                                PlistFormat format = PlistFormat::xml) {
            content.insert(QStringLiteral("Label"), QString::fromUtf8(label));
            writeBytes(mac(relative), plistBytes(content, format));
        };
        job("home/Library/LaunchAgents/com.dropbox.agent.plist", "com.dropbox.agent",
            {{QStringLiteral("Program"), QStringLiteral("/Applications/Dropbox.app/Contents/MacOS/DropboxAgent")}});
        job("home/Library/LaunchAgents/com.me.sync.plist", "com.me.sync",
            {{QStringLiteral("ProgramArguments"),
              QVariantList{QStringLiteral("/Users/me/bin/sync-it's.sh"), QStringLiteral("--quiet")}}});
        job("Library/LaunchAgents/org.old.helper.plist", "org.old.helper",
            {{QStringLiteral("Program"), QStringLiteral("/usr/local/bin/old-helper")}, {QStringLiteral("Disabled"), true}});
        job("Library/LaunchDaemons/com.vendor.daemon.plist", "com.vendor.daemon",
            {{QStringLiteral("Program"), QStringLiteral("/Library/PrivilegedHelperTools/com.vendor.daemon")}},
            PlistFormat::binary);

        m_safety = std::make_unique<Safety>(m_mac.roots(), SafetyRules::forMac());
        m_deleter = std::make_unique<Deleter>(*m_safety, m_admin);
        m_launchItems = std::make_shared<LaunchItems>(m_tools, m_shell, m_admin, *m_deleter, m_naming, m_workspace);
        m_maintenance = std::make_shared<MaintenanceCatalog>(m_tools, m_shell, m_admin);
        m_model = std::make_unique<PerformanceModel>(m_launchItems, m_maintenance);
    }

    void TearDown() override
    {
        writeBytes(mac("verify-go"), "go");
        UiWorld::TearDown(); // the views go before the model they bind to
        // Work still running borrows the runners of this fixture: it ends before they go.
        m_model.reset();
        EXPECT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    }

    [[nodiscard]] QString mac(const char* relative) const { return m_mac.path(relative); }

    QQuickWindow* screen(int pane = 1)
    {
        return window(kScreen, {{QStringLiteral("appState"), QVariant::fromValue(&state())},
                                {QStringLiteral("model"), QVariant::fromValue(m_model.get())},
                                {QStringLiteral("pane"), pane}});
    }

    // A launch item's row ("launchItem-<label>") or a task's ("task-<id>"); rows of launch items
    // are made again whenever the list is read, so a test looks them up afresh.
    static QQuickItem* row(QQuickWindow& window, const QString& name) { return visual(window.contentItem(), name); }
    static QQuickItem* row(QQuickWindow& window, const char* name) { return row(window, QString::fromUtf8(name)); }

    // Opens the row's menu and picks `entry`.
    void fromMenu(QQuickWindow& window, QQuickItem* launchRow, const char* entry)
    {
        click(*in(launchRow, "itemMore"));
        QTest::qWait(Settle);
        click(named(window, QString::fromUtf8(entry)));
        QTest::qWait(Settle);
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

// One pass through the screen as a user takes it: first showing, refresh, a removal cancelled and
// an oddly named one confirmed, a refused switch, and maintenance tasks cancelled and run.
TEST_F(PerformanceViewsTest, WalkThroughTheScreen)
{
    QQuickWindow* window = screen(0);
    ASSERT_NE(window, nullptr);
    QSignalSpy loading(m_model.get(), &PerformanceModel::isLoadingChanged);
    // Behind another pane nothing is read; the first showing reads once, coming back does not.
    QTest::qWait(Settle);
    EXPECT_FALSE(m_model->hasLoaded());
    QFile::remove(mac("list-go"));
    window->setProperty("pane", 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->isLoading(); }, 5000));
    snapshots(*window, QStringLiteral("performance-searching"));
    EXPECT_TRUE(named(*window, QStringLiteral("searching")).isVisible());
    EXPECT_FALSE(named(*window, QStringLiteral("noItems")).isVisible());
    // Nothing has been counted yet, so no count and no "no snapshots" claim shows.
    EXPECT_EQ(named(*window, QStringLiteral("activeCount")).opacity(), 0.0);
    EXPECT_FALSE(in(row(*window, "task-snapshots"), "taskExtra")->isVisible());

    writeBytes(mac("list-go"), "go");
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->hasLoaded() && !m_model->isLoading(); }, 15000));
    window->setProperty("pane", 0);
    QTest::qWait(50);
    window->setProperty("pane", 1);
    QTest::qWait(Settle);
    EXPECT_EQ(loading.count(), 2); // on, then off
    EXPECT_FALSE(named(*window, QStringLiteral("searching")).isVisible());
    EXPECT_EQ(text(named(*window, QStringLiteral("activeCount"))), QStringLiteral("3 ítems de inicio activos"));
    QQuickItem* dropbox = row(*window, "launchItem-com.dropbox.agent");
    QQuickItem* daemon = row(*window, "launchItem-com.vendor.daemon");
    ASSERT_TRUE(dropbox && daemon);
    EXPECT_EQ((std::array{in(dropbox, "runningTag")->isVisible(), in(dropbox, "itemLock")->isVisible(),
                          in(daemon, "runningTag")->isVisible(), in(daemon, "itemLock")->isVisible()}),
              (std::array{true, false, false, true}));
    EXPECT_EQ(text(in(row(*window, "launchItem-org.old.helper"), "toggle")), QStringLiteral("Activar"));
    snapshots(*window, QStringLiteral("performance-results"));
    click(named(*window, QStringLiteral("loginItemsLink")));
    EXPECT_EQ(m_workspace.openedUrls,
              QStringList{QStringLiteral("x-apple.systempreferences:com.apple.LoginItems-Settings.extension")});

    // "Actualizar" reads everything again and finds a job whose file name starts with "-" and
    // whose label holds quotes, a backslash, markup and a line break: plain text on one line.
    const QString label = QStringLiteral("-x \"q\" \\ <b>bold</b>\nline");
    const QString oddFile = mac("home/Library/LaunchAgents/-x \"q\" \\ b.plist");
    writeBytes(oddFile, plistBytes(QVariantMap{{QStringLiteral("Label"), label},
                                               {QStringLiteral("Program"), QStringLiteral("/bin/true")}},
                                   PlistFormat::xml));
    click(named(*window, QStringLiteral("refresh")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->items().size() == 5 && !m_model->isLoading(); }, 15000));
    QTest::qWait(Settle);
    QQuickItem* odd = row(*window, QStringLiteral("launchItem-") + label);
    ASSERT_NE(odd, nullptr);
    const QString details = text(in(odd, "itemDetails"));
    EXPECT_TRUE(details.startsWith(QStringLiteral("Tu usuario · ")) && !details.contains(QLatin1Char('\n')))
        << details.toStdString();
    EXPECT_EQ(in(odd, "itemDetails")->property("textFormat").toInt(), int(Qt::PlainText));
    snapshot(*window, DefaultSize, QStringLiteral("performance-odd-name-default"));

    // "Eliminar" only asks; "Cancelar" leaves the item and its file.
    const QString sync = mac("home/Library/LaunchAgents/com.me.sync.plist");
    QObject* removal = window->findChild<QObject*>(QStringLiteral("launchItemRemoval"));
    ASSERT_NE(removal, nullptr);
    fromMenu(*window, row(*window, "launchItem-com.me.sync"), "menuRemove");
    ASSERT_TRUE(removal->property("visible").toBool());
    snapshots(*window, QStringLiteral("performance-removal"));
    click(named(*window, QStringLiteral("removalCancel")));
    QTest::qWait(Settle * 2);
    EXPECT_FALSE(removal->property("visible").toBool());
    EXPECT_TRUE(QFile::exists(sync));
    EXPECT_EQ(m_model->items().size(), 5);
    // Confirmed, the odd one goes, exactly that file.
    fromMenu(*window, row(*window, QStringLiteral("launchItem-") + label), "menuRemove");
    EXPECT_TRUE(QFile::exists(oddFile));
    click(named(*window, QStringLiteral("removalConfirm")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->items().size() == 4; }, 10000));
    EXPECT_FALSE(QFile::exists(oddFile));
    EXPECT_TRUE(QFile::exists(sync) && QFile::exists(mac("home/Library/LaunchAgents/com.dropbox.agent.plist")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return row(*window, QStringLiteral("launchItem-") + label) == nullptr; }, 5000));

    // The daemon's password prompt is refused: it still reads "Desactivar". The user's agent
    // switches off, and its menu copies the program, quote and all, not the property list.
    m_admin.outcome = AdminOutcome::Failed;
    QSignalSpy failed(m_model.get(), &PerformanceModel::actionFailed);
    click(*in(row(*window, "launchItem-com.vendor.daemon"), "toggle"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed.count() > 0; }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(text(in(row(*window, "launchItem-com.vendor.daemon"), "toggle")), QStringLiteral("Desactivar"));
    click(*in(row(*window, "launchItem-com.me.sync"), "toggle"));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return text(in(row(*window, "launchItem-com.me.sync"), "toggle")) == QStringLiteral("Activar"); }, 10000));
    fromMenu(*window, row(*window, "launchItem-com.me.sync"), "menuCopyProgram");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/Users/me/bin/sync-it's.sh"));

    // A started disk check turns its button into "Cancelar"; other tasks still start, each with
    // its own outcome (the font cache fails with the tool's last line).
    QQuickItem* verify = row(*window, "task-verify");
    QQuickItem* fonts = row(*window, "task-fonts");
    QQuickItem* dock = row(*window, "task-dock");
    ASSERT_TRUE(verify && fonts && dock);
    QQuickItem* run = in(verify, "taskRun");
    click(*run);
    EXPECT_TRUE(m_model->running().contains(QStringLiteral("verify")));
    click(*in(fonts, "taskRun"));
    click(*in(dock, "taskRun"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->outcomes().size() == 2; }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ((QStringList{text(run), text(in(fonts, "taskOutcomeText")), text(in(dock, "taskOutcomeText"))}),
              (QStringList{QStringLiteral("Cancelar"), QStringLiteral("atsutil: permiso denegado"),
                           QStringLiteral("Hecho")}));
    EXPECT_FALSE(in(verify, "taskOutcome")->isVisible());
    EXPECT_TRUE(in(verify, "taskBusy")->isVisible());
    snapshot(*window, DefaultSize, QStringLiteral("performance-tasks-default"));

    // Cancelled, it says so; run again, it ends with its own outcome.
    click(*run);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->running().isEmpty(); }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ((QStringList{text(in(verify, "taskOutcomeText")), text(run)}),
              (QStringList{QStringLiteral("Cancelado"), QStringLiteral("Ejecutar")}));
    click(*run);
    writeBytes(mac("verify-go"), "go");
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->running().isEmpty(); }, 10000));
    window->resize(MinimumSize);
    QTest::qWait(Settle);
    scrollTo(*verify);
    EXPECT_EQ(text(in(verify, "taskOutcomeText")), QStringLiteral("Sin errores"));
    EXPECT_TRUE(in(verify, "taskOutcome")->isVisible());
    snapshot(*window, MinimumSize, QStringLiteral("performance-tasks-minimum"));
}

TEST_F(PerformanceViewsTest, WithNothingInstalledOrNoModelTheScreenSaysSo)
{
    for (const char* file : {"home/Library/LaunchAgents/com.dropbox.agent.plist", "home/Library/LaunchAgents/com.me.sync.plist",
                             "Library/LaunchAgents/org.old.helper.plist", "Library/LaunchDaemons/com.vendor.daemon.plist"})
        ASSERT_TRUE(QFile::remove(mac(file)));
    writeScript(m_tools.tmutil, "exit 1\n");
    QQuickWindow* window = screen();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_model->hasLoaded() && !m_model->isLoading(); }, 15000));
    snapshots(*window, QStringLiteral("performance-empty"));
    EXPECT_TRUE(named(*window, QStringLiteral("noItems")).isVisible());

    state().setSection(QStringLiteral("performance"));
    QQuickWindow& main = mainWindow();
    snapshot(main, DefaultSize, QStringLiteral("performance-no-model-default"));
    EXPECT_FALSE(named(main, QStringLiteral("refresh")).isEnabled());
}
