#include "SafetyFixture.h"

using namespace nubo;
using SafetyTest = nubo::testing::SafetyFixture;

TEST_F(SafetyTest, TopOfTheHomeAndTheLibraryContainersAreSystemFolders)
{
    for (const char* relative : {"", "Library", "Library/Caches", "Desktop", "Documents", "Downloads", "Pictures",
                                 "Movies", "Music", "Public", "Applications", ".Trash", "dev",
                                 "Library/Developer/Xcode", "Library/Developer/Xcode/DerivedData",
                                 "Library/Developer/Xcode/iOS DeviceSupport", "Library/Application Support/MobileSync/Backup",
                                 "Library/Preferences/ByHost",
                                 "Library/Containers/com.apple.mail/Data/Library/Mail Downloads",
                                 "Library/Existing"}) {
        EXPECT_TRUE(denied(home(QString::fromUtf8(relative)), "Carpeta del sistema"));
    }
    EXPECT_TRUE(denied(m_roots.library, "Carpeta del sistema"));
    EXPECT_TRUE(denied(m_roots.library + QStringLiteral("/Caches"), "Carpeta del sistema"));
    for (const char* path : {"/", "/Applications", "/Users", "/private", "/private/var", "/private/tmp", "/opt",
                             "/opt/homebrew"}) {
        EXPECT_TRUE(denied(QString::fromUtf8(path), "Carpeta del sistema"));
    }
}

TEST_F(SafetyTest, ItemsInsideTheContainersMayGo)
{
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Caches/com.example"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Caches/x"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Developer/Xcode/DerivedData/Foo-abc"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Downloads/installer.dmg"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/app"))));
    EXPECT_TRUE(allowed(m_roots.library + QStringLiteral("/Caches/com.vendor")));
    EXPECT_TRUE(allowed(QStringLiteral("/foo/bar")));
    EXPECT_TRUE(allowed(QStringLiteral("/usrdata/x"))); // a protected name is only a prefix up to a "/"
}

TEST_F(SafetyTest, ProtectedTreesAndEverythingBelow)
{
    // ~/Library/Mail itself is a folder of the Library, refused as such; what is inside is a protected tree.
    EXPECT_TRUE(denied(home(QStringLiteral("Library/Mail")), "Carpeta del sistema"));
    for (const char* relative : {"Library/Mail/V10", "Library/Mail/V10/x", "Library/Mobile Documents/x",
                                 "Library/Keychains/login.keychain-db", "Library/Messages/chat.db",
                                 "Library/Cookies/Cookies.binarycookies", "Library/Containers/com.apple.Notes/Data",
                                 "Library/Application Support/com.apple.TCC/TCC.db", "Library/CloudStorage/Dropbox/x"}) {
        EXPECT_TRUE(denied(home(QString::fromUtf8(relative)), "Zona protegida"));
    }
    for (const char* path : {"/System/Library/x", "/usr/local/bin/tool", "/bin/sh", "/Volumes/Disk/anything",
                             "/Volumes/Disk", "/private/var/db/x", "/etc/hosts", "/dev/null"}) {
        EXPECT_TRUE(denied(QString::fromUtf8(path), "Zona protegida"));
    }
    EXPECT_TRUE(denied(m_roots.library + QStringLiteral("/Apple/x"), "Zona protegida"));
    EXPECT_TRUE(denied(m_roots.library + QStringLiteral("/Keychains"), "Zona protegida"));
    // Names that merely begin with a protected name are not inside it.
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/MailData/x"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Messages Backup/x"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Containers/com.apple.NotesExtra/x"))));
}

TEST_F(SafetyTest, PhotoLibrariesSystemAppsAndTheRoot)
{
    EXPECT_TRUE(denied(home(QStringLiteral("Pictures/Photos Library.photoslibrary/media/x")), "Dentro de una fototeca"));
    EXPECT_TRUE(denied(home(QStringLiteral("Pictures/Photos Library.photoslibrary/media")), "Dentro de una fototeca"));
    EXPECT_TRUE(allowed(home(QStringLiteral("Pictures/Photos Library.photoslibrary"))));
    EXPECT_TRUE(denied(QStringLiteral("/System/Applications"), "Carpeta del sistema"));
    EXPECT_TRUE(denied(QStringLiteral("/foo"), "Demasiado cerca de la raíz"));
    EXPECT_TRUE(denied(QStringLiteral("/.Trashes"), "Demasiado cerca de la raíz"));
}

TEST_F(SafetyTest, ALinkIsJudgedWhereItStandsNotWhereItPoints)
{
    link(QStringLiteral("/usr"), home(QStringLiteral("Projects/usr-link")));
    link(home(QStringLiteral("Library")), home(QStringLiteral("Projects/lib-link")));
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/usr-link"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/lib-link"))));
}

TEST_F(SafetyTest, LinksInTheParentChainAreResolved)
{
    link(QStringLiteral("/usr"), home(QStringLiteral("Projects/usr-link")));
    link(home(QStringLiteral("Library")), home(QStringLiteral("Projects/lib-link")));
    link(home(), home(QStringLiteral("Projects/home-link")));
    link(QStringLiteral("/"), home(QStringLiteral("Projects/root-link")));
    link(home(QStringLiteral("Projects/lib-link")), home(QStringLiteral("Projects/chain")));

    EXPECT_TRUE(denied(home(QStringLiteral("Projects/usr-link/bin")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/lib-link/Mail")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/lib-link/Mail/V10")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/lib-link/Caches")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/home-link/Library")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/root-link/usr")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/root-link/Volumes/x/y")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/chain/Mail/V10")), "Zona protegida"));
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/lib-link/Caches/com.example"))));
}

TEST_F(SafetyTest, AMissingParentIsJudgedAlsoWhereItsExistingLinksLead)
{
    link(home(QStringLiteral("Library")), home(QStringLiteral("Projects/lib-link")));
    link(QStringLiteral("/"), home(QStringLiteral("Projects/root-link")));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/lib-link/Mail/nothere/x")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/root-link/usr/nothere/x")), "Zona protegida"));
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/lib-link/nothere/x"))));
    // The text still counts on its own: a protected spelling stays refused whatever it resolves to.
    EXPECT_TRUE(denied(QStringLiteral("/Volumes/Disk/nothere/x"), "Zona protegida"));
}

TEST_F(SafetyTest, AHomeReachedThroughALinkIsProtectedUnderBothSpellings)
{
    link(home(), base(QStringLiteral("home-alias")));
    Safety safety(SystemRoots{base(QStringLiteral("home-alias")), m_roots.library, m_roots.temporary},
                  SafetyRules::forMac());
    for (const QString& spelling : {base(QStringLiteral("home-alias")), home()}) {
        EXPECT_FALSE(safety.isAllowed(spelling)) << spelling.toStdString();
        EXPECT_FALSE(safety.isAllowed(spelling + QStringLiteral("/Library/Caches"))) << spelling.toStdString();
        EXPECT_FALSE(safety.isAllowed(spelling + QStringLiteral("/Library/Mail/x"))) << spelling.toStdString();
        EXPECT_TRUE(safety.isAllowed(spelling + QStringLiteral("/Library/Caches/x"))) << spelling.toStdString();
    }
}

TEST_F(SafetyTest, DotSegmentsAndSlashesCannotDisguiseAPath)
{
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/../Library")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home(QStringLiteral("./Library/Caches/.")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/app/../../Library/Mail/y")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Library//Caches//")), "Carpeta del sistema"));
    EXPECT_TRUE(denied(home() + QStringLiteral("/"), "Carpeta del sistema"));
    EXPECT_TRUE(denied(QStringLiteral("//"), "Carpeta del sistema"));
    EXPECT_TRUE(denied(QStringLiteral("/../../usr/bin"), "Zona protegida"));
    EXPECT_TRUE(denied(QStringLiteral("/../nowhere/x"), "Ruta no válida"));
    EXPECT_TRUE(denied(QStringLiteral("/.."), "Ruta no válida"));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Caches/x/"))));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/Caches/./x"))));
}

TEST_F(SafetyTest, MissingPathsAreJudgedOnTheirText)
{
    EXPECT_TRUE(allowed(home(QStringLiteral("nothere/deeper/x"))));
    EXPECT_TRUE(denied(home(QStringLiteral("Library/Mail/nothere/x")), "Zona protegida"));
    EXPECT_TRUE(denied(home(QStringLiteral("Desktop/")), "Carpeta del sistema"));
    EXPECT_EQ(m_safety->assess(home(QStringLiteral("nothere/x/"))).path, home(QStringLiteral("nothere/x")));
}

TEST_F(SafetyTest, TheLibraryIsListedOnceOnFirstUse)
{
    EXPECT_TRUE(allowed(home(QStringLiteral("Projects/app"))));
    ASSERT_TRUE(QDir(home()).mkpath(QStringLiteral("Library/MadeLater")));
    EXPECT_TRUE(allowed(home(QStringLiteral("Library/MadeLater"))));
    EXPECT_TRUE(denied(home(QStringLiteral("Library/Existing")), "Carpeta del sistema"));

    // A gate built now sees the new folder.
    Safety fresh(m_roots, SafetyRules::forMac());
    EXPECT_FALSE(fresh.isAllowed(home(QStringLiteral("Library/MadeLater"))));
}

TEST_F(SafetyTest, TheTemporaryFolderItselfButNotItsItems)
{
    EXPECT_TRUE(denied(base(QStringLiteral("tmp-user/T")), "Carpeta temporal del sistema"));
    EXPECT_TRUE(denied(base(QStringLiteral("tmp-user/T/")), "Carpeta temporal del sistema"));
    EXPECT_TRUE(allowed(base(QStringLiteral("tmp-user/T/item"))));

    // A temporary folder that does not exist is compared as written, less one trailing "/".
    Safety missing(SystemRoots{m_roots.home, m_roots.library, base(QStringLiteral("gone/T/"))},
                   SafetyRules::forMac());
    EXPECT_EQ(missing.check(base(QStringLiteral("gone/T"))), Verdict::denied(QStringLiteral("Carpeta temporal del sistema")));
}

TEST_F(SafetyTest, BadInputIsRefusedWithAClearReason)
{
    EXPECT_TRUE(denied(QString(), "Ruta no válida"));
    EXPECT_TRUE(denied(QStringLiteral("Library/Caches/x"), "Ruta no válida"));
    EXPECT_TRUE(denied(QStringLiteral("./x/y"), "Ruta no válida"));
    // The system would cut the path at the NUL and act on another one.
    EXPECT_TRUE(denied(home(QStringLiteral("Projects/app")) + QChar(0) + QStringLiteral("/../../Library"), "Ruta no válida"));
    EXPECT_EQ(m_safety->check(QUrl(QStringLiteral("https://example.com/a/b"))),
              Verdict::denied(QStringLiteral("No es un archivo local")));
    EXPECT_TRUE(m_safety->check(QUrl::fromLocalFile(home(QStringLiteral("Library/Caches/x")))).isAllowed());
    EXPECT_FALSE(m_safety->check(QUrl::fromLocalFile(home(QStringLiteral("Library/Caches")))).isAllowed());
}

TEST_F(SafetyTest, OddNamesAreJudgedLikeAnyOther)
{
    const QString names[] = {
        QStringLiteral("quote\"d"), QStringLiteral("back\\slash"), QStringLiteral("new\nline"),
        QStringLiteral("-rf"), QStringLiteral("it's"), QStringLiteral("  spaced  "),
        QFile::decodeName(QByteArray("bad\xff\xfe")), QStringLiteral("ñandú 🎈"),
    };
    for (const QString& name : names) {
        EXPECT_TRUE(allowed(home(QStringLiteral("Library/Caches/")) + name));
        EXPECT_TRUE(denied(home(QStringLiteral("Library/Mail/")) + name, "Zona protegida"));
        EXPECT_TRUE(denied(QStringLiteral("/") + name, "Demasiado cerca de la raíz"));
    }
}
