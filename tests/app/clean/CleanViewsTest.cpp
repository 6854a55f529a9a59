#include "app/support/UiWorld.h"

#include <QScopeGuard>
#include <QTest>
#include <algorithm>
#include <atomic>
#include <semaphore>

using namespace nubo;
using namespace nubo::test;

namespace {

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
        m_runs = std::make_shared<std::atomic<int>>(0);
    }

    CleanModel& clean() { return *state().clean(); }

    // A real file under the home whose item claims `size` bytes, so the screen shows real sizes.
    CleanItem homeItem(const QString& relative, qint64 size, std::optional<QString> name = std::nullopt)
    {
        file(QStringLiteral("home/") + relative, 64);
        return CleanItem::atPath(home(relative), m_roots.home, std::move(name), size);
    }

    void prepareHome()
    {
        const CleanItem writerCache = [this] {
            CleanItem cache = homeItem(QStringLiteral("Library/Caches/com.acme.writer/blob"), 1'840'000'000);
            cache.appURL = path(QStringLiteral("Applications/Writer.app"));
            return cache;
        }();
        const CleanItem browserCache =
            homeItem(QStringLiteral("Library/Caches/org.browser/cache.db"), 624'000'000);
        const CleanItem oldLog =
            homeItem(QStringLiteral("Library/Logs/DiagnosticReports/crash.ips"), 12'400'000);
        const CleanItem trashed = homeItem(QStringLiteral(".Trash/Proyecto viejo.zip"), 2'310'000'000);
        const CleanItem derived =
            homeItem(QStringLiteral("Library/Developer/Xcode/DerivedData/App-abc/x"), 5'120'000'000);
        const CleanItem download = homeItem(QStringLiteral("Downloads/Fotos 2019.zip"), 3'400'000'000);
        const CleanItem odd =
            homeItem(QStringLiteral("Downloads/-informe \"final\" \\ v2\nbis.pdf"), 48'000'000);
        const CleanItem docker(QStringLiteral("docker-prune"), QStringLiteral("Docker"),
                               QStringLiteral("docker system prune -a"), 7'800'000'000,
                               CleanItem::Command{QStringLiteral("docker"), {QStringLiteral("system")}});
        auto runs = m_runs;
        rule(QStringLiteral("caches"), [=] {
            ++*runs;
            return QList<CleanItem>{writerCache, browserCache};
        });
        rule(QStringLiteral("logs"), [=] { return QList<CleanItem>{oldLog}; });
        rule(QStringLiteral("trash"), [=] { return QList<CleanItem>{trashed}; });
        rule(QStringLiteral("deriveddata"), [=] { return QList<CleanItem>{derived}; });
        rule(QStringLiteral("docker"), [=] { return QList<CleanItem>{docker}; });
        m_downloads = {download, odd};
        rule(QStringLiteral("olddownloads"), [=] { return QList<CleanItem>{download, odd}; });
    }

    // Holds the catalogue's last five categories back until `m_gate` is released; the ones
    // before them finish even when the pool has a single thread.
    void holdFive()
    {
        const QList<CleanCategory>& all = m_catalog->all();
        for (qsizetype i = all.size() - 5; i < all.size(); ++i) {
            const QString id = all.at(i).id;
            const QList<CleanItem> found =
                id == QLatin1String("olddownloads") ? m_downloads : QList<CleanItem>();
            rule(id, [this, found] {
                m_gate.acquire();
                return found;
            });
        }
    }

    void TearDown() override
    {
        // A held rule must not outlive a failed test: the models wait for their work.
        m_gate.release(5);
        UiWorld::TearDown();
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

    // The visible buttons of the window's open confirmation that read `text`.
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

    // The delegates called `name`, top to bottom.
    static QList<QQuickItem*> rows(QQuickWindow& window, const QString& name)
    {
        QList<QQuickItem*> found;
        for (QQuickItem* candidate : drawn(window)) {
            if (candidate->objectName() == name && candidate->isVisible())
                found.append(candidate);
        }
        std::sort(found.begin(), found.end(), [](QQuickItem* a, QQuickItem* b) {
            return a->mapToScene(QPointF()).y() < b->mapToScene(QPointF()).y();
        });
        return found;
    }

    std::shared_ptr<std::atomic<int>> m_runs;
    QList<CleanItem> m_downloads;
    std::counting_semaphore<> m_gate{0};
};

} // namespace

TEST_F(CleanViewsTest, TheFirstVisitScansOnceAndTheSummaryCountsTheZones)
{
    prepareHome();
    holdFive();
    // The window opens on the summary: neither the cleanup nor the apps list starts by itself.
    mainWindow();
    QTest::qWait(Settle);
    EXPECT_FALSE(clean().hasScanned());
    EXPECT_FALSE(state().apps()->isLoading());
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

    // Ticking a whole category from its circle, then another visit: the results stay, no new scan.
    click(named(window, QStringLiteral("categoryCheck-olddownloads")));
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::All);
    state().setSection(QStringLiteral("home"));
    QTest::qWait(Settle);
    state().setSection(QStringLiteral("clean"));
    QTest::qWait(Settle);
    EXPECT_EQ(m_runs->load(), 1);
    EXPECT_FALSE(clean().isScanning());
}

TEST_F(CleanViewsTest, CancellingTheConfirmationChangesNothingAndConfirmingCleansTheSelection)
{
    prepareHome();
    QQuickWindow& window = openPane();
    waitForScan();
    const QStringList before = clean().selectedIds();

    click(named(window, QStringLiteral("overviewClean")));
    QTest::qWait(Settle);
    snapshot(window, DefaultSize, QStringLiteral("clean-confirmation-default"));
    QQuickItem* cancel = button(window, QStringLiteral("Cancelar"));
    ASSERT_NE(cancel, nullptr);
    click(*cancel);
    QTest::qWait(Settle);
    EXPECT_FALSE(clean().isCleaning());
    EXPECT_EQ(clean().selectedIds(), before);
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/com.acme.writer/blob")));
    EXPECT_FALSE(state().hasToast());

    click(named(window, QStringLiteral("summaryClean")));
    QTest::qWait(Settle);
    QQuickItem* confirm = rows(window, QStringLiteral("confirmButton")).value(0);
    ASSERT_NE(confirm, nullptr);
    click(*confirm);
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    EXPECT_FALSE(exists(QStringLiteral("home/Library/Caches/com.acme.writer/blob")));
    EXPECT_FALSE(exists(QStringLiteral("home/.Trash/Proyecto viejo.zip")));
    // Unticked personal files and the unticked command stay where they were.
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/Fotos 2019.zip")));
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/-informe \"final\" \\ v2\nbis.pdf")));
    EXPECT_TRUE(m_commandsRun.isEmpty());
}

TEST_F(CleanViewsTest, WhileACleanRunsOnlyCancelStaysAndItWaitsForTheOpenPrompt)
{
    prepareHome();
    QQuickWindow& window = openPane();
    waitForScan();
    if (!pin(QStringLiteral("home/Library/Caches/org.browser/cache.db")))
        GTEST_SKIP() << "this file system cannot make a file undeletable";
    // The administrator prompt for the pinned file stays open until the test answers it.
    std::counting_semaphore<> answer{0};
    m_admin.handler = [&answer](const AdminRequest&) {
        answer.acquire();
        return AdminOutcome::Failed;
    };
    // Whatever happens below, the prompt is answered, so the clean can end and the test close.
    auto answered = qScopeGuard([&answer] { answer.release(); });

    click(named(window, QStringLiteral("overviewClean")));
    QTest::qWait(Settle);
    QQuickItem* confirm = rows(window, QStringLiteral("confirmButton")).value(0);
    ASSERT_NE(confirm, nullptr);
    click(*confirm);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_admin.requests().isEmpty(); }, 10000));
    QTest::qWait(Settle);
    ASSERT_TRUE(clean().isCleaning());
    for (const char* name : {"overviewClean", "rescanButton", "categoryCheck-olddownloads"})
        EXPECT_FALSE(named(window, QString::fromUtf8(name)).isEnabled()) << name;
    // "Cancelar" cannot close the password prompt: the screen says so, and the clean waits for it.
    QQuickItem& cancel = named(window, QStringLiteral("summaryClean"));
    EXPECT_EQ(text(cancel), QStringLiteral("Cancelar"));
    click(cancel);
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("summaryCancelling")).isVisible());
    EXPECT_FALSE(cancel.isEnabled());
    EXPECT_TRUE(clean().isCleaning());
    snapshot(window, DefaultSize, QStringLiteral("clean-cleaning-default"));
    click(named(window, QStringLiteral("rescanButton")));
    click(named(window, QStringLiteral("categoryCheck-olddownloads")));
    EXPECT_EQ(m_runs->load(), 1);
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::None);

    click(named(window, QStringLiteral("categoryOpen-caches")));
    QTest::qWait(Settle);
    EXPECT_FALSE(named(window, QStringLiteral("toggleAllButton")).isEnabled());

    answered.dismiss();
    answer.release();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 10000));
    QTest::qWait(Settle);
    // The refused prompt changed nothing: the file stays, selected, and the clean can be tried again.
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/org.browser/cache.db")));
    EXPECT_TRUE(named(window, QStringLiteral("detailClean")).isEnabled());
}

TEST_F(CleanViewsTest, TheDetailPageTicksItemsAndCleansOnlyItsCategoryAfterAsking)
{
    prepareHome();
    QQuickWindow& window = openPane();
    waitForScan();
    click(named(window, QStringLiteral("categoryOpen-olddownloads")));
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("categoryDetail")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("cleanOverview")).isVisible());
    EXPECT_TRUE(named(window, QStringLiteral("detailCaution")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("detailClean")).isEnabled());

    click(named(window, QStringLiteral("toggleAllButton")));
    EXPECT_EQ(clean().state(QStringLiteral("olddownloads")), CleanModel::CategoryState::All);
    const QList<QQuickItem*> checks = rows(window, QStringLiteral("itemCheck"));
    ASSERT_EQ(checks.size(), 2);
    click(*checks.at(0)); // the larger one, listed first, goes back out of the selection
    EXPECT_FALSE(clean().isSelected(m_downloads.at(0).id));
    EXPECT_TRUE(clean().isSelected(m_downloads.at(1).id));
    snapshots(window, QStringLiteral("clean-detail"));

    // The page's own button asks first too, with the same question as the overview's.
    click(named(window, QStringLiteral("detailClean")));
    QTest::qWait(Settle);
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/-informe \"final\" \\ v2\nbis.pdf")));
    QQuickItem* confirm = rows(window, QStringLiteral("confirmButton")).value(0);
    ASSERT_NE(confirm, nullptr);
    click(*confirm);
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    EXPECT_FALSE(exists(QStringLiteral("home/Downloads/-informe \"final\" \\ v2\nbis.pdf")));
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/Fotos 2019.zip")));
    // The safe categories' selection, outside this page, was left alone.
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/com.acme.writer/blob")));

    click(named(window, QStringLiteral("detailBack")));
    QTest::qWait(Settle);
    EXPECT_TRUE(clean().path().isEmpty());
    EXPECT_TRUE(named(window, QStringLiteral("cleanOverview")).isVisible());

    // The home screen's recommendations jump straight to a detail page.
    state().reveal(QStringLiteral("caches"));
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("categoryDetail")).isVisible());
    EXPECT_FALSE(named(window, QStringLiteral("detailCaution")).isVisible());
}

TEST_F(CleanViewsTest, AnEmptyMacHasNothingToCleanAndNothingToPress)
{
    QQuickWindow& window = openPane();
    waitForScan();
    EXPECT_FALSE(named(window, QStringLiteral("summaryClean")).isEnabled());
    EXPECT_FALSE(named(window, QStringLiteral("overviewClean")).isEnabled());
    EXPECT_FALSE(named(window, QStringLiteral("categoryCheck-caches")).isEnabled());
    snapshots(window, QStringLiteral("clean-empty"));

    click(named(window, QStringLiteral("categoryOpen-trash")));
    QTest::qWait(Settle);
    EXPECT_FALSE(named(window, QStringLiteral("toggleAllButton")).isEnabled());
    EXPECT_FALSE(named(window, QStringLiteral("detailClean")).isEnabled());
    snapshot(window, MinimumSize, QStringLiteral("clean-empty-detail-minimum"));
}
