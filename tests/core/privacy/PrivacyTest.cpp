#include "core/privacy/Privacy.h"
#include "core/privacy/Permissions.h"

#include "support/FixtureFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <atomic>

using namespace nubo;

namespace {

const QString kHome = QStringLiteral("/Users/x");

} // namespace

// Without access the guarded folders and everything below them are gated; the guarded name must
// end at a "/" to count, case matters, and other places are left alone. With access nothing is.
TEST(Privacy, WithoutAccessGuardedFoldersAndEverythingBelowAreGatedAndNothingElse)
{
    const Privacy without(kHome, [] { return false; });
    const Privacy with(kHome, [] { return true; });
    for (const char* path :
         {"/Users/x/Library/Mail", "/Users/x/Library/Mail/V10", "/Users/x/Desktop", "/Users/x/Documents",
          "/Users/x/Downloads/a/b", "/Users/x/.Trash",
          "/Users/x/Library/Application Support/com.apple.TCC/TCC.db",
          "/Users/x/Pictures/Fotos.photoslibrary/resources", "/Volumes/Other/Fotos.photoslibrary"}) {
        EXPECT_TRUE(without.isGated(QString::fromUtf8(path))) << path;
        EXPECT_FALSE(with.isGated(QString::fromUtf8(path))) << path;
    }
    for (const char* path :
         {"/Users/x/Library/MailData", "/Users/x/Pictures", "/Users/x/Desktopper", "/Users/x/Library",
          "/Users/x", "/Users/y/Desktop", "/Users/x/library/mail", "/Users/xDesktop", ""})
        EXPECT_FALSE(without.isGated(QString::fromUtf8(path))) << path;
}

// Probing can be slow and asks the disk: it happens on first use, then only when refreshed, and a
// refresh before first use is the answer without another probe.
TEST(Privacy, ProbesOnFirstUseAndAgainOnlyOnRefresh)
{
    std::atomic<int> probes = 0;
    std::atomic<bool> grant = false;
    const auto probe = [&] {
        ++probes;
        return grant.load();
    };
    Privacy privacy(kHome, probe);
    EXPECT_EQ(probes, 0);
    EXPECT_TRUE(privacy.isGated(QStringLiteral("/Users/x/Desktop")));
    EXPECT_FALSE(privacy.hasFullDiskAccess());
    EXPECT_EQ(probes, 1);

    grant = true; // granted in the settings: nothing changes until someone looks again
    EXPECT_FALSE(privacy.hasFullDiskAccess());
    EXPECT_TRUE(privacy.refresh());
    EXPECT_EQ(probes, 2);
    EXPECT_FALSE(privacy.isGated(QStringLiteral("/Users/x/Desktop")));
    grant = false;
    EXPECT_FALSE(privacy.refresh());
    EXPECT_TRUE(privacy.isGated(QStringLiteral("/Users/x/Desktop")));
    EXPECT_EQ(probes, 3);

    grant = true;
    Privacy fresh(kHome, probe);
    EXPECT_TRUE(fresh.refresh());
    EXPECT_TRUE(fresh.hasFullDiskAccess());
    EXPECT_EQ(probes, 4);
}

// The privacy database or the Safari folder proves access; the guarded folder alone does not.
TEST(Permissions, ProtectedDataIsReadableThroughThePrivacyDatabaseOrSafari)
{
    QTemporaryDir home;
    EXPECT_FALSE(Permissions::canReadProtectedData(home.path()));
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
