#include "SafetyFixture.h"

using namespace nubo;
using SafetyPropertyTest = nubo::testing::SafetyFixture;

// Ten thousand generated paths below the protected trees are all refused, and two thousand below
// an allowed folder all pass: the gate must neither leak nor refuse everything.
TEST_F(SafetyPropertyTest, GeneratedPathsKeepTheVerdictOfTheTreeTheyAreIn)
{
    QRandomGenerator random(20261121);
    const std::vector<const char*> trees = {"/System",
                                            "/bin",
                                            "/sbin",
                                            "/usr",
                                            "/etc",
                                            "/dev",
                                            "/cores",
                                            "/private/etc",
                                            "/private/var/db",
                                            "/private/var/root",
                                            "/Volumes",
                                            "/System/Applications",
                                            "^/Apple",
                                            "^/Keychains",
                                            "^/Security",
                                            "~/Pictures/Photos Library.photoslibrary",
                                            "~/Library/Keychains",
                                            "~/Library/Mobile Documents",
                                            "~/Library/CloudStorage",
                                            "~/Library/Mail",
                                            "~/Library/Messages",
                                            "~/Library/Accounts",
                                            "~/Library/Cookies/Cookies.binarycookies",
                                            "~/Library/Application Support/com.apple.TCC",
                                            "~/Library/Application Support/AddressBook",
                                            "~/Library/Calendars",
                                            "~/Library/Containers/com.apple.Notes"};
    for (const char* tree : trees) {
        for (int i = 0; i < 400; ++i) {
            const QString path = randomPathBelow(at(tree), random);
            ASSERT_FALSE(m_safety->isAllowed(path)) << path.toStdString();
        }
    }
    for (int i = 0; i < 2'000; ++i) {
        const QString path = randomPathBelow(home(QStringLiteral("Library/Caches/com.example")), random);
        if (path.contains(QLatin1String(".photoslibrary/")))
            continue;
        ASSERT_TRUE(m_safety->isAllowed(path)) << path.toStdString();
    }
}
