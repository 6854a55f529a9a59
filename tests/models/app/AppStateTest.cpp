#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "models/app/Pane.h"
#include "models/app/PaneListModel.h"
#include "platform/fake/FakeVolumeCapacity.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>
#include <QUuid>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <tuple>

using namespace nubo;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

TEST(Panes, TheSidebarListsEveryPaneOnceAndEachIdLeadsBackToItsPane)
{
    PaneListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_EQ(model.rowCount(), int(Panes::all.size()));
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString id = model.index(row).data(int(PaneListModel::Role::Id)).toString();
        EXPECT_EQ(Panes::fromId(id), Panes::all[size_t(row)]) << id.toStdString();
    }
    EXPECT_EQ(Panes::fromId(u"Home"_s), std::nullopt); // ids are exact
}

namespace {

// The state over a scriptable access probe and volume; the toast stays `toastMs` milliseconds.
class AppStateTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        m_volume.answer = {1'000'000'000'000, 250'000'000'000, 200'000'000'000};
    }
    void TearDown() override { QLocale::setDefault(QLocale::c()); }

    std::unique_ptr<AppState> make(std::chrono::milliseconds toast = 4s)
    {
        return std::make_unique<AppState>(AppState::Services{m_privacy, m_volume, toast});
    }

    std::atomic<bool> m_granted = false;
    std::atomic<int> m_probes = 0;
    Privacy m_privacy{QStringLiteral("/Users/x"), [this] {
                          ++m_probes;
                          return m_granted.load();
                      }};
    FakeVolumeCapacity m_volume;
};

} // namespace

TEST_F(AppStateTest, StartsOnHomeWithFreshFiguresAndGuidanceOnlyWithoutAccess)
{
    auto state = make();
    // The important-usage figure wins over the plain free space.
    EXPECT_EQ(std::tuple(state->pane(), state->diskAvailable(), state->diskTone(), state->showPermissions()),
              std::tuple(Pane::Home, 250'000'000'000, u"warning"_s, true));
    EXPECT_EQ(m_probes, 1);
    // The section notifies only on a real change.
    QSignalSpy changed(state.get(), &AppState::sectionChanged);
    state->setSection(u"home"_s);
    state->setSection(u"nowhere"_s);
    EXPECT_EQ(changed.count(), 0);
    state->setSection(u"performance"_s);
    EXPECT_EQ(std::tuple(changed.count(), state->pane()), std::tuple(1, Pane::Performance));
    m_granted = true;
    EXPECT_FALSE(make()->showPermissions());
}

// A grant seen on refresh closes the guidance with one notice; nothing notifies while nothing
// changed; losing access does not bring the guidance back, and a guidance shown again while access
// is known closes at the poll's next look. The sheet's buttons and its polling: WindowShellTest.
TEST_F(AppStateTest, AGrantSeenOnRefreshOrByTheGuidancesPollClosesItButNothingReopensIt)
{
    auto state = make();
    QSignalSpy sheet(state.get(), &AppState::showPermissionsChanged);
    QSignalSpy access(state.get(), &AppState::hasFullDiskAccessChanged);
    QSignalSpy disk(state.get(), &AppState::diskChanged);
    const int before = m_probes;
    state->refreshDisk();
    state->pollPermissions();
    EXPECT_EQ(std::tuple(m_probes - before, sheet.count() + access.count() + disk.count(), state->showPermissions()),
              std::tuple(2, 0, true));

    m_granted = true;
    m_volume.answer.importantUsage = 300'000'000'000;
    state->refreshDisk();
    EXPECT_EQ(std::tuple(state->hasFullDiskAccess(), state->showPermissions(), state->diskAvailable(), sheet.count(),
                         disk.count()),
              std::tuple(true, false, 300'000'000'000, 1, 1));
    m_granted = false;
    state->refreshDisk();
    EXPECT_EQ(std::tuple(state->hasFullDiskAccess(), state->showPermissions()), std::tuple(false, false));

    m_granted = true;
    state->refreshDisk();
    state->setShowPermissions(true);
    state->pollPermissions();
    EXPECT_FALSE(state->showPermissions());
}

TEST_F(AppStateTest, AReportAddsUpRefreshesAndShowsItsToast)
{
    auto state = make();
    const int probesBefore = m_probes;
    state->report(5'000'000'000, 2);
    EXPECT_EQ(m_probes, probesBefore + 1);
    ASSERT_TRUE(state->hasToast());
    EXPECT_EQ(std::tuple(state->toastDetail(), state->toastHasFailures()),
              std::tuple(u"2 elementos no se pudieron borrar"_s, true));
    // The day's line is the session's total; the toast tells only the last batch.
    state->report(0, 0);
    EXPECT_EQ(std::tuple(state->totalFreedThisSession(), state->freedTodayLine(), state->toastHeadline(),
                         state->toastHasFailures()),
              std::tuple(5'000'000'000, u"Liberado hoy: 5 GB"_s, u"Nada que liberar"_s, false));
}

TEST_F(AppStateTest, ANewerToastOutlivesTheOldersTimerAndADismissedOneStaysDismissed)
{
    auto state = make(300ms);
    state->report(1'000, 0);
    const QUuid first = state->toast()->id;
    QTest::qWait(150);
    state->report(1'000, 0); // same figures, still a new toast
    ASSERT_TRUE(state->hasToast());
    const QUuid second = state->toast()->id;
    EXPECT_NE(first, second);

    // The first toast's timer comes due ~150 ms from now and must leave the second alone.
    QTest::qWait(220);
    ASSERT_TRUE(state->hasToast());
    EXPECT_EQ(state->toast()->id, second);
    QSignalSpy changed(state.get(), &AppState::toastChanged);
    ASSERT_TRUE(changed.wait(2'000)); // the second toast's own timer
    EXPECT_FALSE(state->hasToast());

    state->report(1, 0);
    state->dismissToast();
    EXPECT_FALSE(state->hasToast());
    changed.clear();
    QTest::qWait(450); // past its timer: nothing comes back
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(AppStateTest, AFreedTotalThatWouldOverflowStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            auto state = make();
            state->report(std::numeric_limits<qint64>::max(), 0);
            state->report(1, 0);
        },
        "overflow");
}
