#include "core/scanner/DiskScanner.h"

#include "core/files/NativePath.h"
#include "core/format/CheckedMath.h"
#include "core/privacy/Privacy.h"

#include <QElapsedTimer>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nubo {

namespace {

qint64 allocatedBytes(const struct stat& info)
{
    return static_cast<qint64>(info.st_blocks) * 512;
}

QString lastComponent(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString joined(const QString& folder, const QString& name)
{
    return folder == QLatin1String("/") ? QLatin1Char('/') + name : folder + QLatin1Char('/') + name;
}

QString extensionOf(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot <= 0 ? QString() : name.mid(dot + 1);
}

bool hasPackageExtension(const QString& name)
{
    const QString extension = extensionOf(name);
    return !extension.isEmpty() && DiskScanner::packageExtensions().contains(extension);
}

// A trailing slash would make every child path carry a double slash and the root's name empty.
QString normalisedRoot(const QString& root)
{
    QString path = root;
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

std::unique_ptr<FileNode> emptyFolder(const QString& name, const QString& path, bool isPackage)
{
    return std::make_unique<FileNode>(name, path, FileNode::Type::Directory, isPackage);
}

// Builds a folder node from its parts: children largest first (folders, then files, then the
// aggregate among equals), totals summed, children dropped for a collapsed folder or a bundle.
std::unique_ptr<FileNode> makeDirectory(const QString& name, const QString& path, FileNode::Children subdirs,
                                        FileNode::Children files, qint64 smallBytes, qint64 smallCount,
                                        int depth, bool isPackage)
{
    FileNode::Children children = std::move(subdirs);
    children.reserve(children.size() + files.size() + 1);
    for (auto& file : files)
        children.push_back(std::move(file));
    if (smallCount > 0) {
        auto aggregate = std::make_unique<FileNode>(DiskScanner::aggregateName(smallCount), path,
                                                    FileNode::Type::Aggregate);
        aggregate->setSize(smallBytes);
        aggregate->setItemCount(smallCount);
        children.push_back(std::move(aggregate));
    }
    std::stable_sort(children.begin(), children.end(),
                     [](const auto& a, const auto& b) { return a->size() > b->size(); });

    qint64 size = 0;
    qint64 count = 0;
    for (const auto& child : children) {
        addChecked(size, child->size());
        addChecked(count, child->itemCount());
    }
    auto node = emptyFolder(name, path, isPackage);
    node->setSize(size);
    node->setItemCount(count);
    // The root always keeps its children, however small, since it is what the user asked to see.
    if (!((depth > 0 && size < DiskScanner::collapseBelow) || isPackage))
        node->setChildren(std::move(children));
    return node;
}

std::unique_ptr<FileNode> fileNode(const QString& name, const QString& path, qint64 size)
{
    auto node = std::make_unique<FileNode>(name, path, FileNode::Type::File);
    node->setSize(size);
    node->setItemCount(1);
    return node;
}

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// One directory entry: a folder goes to `onFolder(folderFd, name)`, a link is skipped, anything
// else is examined relative to the open folder and goes to `onFile(name, bytes)`.
template <typename OnFolder, typename OnFile>
void takeEntry(int dirFd, const char* name, unsigned char type, OnFolder& onFolder, OnFile& onFile)
{
    if (isDotOrDotDot(name) || type == DT_LNK)
        return;
    if (type == DT_DIR) {
        onFolder(dirFd, name);
        return;
    }
    struct stat info {};
    if (::fstatat(dirFd, name, &info, AT_SYMLINK_NOFOLLOW) != 0 || S_ISLNK(info.st_mode))
        return; // vanished since the listing, or a link on a file system without entry types
    if (S_ISDIR(info.st_mode))
        onFolder(dirFd, name);
    else
        onFile(name, allocatedBytes(info));
}

// Reads every entry of the open folder `fd` (which it closes), hidden ones included. Entries are
// examined relative to the open folder, so the kernel never resolves a whole path per file, and
// the entry's type spares examining folders and links at all. A folder that cannot be read yields
// nothing.
template <typename OnFolder, typename OnFile>
void readFolder(int fd, OnFolder&& onFolder, OnFile&& onFile)
{
    if (fd < 0)
        return;
#ifdef __linux__
    // The raw listing call: the directory stream would add a stat and two descriptor calls per
    // folder, a tenth of all the system calls of a scan.
    alignas(dirent64) char buffer[32 * 1024];
    for (;;) {
        const ssize_t length = ::getdents64(fd, buffer, sizeof buffer);
        if (length <= 0)
            break;
        for (ssize_t offset = 0; offset < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + offset);
            offset += entry->d_reclen;
            takeEntry(fd, entry->d_name, entry->d_type, onFolder, onFile);
        }
    }
    ::close(fd);
#else
    DIR* dir = ::fdopendir(fd);
    if (!dir) {
        ::close(fd);
        return;
    }
    while (const dirent* entry = ::readdir(dir))
        takeEntry(fd, entry->d_name, entry->d_type, onFolder, onFile);
    ::closedir(dir);
#endif
}

QByteArray joinedNative(const QByteArray& folder, const char* name)
{
    QByteArray path = folder;
    if (!path.endsWith('/'))
        path.append('/');
    return path.append(name);
}

class ScopedTimer
{
public:
    explicit ScopedTimer(std::atomic<qint64>* sink) : m_sink(sink)
    {
        if (m_sink)
            m_timer.start();
    }
    ~ScopedTimer()
    {
        if (m_sink)
            m_sink->fetch_add(m_timer.nsecsElapsed(), std::memory_order_relaxed);
    }
    ScopedTimer(const ScopedTimer&) = delete;
    ScopedTimer& operator=(const ScopedTimer&) = delete;

private:
    std::atomic<qint64>* m_sink;
    QElapsedTimer m_timer;
};

} // namespace

// A folder to scan: its text path, the bytes that reach it, and what the level above knew of it.
struct DiskScanner::Folder
{
    QString name;
    QString path;
    QByteArray native;
    bool isPackage = false;
    dev_t device = 0;
};

DiskScanner::DiskScanner() : DiskScanner(Services{}) {}

DiskScanner::DiskScanner(Services services) : m_services(std::move(services))
{
    if (!m_services.isGated)
        m_services.isGated = [](const QString&) { return false; };
    if (!m_services.displayName)
        m_services.displayName = lastComponent;
    if (!m_services.isPackage)
        m_services.isPackage = [](const QString& path) { return hasPackageExtension(lastComponent(path)); };
    for (const QString& path : std::as_const(m_services.skipPaths))
        m_skipParents.insert(path.left(std::max<qsizetype>(path.lastIndexOf(QLatin1Char('/')), 1)));
}

namespace {

DiskScanner::Services gatedBy(const Privacy& privacy, DiskScanner::DisplayName displayName)
{
    DiskScanner::Services services;
    services.isGated = [&privacy](const QString& path) { return privacy.isGated(path); };
    services.displayName = std::move(displayName);
    return services;
}

} // namespace

DiskScanner::DiskScanner(const Privacy& privacy, DisplayName displayName)
    : DiskScanner(gatedBy(privacy, std::move(displayName)))
{
}

const QStringList& DiskScanner::skipPaths()
{
    static const QStringList paths = {
        QStringLiteral("/System/Volumes"), QStringLiteral("/Volumes"), QStringLiteral("/dev"),
        QStringLiteral("/net"),            QStringLiteral("/home"),
        QStringLiteral("/private/var/vm/sleepimage"),
    };
    return paths;
}

const QSet<QString>& DiskScanner::packageExtensions()
{
    static const QSet<QString> extensions = [] {
        QSet<QString> set;
        for (const char* extension :
             {"app", "bundle", "framework", "photoslibrary", "xcarchive", "plugin", "kext", "appex", "logicx",
              "fcpbundle", "musiclibrary", "rtfd", "pages", "key", "numbers", "xcodeproj", "xcworkspace",
              "playground", "sparsebundle", "dSYM", "simruntime", "photolibrary", "imovielibrary", "tvlibrary",
              "band"})
            set.insert(QString::fromLatin1(extension));
        return set;
    }();
    return extensions;
}

QString DiskScanner::aggregateName(qint64 count)
{
    if (count == 1)
        return QStringLiteral("1 archivo pequeño");
    return QString::number(count) + QStringLiteral(" archivos pequeños");
}

bool DiskScanner::skips(const QString& path) const
{
    return m_services.skipPaths.contains(path) || m_services.isGated(path);
}

bool DiskScanner::isSkippedFile(const QString& folder, const char* name) const
{
    return m_services.skipPaths.contains(joined(folder, NativePath::decode(name)));
}

std::unique_ptr<FileNode> DiskScanner::scan(const QString& root, ScanProgress& progress)
{
    Folder folder;
    folder.path = normalisedRoot(root);
    folder.native = NativePath::encode(folder.path);
    folder.name = folder.path == QLatin1String("/") ? QStringLiteral("Macintosh HD")
                                                     : m_services.displayName(folder.path);
    struct stat info {};
    // The root itself may be a link (a Mac's /tmp): the folder it names is what the user asked for.
    if (::stat(folder.native.constData(), &info) != 0 || !S_ISDIR(info.st_mode))
        return emptyFolder(folder.name, folder.path, false);
    folder.device = info.st_dev;
    // The helpers live for this scan only: between scans the scanner holds no threads.
    ParallelLoop loop(m_services.helpers);
    return scanDirectory(folder, 0, progress, loop);
}

std::unique_ptr<FileNode> DiskScanner::scanDirectory(const Folder& folder, int depth, ScanProgress& progress,
                                                     ParallelLoop& loop)
{
    if (m_services.isGated(folder.path))
        return emptyFolder(folder.name, folder.path, folder.isPackage);
    if (depth > 1 || folder.isPackage)
        return deepScan(folder, depth, progress);

    std::vector<Folder> subfolders;
    FileNode::Children files;
    qint64 smallBytes = 0;
    qint64 smallCount = 0;
    qint64 seenBytes = 0;
    {
        ScopedTimer timer(m_timings ? &m_timings->listingNanoseconds : nullptr);
        // O_NOFOLLOW below the root: should a link have replaced the folder since it was listed,
        // it is not followed.
        const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (depth > 0 ? O_NOFOLLOW : 0);
        const auto onFolder = [&](int dirFd, const char* raw) {
            struct stat info {};
            if (::fstatat(dirFd, raw, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(info.st_mode))
                return;
            const QString name = NativePath::decode(raw);
            const QString path = joined(folder.path, name);
            const bool volume =
                m_services.isVolume ? m_services.isVolume(path) : info.st_dev != folder.device;
            if (volume || skips(path))
                return;
            subfolders.push_back({name, path, joinedNative(folder.native, raw), m_services.isPackage(path),
                                  info.st_dev});
        };
        const bool holdsSkipped = m_skipParents.contains(folder.path);
        const auto onFile = [&](const char* raw, qint64 size) {
            if (holdsSkipped && isSkippedFile(folder.path, raw))
                return;
            addChecked(seenBytes, size);
            if (size < fileFloor) {
                addChecked(smallBytes, size);
                ++smallCount;
            } else {
                const QString name = NativePath::decode(raw);
                files.push_back(fileNode(name, joined(folder.path, name), size));
            }
        };
        readFolder(::open(folder.native.constData(), flags), onFolder, onFile);
    }

    progress.add(smallCount + static_cast<qint64>(files.size()), seenBytes, folder.path);
    std::vector<std::unique_ptr<FileNode>> results(subfolders.size());
    if (!progress.isCancelled()) {
        // Each sub-folder writes only its own result, so the results need no lock.
        loop.forEach(static_cast<qsizetype>(subfolders.size()), [&](qsizetype i) {
            const auto index = static_cast<size_t>(i);
            if (!progress.isCancelled())
                results[index] = scanDirectory(subfolders[index], depth + 1, progress, loop);
        });
    }
    FileNode::Children subdirs;
    subdirs.reserve(results.size());
    for (auto& result : results) {
        if (result)
            subdirs.push_back(std::move(result));
    }
    return makeDirectory(folder.name, folder.path, std::move(subdirs), std::move(files), smallBytes, smallCount,
                         depth, folder.isPackage);
}

// One folder of the deep walk whose sub-folders are still being walked.
struct DiskScanner::Frame
{
    QString name;
    QString path;
    QByteArray native;
    int level = 0;
    bool isPackage = false;
    // Inside a bundle nothing below is ever shown, so a sub-folder only adds its totals upward.
    bool mergesUp = false;
    std::vector<QByteArray> pending; // sub-folder names in listing order
    size_t next = 0;
    FileNode::Children subdirs;
    FileNode::Children files;
    qint64 smallBytes = 0;
    qint64 smallCount = 0;
};

// The deep walk: depth first, one folder open at a time per thread. Each folder is opened once
// without following links, checked to be on the walk's device (another device is a volume mounted
// here), read to the end, and every entry that is not a folder is examined relative to the open
// folder; its allocated blocks are its size. Folders are then entered in listing order. A folder
// that cannot be opened or read counts as empty; entries that vanish count nothing.
std::unique_ptr<FileNode> DiskScanner::deepScan(const Folder& folder, int depth, ScanProgress& progress)
{
    ScopedTimer timer(m_timings ? &m_timings->deepNanoseconds : nullptr);
    if (m_timings)
        m_timings->deepWalks.fetch_add(1, std::memory_order_relaxed);

    std::vector<Frame> stack;
    std::unique_ptr<FileNode> result;

    // Lists the folder into a new top frame, unless it has vanished, been replaced by something
    // that is not a folder, or is another volume mounted here.
    const auto enter = [&](Frame frame) {
        const int fd = ::open(frame.native.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        struct stat info {};
        const bool examined =
            fd >= 0 ? ::fstat(fd, &info) == 0 : ::lstat(frame.native.constData(), &info) == 0;
        if (!examined || !S_ISDIR(info.st_mode) || info.st_dev != folder.device) {
            if (fd >= 0)
                ::close(fd);
            return;
        }
        qint64 directFiles = 0;
        qint64 directBytes = 0;
        const auto onFolder = [&frame](int, const char* raw) { frame.pending.emplace_back(raw); };
        const bool holdsSkipped = m_skipParents.contains(frame.path);
        const auto onFile = [&](const char* raw, qint64 size) {
            if (holdsSkipped && isSkippedFile(frame.path, raw))
                return;
            ++directFiles;
            addChecked(directBytes, size);
            if (size >= fileFloor && !frame.isPackage) {
                const QString name = NativePath::decode(raw);
                frame.files.push_back(fileNode(name, joined(frame.path, name), size));
            } else {
                addChecked(frame.smallBytes, size);
                ++frame.smallCount;
            }
        };
        readFolder(fd, onFolder, onFile); // an unreadable folder stays in the tree, empty
        progress.add(directFiles, directBytes, frame.path);
        stack.push_back(std::move(frame));
    };

    // Closes the top frame and hands its node (or, inside a bundle, its totals) to the frame below.
    const auto leave = [&] {
        Frame frame = std::move(stack.back());
        stack.pop_back();
        if (frame.mergesUp) {
            Frame& parent = stack.back();
            addChecked(parent.smallBytes, frame.smallBytes);
            addChecked(parent.smallCount, frame.smallCount);
            return; // its own sub-folders merged into it the same way, so it holds no nodes
        }
        auto node = makeDirectory(frame.name, frame.path, std::move(frame.subdirs), std::move(frame.files),
                                  frame.smallBytes, frame.smallCount, depth + frame.level, frame.isPackage);
        if (stack.empty())
            result = std::move(node);
        else
            stack.back().subdirs.push_back(std::move(node));
    };

    Frame root;
    root.name = folder.name;
    root.path = folder.path;
    root.native = folder.native;
    root.isPackage = folder.isPackage;
    if (!progress.isCancelled() && !skips(folder.path))
        enter(std::move(root));

    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next == top.pending.size()) {
            leave();
            continue;
        }
        if (progress.isCancelled())
            break;
        const QByteArray& raw = top.pending[top.next++];
        Frame child;
        child.name = NativePath::decode(raw);
        child.path = joined(top.path, child.name);
        if (skips(child.path))
            continue;
        child.native = joinedNative(top.native, raw.constData());
        child.level = top.level + 1;
        child.mergesUp = top.isPackage;
        child.isPackage = child.mergesUp || hasPackageExtension(child.name);
        enter(std::move(child)); // `top` may dangle from here on
    }
    // A cancelled walk still returns what it gathered, with every open folder closed in order.
    while (!stack.empty())
        leave();
    return result ? std::move(result) : emptyFolder(folder.name, folder.path, folder.isPackage);
}

} // namespace nubo
