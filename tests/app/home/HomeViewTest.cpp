#include "app/support/UiWorld.h"
#include "support/Eventually.h"

#include <QGuiApplication>
#include <QPalette>
#include <QQuickItem>
#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {

// The home screen in the main window over a prepared machine: a safe category with real cache
// folders (one with an awkward name), three categories worth reviewing, one just under the line,
// and five applications nobody opened.
class HomeViewTest : public UiWorld
{
protected:
    void SetUp() override
    {
        UiWorld::SetUp();
        m_volume.answer = {994'662'584'320, 181'253'627'904, 170'000'000'000};
        const QStringList safe = categoriesSelectedByDefault(true);
        const QStringList review = categoriesSelectedByDefault(false);
        const QString home = m_roots.home;
        file(QStringLiteral("home/Library/Caches/com.acme.editor/cache.db"), 4096);
        file(QStringLiteral("home/Library/Caches/-odd \"name\"/x"), 4096);
        file(QStringLiteral("home/Library/Logs/old.log"), 4096);
        rule(safe.at(0), [home] {
            return QList<CleanItem>{
                CleanItem::atPath(home + QStringLiteral("/Library/Caches/com.acme.editor"), home, std::nullopt,
                                  1'900'000'000),
                CleanItem::atPath(home + QStringLiteral("/Library/Caches/-odd \"name\""), home, std::nullopt,
                                  300'000'000)};
        });
        rule(safe.at(1), [home] {
            return QList<CleanItem>{CleanItem::atPath(home + QStringLiteral("/Library/Logs/old.log"), home,
                                                      std::nullopt, 120'000'000)};
        });
        const auto claimed = [home](const QString& name, qint64 size) {
            return CleanCategory::Scan([home, name, size] {
                return QList<CleanItem>{CleanItem(home + QLatin1Char('/') + name, name, QStringLiteral("~/") + name,
                                                  size, CleanItem::Remove{home + QLatin1Char('/') + name})};
            });
        };
        rule(review.at(0), claimed(QStringLiteral("Downloads/installer.dmg"), 6'400'000'000));
        rule(review.at(1), claimed(QStringLiteral("Projects/node_modules"), 52'428'800));
        rule(review.at(2), claimed(QStringLiteral("Movies/clip.mov"), 52'428'799));
        for (const char* name : {"Pixelmator", "Keynote", "GarageBand", "iMovie", "Tetris"}) {
            const QString relative = QStringLiteral("Applications/%1.app").arg(QString::fromUtf8(name));
            bundle(relative, QStringLiteral("com.acme.") + QString::fromUtf8(name), 2'000'000);
            m_metadata.lastUsed.insert(path(relative), QDateTime::currentDateTimeUtc().addDays(-200));
        }
    }

    void analyseFromTheScreen(QQuickWindow& window)
    {
        click(named(window, QStringLiteral("analyzeButton")));
        EXPECT_TRUE(state().clean()->hasScanned());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !state().isAnalyzing() && state().apps()->sizesLoaded(); },
                                    10000));
    }
};

} // namespace

// One pass through the screen: before and after an analysis, the one-click safe clean, and a
// recommendation's button going where it says.
TEST_F(HomeViewTest, WalkThroughTheScreen)
{
    QQuickWindow& window = mainWindow();
    QQuickItem& again = named(window, QStringLiteral("analyzeAgain"));
    QQuickItem& clean = named(window, QStringLiteral("safeCleanButton"));
    EXPECT_FALSE(again.isEnabled()) << "nothing to analyse again before the first analysis";
    EXPECT_FALSE(clean.isEnabled());
    EXPECT_TRUE(named(window, QStringLiteral("introduction")).isVisible());
    snapshots(window, QStringLiteral("home-before"));
    analyseFromTheScreen(window);
    EXPECT_TRUE(again.isEnabled() && clean.isEnabled());
    EXPECT_FALSE(named(window, QStringLiteral("introduction")).isVisible());
    snapshots(window, QStringLiteral("home-after"));

    // The button names exactly what one click cleans: an item unticked on the cleanup pane is
    // neither counted nor deleted.
    state().clean()->toggleItem(home(QStringLiteral("Library/Caches/-odd \"name\"")));
    EXPECT_EQ(text(clean), QStringLiteral("Limpiar 2,02 GB"));
    click(clean);
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().hasToast(); }, 10000));
    for (const char* gone : {"home/Library/Caches/com.acme.editor", "home/Library/Logs/old.log"})
        EXPECT_FALSE(exists(QString::fromUtf8(gone))) << gone;
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches/-odd \"name\"/x")));
    snapshots(window, QStringLiteral("home-cleaned"));

    // A recommendation's row is drawn from the summary and its button goes where it says.
    click(named(window, QStringLiteral("action:unused")));
    EXPECT_EQ(state().section(), QStringLiteral("apps"));
}

TEST_F(HomeViewTest, WithNothingToRecommendTheScreenSaysSo)
{
    m_volume.answer = {1'000'000'000'000, 600'000'000'000, 600'000'000'000};
    for (const QString& id : categoriesSelectedByDefault(false))
        rule(id, {});
    QQuickWindow& window = mainWindow();
    analyseFromTheScreen(window);
    state().map()->scanHome();
    ASSERT_TRUE(QTest::qWaitFor([this] { return state().map()->hasTree(); }, 10000));
    state().apps()->clear();
    QTest::qWait(Settle);
    EXPECT_TRUE(named(window, QStringLiteral("nothingToReview")).isVisible());
}

TEST_F(HomeViewTest, FollowsADarkSystemAppearance)
{
    const QPalette light = QGuiApplication::palette();
    QGuiApplication::setPalette(darkPalette());
    QQuickWindow& window = mainWindow();
    analyseFromTheScreen(window);
    const QImage image = snapshot(window, DefaultSize, QStringLiteral("home-dark-default"));
    // The detail's background is the dark window colour, not the light one.
    EXPECT_LT(qGray(image.pixel(image.width() - 20, image.height() - 20)), 64);
    QGuiApplication::setPalette(light);
}
