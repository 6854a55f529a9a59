#include "models/apps/AppsModel.h"

#include "../support/ModelWorld.h"
#include "support/Column.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTimeZone>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>

using namespace nubo;
using namespace nubo::test;

namespace {

QStringList names(const QList<InstalledApp>& list)
{
    return test::column(list, &InstalledApp::name);
}

// Three applications: one used last week, one used long ago whose name has an
// accent, and one in the user's own folder that was never opened; the first left data in the Library.
class AppsModelTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        bundle(QStringLiteral("Applications/Writer.app"), QStringLiteral("com.acme.writer"), 300'000);
        bundle(QStringLiteral("Applications/Café Studio.app"), QStringLiteral("com.cafe.studio"), 900'000);
        bundle(QStringLiteral("home/Applications/Zeta.app"), QStringLiteral("org.zeta"), 100'000);
        file(QStringLiteral("home/Library/Preferences/com.acme.writer.plist"), 2000);
        file(QStringLiteral("home/Library/Caches/com.acme.writer/blob"), 30'000);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        m_metadata.lastUsed.insert(writer(), now.addDays(-7));
        m_metadata.lastUsed.insert(path(QStringLiteral("Applications/Café Studio.app")), now.addDays(-200));
        // Zeta was never opened: only its access date, two years old, speaks for it.
        const timespec old[2] = {{now.addDays(-730).toSecsSinceEpoch(), 0}, {now.toSecsSinceEpoch(), 0}};
        ASSERT_EQ(
            ::utimensat(AT_FDCWD,
                        QFile::encodeName(path(QStringLiteral("home/Applications/Zeta.app"))).constData(),
                        old, AT_SYMLINK_NOFOLLOW),
            0);
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    }
    void TearDown() override
    {
        ModelWorld::TearDown();
        QLocale::setDefault(QLocale::c());
    }

    AppsModel& apps() { return *state().apps(); }
    QString writer() const { return path(QStringLiteral("Applications/Writer.app")); }

    void loadAndMeasure()
    {
        apps().load();
        ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    }

    void selectWriter()
    {
        apps().select(writer());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().leftoversLoading(); }, 10000));
        ASSERT_EQ(apps().leftovers().size(), 2);
    }

    void uninstallAndWait()
    {
        apps().uninstall();
        EXPECT_TRUE(apps().isRemoving());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isRemoving(); }, 15000));
    }

    const CleanItem& leftover(const QString& suffix)
    {
        for (const CleanItem& item : apps().leftovers()) {
            if (item.id.endsWith(suffix))
                return item;
        }
        ADD_FAILURE() << "no leftover " << suffix.toStdString();
        return apps().leftovers().front();
    }
};

} // namespace

TEST_F(AppsModelTest, TheFirstVisitLoadsTheListOnceAndItsSizesFollowInTheBackground)
{
    QSignalSpy loading(&apps(), &AppsModel::isLoadingChanged);
    apps().enter();
    EXPECT_TRUE(apps().isLoading());
    EXPECT_TRUE(state().isAnalyzing());
    EXPECT_EQ(apps().headerLine(), QStringLiteral("Buscando…"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().isLoading(); }, 10000));
    EXPECT_EQ(names(apps().apps()),
              (QStringList{QStringLiteral("Café Studio"), QStringLiteral("Writer"), QStringLiteral("Zeta")}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    for (const InstalledApp& app : apps().apps())
        EXPECT_GE(app.size.value_or(0), 100'000) << app.name.toStdString();
    EXPECT_FALSE(state().isAnalyzing());

    apps().enter();
    QTest::qWait(50);
    EXPECT_EQ(loading.count(), 2) << "a later visit must not list the applications again";
    // The header counts every application, whatever the search shows.
    apps().setQuery(QStringLiteral("zet"));
    EXPECT_EQ(apps().visible().size(), 1);
    EXPECT_EQ(apps().headerLine(), QStringLiteral("3 instaladas"));
}

// What the search and each order pick is proven on arrange() below; here the model takes only
// its three orders and its visible list follows the query.
TEST_F(AppsModelTest, ThePickerTakesOnlyItsThreeOrdersAndTheListFollowsTheQuery)
{
    loadAndMeasure();
    QSignalSpy sort(&apps(), &AppsModel::sortChanged);
    apps().chooseSort(-1);
    apps().chooseSort(3);
    EXPECT_EQ(sort.count(), 0);
    apps().chooseSort(2);
    EXPECT_EQ(apps().sort(), AppsModel::Sort::LastUse);
    EXPECT_EQ(apps().sortTitle(), QStringLiteral("Ordenar por Último uso"));
    apps().setQuery(QStringLiteral("cafe"));
    EXPECT_EQ(names(apps().visible()), QStringList{QStringLiteral("Café Studio")});
    apps().setQuery(QStringLiteral("nada"));
    EXPECT_TRUE(apps().visible().isEmpty());
}

TEST_F(AppsModelTest, TheBundleLeadsTheRemovalCannotBeUntickedAndUntickingALeftoverLowersTheSize)
{
    loadAndMeasure();
    EXPECT_TRUE(apps().removalRows().isEmpty());
    selectWriter();
    const QVariantList rows = apps().removalRows();
    ASSERT_EQ(rows.size(), 3);
    const QVariantMap bundle = rows.front().toMap();
    EXPECT_EQ(bundle.value(QStringLiteral("id")).toString(), writer());
    EXPECT_EQ(bundle.value(QStringLiteral("label")).toString(), QStringLiteral("Aplicación"));
    EXPECT_TRUE(bundle.value(QStringLiteral("locked")).toBool());
    EXPECT_EQ(apps().removalItems().front().url(), writer());
    EXPECT_EQ(apps().removalItems().front().size, apps().selected()->size.value());
    for (const QVariant& row : rows.mid(1)) {
        EXPECT_FALSE(row.toMap().value(QStringLiteral("locked")).toBool());
        EXPECT_TRUE(row.toMap().value(QStringLiteral("ticked")).toBool());
    }

    const qint64 all = apps().removalSize();
    QSignalSpy removal(&apps(), &AppsModel::removalChanged);
    apps().toggle(writer());
    apps().toggle(QStringLiteral("/not/a/leftover"));
    EXPECT_EQ(removal.count(), 0);
    EXPECT_EQ(apps().removalSize(), all);

    const CleanItem cache = leftover(QStringLiteral("com.acme.writer"));
    apps().toggle(cache.id);
    EXPECT_EQ(apps().removalSize(), all - cache.size);
    EXPECT_EQ(apps().removalItems().front().id, writer());
    apps().toggle(cache.id);
    EXPECT_EQ(apps().removalSize(), all);
    EXPECT_EQ(removal.count(), 2);

    // Unticking every leftover leaves the bundle alone.
    for (const CleanItem& item : apps().leftovers())
        apps().toggle(item.id);
    EXPECT_EQ(apps().removalCount(), 1);
    EXPECT_EQ(apps().removalSize(), apps().selected()->size.value());
}

// Whether the detail's app is from the store is the core's and the view's (AppsViewsTest).
TEST_F(AppsModelTest, TheDetailFollowsWhetherTheAppRuns)
{
    loadAndMeasure();
    m_workspace.running = {{4242, QStringLiteral("Writer"), writer(), false, false, true}};
    QSignalSpy running(&apps(), &AppsModel::selectedRunningChanged);
    selectWriter();
    EXPECT_TRUE(apps().selectedRunning());
    m_workspace.running.clear();
    apps().refreshRunning();
    EXPECT_FALSE(apps().selectedRunning());
    EXPECT_EQ(running.count(), 2);

    // Choosing nothing known empties the detail and stops looking.
    apps().select(QStringLiteral("/Applications/Gone.app"));
    EXPECT_TRUE(apps().selectedApp().isEmpty());
    EXPECT_FALSE(apps().selectedRunning());
    EXPECT_TRUE(apps().removalRows().isEmpty());
}

// A copy that will not quit is still asked once and removed after the wait: an obedient copy
// takes the same path, only sooner.
TEST_F(AppsModelTest, UninstallAsksARunningCopyToQuitDeletesAndDropsTheApp)
{
    loadAndMeasure();
    m_quitObeys = false;
    m_workspace.running = {{4242, QStringLiteral("Writer"), writer(), false, false, true}};
    selectWriter();
    const CleanItem cache = leftover(QStringLiteral("com.acme.writer"));
    apps().toggle(cache.id);
    const qint64 expected = apps().removalSize();
    QSignalSpy toasts(&state(), &AppState::toastChanged);

    uninstallAndWait();

    EXPECT_EQ(m_quitRequests.load(), 1);
    EXPECT_FALSE(exists(QStringLiteral("Applications/Writer.app")));
    EXPECT_FALSE(exists(QStringLiteral("home/Library/Preferences/com.acme.writer.plist")));
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/com.acme.writer/blob")));
    EXPECT_EQ(toasts.count(), 1);
    EXPECT_EQ(state().toast()->freed, expected);
    EXPECT_EQ(state().toast()->failures, 0);
    EXPECT_EQ(names(apps().apps()), (QStringList{QStringLiteral("Café Studio"), QStringLiteral("Zeta")}));
    EXPECT_TRUE(apps().selection().isEmpty());
    EXPECT_TRUE(apps().leftovers().isEmpty());
    EXPECT_TRUE(apps().excluded().isEmpty());
}

TEST_F(AppsModelTest, AnAppWhoseBundleCannotBeDeletedStaysListed)
{
    loadAndMeasure();
    selectWriter();
    if (!pin(QStringLiteral("Applications/Writer.app/Contents/MacOS/binary")))
        GTEST_SKIP() << "this file system cannot make a file undeletable";
    m_admin.outcome = AdminOutcome::Failed;
    uninstallAndWait();
    EXPECT_EQ(m_quitRequests.load(), 0); // it was not running
    EXPECT_TRUE(exists(QStringLiteral("Applications/Writer.app")));
    EXPECT_EQ(state().toast()->failures, 1);
    EXPECT_EQ(apps().apps().size(), 3);
    EXPECT_EQ(apps().selection(), writer());
}

TEST(AppsOrder, AnUnknownLastUseIsTheDistantPastAndSystemAppsAreNeverUnused)
{
    const QDateTime now = QDateTime::fromSecsSinceEpoch(2000000000, QTimeZone::utc());
    const auto app = [](const char* url, std::optional<QDateTime> used, qint64 size) {
        InstalledApp made;
        made.url = QString::fromUtf8(url);
        made.name = made.url.section(QLatin1Char('/'), -1).chopped(4);
        made.lastUsed = std::move(used);
        made.size = size;
        return made;
    };
    const QList<InstalledApp> list{
        app("/Applications/Alpha.app", std::nullopt, 10),
        app("/System/Applications/Beta.app", std::nullopt, 30),
        app("/Applications/Gamma.app", now.addSecs(-AppsModel::unusedAfterSeconds), 30),
        app("/Applications/Delta.app", now.addSecs(-AppsModel::unusedAfterSeconds - 1), 20),
    };
    const auto joined = [](const QList<InstalledApp>& apps) { return names(apps).join(u' '); };
    EXPECT_EQ(joined(AppsModel::arrange(list, {}, AppsModel::Sort::LastUse)), QStringLiteral("Gamma Delta Alpha Beta"));
    // Equal sizes keep the name order they came in.
    EXPECT_EQ(joined(AppsModel::arrange(list, {}, AppsModel::Sort::Size)), QStringLiteral("Beta Gamma Delta Alpha"));
    EXPECT_EQ(joined(AppsModel::arrange(list, QStringLiteral("ALP"), AppsModel::Sort::Name)), QStringLiteral("Alpha"));
    // Exactly 90 days is not yet unused; a second more is.
    EXPECT_EQ(joined(AppsModel::unusedOf(list, now)), QStringLiteral("Alpha Delta"));
}
