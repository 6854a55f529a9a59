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

#include <atomic>
#include <limits>

using namespace nubo;
using namespace std::chrono_literals;

TEST(Panes, SidebarOrderIdsTitlesAndSymbols)
{
    PaneListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const char* expected[][3] = {
        {"home", "Resumen", "sparkles"},
        {"map", "Mapa", "circle.hexagongrid.fill"},
        {"clean", "Limpieza", "bubbles.and.sparkles.fill"},
        {"apps", "Apps", "square.stack.3d.up.fill"},
        {"activity", "Actividad", "gauge.with.dots.needle.67percent"},
        {"performance", "Rendimiento", "speedometer"},
    };
    ASSERT_EQ(model.rowCount(), 6);
    for (int row = 0; row < 6; ++row) {
        const QModelIndex index = model.index(row);
        EXPECT_EQ(index.data(int(PaneListModel::Role::Id)).toString(), QString::fromUtf8(expected[row][0]));
        EXPECT_EQ(index.data(int(PaneListModel::Role::Title)).toString(), QString::fromUtf8(expected[row][1]));
        EXPECT_EQ(index.data(int(PaneListModel::Role::Symbol)).toString(), QString::fromUtf8(expected[row][2]));
        EXPECT_EQ(Panes::fromId(QString::fromUtf8(expected[row][0])), Panes::all[size_t(row)]);
    }
    EXPECT_EQ(model.rowCount(model.index(0)), 0);
    EXPECT_EQ(Panes::fromId(QStringLiteral("Home")), std::nullopt);
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
    EXPECT_EQ(state->diskTotal(), 1'000'000'000'000);
    EXPECT_EQ(state->diskAvailable(), 250'000'000'000); // the important-usage figure wins
    EXPECT_EQ(state->diskLine(), QStringLiteral("250 GB disponibles de 1 TB"));
    EXPECT_EQ(state->diskTone(), QStringLiteral("warning"));
    EXPECT_EQ(state->freedTodayLine(), QString());
    EXPECT_FALSE(state->hasFullDiskAccess());
    EXPECT_TRUE(state->showPermissions());
    EXPECT_FALSE(state->hasToast());
    EXPECT_EQ(state->totalFreedThisSession(), 0);
    EXPECT_EQ(m_probes, 1);
    // Built over the real backends, the state owns all five feature models.
    EXPECT_NE(state->map(), nullptr);
    EXPECT_NE(state->activity(), nullptr);
    EXPECT_NE(state->performance(), nullptr);

    m_granted = true;
    auto granted = make();
    EXPECT_TRUE(granted->hasFullDiskAccess());
    EXPECT_FALSE(granted->showPermissions());
}

TEST_F(AppStateTest, SectionNotifiesOnlyOnARealChange)
{
    auto state = make();
    QSignalSpy changed(state.get(), &AppState::sectionChanged);
    state->setSection(QStringLiteral("home"));
    state->setSection(QStringLiteral("nowhere"));
    EXPECT_EQ(changed.count(), 0);
    state->setSection(QStringLiteral("performance"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(state->sectionTitle(), QStringLiteral("Rendimiento"));
    EXPECT_EQ(state->sectionSymbol(), QStringLiteral("speedometer"));
}

TEST_F(AppStateTest, AGrantSeenOnRefreshClosesTheGuidance)
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

TEST_F(AppStateTest, AGrantWhileTheGuidanceIsClosedOpensNothing)
{
    auto state = make();
    state->setShowPermissions(false); // "Ahora no"
    EXPECT_FALSE(state->hasFullDiskAccess());
    m_granted = true;
    state->refreshDisk();
    EXPECT_TRUE(state->hasFullDiskAccess());
    EXPECT_FALSE(state->showPermissions());
}

TEST_F(AppStateTest, TheGuidancesPollClosesItOnceAccessIsThereAndOpensTheSettingsPage)
{
    FakeWorkspace workspace;
    AppState state({m_privacy, m_volume, 4s, nullptr, &workspace, 50ms});
    EXPECT_EQ(state.permissionPollInterval(), 50);
    ASSERT_TRUE(state.showPermissions());

    state.openFullDiskAccessSettings();
    EXPECT_EQ(workspace.openedUrls,
              QStringList{QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles")});
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
    EXPECT_EQ(state->toastHeadline(), QStringLiteral("5 GB liberados"));
    EXPECT_EQ(state->toastDetail(), QStringLiteral("2 elementos no se pudieron borrar"));
    EXPECT_EQ(state->toastSymbol(), QStringLiteral("exclamationmark.triangle.fill"));
    EXPECT_TRUE(state->toastHasFailures());

    state->report(0, 0);
    EXPECT_EQ(state->totalFreedThisSession(), 5'000'000'000);
    EXPECT_EQ(state->toastHeadline(), QStringLiteral("Nada que liberar"));
    EXPECT_EQ(state->toastDetail(), QString());
    EXPECT_EQ(state->toastSymbol(), QStringLiteral("checkmark.circle.fill"));
}

TEST_F(AppStateTest, ANewerToastReplacesTheOlderAndOutlivesItsTimer)
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
}

TEST_F(AppStateTest, ADismissedToastStaysDismissed)
{
    auto state = make(100ms);
    state->report(1, 0);
    state->dismissToast();
    EXPECT_FALSE(state->hasToast());
    QSignalSpy changed(state.get(), &AppState::toastChanged);
    QTest::qWait(250);
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
