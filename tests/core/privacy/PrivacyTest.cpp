#include "core/privacy/Privacy.h"

#include <gtest/gtest.h>

#include <atomic>

using nubo::Privacy;

namespace {

const QString kHome = QStringLiteral("/Users/x");

Privacy withAccess(bool granted)
{
    return Privacy(kHome, [granted] { return granted; });
}

} // namespace

TEST(Privacy, GatedFoldersAreTheHomesGuardedPlacesInOrder)
{
    Privacy privacy(kHome, [] { return false; });
    ASSERT_EQ(privacy.gated().size(), 23);
    EXPECT_EQ(privacy.gated().first(), QStringLiteral("/Users/x/Desktop"));
    EXPECT_EQ(privacy.gated().at(4), QStringLiteral("/Users/x/.Trash"));
    EXPECT_EQ(privacy.gated().last(), QStringLiteral("/Users/x/Library/Metadata/CoreSpotlight"));
}

TEST(Privacy, WithoutAccessGuardedFoldersAndEverythingBelowAreGated)
{
    Privacy privacy(kHome, [] { return false; });
    for (const char* path : {"/Users/x/Library/Mail", "/Users/x/Library/Mail/V10", "/Users/x/Desktop",
                             "/Users/x/Documents", "/Users/x/Downloads/a/b", "/Users/x/.Trash",
                             "/Users/x/Library/Application Support/com.apple.TCC/TCC.db",
                             "/Users/x/Pictures/Fotos.photoslibrary/resources",
                             "/Volumes/Other/Fotos.photoslibrary"}) {
        EXPECT_TRUE(privacy.isGated(QString::fromUtf8(path))) << path;
    }
    // The guarded name must end at a "/" to count, and other places are left alone.
    for (const char* path : {"/Users/x/Library/MailData", "/Users/x/Pictures", "/Users/x/Desktopper",
                             "/Users/x/Library", "/Users/x", "/Users/y/Desktop", "/Users/x/library/mail",
                             "/Users/xDesktop", ""}) {
        EXPECT_FALSE(privacy.isGated(QString::fromUtf8(path))) << path;
    }
}

TEST(Privacy, WithAccessNothingIsGated)
{
    Privacy privacy = withAccess(true);
    EXPECT_FALSE(privacy.isGated(QStringLiteral("/Users/x/Library/Mail")));
    EXPECT_FALSE(privacy.isGated(QStringLiteral("/Users/x/Pictures/Fotos.photoslibrary/resources")));
}

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
    EXPECT_TRUE(privacy.hasFullDiskAccess());
    EXPECT_FALSE(privacy.isGated(QStringLiteral("/Users/x/Desktop")));

    grant = false;
    EXPECT_FALSE(privacy.refresh());
    EXPECT_TRUE(privacy.isGated(QStringLiteral("/Users/x/Desktop")));
    EXPECT_EQ(probes, 3);
}

TEST(Privacy, ARefreshBeforeFirstUseIsTheAnswerWithoutAnotherProbe)
{
    int probes = 0;
    Privacy privacy(kHome, [&] {
        ++probes;
        return true;
    });
    EXPECT_TRUE(privacy.refresh());
    EXPECT_TRUE(privacy.hasFullDiskAccess());
    EXPECT_EQ(probes, 1);
}
