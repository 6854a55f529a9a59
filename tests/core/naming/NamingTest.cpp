#include "core/naming/Naming.h"
#include "platform/fake/FakeWorkspace.h"

#include <gtest/gtest.h>

using nubo::Naming;

TEST(Naming, TidyMakesRawNamesReadableAndNeverEmpty)
{
    const std::pair<const char*, const char*> cases[] = {
        {"com.spotify.client", "Spotify"},
        {"org.mozilla.firefox", "Firefox"},
        {"com.microsoft.VSCode", "VSCode"},
        {"us.zoom.xos", "Zoom"},                // a short code says less than the vendor
        {"com.google.Chrome.helper", "Chrome"}, // generic trailing labels are parts, not products
        {"io.github.some-tool", "Some Tool"},
        {"com.example.thing.savedState", "Thing"},
        {"group.com.example.shared", "Shared"},
        {"google-chrome", "Google Chrome"},
        {"my_cool_app", "My Cool App"},
        {"Visual-Studio", "Visual Studio"}, // capitals are kept as written
        {".npm", "npm"},                    // one word keeps its spelling, less the dot
        {"yarn", "yarn"},
        {"python3.11", "python3.11"}, // two dotted labels are not an identifier
        {"  spaced out  ", "Spaced Out"},
    };
    for (const auto& [raw, shown] : cases)
        EXPECT_EQ(Naming::tidy(QString::fromUtf8(raw)), QString::fromUtf8(shown)) << raw;
    for (const char* raw : {".", "..", ".plist", "---", "_", "we\"ird\\name\n-rf"})
        EXPECT_FALSE(Naming::tidy(QString::fromUtf8(raw)).isEmpty()) << raw;
}

// Fixed names beat Apple's components, which beat the registry, which beats the tidied name; and
// Apple's own components are never looked up, whatever the registry holds.
TEST(Naming, ResolveTakesTheFirstSourceThatKnowsTheName)
{
    nubo::FakeWorkspace workspace;
    const QString spotify = QStringLiteral("/Applications/Spotify.app");
    const QString teams = QStringLiteral("/Applications/Microsoft Teams.app");
    const QString nautilus = QStringLiteral("/usr/share/applications/org.gnome.Nautilus.desktop");
    workspace.applications = {
        {QStringLiteral("com.spotify.client"), spotify},
        {QStringLiteral("com.microsoft.teams2"), teams},
        {QStringLiteral("org.gnome.Nautilus"), nautilus},
        {QStringLiteral("com.apple.Safari"), QStringLiteral("/Applications/Other.app")}};
    const QString macOS = QStringLiteral("Componente de macOS");
    const std::pair<const char*, Naming::Resolved> cases[] = {
        {"CloudKit", {QStringLiteral("iCloud"), {}, {}}},
        {"com.apple.Safari", {QStringLiteral("Safari"), macOS, {}}},
        {"com.apple.bird", {QStringLiteral("Bird"), macOS, {}}},
        {"homebrew.mxcl.postgresql@15",
         {QStringLiteral("postgresql@15"), QStringLiteral("Servicio de Homebrew"), {}}},
        {"com.spotify.client", {QStringLiteral("Spotify"), {}, spotify}},
        {"com.spotify.client.plist", {QStringLiteral("Spotify"), {}, spotify}},
        {"UBF8T346G9.com.microsoft.teams2", {QStringLiteral("Microsoft Teams"), {}, teams}},
        {"group.com.microsoft.teams2", {QStringLiteral("Microsoft Teams"), {}, teams}},
        {"org.gnome.Nautilus", {QStringLiteral("Nautilus"), {}, nautilus}},
        {"com.vendor.gone", {QStringLiteral("Gone"), {}, {}}}, // not installed: the tidied name, no owner
        {"snake_case_tool", {QStringLiteral("Snake Case Tool"), {}, {}}},
    };
    const Naming naming(Naming::lookupIn(workspace));
    for (const auto& [raw, resolved] : cases)
        EXPECT_EQ(naming.resolve(QString::fromUtf8(raw)), resolved) << raw;
    EXPECT_EQ(Naming().resolve(QStringLiteral("com.spotify.client")),
              (Naming::Resolved{QStringLiteral("Spotify"), {}, {}}));
}

TEST(Naming, DerivedDataIsNamedByItsProjectOnlyWhenAHashFollows)
{
    const std::pair<const char*, const char*> cases[] = {
        {"MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct", "MyApp"},
        {"My-Great-App-bqzdhfkeyqxeojaytwqqhxxjlmct", "My-Great-App"},
        {"ModuleCache.noindex", "ModuleCache.noindex"},
        {"Tool-abc", "Tool-abc"}, // not a hash
    };
    for (const auto& [folder, project] : cases)
        EXPECT_EQ(Naming::derivedDataName(QString::fromUtf8(folder)), QString::fromUtf8(project)) << folder;
}
