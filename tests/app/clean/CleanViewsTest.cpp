#include "app/support/UiWorld.h"

#include <QGuiApplication>
#include <QScopeGuard>
#include <QTest>
#include <atomic>
#include <semaphore>

using namespace nubo;
using namespace nubo::test;

namespace {

const QString kWriterCache = QStringLiteral("home/Library/Caches/com.acme.writer/blob");
const QString kPhotos = QStringLiteral("home/Downloads/Fotos 2019.zip");
const QString kOdd = QStringLiteral("home/Downloads/-informe \"final\" \\ v2\nbis.pdf");

// The cleanup screen in the main window over a prepared home: caches and logs that start
// selected, personal downloads (one with an awkward name) that do not, a Docker command item,
// and rules that can be held back to catch the screen mid-scan.
class CleanViewsTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000};
    }

    void TearDown() override
    {
        // A held rule must not outlive a failed test: the models wait for their work.
        m_gate.release(5);
        UiWorld::TearDown();
    }

    CleanModel& clean() { return *state().clean(); }

    // A real file whose item claims `size` bytes, so the screen shows real sizes.
    CleanItem cleanItem(const QString& relative, qint64 size)
    {
        file(relative, 64);
        return CleanItem::atPath(path(relative), m_roots.home, std::nullopt, size);
    }

    void prepareHome()
    {
        CleanItem writerCache = cleanItem(kWriterCache, 1'840'000'000);
        writerCache.appURL = path(QStringLiteral("Applications/Writer.app"));
        const QList<CleanItem> caches{writerCache, cleanItem(QStringLiteral("home/Library/Caches/org.browser/cache.db"), 624'000'000)};
        const CleanItem log = cleanItem(QStringLiteral("home/Library/Logs/DiagnosticReports/crash.ips"), 12'400'000);
        const CleanItem trashed = cleanItem(QStringLiteral("home/.Trash/Proyecto viejo.zip"), 2'310'000'000);
        const CleanItem derived = cleanItem(QStringLiteral("home/Library/Developer/Xcode/DerivedData/App-abc/x"), 5'120'000'000);
        const CleanItem docker(QStringLiteral("docker-prune"), QStringLiteral("Docker"),
                               QStringLiteral("docker system prune -a"), 7'800'000'000,
                               CleanItem::Command{QStringLiteral("docker"), {QStringLiteral("system")}});
        m_downloads = {cleanItem(kPhotos, 3'400'000'000), cleanItem(kOdd, 48'000'000)};
        auto runs = m_runs;
        rule(QStringLiteral("caches"), [=] {
            ++*runs;
            return caches;
        });
        rule(QStringLiteral("logs"), [=] { return QList<CleanItem>{log}; });
        rule(QStringLiteral("trash"), [=] { return QList<CleanItem>{trashed}; });
        rule(QStringLiteral("deriveddata"), [=] { return QList<CleanItem>{derived}; });
        rule(QStringLiteral("docker"), [=] { return QList<CleanItem>{docker}; });
        rule(QStringLiteral("olddownloads"), [downloads = m_downloads] { return downloads; });
    }

    QQuickWindow& openPane()
    {
        QQuickWindow& window = mainWindow();
        state().setSection(QStringLiteral("clean"));
        return window;
    }

    void waitForScan()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return clean().hasScanned() && !clean().isScanning(); }, 10000));
        QTest::qWait(Settle);
    }

    // Presses `button`, which only asks, and then the confirmation's own button.
    void confirmFrom(QQuickWindow& window, const char* button)
    {
        click(window, button);
        QTest::qWait(Settle);
        EXPECT_FALSE(clean().isCleaning() || state().hasToast()) << "nothing without the confirmation";
        QQuickItem* confirm = visibleNamed(window, QStringLiteral("confirmButton")).value(0);
        ASSERT_NE(confirm, nullptr);
        click(*confirm);
        QTest::qWait(Settle);
    }

    using UiWorld::click;
    void click(QQuickWindow& window, const char* name) { UiWorld::click(named(window, QString::fromUtf8(name))); }

    std::shared_ptr<std::atomic<int>> m_runs = std::make_shared<std::atomic<int>>(0);
    QList<CleanItem> m_downloads;
    std::counting_semaphore<> m_gate{0};
};

} // namespace

// One pass through the screen: the first visit scans once, the detail page ticks items and
// cleans only its category after asking, "Cancelar" changes nothing, and the confirmed clean takes
// the selection and leaves what is not ticked.
TEST_F(CleanViewsTest, WalkThroughTheScreen)
{
    prepareHome();
    // The catalogue's last five categories wait for the gate; the ones before them finish even
    // when the pool has a single thread.
    const QList<CleanCategory>& all = m_catalog->all();
    for (qsizetype i = all.size() - 5; i < all.size(); ++i) {
        const QList<CleanItem> found = all.at(i).id == QLatin1String("olddownloads") ? m_downloads : QList<CleanItem>();
        rule(all.at(i).id, [this, found] {
            m_gate.acquire();
            return found;
        });
    }
    // The window opens on the summary: neither the cleanup nor the apps list starts by itself.
    mainWindow();
    QTest::qWait(Settle);
    EXPECT_FALSE(clean().hasScanned() || state().apps()->isLoading());
    EXPECT_EQ(m_runs->load(), 0);
    QQuickWindow& window = openPane();
    ASSERT_TRUE(QTest::qWaitFor([this] { return clean().loading().size() == 5; }, 10000));
    QTest::qWait(Settle);
    EXPECT_EQ(text(named(window, QStringLiteral("summaryLine"))), QStringLiteral("13 de 18 zonas revisadas"));
    EXPECT_FALSE(named(window, QStringLiteral("rescanButton")).isEnabled());
    snapshots(window, QStringLiteral("clean-scanning"));
    m_gate.release(5);
    waitForScan();
    EXPECT_TRUE(named(window, QStringLiteral("rescanButton")).isEnabled());
    EXPECT_EQ(text(named(window, QStringLiteral("summaryLine"))), QStringLiteral("5 elementos seleccionados"));
    snapshots(window, QStringLiteral("clean-results"));

    // A whole category ticks from its circle; another visit keeps the results, with no new scan.
    click(window, "categoryCheck-olddownloads");
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::All);
    state().setSection(QStringLiteral("home"));
    QTest::qWait(Settle);
    state().setSection(QStringLiteral("clean"));
    QTest::qWait(Settle);
    EXPECT_EQ(m_runs->load(), 1);
    EXPECT_FALSE(clean().isScanning());

    // The detail page: "all" unticks and ticks, one row unticks, and its own button asks first.
    click(window, "categoryOpen-olddownloads");
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("categoryDetail")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("cleanOverview")).isVisible());
    EXPECT_TRUE(named(window, QStringLiteral("detailCaution")).isVisible());
    click(window, "toggleAllButton");
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::None);
    EXPECT_FALSE(named(window, QStringLiteral("detailClean")).isEnabled());
    click(window, "toggleAllButton");
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::All);
    const QList<QQuickItem*> checks = visibleNamed(window, QStringLiteral("itemCheck"));
    ASSERT_EQ(checks.size(), 2);
    click(*checks.at(0)); // the larger one, listed first, goes back out of the selection
    EXPECT_FALSE(clean().isSelected(m_downloads.at(0).id));
    EXPECT_TRUE(clean().isSelected(m_downloads.at(1).id));
    snapshots(window, QStringLiteral("clean-detail"));
    confirmFrom(window, "detailClean");
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    // Only the ticked item of this page went; the safe categories' selection was left alone.
    EXPECT_FALSE(exists(kOdd));
    EXPECT_TRUE(exists(kPhotos) && exists(kWriterCache));
    state().dismissToast();
    click(window, "detailBack");
    QTest::qWait(Settle);
    EXPECT_TRUE(clean().path().isEmpty());
    EXPECT_TRUE(named(window, QStringLiteral("cleanOverview")).isVisible());
    // The home screen's recommendations jump straight to a detail page.
    state().reveal(QStringLiteral("caches"));
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("categoryDetail")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("detailCaution")).isVisible());
    click(window, "detailBack");
    QTest::qWait(Settle);

    // "Cancelar" changes nothing.
    const QStringList before = clean().selectedIds();
    click(window, "overviewClean");
    QTest::qWait(Settle);
    snapshot(window, DefaultSize, QStringLiteral("clean-confirmation-default"));
    QQuickItem* cancel = visibleNamed(window, QStringLiteral("cancelButton")).value(0);
    ASSERT_NE(cancel, nullptr);
    click(*cancel);
    QTest::qWait(Settle);
    EXPECT_FALSE(clean().isCleaning() || state().hasToast());
    EXPECT_EQ(clean().selectedIds(), before);
    EXPECT_TRUE(exists(kWriterCache));

    // Confirmed, the selection goes; unticked personal files and the unticked command stay.
    confirmFrom(window, "summaryClean");
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    EXPECT_FALSE(exists(kWriterCache) || exists(QStringLiteral("home/.Trash/Proyecto viejo.zip")));
    EXPECT_TRUE(exists(kPhotos));
    EXPECT_TRUE(m_commandsRun.isEmpty());
}

// While a clean runs only "Cancelar" stays, and it waits for the password prompt it cannot
// close; the refused prompt changes nothing.
TEST_F(CleanViewsTest, WhileACleanRunsOnlyCancelStaysAndItWaitsForTheOpenPrompt)
{
    prepareHome();
    QQuickWindow& window = openPane();
    waitForScan();
    if (!pin(QStringLiteral("home/Library/Caches/org.browser/cache.db")))
        GTEST_SKIP() << "this file system cannot make a file undeletable";
    // The administrator prompt for the pinned file stays open until the test answers it.
    std::counting_semaphore<> prompt{0};
    m_admin.handler = [&prompt](const AdminRequest&) {
        prompt.acquire();
        return AdminOutcome::Failed;
    };
    // Whatever happens below, the prompt is answered, so the clean can end and the test close.
    auto answered = qScopeGuard([&prompt] { prompt.release(); });

    confirmFrom(window, "overviewClean");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_admin.requests().isEmpty(); }, 10000));
    QTest::qWait(Settle);
    ASSERT_TRUE(clean().isCleaning());
    for (const char* name : {"overviewClean", "rescanButton", "categoryCheck-olddownloads"})
        EXPECT_FALSE(named(window, QString::fromUtf8(name)).isEnabled()) << name;
    // The rows being cleaned say so; the others keep their figures.
    EXPECT_EQ(std::tuple(text(named(window, QStringLiteral("categoryCount-caches"))), text(named(window, QStringLiteral("overviewClean"))),
                         text(named(window, QStringLiteral("categoryCount-olddownloads")))),
              std::tuple(QStringLiteral("Limpiando…"), QStringLiteral("Limpiando…"), QStringLiteral("2 elementos")));
    QQuickItem& cancel = named(window, QStringLiteral("summaryClean"));
    EXPECT_EQ(text(cancel), QStringLiteral("Cancelar"));
    click(cancel);
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("summaryCancelling")).isVisible());
    EXPECT_FALSE(cancel.isEnabled());
    EXPECT_TRUE(clean().isCleaning());
    snapshot(window, DefaultSize, QStringLiteral("clean-cleaning-default"));
    click(window, "rescanButton");
    click(window, "categoryCheck-olddownloads");
    EXPECT_EQ(m_runs->load(), 1);
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::None);
    click(window, "categoryOpen-caches");
    QTest::qWait(Settle);
    EXPECT_FALSE(named(window, QStringLiteral("toggleAllButton")).isEnabled());

    answered.dismiss();
    prompt.release();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 10000));
    QTest::qWait(Settle);
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/org.browser/cache.db")));
    // What failed stays listed but unticked: nothing is tried again until the user ticks it.
    EXPECT_FALSE(named(window, QStringLiteral("detailClean")).isEnabled());
}

TEST_F(CleanViewsTest, AnEmptyMacHasNothingToCleanAndNothingToPress)
{
    QQuickWindow& window = openPane();
    waitForScan();
    for (const char* name : {"summaryClean", "overviewClean", "categoryCheck-caches"})
        EXPECT_FALSE(named(window, QString::fromUtf8(name)).isEnabled()) << name;
    snapshots(window, QStringLiteral("clean-empty"));
    click(window, "categoryOpen-trash");
    QTest::qWait(Settle);
    for (const char* name : {"toggleAllButton", "detailClean"})
        EXPECT_FALSE(named(window, QString::fromUtf8(name)).isEnabled()) << name;
    // "Nada que limpiar" is said once, where the list would be; the header counts.
    EXPECT_EQ(text(named(window, QStringLiteral("detailItemCount"))), QStringLiteral("0 elementos"));
    snapshot(window, MinimumSize, QStringLiteral("clean-empty-detail-minimum"));
}

namespace {

// The cleanup screen on a Linux desktop: Linux's own rows, each with what a Linux home holds.
class LinuxCleanViewsTest : public CleanViewsTest
{
protected:
    LinuxCleanViewsTest() { m_system = HostSystem::Linux; }
};

} // namespace

TEST_F(LinuxCleanViewsTest, ShowsLinuxsOwnRowsWithTheirItems)
{
    const std::pair<const char*, std::pair<const char*, qint64>> found[] = {
        {"caches", {"home/.cache/mozilla/firefox/cache2", 940'000'000}},
        {"logs", {"home/.xsession-errors.old", 3'000'000}},
        {"trash", {"home/.local/share/Trash/files/Presupuesto.ods", 52'000'000}},
        {"packages", {"home/.cache/pip", 1'260'000'000}},
        {"installers", {"home/Descargas/programa_1.2_amd64.deb", 86'000'000}},
        {"orphans", {"home/.var/app/org.gone.Editor", 410'000'000}},
    };
    for (const auto& [category, item] : found) {
        const CleanItem made = cleanItem(QString::fromUtf8(item.first), item.second);
        rule(QString::fromUtf8(category), [made] { return QList<CleanItem>{made}; });
    }
    const QPalette light = QGuiApplication::palette();
    QGuiApplication::setPalette(darkPalette());
    QQuickWindow& window = openPane();
    waitForScan();
    // Every row a Linux desktop has is drawn with what it found; none a Linux desktop cannot have.
    EXPECT_EQ(clean().categoryCount(), int(CleanCatalog::rows(HostSystem::Linux).size()));
    for (const auto& [category, item] : found)
        EXPECT_TRUE(named(window, QStringLiteral("categoryCount-") + QString::fromUtf8(category)).isVisible()) << category;
    for (const char* mac : {"deriveddata", "simulators", "backups"})
        EXPECT_EQ(visual(window.contentItem(), QStringLiteral("categoryCount-") + QString::fromUtf8(mac)), nullptr) << mac;
    snapshots(window, QStringLiteral("clean-linux-results"));
    QGuiApplication::setPalette(light);
}
