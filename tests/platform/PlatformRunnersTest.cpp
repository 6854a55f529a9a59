#include "core/admin/AdminScript.h"
#include "core/files/NativePath.h"
#include "platform/linux/PkexecAdminRunner.h"
#include "platform/linux/StorageVolumeCapacity.h"
#include "support/FixtureFiles.h"
#include "support/TempTree.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace nubo;

namespace {

// A dismissed dialog (126) or a failing command is a failure; each removed name sits beside a
// look-alike that must stay (a byte, a line break or the quoting apart).
TEST(PkexecAdminRunnerTest, OnlyACommandThatRanAndSucceededIsASuccessAndARemovalTakesNoLookAlike)
{
    QTemporaryDir dir;
    const QString pkexec = dir.filePath(QStringLiteral("bin/pkexec"));
    PkexecAdminRunner runner({dir.filePath(QStringLiteral("bin"))});
    const AdminRequest harmless = AdminScript::forCommand(QStringLiteral("true"));
    EXPECT_EQ(runner.run(harmless), AdminOutcome::Unavailable);
    test::writeScript(pkexec, "exit 126");
    EXPECT_EQ(runner.run(harmless), AdminOutcome::Failed);
    test::writeScript(pkexec, "exec \"$@\""); // "$@" is /bin/sh -c <line>
    EXPECT_EQ(runner.run(harmless), AdminOutcome::Succeeded);
    EXPECT_EQ(runner.run(AdminScript::forCommand(QStringLiteral("exit 4"))), AdminOutcome::Failed);

    test::TempTree tree;
    const std::set<std::string> removed = {"it's \"here\"", "-rf", "back\\slash", "new\nline\n", "Caf\xff"};
    for (const char* name : {"it's \"here\"", "-rf/inner", "back\\slash", "new\nline\n", "Caf\xff",
                             "its here", "rf", "new\nline", "Caf\xfe", "back"})
        tree.file(name);
    const std::set<std::string> before = tree.listing();
    QStringList paths;
    for (const std::string& name : removed)
        paths << NativePath::decode(tree.bytes(QByteArray::fromStdString(name)));
    EXPECT_EQ(runner.run(AdminScript::forRemoval(paths)), AdminOutcome::Succeeded);
    EXPECT_EQ(tree.listing(), test::TempTree::without(before, removed));
}

TEST(StorageVolumeCapacityTest, ReadsTheRootVolumeAndNothingForAPathThatIsNone)
{
    const StorageVolumeCapacity volume;
    const VolumeFigures figures = volume.figures(QStringLiteral("/"));
    ASSERT_TRUE(figures.total && figures.available);
    EXPECT_TRUE(*figures.total > 0 && *figures.available <= *figures.total);
    EXPECT_FALSE(figures.importantUsage || volume.figures(QStringLiteral("/no/such/volume/here")).total);
}

} // namespace
