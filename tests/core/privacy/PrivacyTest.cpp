#include "core/privacy/Privacy.h"

#include <gtest/gtest.h>

#include <atomic>

using nubo::Privacy;

namespace {

const QString kHome = QStringLiteral("/Users/x");

} // namespace

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
    // The guarded name must end at a "/" to count, case matters, and other places are left alone.
    for (const char* path :
         {"/Users/x/Library/MailData", "/Users/x/Pictures", "/Users/x/Desktopper", "/Users/x/Library",
          "/Users/x", "/Users/y/Desktop", "/Users/x/library/mail", "/Users/xDesktop", ""}) {
        EXPECT_FALSE(without.isGated(QString::fromUtf8(path))) << path;
    }
}

// Probing can be slow and asks the disk: it happens on first use, then only when refreshed.
TEST(Privacy, ProbesOnFirstUseAndAgainOnlyOnRefresh)
{
    std::atomic<int> probes = 0;
    std::atomic<bool> grant = false;
    Privacy privacy(kHome, [&] {
        ++probes;
        return grant.load();
    });
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

    // A refresh before first use is the answer, without another probe.
    Privacy fresh(kHome, [&] {
        ++probes;
        return true;
    });
    EXPECT_TRUE(fresh.refresh());
    EXPECT_TRUE(fresh.hasFullDiskAccess());
    EXPECT_EQ(probes, 4);
}
