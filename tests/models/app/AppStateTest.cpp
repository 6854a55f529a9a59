#include "core/privacy/Privacy.h"
#include "models/app/AppState.h"
#include "models/app/Pane.h"
#include "models/app/PaneListModel.h"
#include "platform/fake/FakeVolumeCapacity.h"
#include "platform/fake/FakeWorkspace.h"

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

using namespace nubo;
using namespace std::chrono_literals;

TEST(Panes, TheSidebarListsEveryPaneOnceAndEachIdLeadsBackToItsPane)
{
    PaneListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    ASSERT_EQ(model.rowCount(), int(Panes::all.size()));
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString id = model.index(row).data(int(PaneListModel::Role::Id)).toString();
        EXPECT_EQ(Panes::fromId(id), Panes::all[size_t(row)]) << id.toStdString();
    }
    EXPECT_EQ(Panes::fromId(QStringLiteral("Home")), std::nullopt); // ids are exact
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
    EXPECT_EQ(state->pane(), Pane::Home);
    EXPECT_EQ(state->diskAvailable(), 250'000'000'000); // the important-usage figure wins
    EXPECT_EQ(state->diskTone(), QStringLiteral("warning"));
    EXPECT_TRUE(state->showPermissions());
    EXPECT_EQ(m_probes, 1);

    // The section notifies only on a real change.
    QSignalSpy changed(state.get(), &AppState::sectionChanged);
    state->setSection(QStringLiteral("home"));
    state->setSection(QStringLiteral("nowhere"));
    EXPECT_EQ(changed.count(), 0);
    state->setSection(QStringLiteral("performance"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(state->pane(), Pane::Performance);

    m_granted = true;
    EXPECT_FALSE(make()->showPermissions());
}

TEST_F(AppStateTest, AGrantSeenOnRefreshClosesTheGuidanceButNeverReopensIt)
{
    auto state = make();
    QSignalSpy sheet(state.get(), &AppState::showPermissionsChanged);
    QSignalSpy access(state.get(), &AppState::hasFullDiskAccessChanged);
    QSignalSpy disk(state.get(), &AppState::diskChanged);
    state->refreshDisk(); // nothing changed: nothing notifies
    EXPECT_EQ(sheet.count() + access.count() + disk.count(), 0);

    m_granted = true;
    m_volume.answer.importantUsage = 300'000'000'000;
    state->refreshDisk();
    EXPECT_TRUE(state->hasFullDiskAccess());
    EXPECT_FALSE(state->showPermissions());
    EXPECT_EQ(sheet.count(), 1);
    EXPECT_EQ(disk.count(), 1);
    EXPECT_EQ(state->diskAvailable(), 300'000'000'000);

    // Losing access is recorded, but the guidance does not come back by itself.
    m_granted = false;
    state->refreshDisk();
    EXPECT_FALSE(state->hasFullDiskAccess());
    EXPECT_FALSE(state->showPermissions());
}

TEST_F(AppStateTest, TheGuidancesPollClosesItOnceAccessIsThereAndOpensTheSettingsPage)
{
    FakeWorkspace workspace;
    AppState state({m_privacy, m_volume, 4s, nullptr, &workspace, 50ms});
    EXPECT_EQ(state.permissionPollInterval(), 50);
    ASSERT_TRUE(state.showPermissions());

    state.openFullDiskAccessSettings();
    EXPECT_EQ(workspace.openedUrls.size(), 1);
    EXPECT_TRUE(state.showPermissions()); // opening the settings leaves the guidance up

    const int before = m_probes;
    state.pollPermissions(); // still no access: the guidance stays
    EXPECT_EQ(m_probes, before + 1);
    EXPECT_TRUE(state.showPermissions());

    m_granted = true;
    state.pollPermissions();
    EXPECT_FALSE(state.showPermissions());
    EXPECT_TRUE(state.hasFullDiskAccess());

    // Shown again by a screen while access is already there, the next look closes it too.
    state.setShowPermissions(true);
    state.pollPermissions();
    EXPECT_FALSE(state.showPermissions());
}

TEST_F(AppStateTest, AReportAddsUpRefreshesAndShowsItsToast)
{
    auto state = make();
    const int probesBefore = m_probes;
    state->report(5'000'000'000, 2);
    EXPECT_EQ(state->totalFreedThisSession(), 5'000'000'000);
    EXPECT_EQ(state->freedTodayLine(), QStringLiteral("Liberado hoy: 5 GB"));
    EXPECT_EQ(m_probes, probesBefore + 1);
    ASSERT_TRUE(state->hasToast());
    EXPECT_EQ(state->toastDetail(), QStringLiteral("2 elementos no se pudieron borrar"));
    EXPECT_TRUE(state->toastHasFailures());

    state->report(0, 0);
    EXPECT_EQ(state->totalFreedThisSession(), 5'000'000'000);
    EXPECT_EQ(state->toastHeadline(), QStringLiteral("Nada que liberar"));
    EXPECT_FALSE(state->toastHasFailures());
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
