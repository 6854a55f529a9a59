#include "models/clean/CleanModel.h"

#include "../support/ModelWorld.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <semaphore>

using namespace nubo;
using namespace nubo::test;

namespace {

class CleanModelTest : public ModelWorld
{
protected:
    CleanModel& clean() { return *state().clean(); }

    CleanItem pathItem(const QString& relative, qint64 bytes)
    {
        file(relative + QStringLiteral("/data"), bytes);
        return CleanItem::atPath(path(relative), m_roots.home);
    }

    static CleanItem command(const QString& name, qint64 size)
    {
        return CleanItem(QStringLiteral("cmd-") + name, name, QString(), size,
                         CleanItem::Command{QStringLiteral("/usr/bin/true"), {name}});
    }

    void scanAndWait()
    {
        clean().scan();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000));
    }

    void cleanAndWait(const QStringList& categories)
    {
        clean().clean(categories);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 10000));
    }

    static QStringList ids(const QList<CleanItem>& items)
    {
        QStringList out;
        for (const CleanItem& item : items)
            out.append(item.id);
        return out;
    }
};

} // namespace

TEST_F(CleanModelTest, CategoriesLandOnTheirOwnAndOnlyDefaultOnesStartSelected)
{
    const QString safe = categoriesSelectedByDefault(true).first();
    const QString personal = categoriesSelectedByDefault(false).first();
    const CleanItem cache = pathItem(QStringLiteral("home/Library/Caches/one"), 3000);
    const CleanItem download = pathItem(QStringLiteral("home/Downloads/old"), 5000);
    std::counting_semaphore<> gate{0};
    rule(safe, [&gate, cache] {
        gate.acquire();
        return QList<CleanItem>{cache};
    });
    rule(personal, [download] { return QList<CleanItem>{download}; });
    QSignalSpy scanning(&clean(), &CleanModel::isScanningChanged);
    QSignalSpy analyzing(&state(), &AppState::isAnalyzingChanged);

    clean().scan();
    EXPECT_TRUE(clean().hasScanned());
    EXPECT_TRUE(state().isAnalyzing());
    // Categories land in any order; every one but the held one lands without waiting for it.
    ASSERT_TRUE(QTest::qWaitFor([&] { return clean().loading() == QStringList{safe}; }, 10000));
    EXPECT_TRUE(clean().hasEntry(personal));
    EXPECT_TRUE(clean().isScanning());
    EXPECT_FALSE(clean().hasEntry(safe));
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000));

    EXPECT_EQ(scanning.count(), 2);
    EXPECT_GE(analyzing.count(), 2);
    EXPECT_TRUE(clean().isSelected(cache.id));
    EXPECT_FALSE(clean().isSelected(download.id));
    EXPECT_EQ(clean().state(safe), CleanModel::CategoryState::All);
    EXPECT_EQ(clean().state(personal), CleanModel::CategoryState::None);
    EXPECT_EQ(clean().totalSelected(), cache.size);
    EXPECT_EQ(clean().totalFound(), cache.size + download.size);
    EXPECT_EQ(state().safeSize(), cache.size);
    // A category whose rule found nothing is empty, unselected and weighs nothing.
    const QString empty = categoriesSelectedByDefault(true).last();
    EXPECT_TRUE(clean().items(empty).isEmpty());
    EXPECT_EQ(clean().state(empty), CleanModel::CategoryState::None);
    clean().toggleCategory(empty);
    EXPECT_EQ(clean().selectedCount(), 1);
}

TEST_F(CleanModelTest, ACategoryToggleClearsAFullSelectionAndCompletesAPartialOne)
{
    const QString id = categoriesSelectedByDefault(false).first();
    const CleanItem a = pathItem(QStringLiteral("home/Downloads/a"), 1000);
    const CleanItem b = pathItem(QStringLiteral("home/Downloads/b"), 2000);
    rule(id, [a, b] { return QList<CleanItem>{a, b}; });
    scanAndWait();

    clean().toggleItem(a.id);
    EXPECT_EQ(clean().state(id), CleanModel::CategoryState::Partial);
    EXPECT_EQ(clean().selectedSize(id), a.size);
    clean().toggleCategory(id);
    EXPECT_EQ(clean().state(id), CleanModel::CategoryState::All);
    clean().toggleCategory(id);
    EXPECT_EQ(clean().state(id), CleanModel::CategoryState::None);
    EXPECT_EQ(clean().selectedCount(), 0);
}

TEST_F(CleanModelTest, ACleanDeletesCommandsRunFailuresStayAndOneReportIsMade)
{
    const QString safe = categoriesSelectedByDefault(true).first();
    const QString tools = categoriesSelectedByDefault(false).at(0);
    const QString other = categoriesSelectedByDefault(false).at(1);
    const CleanItem gone = pathItem(QStringLiteral("home/Library/Caches/gone"), 4096);
    // The cache container itself may only be emptied, never removed: the deleter refuses it.
    const CleanItem refused = CleanItem::atPath(home(QStringLiteral("Library/Caches")), m_roots.home);
    const CleanItem mine = pathItem(QStringLiteral("home/Downloads/mine"), 8192);
    const CleanItem ok = command(QStringLiteral("prune"), 700);
    const CleanItem stuck = command(QStringLiteral("stuck"), 900);
    m_failingCommands << stuck.name;
    rule(safe, [=] { return QList<CleanItem>{gone, refused}; });
    rule(tools, [=] { return QList<CleanItem>{ok, stuck}; });
    rule(other, [=] { return QList<CleanItem>{mine}; });
    scanAndWait();
    clean().toggleCategory(tools);
    clean().toggleItem(mine.id);
    QSignalSpy toasts(&state(), &AppState::toastChanged);

    cleanAndWait({safe, tools});

    EXPECT_EQ(toasts.count(), 1);
    EXPECT_EQ(state().toast()->freed, gone.size + ok.size);
    EXPECT_EQ(state().toast()->failures, 2);
    EXPECT_FALSE(exists(QStringLiteral("home/Library/Caches/gone")));
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches")));
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/mine/data")));
    EXPECT_EQ(ids(m_commandsRun), (QStringList{ok.id, stuck.id}));
    // What failed is still listed and still selected; the other category was not touched.
    EXPECT_EQ(ids(clean().items(safe)), QStringList{refused.id});
    EXPECT_EQ(ids(clean().items(tools)), QStringList{stuck.id});
    EXPECT_TRUE(clean().isSelected(refused.id));
    EXPECT_FALSE(clean().isSelected(gone.id));
    EXPECT_TRUE(clean().isSelected(mine.id));
    EXPECT_EQ(ids(clean().items(other)), QStringList{mine.id});
    EXPECT_GE(m_feedback.load(), 1);
}

TEST_F(CleanModelTest, ACancelledCleanReportsWhatItDidAndLeavesTheRestListedAndSelected)
{
    const QString tools = categoriesSelectedByDefault(false).first();
    const CleanItem done = command(QStringLiteral("prune"), 700);
    const CleanItem held = command(QStringLiteral("held"), 900);
    const CleanItem never = command(QStringLiteral("never"), 300);
    m_heldCommands << held.name;
    rule(tools, [=] { return QList<CleanItem>{done, held, never}; });
    scanAndWait();
    clean().toggleCategory(tools);
    clean().clean({tools});
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_commandsRun.size() == 2; }, 10000));

    clean().cancelClean();
    EXPECT_TRUE(clean().isCancelling());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 5000));

    EXPECT_FALSE(clean().isCancelling());
    EXPECT_EQ(state().toast()->freed, done.size);
    EXPECT_EQ(state().toast()->failures, 0);
    EXPECT_EQ(ids(clean().items(tools)), (QStringList{held.id, never.id}));
    EXPECT_TRUE(clean().isSelected(held.id) && clean().isSelected(never.id));
}

TEST_F(CleanModelTest, NothingSelectedCleansNothingAndReportsNothing)
{
    const QString id = categoriesSelectedByDefault(false).first();
    rule(id, [this] { return QList<CleanItem>{pathItem(QStringLiteral("home/Downloads/x"), 100)}; });
    scanAndWait();
    QSignalSpy cleaning(&clean(), &CleanModel::isCleaningChanged);
    clean().clean();
    EXPECT_EQ(cleaning.count(), 0);
    EXPECT_FALSE(state().hasToast());
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/x/data")));
}

TEST_F(CleanModelTest, TheNewestScanOfACategoryWinsWhateverFinishesLast)
{
    const QString id = categoriesSelectedByDefault(false).first();
    const CleanItem old = pathItem(QStringLiteral("home/Downloads/old"), 100);
    const CleanItem fresh = pathItem(QStringLiteral("home/Downloads/fresh"), 100);
    std::counting_semaphore<> gate{0};
    std::atomic<int> calls = 0;
    rule(id, [&] {
        if (++calls == 1) {
            gate.acquire();
            return QList<CleanItem>{old};
        }
        return QList<CleanItem>{fresh};
    });
    clean().scan();
    ASSERT_TRUE(QTest::qWaitFor([&] { return calls.load() == 1; }, 10000));
    clean().scan();
    ASSERT_TRUE(QTest::qWaitFor([&] { return clean().hasEntry(id); }, 10000));
    gate.release();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000));
    QTest::qWait(100);
    EXPECT_EQ(ids(clean().items(id)), QStringList{fresh.id});
}

TEST_F(CleanModelTest, TheStateGoesAtOnceWhileRulesAreStillRunning)
{
    const QString id = categoriesSelectedByDefault(false).first();
    std::binary_semaphore release{0};
    std::atomic<bool> ran = false;
    rule(id, [&release, &ran] {
        // Held until the state is gone: a state that waited for its rules would wait here.
        (void)release.try_acquire_for(std::chrono::seconds(5));
        ran = true;
        return QList<CleanItem>{};
    });
    clean().scan();
    m_state.reset();
    EXPECT_FALSE(ran.load());
    release.release();
    ASSERT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    EXPECT_TRUE(ran.load());
}

TEST_F(CleanModelTest, AReadThatListedAnItemBeforeACleanNeverBringsItBack)
{
    // GIVEN a category whose second read lists the item and is then held until the clean is over
    const QString id = categoriesSelectedByDefault(true).first();
    const CleanItem item = pathItem(QStringLiteral("home/Library/Caches/old"), 4096);
    std::binary_semaphore held{0};
    std::atomic<int> reads = 0;
    rule(id, [&held, &reads, item] {
        const QList<CleanItem> listed =
            QFileInfo::exists(*item.url()) ? QList<CleanItem>{item} : QList<CleanItem>{};
        if (++reads == 2)
            (void)held.try_acquire_for(std::chrono::seconds(5));
        return listed;
    });
    scanAndWait();
    ASSERT_TRUE(clean().isSelected(item.id));
    clean().scan();
    ASSERT_TRUE(QTest::qWaitFor([&reads] { return reads == 2; }, 10000));

    // WHEN the item is cleaned while that read is under way, and the read ends after the clean
    cleanAndWait({id});
    held.release();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000));
    ASSERT_TRUE(Jobs::waitForAll(std::chrono::seconds(10)));
    QCoreApplication::processEvents();

    // THEN what was removed stays gone: not listed, not selected, not counted as safe to clean
    EXPECT_FALSE(QFileInfo::exists(*item.url()));
    EXPECT_TRUE(clean().items(id).isEmpty());
    EXPECT_FALSE(clean().isSelected(item.id));
    EXPECT_EQ(state().safeSize(), 0);
}
