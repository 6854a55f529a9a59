#include "core/naming/Naming.h"
#include "platform/fake/FakeWorkspace.h"

#include <gtest/gtest.h>

#include <QHash>

using nubo::Naming;

namespace {

// Installed applications by bundle identifier, as the workspace would answer.
Naming withApps(QHash<QString, QString> apps, QStringList* asked = nullptr)
{
    return Naming([apps = std::move(apps), asked](const QString& identifier) {
        if (asked)
            *asked << identifier;
        return apps.value(identifier);
    });
}

} // namespace

TEST(Naming, TidyMakesRawNamesReadable)
{
    const std::pair<const char*, const char*> cases[] = {
        {"com.spotify.client", "Spotify"},
        {"org.mozilla.firefox", "Firefox"},
        {"com.microsoft.VSCode", "VSCode"},
        {"com.docker.docker", "Docker"},
        {"us.zoom.xos", "Zoom"},                         // a short code says less than the vendor
        {"com.tinyspeck.slackmacgap", "Slackmacgap"},
        {"com.google.Chrome.helper", "Chrome"},          // generic trailing labels are parts, not products
        {"com.vendor.app", "Vendor"},
        {"io.github.some-tool", "Some Tool"},
        {"com.hnc.Discord.ShipIt", "Discord"},
        {"com.example.thing.plist", "Thing"},
        {"com.example.thing.savedState", "Thing"},
        {"group.com.example.shared", "Shared"},
        {"google-chrome", "Google Chrome"},
        {"my_cool_app", "My Cool App"},
        {"node_modules", "Node Modules"},
        {"Visual-Studio", "Visual Studio"},               // capitals are kept as written
        {".npm", "npm"},                                  // one word keeps its spelling, less the dot
        {"yarn", "yarn"},
        {"Google", "Google"},
        {"python3.11", "python3.11"},                     // two dotted labels are not an identifier
        {"CloudKit", "CloudKit"},
        {"  spaced out  ", "Spaced Out"},
    };
    for (const auto& [raw, shown] : cases)
        EXPECT_EQ(Naming::tidy(QString::fromUtf8(raw)), QString::fromUtf8(shown)) << raw;
}

TEST(Naming, TidyNeverReturnsNothing)
{
    for (const char* raw : {"", ".", "..", ".plist", "---", "_"}) {
        const QString shown = Naming::tidy(QString::fromUtf8(raw));
        EXPECT_FALSE(shown.isEmpty() && !QString::fromUtf8(raw).isEmpty()) << raw;
    }
    const QString odd = QStringLiteral("we\"ird\\name\n-rf");
    EXPECT_FALSE(Naming::tidy(odd).isEmpty());
}

TEST(Naming, KnownNamesComeFirst)
{
    QStringList asked;
    const Naming naming = withApps({{QStringLiteral("com.apple.Safari"), QStringLiteral("/Applications/Other.app")}},
                                   &asked);
    EXPECT_EQ(naming.resolve(QStringLiteral("CloudKit")), (Naming::Resolved{QStringLiteral("iCloud"), {}, {}}));
    EXPECT_EQ(naming.resolve(QStringLiteral("pip")).name, QStringLiteral("Python (pip)"));
    EXPECT_EQ(naming.resolve(QStringLiteral("node-gyp")).name, QStringLiteral("Node.js"));
    EXPECT_EQ(naming.resolve(QStringLiteral("com.apple.Music")).name, QStringLiteral("Música"));
    EXPECT_EQ(naming.resolve(QStringLiteral("com.apple.Safari")),
              (Naming::Resolved{QStringLiteral("Safari"), QStringLiteral("Componente de macOS"), {}}));
    EXPECT_TRUE(asked.isEmpty());
}

TEST(Naming, AppleComponentsAreMarkedAndNeverLookedUp)
{
    QStringList asked;
    const Naming naming = withApps({}, &asked);
    const Naming::Resolved resolved = naming.resolve(QStringLiteral("com.apple.bird"));
    EXPECT_EQ(resolved.subtitle, QStringLiteral("Componente de macOS"));
    EXPECT_EQ(resolved.name, QStringLiteral("Bird"));
    EXPECT_TRUE(resolved.appUrl.isEmpty());
    EXPECT_TRUE(asked.isEmpty());
}

TEST(Naming, TheOwningApplicationNamesItsFolders)
{
    const QString spotify = QStringLiteral("/Applications/Spotify.app");
    const QString teams = QStringLiteral("/Applications/Microsoft Teams.app");
    const Naming naming = withApps({{QStringLiteral("com.spotify.client"), spotify},
                                    {QStringLiteral("com.microsoft.teams2"), teams}});
    EXPECT_EQ(naming.resolve(QStringLiteral("com.spotify.client")),
              (Naming::Resolved{QStringLiteral("Spotify"), {}, spotify}));
    EXPECT_EQ(naming.resolve(QStringLiteral("com.spotify.client.plist")).appUrl, spotify);
    EXPECT_EQ(naming.resolve(QStringLiteral("UBF8T346G9.com.microsoft.teams2")).name, QStringLiteral("Microsoft Teams"));
    EXPECT_EQ(naming.resolve(QStringLiteral("group.com.microsoft.teams2")).appUrl, teams);
    // Not installed: the tidied name, and no owner.
    EXPECT_EQ(naming.resolve(QStringLiteral("com.vendor.gone")), (Naming::Resolved{QStringLiteral("Gone"), {}, {}}));
    EXPECT_EQ(Naming().resolve(QStringLiteral("com.spotify.client")).name, QStringLiteral("Spotify"));
}

TEST(Naming, HomebrewServicesAndDerivedData)
{
    EXPECT_EQ(Naming().resolve(QStringLiteral("homebrew.mxcl.postgresql@15")),
              (Naming::Resolved{QStringLiteral("postgresql@15"), QStringLiteral("Servicio de Homebrew"), {}}));
    EXPECT_EQ(Naming::derivedDataName(QStringLiteral("MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct")), QStringLiteral("MyApp"));
    EXPECT_EQ(Naming::derivedDataName(QStringLiteral("My-Great-App-bqzdhfkeyqxeojaytwqqhxxjlmct")),
              QStringLiteral("My-Great-App"));
    EXPECT_EQ(Naming::derivedDataName(QStringLiteral("ModuleCache.noindex")), QStringLiteral("ModuleCache.noindex"));
    EXPECT_EQ(Naming::derivedDataName(QStringLiteral("Tool-abc")), QStringLiteral("Tool-abc")); // not a hash
    EXPECT_EQ(Naming::derivedData(QStringLiteral("MyApp-bqzdhfkeyqxeojaytwqqhxxjlmct")).subtitle,
              QStringLiteral("Proyecto de Xcode"));
}

TEST(Naming, TheWorkspaceRegistryFindsOwners)
{
    nubo::FakeWorkspace workspace;
    workspace.applications.insert(QStringLiteral("com.figma.Desktop"), QStringLiteral("/Applications/Figma.app"));
    const Naming naming(Naming::lookupIn(workspace));
    EXPECT_EQ(naming.resolve(QStringLiteral("com.figma.Desktop")),
              (Naming::Resolved{QStringLiteral("Figma"), {}, QStringLiteral("/Applications/Figma.app")}));
    // The registry is asked by exact identifier; an unknown one falls back to the tidied name.
    EXPECT_EQ(naming.resolve(QStringLiteral("com.figma.agent")), (Naming::Resolved{QStringLiteral("Figma"), {}, {}}));
    workspace.applications.insert(QStringLiteral("org.gnome.Nautilus"),
                                  QStringLiteral("/usr/share/applications/org.gnome.Nautilus.desktop"));
    EXPECT_EQ(naming.resolve(QStringLiteral("org.gnome.Nautilus")).name, QStringLiteral("Nautilus"));
    EXPECT_EQ(naming.resolve(QStringLiteral("com.jetbrains.intellij-ce")).name, QStringLiteral("Intellij Ce"));
    EXPECT_EQ(naming.resolve(QStringLiteral("snake_case_tool")).name, QStringLiteral("Snake Case Tool"));
}
