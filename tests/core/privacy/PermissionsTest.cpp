#include "core/privacy/Permissions.h"

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
#ifndef __APPLE__
    // Outside macOS nothing guards the home folder, whatever it holds.
    EXPECT_TRUE(Permissions::hasFullDiskAccess(home.path()));
#endif
}
