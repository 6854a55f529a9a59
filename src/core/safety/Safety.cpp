#include "core/safety/Safety.h"

#include "core/files/MountTable.h"
#include "core/files/NativePath.h"
#include "core/files/UserDirectories.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

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
QString reasonOtherUser() { return QStringLiteral("Pertenece a otro usuario"); }

// The mount table changes when a volume comes or goes; reading it for every path would cost more
// than the rest of the check, and no one selects a path on a volume within a second of mounting it.
constexpr std::chrono::seconds kMountTableAge(1);

// True when `path` is `folder` or lies below it.
bool within(const QString& path, const QString& folder)
{
    if (folder == QLatin1String("/"))
        return path.startsWith(QLatin1Char('/'));
    return path.startsWith(folder) && (path.size() == folder.size() || path.at(folder.size()) == QLatin1Char('/'));
}

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

} // namespace

Safety::Safety(SystemRoots roots, SafetyRules rules, MountSource mounts)
    : m_roots(std::move(roots)), m_rules(std::move(rules)), m_mounts(std::move(mounts))
{
    if (!m_mounts)
        m_mounts = [] { return MountTable::points(); };
    m_homes = spellings(m_roots.home);
    if (!m_roots.realHome.isEmpty()) {
        for (const QString& home : spellings(m_roots.realHome)) {
            if (!m_homes.contains(home))
                m_homes << home;
        }
    }
    m_libraries = spellings(m_roots.library);
    const QString temporary = resolved(m_roots.temporary);
    m_temporary = temporary.isEmpty() ? withoutTrailingSlash(m_roots.temporary) : temporary;
    m_temporaries << m_temporary;
    for (const QString& shared : m_rules.sharedTemporaries)
        m_temporaries << spellings(shared);

    for (const SafetyRules::Tree& rule : m_rules.trees) {
        QStringList exempt = rule.except;
        if (rule.exceptHomes)
            exempt << m_homes;
        for (const QString& path : expand(rule.place))
            m_trees.append({path, rule.namePrefix, exempt});
    }
}

QStringList Safety::expand(const SafetyRules::Place& place) const
{
    switch (place.base) {
    case SafetyRules::Base::Root:
        return {place.path};
    case SafetyRules::Base::Home:
    case SafetyRules::Base::Library: {
        QStringList out;
        for (const QString& base : place.base == SafetyRules::Base::Home ? m_homes : m_libraries)
            out << base + place.path;
        return out;
    }
    }
    return {};
}

void Safety::buildProtectedRoots() const
{
    QSet<QString> set;
    for (const SafetyRules::Place& place : m_rules.roots) {
        for (const QString& path : expand(place))
            set.insert(path);
    }
    for (const QString& shared : m_rules.sharedTemporaries)
        set.insert(shared);
    // Every entry of a listed folder, as it is now: an entry made later is not protected as a
    // whole, which keeps this listing to one per run.
    for (const SafetyRules::Place& place : m_rules.listedRoots) {
        for (const QString& folder : expand(place)) {
            const QStringList names =
                QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
            for (const QString& name : names)
                set.insert(folder + QLatin1Char('/') + name);
        }
    }
    if (m_rules.userDirectories) {
        for (const QString& home : m_homes) {
            for (const QString& folder : UserDirectories::configured(home))
                set.insert(withoutTrailingSlash(standardised(folder)));
        }
    }
    m_protectedRoots = std::move(set);
}

bool Safety::insideHome(const QString& path) const
{
    return std::any_of(m_homes.cbegin(), m_homes.cend(), [&path](const QString& home) { return within(path, home); });
}

bool Safety::onOtherVolume(const QString& path) const
{
    std::shared_ptr<const QStringList> volumes;
    {
        const std::lock_guard lock(m_volumesMutex);
        const auto now = std::chrono::steady_clock::now();
        if (!m_volumes || now - m_volumesRead >= kMountTableAge) {
            const QStringList points = m_mounts();
            // The volume holding the system, those holding a home and those holding a temporary
            // folder are the user's working places; every other one is somewhere else.
            QSet<QString> ours{QStringLiteral("/")};
            QStringList anchors = m_homes;
            anchors << m_temporaries;
            for (const QString& anchor : anchors) {
                QString holder;
                for (const QString& point : points) {
                    if (within(anchor, point) && point.size() > holder.size())
                        holder = point;
                }
                ours.insert(holder);
            }
            QStringList others;
            for (const QString& point : points) {
                if (!ours.contains(point))
                    others << point;
            }
            m_volumes = std::make_shared<const QStringList>(std::move(others));
            m_volumesRead = now;
        }
        volumes = m_volumes;
    }
    return std::any_of(volumes->cbegin(), volumes->cend(),
                       [&path](const QString& point) { return within(path, point); });
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

    for (const Tree& tree : m_trees) {
        const bool inside = tree.namePrefix ? path.startsWith(tree.path) : within(path, tree.path);
        if (!inside)
            continue;
        const bool exempt = std::any_of(tree.exempt.cbegin(), tree.exempt.cend(),
                                        [&path](const QString& folder) { return within(path, folder); });
        if (!exempt)
            return Verdict::denied(reasonProtectedTree());
    }

    if (m_rules.otherVolumes && onOtherVolume(path))
        return Verdict::denied(reasonProtectedTree());

    if (!m_rules.insideBundle.isEmpty() && path.contains(m_rules.insideBundle))
        return Verdict::denied(reasonPhotoLibrary());

    if (!m_rules.systemApplications.isEmpty() && path.startsWith(m_rules.systemApplications))
        return Verdict::denied(reasonSystemApp());

    if (path.split(QLatin1Char('/'), Qt::SkipEmptyParts).size() <= 1)
        return Verdict::denied(reasonNearRoot());

    if (m_rules.onlyOwnItemsOutsideHomes && !insideHome(path)) {
        struct stat status = {};
        if (::lstat(NativePath::encode(path).constData(), &status) == 0 ? status.st_uid != ::getuid()
                                                                        : errno != ENOENT)
            return Verdict::denied(reasonOtherUser());
    }

    return Verdict::allowed();
}

Verdict Safety::check(const QUrl& url) const
{
    if (!url.isLocalFile())
        return Verdict::denied(reasonNotLocal());
    return check(url.toLocalFile());
}

Safety::Assessment Safety::assess(const QString& input) const
{
    // The system cuts a path at a NUL character: what it would resolve or remove is not what
    // was judged.
    if (input.contains(QChar(0)))
        return {Verdict::denied(reasonInvalid()), input};
    const Normalised path = normalised(input);
    Verdict verdict = judge(path.path);
    if (verdict.isAllowed() && !path.landing.isEmpty())
        verdict = judge(path.landing);
    return {verdict, path.path};
}

} // namespace nubo
