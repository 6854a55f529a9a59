#include "core/cleanup/CleanCatalog.h"

#include "core/cleanup/CleanGroup.h"
#include "core/cleanup/CleanItem.h"
#include "support/FixtureFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <tuple>

using namespace nubo;
using namespace Qt::StringLiterals;

// One block per group in the groups' order, so the screen can cut the list, and each heading's
// title leads back to its group exactly. A row that warns is never pre-selected; installers are
// the one quiet unselected row. Rows alone find nothing until rules are bound.
TEST(CleanCatalog, RowsComeInOneBlockPerGroupAndOnlyUnselectedRowsWarn)
{
    for (const HostSystem system : {HostSystem::Mac, HostSystem::Linux}) {
    int lastGroup = 0;
    for (const CleanCategory& category : CleanCatalog::rows(system)) {
        SCOPED_TRACE(category.id.toStdString());
        EXPECT_GE(static_cast<int>(category.group), lastGroup);
        lastGroup = static_cast<int>(category.group);
        const QString heading = CleanGroups::title(category.group);
        EXPECT_EQ(std::pair(CleanGroups::fromTitle(heading), CleanGroups::fromTitle(heading.toLower())),
                  std::pair(std::optional(category.group), std::optional<CleanGroup>()));
        EXPECT_FALSE(category.title.isEmpty() || category.subtitle.isEmpty() || category.symbol.isEmpty());
        EXPECT_EQ(category.caution.has_value(), !category.selectedByDefault && category.id != u"installers"_s);
        ASSERT_TRUE(category.scan);
        EXPECT_TRUE(category.scan().isEmpty());
    }
    }
    EXPECT_FALSE(CleanGroups::fromTitle(QString()));
}

// The whole tree under the path is measured (the sizes themselves are Location's), named by its
// last component even with a trailing slash; a path that has gone measures nothing and keeps its
// path, and a command has no path that could be removed or revealed.
TEST(CleanItem, PathItemMeasuresTheWholeTreeAndShowsTheTildePath)
{
    QTemporaryDir home;
    const QString folder = home.filePath(u"Library/Caches/com.acme.writer"_s);
    const qint64 written = test::writeFile(folder + u"/a"_s, 5000) + test::writeFile(folder + u"/inner/b"_s, 70'000);
    const CleanItem item = CleanItem::atPath(folder + u'/', home.path());
    EXPECT_EQ(std::tuple(item.name, item.detail, item.size, item.url()),
              std::tuple(u"com.acme.writer"_s, u"~/Library/Caches/com.acme.writer/"_s, written,
                         std::optional(folder + u'/')));
    const CleanItem gone = CleanItem::atPath(u"/nonexistent/nubo/thing/"_s, u"/home/x"_s);
    EXPECT_EQ(std::tuple(gone.name, gone.size, gone.url()),
              std::tuple(u"thing"_s, qint64(0), std::optional(u"/nonexistent/nubo/thing/"_s)));
    EXPECT_FALSE(CleanItem(u"docker"_s, {}, {}, 1, CleanItem::Command{u"docker"_s, {}}).url());
}
