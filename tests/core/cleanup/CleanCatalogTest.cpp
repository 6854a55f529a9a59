#include "core/cleanup/CleanCatalog.h"

#include "core/cleanup/CleanGroup.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace nubo;

// The screen restores a heading from its title: every title must lead back to its group, exactly.
TEST(CleanGroups, TitleLeadsBackToItsGroupAndCaseMatters)
{
    for (CleanGroup group : CleanGroups::all()) {
        EXPECT_EQ(CleanGroups::fromTitle(CleanGroups::title(group)), group);
        EXPECT_FALSE(CleanGroups::fromTitle(CleanGroups::title(group).toLower()));
    }
    EXPECT_FALSE(CleanGroups::fromTitle(QString()));
}

TEST(CleanCatalog, RowsComeInOneBlockPerGroupAndOnlyUnselectedRowsWarn)
{
    int lastGroup = 0;
    for (const CleanCategory& category : CleanCatalog::rows()) {
        SCOPED_TRACE(category.id.toStdString());
        // One block per group, in the groups' order, so the screen can cut the list.
        EXPECT_GE(static_cast<int>(category.group), lastGroup);
        lastGroup = static_cast<int>(category.group);
        EXPECT_FALSE(category.title.isEmpty() || category.subtitle.isEmpty() || category.symbol.isEmpty());
        // A row that warns is never pre-selected; installers are the one quiet unselected row.
        EXPECT_EQ(category.caution.has_value(),
                  !category.selectedByDefault && category.id != QLatin1String("installers"));
        ASSERT_TRUE(category.scan);
        EXPECT_TRUE(category.scan().isEmpty()); // rows alone find nothing until rules are bound
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
    const int rows = int(CleanCatalog::rows().size());
    EXPECT_EQ(calls.load(), rows);
    for (const auto* list : seen)
        EXPECT_EQ(list, seen.front());
    for (const CleanCategory& category : catalog.all()) {
        ASSERT_TRUE(category.scan) << category.id.toStdString();
        EXPECT_EQ(category.scan().size(), category.id == QLatin1String("trash") ? 1 : 0);
    }
    EXPECT_EQ(calls.load(), rows);
}
