#include "core/cleanup/CleanCatalog.h"

#include "core/cleanup/CleanGroup.h"

#include <QSet>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace nubo;

TEST(CleanGroups, TitleIsTheIdentityAndCaseMatters)
{
    EXPECT_EQ(CleanGroups::all(),
              (QList<CleanGroup>{CleanGroup::system, CleanGroup::developer, CleanGroup::personal}));
    for (CleanGroup group : CleanGroups::all())
        EXPECT_EQ(CleanGroups::fromTitle(CleanGroups::title(group)), group);
    EXPECT_EQ(CleanGroups::fromTitle(QStringLiteral("Sistema")), CleanGroup::system);
    EXPECT_EQ(CleanGroups::fromTitle(QStringLiteral("Tus archivos")), CleanGroup::personal);
    EXPECT_FALSE(CleanGroups::fromTitle(QStringLiteral("sistema")));
    EXPECT_FALSE(CleanGroups::fromTitle(QString()));
}

TEST(CleanCatalog, EighteenRowsInDisplayOrderGroupedAsShown)
{
    const QList<CleanCategory>& rows = CleanCatalog::rows();
    QStringList ids;
    for (const CleanCategory& category : rows)
        ids << category.id;
    EXPECT_EQ(
        ids, (QStringList{QStringLiteral("caches"), QStringLiteral("logs"), QStringLiteral("temp"),
                          QStringLiteral("trash"), QStringLiteral("mail"), QStringLiteral("deriveddata"),
                          QStringLiteral("devicesupport"), QStringLiteral("simulators"),
                          QStringLiteral("runtimes"), QStringLiteral("packages"), QStringLiteral("archives"),
                          QStringLiteral("node_modules"), QStringLiteral("docker"),
                          QStringLiteral("installers"), QStringLiteral("olddownloads"),
                          QStringLiteral("largeold"), QStringLiteral("backups"), QStringLiteral("orphans")}));
    // Groups come in one block each, in the groups' own order, so the screen can cut the list.
    int lastGroup = 0;
    for (const CleanCategory& category : rows) {
        EXPECT_GE(static_cast<int>(category.group), lastGroup) << category.id.toStdString();
        lastGroup = static_cast<int>(category.group);
        EXPECT_FALSE(category.title.isEmpty());
        EXPECT_FALSE(category.subtitle.isEmpty());
        EXPECT_FALSE(category.symbol.isEmpty());
    }
}

TEST(CleanCatalog, CautionsGoExactlyWithCategoriesThatAreNotPreselectedExceptInstallers)
{
    int cautions = 0;
    for (const CleanCategory& category : CleanCatalog::rows()) {
        const bool expected = !category.selectedByDefault && category.id != QLatin1String("installers");
        EXPECT_EQ(category.caution.has_value(), expected) << category.id.toStdString();
        cautions += category.caution ? 1 : 0;
    }
    EXPECT_EQ(cautions, 8);
    const auto find = [](const QString& id) {
        for (const CleanCategory& category : CleanCatalog::rows()) {
            if (category.id == id)
                return category;
        }
        return CleanCategory{};
    };
    const CleanCategory orphans = find(QStringLiteral("orphans"));
    EXPECT_EQ(orphans.caution, QStringLiteral("Detectado por nombre: revisa antes de borrar."));
    EXPECT_EQ(orphans.title, QStringLiteral("Restos de apps borradas"));
    EXPECT_EQ(orphans.group, CleanGroup::personal);
    EXPECT_EQ(NamedColors::name(orphans.color), QStringLiteral("orange"));
    // The two settled asymmetries: the Trash is pre-selected, installers are neither selected nor cautioned.
    EXPECT_TRUE(find(QStringLiteral("trash")).selectedByDefault);
    EXPECT_FALSE(find(QStringLiteral("installers")).selectedByDefault);
    EXPECT_EQ(
        find(QStringLiteral("docker")).caution,
        QStringLiteral("Ejecuta docker system prune -a: borra imágenes no usadas por contenedores activos."));
}

TEST(CleanCatalog, RowsAloneScanToNothing)
{
    for (const CleanCategory& category : CleanCatalog::rows()) {
        ASSERT_TRUE(category.scan);
        EXPECT_TRUE(category.scan().isEmpty());
    }
}

// Several scans start at once on the pool: the rules must be bound exactly once and every
// thread must see the same finished list.
TEST(CleanCatalog, RulesAreBoundOnceEvenWhenManyThreadsAskAtOnce)
{
    std::atomic<int> calls = 0;
    const CleanCatalog catalog([&calls](const QString& id) -> CleanCategory::Scan {
        ++calls;
        if (id != QLatin1String("trash"))
            return {}; // a rule not written yet
        return [] {
            return QList<CleanItem>{CleanItem(QStringLiteral("/x"), QStringLiteral("x"), QStringLiteral("/x"),
                                              10, CleanItem::Remove{QStringLiteral("/x")})};
        };
    });
    std::vector<std::thread> threads;
    std::vector<const QList<CleanCategory>*> seen(8, nullptr);
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] { seen[i] = &catalog.all(); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(calls.load(), 18);
    for (const auto* list : seen)
        EXPECT_EQ(list, seen.front());
    for (const CleanCategory& category : catalog.all()) {
        ASSERT_TRUE(category.scan) << category.id.toStdString();
        EXPECT_EQ(category.scan().size(), category.id == QLatin1String("trash") ? 1 : 0);
    }
    EXPECT_EQ(calls.load(), 18);
}
