#include "../support/ModelWorld.h"
#include "core/format/Bytes.h"
#include "models/app/Backends.h"
#include "support/DesktopHome.h"

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

// The whole program over a prepared Mac home and a prepared Linux home: the real backends with
// the catalogue's own rules for that system (fakes only for the prompt, the workspace and the
// dates), analyse, clean what is safe and the trash, and look at the disk. The Linux system's
// shared folders are the test's own, so nothing of this machine's is ever offered.
TEST_F(AppStateModelsTest, ASafeCleanThroughTheRealBackendsFreesExactlyTheSafeCategories)
{
    SafetyRules linux = SafetyRules::forLinux();
    linux.sharedTemporaries = {path(u"tmp"_s)};
    linux.crashReports = path(u"crash"_s);
    const struct
    {
        SafetyRules rules;
        std::initializer_list<std::pair<const char*, int>> files;
        std::initializer_list<const char*> gone, kept;
    } systems[] = {
        {SafetyRules::forMac(),
         {{"home/Library/Caches/com.a/blob", 40'000}, {"home/Library/Caches/com.b/blob", 9'000},
          {"home/Library/Logs/a.log", 7'000}, {"home/.Trash/old.txt", 5'000}, {"home/Downloads/setup.dmg", 50'000},
          {"home/Documents/thesis.txt", 3'000}},
         {"home/Library/Caches/com.a", "home/Library/Caches/com.b", "home/Library/Logs/a.log", "home/.Trash/old.txt"},
         {"home/Library/Caches", "home/Library/Logs", "home/.Trash", "home/Downloads/setup.dmg",
          "home/Documents/thesis.txt", "Applications/Writer.app/Contents/MacOS/binary"}},
        {linux,
         {{"home/.cache/com.a/blob", 40'000}, {"home/.cache/com.b/blob", 9'000}, {"home/.xsession-errors.old", 7'000},
          {"home/.local/share/Trash/files/old.txt", 5'000}, {"home/.local/share/Trash/info/old.txt.trashinfo", 100},
          {"home/Downloads/setup.deb", 50'000}, {"home/Documents/thesis.txt", 3'000}, {"crash/mine.crash", 2'000}},
         {"home/.cache/com.a", "home/.cache/com.b", "home/.xsession-errors.old",
          "home/.local/share/Trash/files/old.txt", "home/.local/share/Trash/info/old.txt.trashinfo", "crash/mine.crash"},
         {"home/.cache", "home/.local/share/Trash/files", "home/.local/share/Trash/info", "home/Downloads/setup.deb",
          "home/Documents/thesis.txt", "Applications/Writer.app/Contents/MacOS/binary"}},
    };
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    for (const auto& system : systems) {
        SCOPED_TRACE(system.rules.system == HostSystem::Mac ? "Mac" : "Linux");
        for (const auto& [relative, bytes] : system.files)
            file(QString::fromUtf8(relative), bytes);
        Backends::Overrides overrides;
        overrides.admin = std::make_unique<FakeAdminRunner>();
        overrides.workspace = std::make_unique<FakeWorkspace>();
        overrides.metadata = std::make_unique<FakeMetadata>();
        overrides.safety = system.rules;
        if (system.rules.system == HostSystem::Linux) {
            // The desktop's one application is the user's own program.
            const DesktopHome desktop(m_dir.path());
            desktop.entry(desktop.places().userData, u"writer.desktop"_s,
                          u"Name=Writer\nExec="_s + desktop.program(path(u"home/bin/writer"_s)));
            overrides.desktop = desktop.places();
        }
        const auto backends = std::make_shared<Backends>(m_roots, m_privacy, std::move(overrides));
        AppState state({m_privacy, m_volume, std::chrono::seconds(4), backends->services()});
        state.analyze();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !state.isAnalyzing(); }, 10000));
        ASSERT_EQ(state.apps()->count(), 1);
        const qint64 safe = state.safeSize();
        const qint64 trash = state.clean()->size(u"trash"_s);
        EXPECT_EQ(safe, state.clean()->size(u"caches"_s) + state.clean()->size(u"logs"_s) + trash);
        EXPECT_GE(trash, 5'000);
        EXPECT_GE(safe, 61'000);
        EXPECT_EQ(state.clean()->totalSelected(), safe); // downloads start unselected
        state.clean()->clean(state.safeCategories());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !state.clean()->isCleaning(); }, 10000));
        EXPECT_EQ(std::tuple(state.toastHeadline(), state.toastDetail(), state.totalFreedThisSession(), state.safeSize()),
                  std::tuple(Bytes::string(safe) + u" liberados"_s, QString(), safe, qint64(0)));
        for (const char* gone : system.gone)
            EXPECT_FALSE(exists(QString::fromUtf8(gone))) << gone;
        for (const char* kept : system.kept)
            EXPECT_TRUE(exists(QString::fromUtf8(kept))) << kept;
    }
    QLocale::setDefault(QLocale::c());
}
