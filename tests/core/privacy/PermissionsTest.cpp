#include "core/privacy/Permissions.h"

#include "platform/fake/FakeWorkspace.h"
#include "support/FixtureFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;

TEST(Permissions, ProtectedDataIsReadableThroughThePrivacyDatabaseOrSafari)
{
    QTemporaryDir home;
    EXPECT_FALSE(Permissions::canReadProtectedData(home.path()));

    // The guarded folder without its database is not enough.
    ASSERT_TRUE(QDir(home.path()).mkpath(QStringLiteral("Library/Application Support/com.apple.TCC")));
    EXPECT_FALSE(Permissions::canReadProtectedData(home.path()));

    ASSERT_TRUE(QDir(home.path()).mkpath(QStringLiteral("Library/Safari")));
    EXPECT_TRUE(Permissions::canReadProtectedData(home.path()));

    QTemporaryDir other;
    test::writeBytes(other.path() + QStringLiteral("/Library/Application Support/com.apple.TCC/TCC.db"), {});
    EXPECT_TRUE(Permissions::canReadProtectedData(other.path()));
}

TEST(Permissions, SettingsPageIsOpenedThroughTheWorkspace)
{
    FakeWorkspace workspace;
    Permissions::openFullDiskAccessSettings(workspace);
    EXPECT_EQ(workspace.openedUrls,
              QStringList{QStringLiteral(
                  "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles")});
}

#ifndef __APPLE__
TEST(Permissions, OutsideMacOSNothingGuardsTheHomeFolder)
{
    QTemporaryDir home;
    EXPECT_TRUE(Permissions::hasFullDiskAccess(home.path()));
}
#endif
