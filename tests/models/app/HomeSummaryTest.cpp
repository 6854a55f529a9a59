#include "../support/ModelWorld.h"
#include "models/home/HomeSummary.h"
#include "support/Column.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <array>
#include <tuple>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

// The home screen's summary over the whole temporary machine: real cleanup and apps models, a
// safe category finding real cache files and a category to review finding a large folder.
class HomeSummaryTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        m_safe = categoriesSelectedByDefault(true).first();
        m_review = categoriesSelectedByDefault(false).first();
        file(QStringLiteral("home/Library/Caches/com.acme/blob"), 4096);
        file(QStringLiteral("home/Library/Caches/odd \"name\"\\-x/blob"), 4096);
        file(QStringLiteral("home/Projects/old/data"), 4096);
        const QString home = m_roots.home;
        rule(m_safe, [home] {
            return QList<CleanItem>{
                CleanItem::atPath(home + QStringLiteral("/Library/Caches/com.acme"), home),
                CleanItem::atPath(home + QStringLiteral("/Library/Caches/odd \"name\"\\-x"), home)};
        });
        // Claimed at discovery just above the line the summary draws.
        rule(m_review, [home] {
            return QList<CleanItem>{CleanItem::atPath(home + QStringLiteral("/Projects/old"), home, std::nullopt,
                                                      52'428'800)};
        });
        m_summary.setAppState(&state());
    }
    void TearDown() override
    {
        m_summary.setAppState(nullptr);
        QLocale::setDefault(QLocale::c());
        ModelWorld::TearDown();
    }

    [[nodiscard]] QStringList recommendationIds() const
    {
        return test::column(m_summary.recommendations(), &Recommendation::id);
    }

    QString m_safe;
    QString m_review;
    HomeSummary m_summary;
};

} // namespace

TEST_F(HomeSummaryTest, AnAnalysisFillsTheSafeRowAndTheRecommendationsAndTheSafeCleanTakesOnlyThatRow)
{
    // Before the first analysis: only the map is suggested, and there is nothing to clean.
    EXPECT_EQ(std::tuple(m_summary.canAnalyzeAgain(), m_summary.canCleanSafe()), std::tuple(false, false));
    EXPECT_EQ(recommendationIds(), QStringList{u"map"_s});
    EXPECT_EQ(m_summary.diskPercent(), 75);

    QSignalSpy changed(&m_summary, &HomeSummary::changed);
    m_summary.analyze();
    EXPECT_TRUE(m_summary.hasScanned());
    EXPECT_FALSE(m_summary.canAnalyzeAgain()); // not while it runs
    ASSERT_TRUE(QTest::qWaitFor([this] { return !state().isAnalyzing(); }, 10000));
    EXPECT_GT(changed.count(), 2);
    EXPECT_EQ(std::tuple(m_summary.canAnalyzeAgain(), m_summary.safeCount()), std::tuple(true, 2));
    // The category to review is listed, with the size claimed at discovery; the safe one is left
    // to the safe row.
    EXPECT_EQ(recommendationIds(), (QStringList{u"category:"_s + m_review, u"map"_s}));
    EXPECT_EQ(m_summary.recommendations().first().size, 52'428'800);

    // The safe clean takes the safe selection, odd names included, and nothing to review.
    m_summary.cleanSafe();
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    EXPECT_EQ((std::array{exists(u"home/Library/Caches/com.acme"_s), exists(u"home/Library/Caches/odd \"name\"\\-x"_s),
                          exists(u"home/Projects/old/data"_s)}),
              (std::array{false, false, true}));
    EXPECT_EQ(std::tuple(m_summary.safeCount(), m_summary.canCleanSafe()), std::tuple(0, false));
    // Nothing safe left: a second press deletes nothing and reports nothing.
    QSignalSpy toasts(&state(), &AppState::toastChanged);
    m_summary.cleanSafe();
    QTest::qWait(50);
    EXPECT_EQ(toasts.count(), 0);
}

// Each button goes where it says: the unused apps sorted by last use, the category on the cleanup
// pane, the map; an unknown id does nothing, and the map's row goes once there is a tree.
TEST_F(HomeSummaryTest, RecommendationButtonsGoWhereTheySayAndTheMapOneGoesOnceThereIsATree)
{
    // Five applications last opened a year ago, as the system's records say.
    for (const char* name : {"Alfa", "Beta", "Gamma", "Delta", "Eco"}) {
        const QString relative = u"Applications/%1.app"_s.arg(QString::fromUtf8(name));
        bundle(relative, u"com.acme."_s + QString::fromUtf8(name), 1000);
        m_metadata.lastUsed.insert(path(relative), QDateTime::currentDateTimeUtc().addDays(-365));
    }
    m_summary.analyze();
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return !state().isAnalyzing() && state().apps()->sizesLoaded(); }, 10000));
    const QList<Recommendation> rows = m_summary.recommendations();
    const auto unused = std::ranges::find(rows, u"unused"_s, &Recommendation::id);
    ASSERT_NE(unused, rows.end());
    EXPECT_EQ(unused->title, u"5 apps sin usar"_s);
    EXPECT_GT(unused->size, 0);
    m_summary.perform(u"unused"_s);
    EXPECT_EQ(std::tuple(state().pane(), state().apps()->sort()), std::tuple(Pane::Apps, AppsModel::Sort::LastUse));
    m_summary.perform(u"category:"_s + m_review);
    EXPECT_EQ(std::tuple(state().pane(), state().clean()->path()), std::tuple(Pane::Clean, QStringList{m_review}));
    state().setPane(Pane::Home);
    m_summary.perform(u"no such thing"_s);
    EXPECT_EQ(state().pane(), Pane::Home);
    m_summary.perform(u"map"_s);
    EXPECT_EQ(state().pane(), Pane::Map);
    state().map()->scanHome();
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().map()->hasTree(); }, 10000));
    EXPECT_FALSE(recommendationIds().contains(u"map"_s));
}
