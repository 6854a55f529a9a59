#include "core/safety/Safety.h"

#include "core/files/NativePath.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <cstdlib>

namespace nubo {

namespace {

QString reasonNotLocal() { return QStringLiteral("No es un archivo local"); }
QString reasonTemporary() { return QStringLiteral("Carpeta temporal del sistema"); }
QString reasonInvalid() { return QStringLiteral("Ruta no válida"); }
QString reasonSystemFolder() { return QStringLiteral("Carpeta del sistema"); }
QString reasonProtectedTree() { return QStringLiteral("Zona protegida"); }
QString reasonPhotoLibrary() { return QStringLiteral("Dentro de una fototeca"); }
QString reasonSystemApp() { return QStringLiteral("App del sistema"); }
QString reasonNearRoot() { return QStringLiteral("Demasiado cerca de la raíz"); }

// The system's realpath: links, "." and ".." resolved; null when the path does not exist.
QString resolved(const QString& path)
{
    char buffer[PATH_MAX];
    if (!::realpath(NativePath::encode(path).constData(), buffer))
        return {};
    return NativePath::decode(buffer);
}

// Drops one trailing "/" from a path longer than one character.
QString withoutTrailingSlash(QString path)
{
    if (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

// Removes empty and "." components and folds "a/.." away, as a file URL's standardised path
// does, without touching the disk. A ".." that would climb above the root is kept, so the
// "/../" rule refuses the path instead of it quietly turning into another one.
QString standardised(const QString& path)
{
    const bool absolute = path.startsWith(QLatin1Char('/'));
    QStringList parts;
    for (const QString& part : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (part == QLatin1String("."))
            continue;
        if (part == QLatin1String("..") && !parts.isEmpty() && parts.last() != QLatin1String("..")) {
            parts.removeLast();
            continue;
        }
        parts << part;
    }
    const QString joined = parts.join(QLatin1Char('/'));
    return absolute ? QLatin1Char('/') + joined : joined;
}

// A folder as given and, when it differs, as the disk resolves it: a home reached through a link
// must be protected under both spellings, since paths are judged with their parents resolved.
QStringList spellings(const QString& folder)
{
    QStringList forms{withoutTrailingSlash(standardised(folder))};
    const QString real = resolved(folder);
    if (!real.isEmpty() && real != forms.first())
        forms << real;
    return forms;
}

constexpr const char* kFixedRoots[] = {
    "/", "/Applications", "/Users", "/private", "/private/var", "/private/tmp", "/opt", "/opt/homebrew",
    "/System/Applications",
};

constexpr const char* kHomeRoots[] = {
    "", "/Library", "/Desktop", "/Documents", "/Downloads", "/Pictures", "/Movies", "/Music", "/Public",
    "/Applications", "/.Trash", "/dev",
};

constexpr const char* kLibraryRoots[] = {
    "/Application Support", "/Caches", "/Preferences", "/LaunchAgents", "/LaunchDaemons", "/Logs",
    "/PrivilegedHelperTools", "/Frameworks", "/Extensions",
};

// Containers of removable things: their items may go, the containers themselves never.
constexpr const char* kHomeContainerRoots[] = {
    "/Library/Developer/Xcode",
    "/Library/Developer/CoreSimulator",
    "/Library/Developer/CoreSimulator/Devices",
    "/Library/Developer/CoreSimulator/Caches",
    "/Library/Developer/Xcode/DerivedData",
    "/Library/Developer/Xcode/Archives",
    "/Library/Developer/Xcode/iOS DeviceSupport",
    "/Library/Developer/Xcode/watchOS DeviceSupport",
    "/Library/Developer/Xcode/tvOS DeviceSupport",
    "/Library/Developer/Xcode/visionOS DeviceSupport",
    "/Library/Developer/Xcode/macOS DeviceSupport",
    "/Library/Application Support/MobileSync",
    "/Library/Application Support/MobileSync/Backup",
    "/Library/Preferences/ByHost",
    "/Library/Containers/com.apple.mail/Data/Library/Mail Downloads",
};

constexpr const char* kFixedTrees[] = {
    "/System", "/bin", "/sbin", "/usr", "/etc", "/dev", "/cores", "/private/etc", "/private/var/db",
    "/private/var/root", "/Volumes",
};

constexpr const char* kLibraryTrees[] = {"/Apple", "/Keychains", "/Security"};

constexpr const char* kHomeTrees[] = {
    "/Library/Keychains",
    "/Library/Mobile Documents",
    "/Library/CloudStorage",
    "/Library/Mail",
    "/Library/Messages",
    "/Library/Accounts",
    "/Library/Cookies/Cookies.binarycookies",
    "/Library/Application Support/com.apple.TCC",
    "/Library/Application Support/AddressBook",
    "/Library/Calendars",
    "/Library/Containers/com.apple.Notes",
};

} // namespace

Safety::Safety(SystemRoots roots) : m_roots(std::move(roots))
{
    m_homes = spellings(m_roots.home);
    const QString temporary = resolved(m_roots.temporary);
    m_temporary = temporary.isEmpty() ? withoutTrailingSlash(m_roots.temporary) : temporary;

    for (const char* tree : kFixedTrees)
        m_protectedTrees << QString::fromUtf8(tree);
    for (const QString& library : spellings(m_roots.library)) {
        for (const char* tree : kLibraryTrees)
            m_protectedTrees << library + QString::fromUtf8(tree);
    }
    for (const QString& home : m_homes) {
        for (const char* tree : kHomeTrees)
            m_protectedTrees << home + QString::fromUtf8(tree);
    }
}

void Safety::buildProtectedRoots() const
{
    QSet<QString> set;
    for (const char* root : kFixedRoots)
        set.insert(QString::fromUtf8(root));
    for (const QString& library : spellings(m_roots.library)) {
        set.insert(library);
        for (const char* root : kLibraryRoots)
            set.insert(library + QString::fromUtf8(root));
    }
    for (const QString& home : m_homes) {
        for (const char* root : kHomeRoots)
            set.insert(home + QString::fromUtf8(root));
        // Every folder directly inside the user's Library, as it is now: a folder made later is
        // not protected as a whole, which keeps this listing to one per run.
        const QDir library(home + QStringLiteral("/Library"));
        const QStringList names =
            library.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString& name : names)
            set.insert(home + QStringLiteral("/Library/") + name);
        for (const char* root : kHomeContainerRoots)
            set.insert(home + QString::fromUtf8(root));
    }
    m_protectedRoots = std::move(set);
}

QString Safety::normalise(const QString& path) const
{
    return normalised(path).path;
}

Safety::Normalised Safety::normalised(const QString& path) const
{
    const QString standard = withoutTrailingSlash(standardised(path));
    // A relative path is refused as it is: resolving it would judge some other folder (the
    // working directory's) than the one the caller meant.
    if (standard == QLatin1String("/") || !standard.startsWith(QLatin1Char('/')))
        return {standard, {}};
    const qsizetype slash = standard.lastIndexOf(QLatin1Char('/'));
    const QString last = standard.mid(slash + 1);
    const QString parent = slash == 0 ? QStringLiteral("/") : standard.left(slash);
    const auto join = [&last](QString folder) {
        if (folder == QLatin1String("/"))
            folder.clear();
        return folder + QLatin1Char('/') + last;
    };

    if (const QString real = resolved(parent); !real.isEmpty())
        return {join(real), {}};

    // The parent does not exist. Its text is what counts, but a link among the folders that do
    // exist could still carry the path somewhere protected once the rest is created: judge that
    // place as well.
    QString existing = parent;
    QString missing;
    QString real;
    while (real.isEmpty() && existing.size() > 1) {
        const qsizetype cut = existing.lastIndexOf(QLatin1Char('/'));
        missing.prepend(existing.mid(cut));
        existing = cut == 0 ? QStringLiteral("/") : existing.left(cut);
        real = resolved(existing);
    }
    QString landing;
    if (!real.isEmpty() && real + missing != parent)
        landing = join(real == QLatin1String("/") ? missing : real + missing);
    return {join(withoutTrailingSlash(parent)), landing};
}

Verdict Safety::judge(const QString& path) const
{
    if (path == m_temporary || path + QLatin1Char('/') == m_temporary)
        return Verdict::denied(reasonTemporary());

    if (!path.startsWith(QLatin1Char('/')) || path.contains(QLatin1String("/../")) ||
        path.endsWith(QLatin1String("/..")))
        return Verdict::denied(reasonInvalid());

    std::call_once(m_rootsOnce, [this] { buildProtectedRoots(); });
    if (m_protectedRoots.contains(path))
        return Verdict::denied(reasonSystemFolder());

    for (const QString& tree : m_protectedTrees) {
        if (path.startsWith(tree) && (path.size() == tree.size() || path.at(tree.size()) == QLatin1Char('/')))
            return Verdict::denied(reasonProtectedTree());
    }

    if (path.contains(QLatin1String(".photoslibrary/")))
        return Verdict::denied(reasonPhotoLibrary());

    if (path.startsWith(QLatin1String("/System/Applications")))
        return Verdict::denied(reasonSystemApp());

    if (path.split(QLatin1Char('/'), Qt::SkipEmptyParts).size() <= 1)
        return Verdict::denied(reasonNearRoot());

    return Verdict::allowed();
}

Verdict Safety::check(const QUrl& url) const
{
    if (!url.isLocalFile())
        return Verdict::denied(reasonNotLocal());
    return check(url.toLocalFile());
}

Verdict Safety::check(const QString& input) const
{
    // The system cuts a path at a NUL character: what it would resolve or remove is not what
    // was judged.
    if (input.contains(QChar(0)))
        return Verdict::denied(reasonInvalid());
    const Normalised path = normalised(input);
    Verdict verdict = judge(path.path);
    if (verdict.isAllowed() && !path.landing.isEmpty())
        verdict = judge(path.landing);
    return verdict;
}

} // namespace nubo
