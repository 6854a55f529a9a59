#include "models/clean/CleanModel.h"

#include "../support/ModelWorld.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/files/NativePath.h"

#include <QScopeGuard>
#include <semaphore>
#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <sys/stat.h>
#include <unistd.h>

using namespace nubo;
using namespace nubo::test;

namespace {

// What the cleanup screen reads from the model: the first-visit scan, the grouped overview with
// its texts, one category's detail page, and where the reveal button may point.
class CleanScreenModelTest : public ModelWorld
{
protected:
    CleanModel& clean() { return *state().clean(); }

    void waitForScan()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !clean().isScanning(); }, 10000));
    }

    static QStringList field(const QVariantList& rows, const QString& key)
    {
        QStringList out;
        for (const QVariant& row : rows)
            out.append(row.toMap().value(key).toString());
        return out;
    }
};

} // namespace

TEST_F(CleanScreenModelTest, OnlyTheFirstVisitScansAndLaterVisitsKeepTheResults)
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

    clean().scan(); // "Analizar de nuevo" does scan again
    waitForScan();
    EXPECT_EQ(runs->load(), 2);
}

TEST_F(CleanScreenModelTest, WhileFiveCategoriesLoadTheSummaryCountsThirteenOfEighteen)
{
    const QList<CleanCategory>& all = m_catalog->all();
    ASSERT_EQ(all.size(), 18);
    // The last five are held: the ones before them can finish even on a pool of one thread.
    std::counting_semaphore<> gate{0};
    auto released = qScopeGuard([&gate] { gate.release(5); });
    for (qsizetype i = all.size() - 5; i < all.size(); ++i)
        rule(all.at(i).id, [&gate] {
            gate.acquire();
            return QList<CleanItem>{};
        });
    QSignalSpy texts(&clean(), &CleanModel::textsChanged);

    clean().scan();
    EXPECT_EQ(clean().summaryHeading(), QStringLiteral("Buscando espacio…"));
    EXPECT_EQ(clean().overviewLine(), QStringLiteral("Analizando…"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return clean().loading().size() == 5; }, 10000));
    EXPECT_EQ(clean().progressLine(), QStringLiteral("13 de 18 zonas revisadas"));
    EXPECT_DOUBLE_EQ(clean().scanProgress(), 13.0 / 18.0);
    EXPECT_GT(texts.count(), 0);

    released.dismiss();
    gate.release(5);
    waitForScan();
    EXPECT_EQ(clean().summaryHeading(), QStringLiteral("Puedes liberar"));
    EXPECT_EQ(clean().progressLine(), QStringLiteral("18 de 18 zonas revisadas"));
    EXPECT_EQ(clean().selectionLine(), QStringLiteral("0 elementos seleccionados"));
}

TEST_F(CleanScreenModelTest, TheOverviewGroupsEveryCategoryUnderItsHeadingInCatalogueOrder)
{
    const QVariantList groups = clean().groups();
    EXPECT_EQ(field(groups, QStringLiteral("title")),
              (QStringList{QStringLiteral("Sistema"), QStringLiteral("Desarrollo"),
                           QStringLiteral("Tus archivos")}));
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
    // Before the scan nothing is loading, and a category that found nothing says so.
    EXPECT_EQ(field(clean().categories(), QStringLiteral("countText")),
              QStringList(18, QStringLiteral("Nada que limpiar")));
}

TEST_F(CleanScreenModelTest, TheDetailPageFollowsThePathAndTheSelection)
{
    const QString id = categoriesSelectedByDefault(false).first();
    file(QStringLiteral("home/Downloads/big/inside"), 8192);
    file(QStringLiteral("home/Downloads/one.pkg"), 4096);
    const CleanItem folderItem = CleanItem::atPath(path(QStringLiteral("home/Downloads/big")), m_roots.home);
    const CleanItem fileItem =
        CleanItem::atPath(path(QStringLiteral("home/Downloads/one.pkg")), m_roots.home);
    CleanItem owned = CleanItem::atPath(path(QStringLiteral("home/Downloads/big/inside")), m_roots.home);
    owned.appURL = QStringLiteral("/Applications/Writer Pro.app");
    const CleanItem command(QStringLiteral("cmd-prune\nnow"), QStringLiteral("prune\nnow"), QString(), 1000,
                            CleanItem::Command{QStringLiteral("/usr/bin/true"), {}});
    rule(id, [=] { return QList<CleanItem>{folderItem, fileItem, owned, command}; });
    clean().scan();
    waitForScan();

    EXPECT_TRUE(clean().detail().isEmpty());
    QSignalSpy detailChanged(&clean(), &CleanModel::detailChanged);
    clean().open(id);
    EXPECT_EQ(clean().path(), QStringList{id});
    EXPECT_GE(detailChanged.count(), 1);
    QVariantMap page = clean().detail();
    EXPECT_EQ(page.value(QStringLiteral("id")).toString(), id);
    EXPECT_EQ(page.value(QStringLiteral("countLine")).toString(), QStringLiteral("0 de 4 seleccionados"));
    EXPECT_EQ(page.value(QStringLiteral("toggleLabel")).toString(), QStringLiteral("Marcar todo"));
    EXPECT_EQ(page.value(QStringLiteral("countText")).toString(), QStringLiteral("4 elementos"));
    const QVariantList items = page.value(QStringLiteral("items")).toList();
    EXPECT_EQ(field(items, QStringLiteral("symbol")),
              (QStringList{QStringLiteral("folder.fill"), QStringLiteral("doc.fill"),
                           QStringLiteral("doc.fill"), QStringLiteral("terminal.fill")}));
    EXPECT_EQ(field(items, QStringLiteral("appInitial")),
              (QStringList{QString(), QString(), QStringLiteral("W"), QString()}));
    EXPECT_EQ(items.at(2).toMap().value(QStringLiteral("appName")).toString(), QStringLiteral("Writer Pro"));
    // What a row shows is one line, while the id every action uses stays the real path.
    EXPECT_EQ(items.at(3).toMap().value(QStringLiteral("name")).toString(), QStringLiteral("prune↵now"));
    EXPECT_EQ(items.at(3).toMap().value(QStringLiteral("id")).toString(), command.id);

    detailChanged.clear();
    clean().toggleCategory(id);
    EXPECT_GE(detailChanged.count(), 1);
    page = clean().detail();
    EXPECT_EQ(page.value(QStringLiteral("countLine")).toString(), QStringLiteral("4 de 4 seleccionados"));
    EXPECT_EQ(page.value(QStringLiteral("toggleLabel")).toString(), QStringLiteral("Desmarcar todo"));
    EXPECT_EQ(page.value(QStringLiteral("help")).toString(), QStringLiteral("No limpiar"));
    EXPECT_EQ(clean().selectionLine(), QStringLiteral("4 elementos seleccionados"));
    clean().toggleItem(fileItem.id);
    EXPECT_EQ(clean().detail().value(QStringLiteral("help")).toString(), QStringLiteral("Limpiar todo"));
    EXPECT_EQ(clean().detail().value(QStringLiteral("state")).toString(), QStringLiteral("partial"));

    clean().open(QStringLiteral("no-such-category"));
    EXPECT_TRUE(clean().detail().isEmpty());
    clean().open(QString());
    EXPECT_TRUE(clean().path().isEmpty());
    EXPECT_TRUE(clean().detail().isEmpty());
}

TEST_F(CleanScreenModelTest, RevealPointsAtTheHoldingFolderButNeverAtALookAlike)
{
    const QString id = categoriesSelectedByDefault(false).first();
    file(QStringLiteral("home/Downloads/plain/file.zip"), 100);
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
    const CleanItem plain =
        CleanItem::atPath(path(QStringLiteral("home/Downloads/plain/file.zip")), m_roots.home);
    const CleanItem hidden = CleanItem::atPath(oddInner, m_roots.home, QStringLiteral("inner"), 4096);
    const CleanItem command(QStringLiteral("cmd-x"), QStringLiteral("x"), QString(), 10,
                            CleanItem::Command{QStringLiteral("/usr/bin/true"), {}});
    rule(id, [=] { return QList<CleanItem>{plain, hidden, command}; });
    clean().scan();
    waitForScan();

    EXPECT_EQ(clean().revealUrl(plain.id), QUrl::fromLocalFile(path(QStringLiteral("home/Downloads/plain"))));
    EXPECT_TRUE(clean().revealUrl(hidden.id).isEmpty());
    EXPECT_TRUE(clean().revealUrl(command.id).isEmpty());
    EXPECT_TRUE(clean().revealUrl(QStringLiteral("/nowhere/at/all")).isEmpty());
    // Only the item that has a button reaches the file manager, with its exact path.
    for (const CleanItem* item : {&plain, &hidden, &command})
        clean().revealItem(item->id);
    EXPECT_EQ(m_workspace.revealedPaths, QStringList{path(QStringLiteral("home/Downloads/plain/file.zip"))});

    clean().open(id);
    const QVariantList items = clean().detail().value(QStringLiteral("items")).toList();
    ASSERT_EQ(items.size(), 3);
    EXPECT_TRUE(items.at(0).toMap().value(QStringLiteral("canReveal")).toBool());
    EXPECT_FALSE(items.at(1).toMap().value(QStringLiteral("canReveal")).toBool());
    EXPECT_EQ(items.at(1).toMap().value(QStringLiteral("symbol")).toString(), QStringLiteral("folder.fill"));
    EXPECT_FALSE(items.at(2).toMap().value(QStringLiteral("canReveal")).toBool());
}
