#include "models/apps/AppsModel.h"

#include "../support/ModelWorld.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTest>

using namespace nubo;
using namespace nubo::test;

namespace {

// What the apps screen reads from the model: the header, the order picker, the chosen
// application's detail with its tags, and the removal list whose first line cannot be unticked.
class AppsScreenModelTest : public ModelWorld
{
protected:
    void SetUp() override
    {
        ModelWorld::SetUp();
        QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
        bundle(QStringLiteral("Applications/Writer.app"), QStringLiteral("com.acme.writer"), 300'000);
        file(QStringLiteral("Applications/Writer.app/Contents/_MASReceipt/receipt"), 10);
        bundle(QStringLiteral("Applications/Paint.app"), QStringLiteral("com.acme.paint"), 100'000);
        file(QStringLiteral("home/Library/Preferences/com.acme.writer.plist"), 2000);
        file(QStringLiteral("home/Library/Caches/com.acme.writer/blob"), 30'000);
    }
    void TearDown() override
    {
        ModelWorld::TearDown();
        QLocale::setDefault(QLocale::c());
    }

    AppsModel& apps() { return *state().apps(); }
    QString writer() const { return path(QStringLiteral("Applications/Writer.app")); }

    void enterAndMeasure()
    {
        apps().enter();
        ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    }

    void selectWriter()
    {
        apps().select(writer());
        ASSERT_TRUE(QTest::qWaitFor([this] { return !apps().leftoversLoading(); }, 10000));
        ASSERT_EQ(apps().leftovers().size(), 2);
    }
};

} // namespace

TEST_F(AppsScreenModelTest, TheFirstVisitLoadsTheListOnceAndTheHeaderFollows)
{
    QSignalSpy header(&apps(), &AppsModel::headerLineChanged);
    QSignalSpy loading(&apps(), &AppsModel::isLoadingChanged);
    apps().enter();
    EXPECT_EQ(apps().headerLine(), QStringLiteral("Buscando…"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return apps().sizesLoaded(); }, 10000));
    EXPECT_EQ(apps().headerLine(), QStringLiteral("2 instaladas"));
    EXPECT_GE(header.count(), 2);

    apps().enter();
    QTest::qWait(50);
    EXPECT_EQ(loading.count(), 2) << "a later visit must not list the applications again";
    // The header counts every application, whatever the search shows.
    apps().setQuery(QStringLiteral("pai"));
    EXPECT_EQ(apps().visible().size(), 1);
    EXPECT_EQ(apps().headerLine(), QStringLiteral("2 instaladas"));
}

TEST_F(AppsScreenModelTest, TheOrderPickerTakesOnlyItsThreeOrders)
{
    EXPECT_EQ(apps().sortTitle(), QStringLiteral("Ordenar por Nombre"));
    QSignalSpy sort(&apps(), &AppsModel::sortChanged);
    apps().chooseSort(-1);
    apps().chooseSort(3);
    EXPECT_EQ(sort.count(), 0);
    EXPECT_EQ(apps().sort(), AppsModel::Sort::Name);
    apps().chooseSort(2);
    EXPECT_EQ(apps().sort(), AppsModel::Sort::LastUse);
    EXPECT_EQ(apps().sortIndex(), 2);
    EXPECT_EQ(apps().sortTitle(), QStringLiteral("Ordenar por Último uso"));
    apps().chooseSort(1);
    EXPECT_EQ(apps().sortTitle(), QStringLiteral("Ordenar por Tamaño"));
}

TEST_F(AppsScreenModelTest, TheBundleLeadsTheRemovalAndCannotBeUnticked)
{
    enterAndMeasure();
    EXPECT_TRUE(apps().removalRows().isEmpty());
    selectWriter();
    const QVariantList rows = apps().removalRows();
    ASSERT_EQ(rows.size(), 3);
    const QVariantMap bundle = rows.front().toMap();
    EXPECT_EQ(bundle.value(QStringLiteral("id")).toString(), writer());
    EXPECT_EQ(bundle.value(QStringLiteral("label")).toString(), QStringLiteral("Aplicación"));
    EXPECT_TRUE(bundle.value(QStringLiteral("locked")).toBool());
    QStringList labels;
    for (const QVariant& row : rows.mid(1)) {
        labels.append(row.toMap().value(QStringLiteral("label")).toString());
        EXPECT_FALSE(row.toMap().value(QStringLiteral("locked")).toBool());
        EXPECT_TRUE(row.toMap().value(QStringLiteral("ticked")).toBool());
    }
    labels.sort();
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Cachés"), QStringLiteral("Preferencias")}));

    const qint64 all = apps().removalSize();
    QSignalSpy removal(&apps(), &AppsModel::removalChanged);
    apps().toggle(writer());
    apps().toggle(QStringLiteral("/not/a/leftover"));
    EXPECT_EQ(removal.count(), 0);
    EXPECT_TRUE(apps().excluded().isEmpty());
    EXPECT_EQ(apps().removalSize(), all);
    EXPECT_EQ(apps().removalCount(), 3);

    // Unticking every leftover leaves the bundle alone, and the button shows its size.
    for (const CleanItem& item : apps().leftovers())
        apps().toggle(item.id);
    EXPECT_EQ(apps().removalCount(), 1);
    EXPECT_EQ(apps().removalSize(), apps().selected()->size.value());
    EXPECT_EQ(apps().uninstallLabel(), QStringLiteral("Desinstalar · ") +
                                           apps().selectedApp().value(QStringLiteral("sizeText")).toString());
    EXPECT_FALSE(apps().removalRows().at(1).toMap().value(QStringLiteral("ticked")).toBool());
}

TEST_F(AppsScreenModelTest, TheDetailTagsAStoreAppAndFollowsWhetherItRuns)
{
    enterAndMeasure();
    m_workspace.running = {{4242, QStringLiteral("Writer"), writer(), false, false, true}};
    QSignalSpy running(&apps(), &AppsModel::selectedRunningChanged);
    selectWriter();
    const QVariantMap app = apps().selectedApp();
    EXPECT_EQ(app.value(QStringLiteral("name")).toString(), QStringLiteral("Writer"));
    EXPECT_EQ(app.value(QStringLiteral("versionLine")).toString(), QStringLiteral("Versión 1.0"));
    EXPECT_TRUE(app.value(QStringLiteral("isStore")).toBool());
    EXPECT_TRUE(apps().selectedRunning());
    EXPECT_EQ(running.count(), 1);

    m_workspace.running.clear();
    apps().refreshRunning();
    EXPECT_FALSE(apps().selectedRunning());
    EXPECT_EQ(running.count(), 2);

    apps().select(path(QStringLiteral("Applications/Paint.app")));
    EXPECT_FALSE(apps().selectedApp().value(QStringLiteral("isStore")).toBool());
    // Choosing nothing known empties the detail and stops looking.
    apps().select(QStringLiteral("/Applications/Gone.app"));
    EXPECT_TRUE(apps().selectedApp().isEmpty());
    EXPECT_FALSE(apps().selectedRunning());
    EXPECT_TRUE(apps().removalRows().isEmpty());
}
