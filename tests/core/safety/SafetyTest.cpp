#include "SafetyFixture.h"

using namespace nubo;
using SafetyTest = nubo::testing::SafetyFixture;

// Links in the home lead to the system, the Library, the home and the root; a path is judged
// where it stands, with its parents (and the links among them that exist) resolved.
TEST_F(SafetyTest, EveryPathGetsItsReasonUnderEverySpelling)
{
    for (const auto& [target, name] :
         {std::pair{"/usr", "usr-link"}, std::pair{"~/Library", "lib-link"}, std::pair{"~", "home-link"},
          std::pair{"/", "root-link"}, std::pair{"~/Projects/lib-link", "chain"}})
        link(at(target), home(QStringLiteral("Projects/")) + QString::fromUtf8(name));
    expectReasons(
        *m_safety,
        {{"Carpeta del sistema",
          {"/", "/Applications", "/Users", "/private", "/private/var", "/private/tmp", "/opt",
           "/opt/homebrew", "/System/Applications", "^", "^/Application Support", "^/Caches", "^/Preferences",
           "^/LaunchAgents", "^/LaunchDaemons", "^/Logs", "^/PrivilegedHelperTools", "^/Frameworks",
           "^/Extensions", "~", "~/Library", "~/Library/Caches", "~/Desktop", "~/Documents", "~/Downloads",
           "~/Pictures", "~/Movies", "~/Music", "~/Public", "~/Applications", "~/.Trash", "~/dev",
           "~/Library/Developer/Xcode", "~/Library/Developer/Xcode/DerivedData",
           "~/Library/Developer/Xcode/iOS DeviceSupport", "~/Library/Developer/Xcode/Archives",
           "~/Library/Developer/CoreSimulator/Devices", "~/Library/Application Support/MobileSync/Backup",
           "~/Library/Preferences/ByHost", "~/Library/Containers/com.apple.mail/Data/Library/Mail Downloads",
           // Entries the Library held when the gate first looked, Mail among them.
           "~/Library/Existing", "~/Library/Mail", "~/Projects/../Library", "~/./Library/Caches/.",
           "~/Projects/lib-link/Mail", "~/Projects/lib-link/Caches", "~/Projects/home-link/Library"}},
         {"Zona protegida",
          {"~/Library/Mail/V10", "~/Library/Mail/V10/x", "~/Library/Mobile Documents/x",
           "~/Library/Keychains/login.keychain-db", "~/Library/Messages/chat.db",
           "~/Library/Cookies/Cookies.binarycookies", "~/Library/Containers/com.apple.Notes/Data",
           "~/Library/Application Support/com.apple.TCC/TCC.db", "~/Library/CloudStorage/Dropbox/x",
           "/System/Library/x", "/usr/local/bin/tool", "/bin/sh", "/Volumes/Disk", "/Volumes/Disk/anything",
           "/private/var/db/x", "/etc/hosts", "/dev/null", "^/Apple/x", "^/Keychains",
           "~/Projects/app/../../Library/Mail/y", "/../../usr/bin", "~/Projects/usr-link/bin",
           "~/Projects/lib-link/Mail/V10", "~/Projects/root-link/usr", "~/Projects/root-link/Volumes/x/y",
           "~/Projects/chain/Mail/V10",
           // A missing parent counts by its text, and also by where its existing links lead.
           "~/Library/Mail/nothere/x", "/Volumes/Disk/nothere/x", "~/Projects/lib-link/Mail/nothere/x",
           "~/Projects/root-link/usr/nothere/x"}},
         {"Dentro de una fototeca",
          {"~/Pictures/Photos Library.photoslibrary/media",
           "~/Pictures/Photos Library.photoslibrary/media/x"}},
         {"Demasiado cerca de la raíz", {"/foo", "/.Trashes"}},
         {"Carpeta temporal del sistema", {"@tmp-user/T"}},
         {"Ruta no válida", {"/../nowhere/x", "/.."}},
         // A protected name is only a prefix up to a "/"; a link itself may go, never its target.
         {"allowed",
          {"~/Library/Caches/com.example", "~/Library/Caches/x",
           "~/Library/Developer/Xcode/DerivedData/Foo-abc", "~/Downloads/installer.dmg", "~/Projects/app",
           "^/Caches/com.vendor", "/foo/bar", "/usrdata/x", "~/Library/MailData/x",
           "~/Library/Messages Backup/x", "~/Library/Containers/com.apple.NotesExtra/x",
           "~/Pictures/Photos Library.photoslibrary", "~/Projects/usr-link", "~/Projects/lib-link",
           "~/Projects/lib-link/Caches/com.example", "~/Projects/lib-link/nothere/x", "~/nothere/deeper/x",
           "@tmp-user/T/item", "~/Library/Caches/./x"}}});
    // What is allowed is the path as judged, which a deletion acts on.
    EXPECT_EQ(m_safety->assess(home(QStringLiteral("nothere/x/"))).path, home(QStringLiteral("nothere/x")));
}

TEST_F(SafetyTest, BadInputIsRefusedWithAClearReason)
{
    // The NUL would make the system cut the path and act on another one.
    for (const QString& path :
         {QString(), QStringLiteral("Library/Caches/x"), QStringLiteral("./x/y"),
          home(QStringLiteral("Projects/app")) + QChar(0) + QStringLiteral("/../../Library")})
        EXPECT_EQ(reasonOf(*m_safety, path), QStringLiteral("Ruta no válida")) << path.toStdString();
    EXPECT_EQ(m_safety->check(QUrl(QStringLiteral("https://example.com/a/b"))),
              Verdict::denied(QStringLiteral("No es un archivo local")));
    EXPECT_TRUE(m_safety->check(QUrl::fromLocalFile(home(QStringLiteral("Library/Caches/x")))).isAllowed());
    EXPECT_FALSE(m_safety->check(QUrl::fromLocalFile(home(QStringLiteral("Library/Caches")))).isAllowed());
}

TEST_F(SafetyTest, OddNamesAreJudgedLikeAnyOther)
{
    for (const QString& name :
         {QStringLiteral("quote\"d"), QStringLiteral("back\\slash"), QStringLiteral("new\nline"),
          QStringLiteral("-rf"), QStringLiteral("it's"), QStringLiteral("  spaced  "),
          QFile::decodeName(QByteArray("bad\xff\xfe")), QStringLiteral("ñandú 🎈")}) {
        for (const auto& [folder, reason] :
             {std::pair{"~/Library/Caches/", "allowed"}, std::pair{"~/Library/Mail/", "Zona protegida"},
              std::pair{"/", "Demasiado cerca de la raíz"}})
            EXPECT_EQ(reasonOf(*m_safety, at(folder) + name), QString::fromUtf8(reason))
                << name.toStdString();
    }
}

// The Library is listed once, when the gate is first used: a folder made later is an item.
TEST_F(SafetyTest, TheLibraryIsListedOnceOnFirstUse)
{
    EXPECT_TRUE(m_safety->isAllowed(home(QStringLiteral("Projects/app"))));
    ASSERT_TRUE(QDir(home()).mkpath(QStringLiteral("Library/MadeLater")));
    EXPECT_TRUE(m_safety->isAllowed(home(QStringLiteral("Library/MadeLater"))));
    EXPECT_FALSE(Safety(m_roots, SafetyRules::forMac()).isAllowed(home(QStringLiteral("Library/MadeLater"))));
}

// A home given through a link is protected under both spellings; a temporary folder that does
// not exist is compared as written, less one trailing "/".
TEST_F(SafetyTest, RootsGivenThroughALinkOrMissingStayProtected)
{
    link(home(), base(QStringLiteral("home-alias")));
    const Safety safety(
        SystemRoots{base(QStringLiteral("home-alias")), m_roots.library, base(QStringLiteral("gone/T/"))},
        SafetyRules::forMac());
    expectReasons(safety, {{"Carpeta del sistema",
                            {"@home-alias", "~", "@home-alias/Library/Caches", "~/Library/Caches"}},
                           {"Zona protegida", {"@home-alias/Library/Mail/x", "~/Library/Mail/x"}},
                           {"allowed", {"@home-alias/Library/Caches/x", "~/Library/Caches/x"}},
                           {"Carpeta temporal del sistema", {"@gone/T"}}});
}
