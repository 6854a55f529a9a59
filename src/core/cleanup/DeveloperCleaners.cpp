#include "core/cleanup/DeveloperCleaners.h"

#include "core/apps/BundleWalk.h"
#include "core/cleanup/FolderRule.h"
#include "core/files/FolderListing.h"
#include "core/files/Location.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

#include <QFile>

#include <dirent.h>
#include <sys/stat.h>

#include <cstring>

namespace nubo::DeveloperCleaners {

namespace {

constexpr int kDeepest = 8;

bool isSkippedAtTop(const QByteArray& name)
{
    for (const char* skipped : {"Library", "Applications", "Pictures", "Movies", "Music", ".Trash"}) {
        if (name == skipped)
            return true;
    }
    return false;
}

class NodeModulesWalk
{
public:
    NodeModulesWalk(const CleanContext& context, const QDateTime& cutoff) : m_context(context), m_cutoff(cutoff) {}

    QList<CleanItem> run()
    {
        walk(QFile::encodeName(m_context.roots.home), 1);
        sortBySize(m_items);
        return std::move(m_items);
    }

private:
    struct Entry
    {
        QByteArray name;
        bool isDirectory = false;
    };

    void walk(const QByteArray& folder, int depth)
    {
        DIR* directory = ::opendir(folder.constData());
        if (!directory)
            return;
        // Gathered first and the folder closed before descending: one handle open at a time,
        // however deep the tree.
        QList<Entry> entries;
        while (const dirent* item = ::readdir(directory)) {
            if (item->d_name[0] == '.')
                continue; // ".", "..", and hidden folders, which are never entered
            Entry entry{QByteArray(item->d_name), false};
            unsigned char type = DT_UNKNOWN;
#if defined(_DIRENT_HAVE_D_TYPE) || defined(__APPLE__)
            type = item->d_type;
#endif
            if (type == DT_UNKNOWN) {
                struct stat info {};
                entry.isDirectory = ::lstat((folder + '/' + entry.name).constData(), &info) == 0 &&
                                    S_ISDIR(info.st_mode);
            } else {
                entry.isDirectory = type == DT_DIR; // a link is never followed
            }
            if (entry.isDirectory)
                entries << std::move(entry);
        }
        ::closedir(directory);

        for (const Entry& entry : entries) {
            const QByteArray native = folder + '/' + entry.name;
            if (depth == 1 && isSkippedAtTop(entry.name))
                continue;
            // A name that does not survive as text could never be offered by its true name, nor
            // could anything below it.
            if (!FolderListing::roundTrips(native))
                continue;
            const QString path = QFile::decodeName(native);
            if (m_context.privacy.isGated(path))
                continue;
            if (entry.name == "node_modules") {
                consider(path, QFile::decodeName(folder));
                continue;
            }
            if (depth > kDeepest || BundleWalk::isPackage(entry.name))
                continue;
            walk(native, depth + 1);
        }
    }

    void consider(const QString& modules, const QString& project)
    {
        std::optional<QDateTime> touched = Location::modificationDate(project + QStringLiteral("/package.json"));
        if (!touched)
            touched = Location::modificationDate(project);
        // A project whose dates cannot be read counts as untouched since the beginning of time.
        if (touched && *touched >= m_cutoff)
            return;
        if (!m_context.safety.isAllowed(modules))
            return;
        const qint64 size = Location::allocatedSize(modules);
        if (size < 1)
            return;
        const QString projectName = project.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
        m_items << CleanItem(modules, projectName, Location::tildePath(project, m_context.roots.home), size,
                             CleanItem::Remove{modules});
    }

    const CleanContext& m_context;
    QDateTime m_cutoff;
    QList<CleanItem> m_items;
};

} // namespace

QList<CleanItem> packageCaches(const CleanContext& context)
{
    QList<CleanItem> items;
    for (const CleanPlaces::PackageCache& cache : context.places.packageCaches) {
        const QString& folder = cache.folder;
        struct stat info {};
        if (::lstat(QFile::encodeName(folder).constData(), &info) != 0)
            continue;
        if (context.privacy.isGated(folder) || !context.safety.isAllowed(folder))
            continue;
        const qint64 size = Location::allocatedSize(folder);
        if (size < 1)
            continue;
        items << CleanItem::atPath(folder, context.roots.home, cache.name, size);
    }
    sortBySize(items);
    return items;
}

QList<CleanItem> staleNodeModules(const CleanContext& context)
{
    return NodeModulesWalk(context, context.currentTime().addSecs(-2'592'000)).run();
}

} // namespace nubo::DeveloperCleaners
