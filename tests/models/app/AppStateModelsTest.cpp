#include "../support/ModelWorld.h"
#include "core/format/Bytes.h"
#include "models/app/Backends.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTest>
#include <limits>
#include <tuple>

using namespace nubo;
using namespace nubo::test;
using namespace Qt::StringLiterals;

namespace {

class AppStateModelsTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        bundle(QStringLiteral("Applications/Writer.app"), QStringLiteral("com.acme.writer"), 10'000);
    }

    void waitForAnalysis()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !state().isAnalyzing(); }, 10000));
    }
};

} // namespace

TEST_F(AppStateModelsTest, AnalysingEmptiesAndReloadsTheAppsUnlessTheyAreLoading)
{
    state().analyze();
    EXPECT_EQ(std::tuple(state().isAnalyzing(), state().clean()->hasScanned(), state().map()->isScanning()),
              std::tuple(true, true, false));
    waitForAnalysis();
    ASSERT_EQ(state().apps()->count(), 1);

    // Not loading: the list empties at once and comes back.
    state().analyze();
    EXPECT_EQ(state().apps()->count(), 0);
    waitForAnalysis();
    EXPECT_EQ(state().apps()->count(), 1);

    // Loading: only the cleanup scan starts; the list being loaded is left alone.
    state().apps()->load();
    ASSERT_TRUE(state().apps()->isLoading());
    QSignalSpy cleanScans(state().clean(), &CleanModel::isScanningChanged);
    state().analyze();
    EXPECT_EQ(state().apps()->count(), 1);
    EXPECT_EQ(cleanScans.count(), 1);
    waitForAnalysis();
    EXPECT_EQ(state().apps()->count(), 1);
}

TEST_F(AppStateModelsTest, ASafeSizeThatWouldOverflowStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const QStringList safe = categoriesSelectedByDefault(true);
    for (const QString& id : {safe.at(0), safe.at(1)}) {
        rule(id, [id] {
            return QList<CleanItem>{
                CleanItem(id, id, QString(), std::numeric_limits<qint64>::max(), CleanItem::Remove{u"/nowhere/"_s + id})};
        });
    }
    EXPECT_DEATH(
        {
            state().clean()->scan();
            (void)QTest::qWaitFor([this] { return !state().clean()->isScanning(); }, 10000);
            (void)state().safeSize();
        },
        "overflow");
}

// The whole program over the prepared home: the real backends with the catalogue's own rules (fakes
// only for the prompt, the workspace and the dates), analyse, clean what is safe, and look at the disk.
TEST_F(AppStateModelsTest, ASafeCleanThroughTheRealBackendsFreesExactlyTheSafeCategories)
{
    file(u"home/Library/Caches/com.a/blob"_s, 40'000);
    file(u"home/Library/Caches/com.b/blob"_s, 9'000);
    file(u"home/Library/Logs/a.log"_s, 7'000);
    file(u"home/Downloads/setup.dmg"_s, 50'000);
    file(u"home/Documents/thesis.txt"_s, 3'000);
    Backends::Overrides overrides;
    overrides.admin = std::make_unique<FakeAdminRunner>();
    overrides.workspace = std::make_unique<FakeWorkspace>();
    overrides.metadata = std::make_unique<FakeMetadata>();
    overrides.safety = SafetyRules::forMac();
    const auto backends = std::make_shared<Backends>(m_roots, m_privacy, std::move(overrides));
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    {
        AppState state({m_privacy, m_volume, std::chrono::seconds(4), backends->services()});
        state.analyze();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !state.isAnalyzing(); }, 10000));
        ASSERT_EQ(state.apps()->count(), 1);
        const qint64 safe = state.safeSize();
        EXPECT_EQ(safe, state.clean()->size(u"caches"_s) + state.clean()->size(u"logs"_s));
        EXPECT_GE(safe, 56'000);
        EXPECT_EQ(state.clean()->totalSelected(), safe); // downloads start unselected
        state.clean()->clean(state.safeCategories());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !state.clean()->isCleaning(); }, 10000));
        EXPECT_EQ(std::tuple(state.toastHeadline(), state.toastDetail(), state.totalFreedThisSession(), state.safeSize()),
                  std::tuple(Bytes::string(safe) + u" liberados"_s, QString(), safe, qint64(0)));
    }
    QLocale::setDefault(QLocale::c());
    for (const char* gone : {"home/Library/Caches/com.a", "home/Library/Caches/com.b", "home/Library/Logs/a.log"})
        EXPECT_FALSE(exists(QString::fromUtf8(gone))) << gone;
    for (const char* kept : {"home/Library/Caches", "home/Library/Logs", "home/Downloads/setup.dmg",
                             "home/Documents/thesis.txt", "Applications/Writer.app/Contents/MacOS/binary"})
        EXPECT_TRUE(exists(QString::fromUtf8(kept))) << kept;
}
