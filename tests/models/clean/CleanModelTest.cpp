#include "models/clean/CleanModel.h"

#include "../support/ModelWorld.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/files/NativePath.h"
#include "support/Column.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <memory>
#include <semaphore>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

// The cleanup model over the temporary machine, each category finding what its scripted rule says;
// also what the cleanup screen reads: the first-visit scan, the overview, a category's detail page.
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

    void waitForScan() { ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000)); }
    void scanAndWait()
    {
        clean().scan();
        waitForScan();
    }

    void cleanAndWait(const QStringList& categories)
    {
        clean().clean(categories);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 10000));
    }

    static QStringList ids(const QList<CleanItem>& items) { return column(items, &CleanItem::id); }

    static QStringList field(const QVariantList& rows, const QString& key)
    {
        QStringList out;
        for (const QVariant& row : rows)
            out.append(row.toMap().value(key).toString());
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
    const qsizetype zones = m_catalog->all().size();
    EXPECT_DOUBLE_EQ(clean().scanProgress(), double(zones - 1) / double(zones));
    gate.release();
    waitForScan();
    EXPECT_DOUBLE_EQ(clean().scanProgress(), 1.0);

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

TEST_F(CleanModelTest, ACategoryToggleClearsAFullSelectionAndCompletesAPartialOneAndNoneCleansNothing)
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

    // Nothing selected: a clean deletes nothing and reports nothing.
    QSignalSpy cleaning(&clean(), &CleanModel::isCleaningChanged);
    clean().clean();
    EXPECT_EQ(cleaning.count(), 0);
    EXPECT_FALSE(state().hasToast());
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/a/data")));
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
    // Two items of one name (two simulators called alike): only the one that failed stays.
    const CleanItem twin(QStringLiteral("cmd-twin"), stuck.name, QString(), 50, stuck.action);
    m_failingCommands << stuck.id;
    rule(safe, [=] { return QList<CleanItem>{gone, refused}; });
    rule(tools, [=] { return QList<CleanItem>{ok, stuck, twin}; });
    rule(other, [=] { return QList<CleanItem>{mine}; });
    scanAndWait();
    clean().toggleCategory(tools);
    clean().toggleItem(mine.id);
    QSignalSpy toasts(&state(), &AppState::toastChanged);

    cleanAndWait({safe, tools});

    EXPECT_EQ(toasts.count(), 1);
    EXPECT_EQ(state().toast()->freed, gone.size + ok.size + twin.size);
    EXPECT_EQ(state().toast()->failures, 2);
    EXPECT_FALSE(exists(QStringLiteral("home/Library/Caches/gone")));
    EXPECT_TRUE(exists(QStringLiteral("home/Library/Caches")));
    EXPECT_TRUE(exists(QStringLiteral("home/Downloads/mine/data")));
    EXPECT_EQ(ids(m_commandsRun), (QStringList{ok.id, stuck.id, twin.id}));
    // What failed is still listed but no longer selected; the other category was not touched.
    EXPECT_EQ(ids(clean().items(safe)), QStringList{refused.id});
    EXPECT_EQ(ids(clean().items(tools)), QStringList{stuck.id});
    EXPECT_FALSE(clean().isSelected(refused.id) || clean().isSelected(stuck.id) || clean().isSelected(gone.id));
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
    m_heldCommands << held.id;
    rule(tools, [=] { return QList<CleanItem>{done, held, never}; });
    scanAndWait();
    clean().toggleCategory(tools);
    clean().clean({tools});
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_commandsStarted == 2; }, 10000));

    clean().cancelClean();
    EXPECT_TRUE(clean().isCancelling());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isCleaning(); }, 5000));

    EXPECT_FALSE(clean().isCancelling());
    EXPECT_EQ(state().toast()->freed, done.size);
    EXPECT_EQ(state().toast()->failures, 0);
    EXPECT_EQ(ids(clean().items(tools)), (QStringList{held.id, never.id}));
    EXPECT_TRUE(clean().isSelected(held.id) && clean().isSelected(never.id));
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

TEST_F(CleanModelTest, OnlyTheFirstVisitScansAndLaterVisitsKeepTheResults)
{
    auto runs = std::make_shared<std::atomic<int>>(0);
    const QString id = categoriesSelectedByDefault(false).first();
    const CleanItem old =
        CleanItem::atPath(path(QStringLiteral("home/Downloads/a.dmg")), m_roots.home, std::nullopt, 4096);
    rule(id, [runs, old] {
        ++*runs;
        return QList<CleanItem>{old};
    });

    clean().enter();
    EXPECT_TRUE(clean().hasScanned());
    waitForScan();
    ASSERT_EQ(runs->load(), 1);
    clean().toggleItem(old.id);

    clean().enter();
    clean().enter();
    QTest::qWait(50);
    EXPECT_EQ(runs->load(), 1);
    EXPECT_FALSE(clean().isScanning());
    EXPECT_TRUE(clean().isSelected(old.id)); // the user's choice survives a later visit

    scanAndWait(); // "Analizar de nuevo" does scan again
    EXPECT_EQ(runs->load(), 2);
}

TEST_F(CleanModelTest, TheOverviewGroupsEveryCategoryUnderItsHeadingInCatalogueOrder)
{
    const QVariantList groups = clean().groups();
    QStringList shown;
    for (const QVariant& group : groups) {
        const QVariantList rows = group.toMap().value(QStringLiteral("categories")).toList();
        for (const QVariant& row : rows)
            EXPECT_EQ(row.toMap().value(QStringLiteral("group")),
                      group.toMap().value(QStringLiteral("title")));
        shown += field(rows, QStringLiteral("id"));
    }
    QStringList catalogue;
    for (const CleanCategory& row : m_catalog->all())
        catalogue.append(row.id);
    EXPECT_EQ(shown, catalogue);
    // Before the scan nothing is loading, so no count is left blank.
    EXPECT_EQ(field(clean().categories(), QStringLiteral("countText")).count(QString()), 0);
}

TEST_F(CleanModelTest, TheDetailPageFollowsThePathAndTheSelectionAndRevealsOnlyWhatAnAddressNames)
{
    const QString id = categoriesSelectedByDefault(false).first();
    file(QStringLiteral("home/Downloads/big/inside"), 8192);
    file(QStringLiteral("home/Downloads/one.pkg"), 4096);
    // A folder whose name is not UTF-8, holding a folder: the item must still be drawn as a
    // folder, and no address may stand for its parent.
    const QByteArray odd =
        NativePath::encode(path(QStringLiteral("home/Downloads/"))) + QByteArray("caf\xe9");
    ASSERT_EQ(::mkdir(odd.constData(), 0700), 0);
    ASSERT_EQ(::mkdir((odd + "/inner").constData(), 0700), 0);
    // The temporary folder's own clean-up cannot reach a name that is not UTF-8.
    auto removeOdd = qScopeGuard([odd] {
        ::rmdir((odd + "/inner").constData());
        ::rmdir(odd.constData());
    });
    const QString oddInner = NativePath::decode(odd + "/inner");
    ASSERT_TRUE(NativePath::hasEscapedBytes(oddInner));
    const CleanItem folderItem = CleanItem::atPath(path(QStringLiteral("home/Downloads/big")), m_roots.home);
    const CleanItem fileItem =
        CleanItem::atPath(path(QStringLiteral("home/Downloads/one.pkg")), m_roots.home);
    CleanItem owned = CleanItem::atPath(path(QStringLiteral("home/Downloads/big/inside")), m_roots.home);
    owned.appURL = QStringLiteral("/Applications/Writer Pro.app");
    const CleanItem command(QStringLiteral("cmd-prune\nnow"), QStringLiteral("prune\nnow"), QString(), 1000,
                            CleanItem::Command{QStringLiteral("/usr/bin/true"), {}});
    const CleanItem hidden = CleanItem::atPath(oddInner, m_roots.home, QStringLiteral("inner"), 4096);
    rule(id, [=] { return QList<CleanItem>{folderItem, fileItem, owned, command, hidden}; });
    scanAndWait();

    EXPECT_TRUE(clean().detail().isEmpty());
    QSignalSpy detailChanged(&clean(), &CleanModel::detailChanged);
    clean().open(id);
    EXPECT_EQ(clean().path(), QStringList{id});
    // The page hears of a change once per turn of the event loop, however many parts changed.
    QCoreApplication::processEvents();
    EXPECT_EQ(detailChanged.count(), 1);
    const auto countLine = [this] { return clean().detail().value(QStringLiteral("countLine")).toString(); };
    EXPECT_EQ(countLine(), QStringLiteral("0 de 5 seleccionados"));
    const QVariantList items = clean().detail().value(QStringLiteral("items")).toList();
    const QString folderSymbol = QStringLiteral("folder.fill");
    const QString fileSymbol = QStringLiteral("doc.fill");
    EXPECT_EQ(field(items, QStringLiteral("symbol")),
              (QStringList{folderSymbol, fileSymbol, fileSymbol, QStringLiteral("terminal.fill"),
                           folderSymbol}));
    EXPECT_EQ(field(items, QStringLiteral("appName")),
              (QStringList{QString(), QString(), QStringLiteral("Writer Pro"), QString(), QString()}));
    EXPECT_EQ(field(items, QStringLiteral("canReveal")),
              (QStringList{QStringLiteral("true"), QStringLiteral("true"), QStringLiteral("true"),
                           QStringLiteral("false"), QStringLiteral("false")}));
    // What a row shows is one line, while the id every action uses stays the real path.
    EXPECT_EQ(items.at(3).toMap().value(QStringLiteral("name")).toString(), QStringLiteral("prune↵now"));
    EXPECT_EQ(items.at(3).toMap().value(QStringLiteral("id")).toString(), command.id);

    // Only the item that has a button reaches the file manager, with its exact path.
    EXPECT_EQ(clean().revealUrl(fileItem.id), QUrl::fromLocalFile(path(QStringLiteral("home/Downloads"))));
    EXPECT_TRUE(clean().revealUrl(QStringLiteral("/nowhere/at/all")).isEmpty());
    for (const CleanItem* item : {&fileItem, &hidden, &command})
        clean().revealItem(item->id);
    EXPECT_EQ(m_workspace.revealedPaths, QStringList{path(QStringLiteral("home/Downloads/one.pkg"))});

    detailChanged.clear();
    clean().toggleCategory(id);
    clean().toggleItem(fileItem.id);
    clean().toggleItem(fileItem.id);
    QCoreApplication::processEvents();
    EXPECT_EQ(detailChanged.count(), 1);
    EXPECT_EQ(countLine(), QStringLiteral("5 de 5 seleccionados"));
    clean().toggleItem(fileItem.id);
    EXPECT_EQ(clean().detail().value(QStringLiteral("state")).toString(), QStringLiteral("partial"));

    clean().open(QStringLiteral("no-such-category"));
    EXPECT_TRUE(clean().detail().isEmpty());
    clean().open(QString());
    EXPECT_TRUE(clean().path().isEmpty());
    EXPECT_TRUE(clean().detail().isEmpty());
}
