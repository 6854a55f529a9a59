#include "core/apps/BundleWalk.h"

#include <QList>

#include <dirent.h>
#include <sys/stat.h>

#include <cstring>

namespace nubo::BundleWalk {

namespace {

// Folder extensions the Mac declares as packages and that turn up in applications folders.
constexpr const char* kPackageExtensions[] = {
    "app", "appex", "xpc", "bundle", "framework", "plugin", "kext", "pkg", "mpkg", "prefpane", "qlgenerator",
    "mdimporter", "saver", "wdgt", "component", "dsym", "xcarchive", "xcodeproj", "xcworkspace", "playground",
    "rtfd", "photoslibrary", "musiclibrary", "fcpbundle", "logicx", "band", "workflow", "action", "vst", "vst3",
    "aaxplugin", "driver", "systemextension", "docset",
};

void walkFolder(const QByteArray& folder, int depth, int maxDepth, bool intoPackages,
                const std::function<void(const Entry&)>& visit)
{
    DIR* directory = ::opendir(folder.constData());
    if (!directory)
        return;
    // Children are gathered first and the folder closed before descending, so a deep tree never
    // holds more than one directory handle open at a time.
    QList<Entry> entries;
    while (const dirent* item = ::readdir(directory)) {
        if (item->d_name[0] == '.')
            continue; // ".", ".." and hidden entries alike
        Entry entry;
        entry.name = QByteArray(item->d_name);
        entry.path = folder + '/' + entry.name;
        entry.depth = depth;
        unsigned char type = DT_UNKNOWN;
#ifdef _DIRENT_HAVE_D_TYPE
        type = item->d_type;
#elif defined(__APPLE__)
        type = item->d_type;
#endif
        if (type == DT_UNKNOWN) {
            struct stat info {};
            if (::lstat(entry.path.constData(), &info) == 0) {
                entry.isDirectory = S_ISDIR(info.st_mode);
                entry.isSymlink = S_ISLNK(info.st_mode);
            }
        } else {
            entry.isDirectory = type == DT_DIR;
            entry.isSymlink = type == DT_LNK;
        }
        entries << std::move(entry);
    }
    ::closedir(directory);

    for (const Entry& entry : entries) {
        visit(entry);
        if (!entry.isDirectory || depth >= maxDepth)
            continue;
        if (!intoPackages && isPackage(entry.name))
            continue;
        walkFolder(entry.path, depth + 1, maxDepth, intoPackages, visit);
    }
}

} // namespace

bool isPackage(const QByteArray& name)
{
    const qsizetype dot = name.lastIndexOf('.');
    if (dot <= 0 || dot == name.size() - 1)
        return false;
    const QByteArray extension = name.mid(dot + 1).toLower();
    for (const char* candidate : kPackageExtensions) {
        if (extension == candidate)
            return true;
    }
    return false;
}

void walk(const QByteArray& root, int maxDepth, bool intoPackages, const std::function<void(const Entry&)>& visit)
{
    if (maxDepth < 1 || root.isEmpty())
        return;
    QByteArray start = root;
    while (start.size() > 1 && start.endsWith('/'))
        start.chop(1);
    walkFolder(start, 1, maxDepth, intoPackages, visit);
}

} // namespace nubo::BundleWalk
