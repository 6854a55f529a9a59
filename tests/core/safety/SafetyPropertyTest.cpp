#include "SafetyFixture.h"

#include <QRandomGenerator>

using namespace nubo;
using SafetyPropertyTest = nubo::testing::SafetyFixture;

namespace {

// Path components the generator draws from: odd characters, protected-looking names, spaces.
QString randomComponent(QRandomGenerator& random)
{
    static const QStringList pieces = {
        QStringLiteral("a"),       QStringLiteral("Caches"),   QStringLiteral("Library"), QStringLiteral("-rf"),
        QStringLiteral("x y"),     QStringLiteral("q\"uote"),  QStringLiteral("b\\s"),    QStringLiteral("n\nl"),
        QStringLiteral("it's"),    QStringLiteral("Mail"),     QStringLiteral("ñ"),       QStringLiteral(".hidden"),
        QStringLiteral("...") ,    QStringLiteral("photoslibrary"), QStringLiteral("tmp"), QStringLiteral("~"),
        QFile::decodeName(QByteArray("\xff\xfe")),
    };
    QString component;
    const int parts = 1 + int(random.bounded(3));
    for (int i = 0; i < parts; ++i)
        component += pieces.at(int(random.bounded(pieces.size())));
    return component;
}

// A path strictly below `tree`, 1 to 6 components deep, sometimes with redundant "/", "./"
// segments or a trailing "/", none of which may move it out of the tree.
QString randomPathBelow(const QString& tree, QRandomGenerator& random)
{
    QString path = tree;
    const int depth = 1 + int(random.bounded(6));
    for (int i = 0; i < depth; ++i) {
        switch (random.bounded(6)) {
        case 0:
            path += QStringLiteral("/./");
            break;
        case 1:
            path += QStringLiteral("//");
            break;
        default:
            path += QLatin1Char('/');
        }
        path += randomComponent(random);
    }
    if (random.bounded(4) == 0)
        path += QLatin1Char('/');
    return path;
}

// Spellings of exactly `root`: trailing slashes, doubled slashes, a "." or a "x/.." detour.
QStringList spellingsOf(const QString& root)
{
    QStringList forms = {root, root + QStringLiteral("/"), root + QStringLiteral("//"), root + QStringLiteral("/."),
                         root + QStringLiteral("/./"), root + QStringLiteral("/x/.."), root + QStringLiteral("/x/../")};
    if (root.size() > 1) {
        QString doubled = root;
        doubled.replace(QLatin1Char('/'), QStringLiteral("//"));
        forms << doubled;
    }
    return forms;
}

} // namespace

TEST_F(SafetyPropertyTest, NothingGeneratedInsideAProtectedTreeIsEverAllowed)
{
    QRandomGenerator random(20261121);
    QStringList trees = {QStringLiteral("/System"), QStringLiteral("/bin"), QStringLiteral("/sbin"),
                         QStringLiteral("/usr"), QStringLiteral("/etc"), QStringLiteral("/dev"),
                         QStringLiteral("/cores"), QStringLiteral("/private/etc"), QStringLiteral("/private/var/db"),
                         QStringLiteral("/private/var/root"), QStringLiteral("/Volumes"),
                         QStringLiteral("/System/Applications"),
                         home(QStringLiteral("Pictures/Photos Library.photoslibrary"))};
    for (const char* tree : {"/Apple", "/Keychains", "/Security"})
        trees << m_roots.library + QString::fromUtf8(tree);
    for (const char* tree : {"Library/Keychains", "Library/Mobile Documents", "Library/CloudStorage", "Library/Mail",
                             "Library/Messages", "Library/Accounts", "Library/Cookies/Cookies.binarycookies",
                             "Library/Application Support/com.apple.TCC", "Library/Application Support/AddressBook",
                             "Library/Calendars", "Library/Containers/com.apple.Notes"})
        trees << home(QString::fromUtf8(tree));

    int checked = 0;
    for (const QString& tree : trees) {
        for (int i = 0; i < 400; ++i) {
            const QString path = randomPathBelow(tree, random);
            ASSERT_FALSE(m_safety->isAllowed(path)) << path.toStdString();
            ++checked;
        }
    }
    EXPECT_GE(checked, 10'000);
}

TEST_F(SafetyPropertyTest, NoSpellingOfAProtectedRootIsAllowed)
{
    QStringList roots = {QStringLiteral("/"), QStringLiteral("/Applications"), QStringLiteral("/Users"),
                         QStringLiteral("/private"), QStringLiteral("/private/var"), QStringLiteral("/private/tmp"),
                         QStringLiteral("/opt"), QStringLiteral("/opt/homebrew"), m_roots.library,
                         base(QStringLiteral("tmp-user/T"))};
    for (const char* relative : {"", "Library", "Desktop", "Documents", "Downloads", "Pictures", "Movies", "Music",
                                 "Public", "Applications", ".Trash", "dev", "Library/Caches", "Library/Existing",
                                 "Library/Developer/Xcode/DerivedData", "Library/Developer/CoreSimulator/Devices",
                                 "Library/Developer/Xcode/Archives", "Library/Application Support/MobileSync/Backup"})
        roots << home(QString::fromUtf8(relative));
    for (const char* relative : {"/Application Support", "/Caches", "/Preferences", "/LaunchAgents", "/LaunchDaemons",
                                 "/Logs", "/PrivilegedHelperTools", "/Frameworks", "/Extensions"})
        roots << m_roots.library + QString::fromUtf8(relative);

    for (const QString& root : roots) {
        for (const QString& spelling : spellingsOf(root))
            EXPECT_FALSE(m_safety->isAllowed(spelling)) << spelling.toStdString();
    }
}

TEST_F(SafetyPropertyTest, RandomPathsBelowAnAllowedFolderStayAllowed)
{
    // The other side of the property: the gate must not refuse everything.
    QRandomGenerator random(7);
    for (int i = 0; i < 2'000; ++i) {
        QString path = randomPathBelow(home(QStringLiteral("Library/Caches/com.example")), random);
        if (path.contains(QLatin1String(".photoslibrary/")))
            continue;
        ASSERT_TRUE(m_safety->isAllowed(path)) << path.toStdString();
    }
}
