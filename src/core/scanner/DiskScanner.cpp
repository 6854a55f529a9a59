#include "core/scanner/DiskScanner.h"

#include "core/files/NativePath.h"
#include "core/format/CheckedMath.h"

#include <QElapsedTimer>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

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

// A folder to scan, as the folder that listed it saw it, and where its result goes.
struct DiskScanner::Folder
{
    QString name;
    QString path;
    QByteArray native;
    int depth = 0;
    bool isPackage = false;
    // Inside a bundle nothing below is ever shown, so a sub-folder only adds its totals upward.
    bool mergesUp = false;
    dev_t device = 0;
    Pending* parent = nullptr;
    size_t slot = 0;

    // The top two levels are listed with the system's answers about volumes and bundles; below
    // them, and inside a bundle, folders are only opened and checked to be on the same device.
    [[nodiscard]] bool deep() const { return depth >= 2 || isPackage; }
};

// A listed folder whose sub-folders are still being scanned, by whichever threads took them.
// Each sub-folder's result has a slot of its own, in listing order, so the tree comes out the
// same whatever the threads; the last sub-folder to finish builds the folder's node.
struct DiskScanner::Pending
{
    struct Result
    {
        std::unique_ptr<FileNode> node;
        qint64 bytes = 0; // a merged sub-folder's totals
        qint64 count = 0;
    };

    Folder folder;
    FileNode::Children files;
    qint64 smallBytes = 0;
    qint64 smallCount = 0;
    std::vector<Result> results;
    std::atomic<size_t> unfinished{0};
};

// One scan's walk. Every thread walks depth first from a stack of its own and, while another
// thread waits for work, hands it the shallowest folders it has not started, which hold the most
// below them; so a single huge folder is shared out as soon as the rest runs dry, at any depth.
class DiskScanner::Walk
{
public:
    Walk(const DiskScanner& scanner, ScanProgress& progress) : m_scanner(scanner), m_progress(progress) {}

    std::unique_ptr<FileNode> run(Folder root, int helpers)
    {
        m_shared.push_back(std::move(root));
        std::vector<std::thread> threads;
        threads.reserve(size_t(std::max(helpers, 0)));
        for (int i = 0; i < helpers; ++i)
            threads.emplace_back([this] { work(); });
        work();
        for (auto& thread : threads)
            thread.join();
        return std::move(m_result);
    }

private:
    void work()
    {
        std::deque<Folder> local;
        for (;;) {
            if (local.empty()) {
                std::unique_lock lock(m_lock);
                m_idle.fetch_add(1, std::memory_order_relaxed);
                m_wake.wait(lock, [this] { return m_done || !m_shared.empty(); });
                m_idle.fetch_sub(1, std::memory_order_relaxed);
                if (m_done)
                    return;
                local.push_back(std::move(m_shared.front()));
                m_shared.pop_front();
            }
            Folder folder = std::move(local.back());
            local.pop_back();
            process(std::move(folder), local);
            share(local);
        }
    }

    void share(std::deque<Folder>& local)
    {
        int waiting = m_idle.load(std::memory_order_relaxed);
        if (waiting == 0 || local.size() < 2)
            return;
        {
            const std::lock_guard guard(m_lock);
            for (; waiting > 0 && local.size() > 1; --waiting) {
                m_shared.push_back(std::move(local.front()));
                local.pop_front();
            }
        }
        m_wake.notify_all();
    }

    void process(Folder folder, std::deque<Folder>& local);
    void finish(Pending* pending);
    // A folder that gives nothing (skipped, vanished, another volume, or never reached after a
    // cancel) still counts as done for the folder that listed it.
    void nothing(const Folder& folder)
    {
        if (!folder.parent)
            end(emptyFolder(folder.name, folder.path, folder.isPackage));
        else if (folder.parent->unfinished.fetch_sub(1, std::memory_order_acq_rel) == 1)
            finish(folder.parent);
    }
    void end(std::unique_ptr<FileNode> root)
    {
        {
            const std::lock_guard guard(m_lock);
            m_result = std::move(root);
            m_done = true;
        }
        m_wake.notify_all();
    }

    const DiskScanner& m_scanner;
    ScanProgress& m_progress;
    std::mutex m_lock;
    std::condition_variable m_wake;
    std::deque<Folder> m_shared;
    std::atomic<int> m_idle{0};
    bool m_done = false;
    std::unique_ptr<FileNode> m_result;
};

void DiskScanner::Walk::process(Folder folder, std::deque<Folder>& local)
{
    // The root is always listed, even cancelled; below it the gate is asked once per folder, and
    // not at all once the scan is cancelled.
    if (!folder.parent ? m_scanner.m_services.isGated(folder.path)
                       : m_progress.isCancelled() || m_scanner.skips(folder.path)) {
        nothing(folder);
        return;
    }
    const bool deep = folder.deep();
    Timings* timings = m_scanner.m_timings;
    ScopedTimer timer(timings ? (deep ? &timings->deepNanoseconds : &timings->listingNanoseconds) : nullptr);
    if (timings && deep && (!folder.parent || !folder.parent->folder.deep()))
        timings->deepWalks.fetch_add(1, std::memory_order_relaxed);

    // O_NOFOLLOW below the root: should a link have replaced the folder since it was listed, it
    // is not followed.
    const int fd = ::open(folder.native.constData(),
                          O_RDONLY | O_DIRECTORY | O_CLOEXEC | (folder.depth > 0 ? O_NOFOLLOW : 0));
    if (deep) {
        // Vanished, replaced by something that is not a folder, or another volume mounted here:
        // nothing. Present but unreadable: an empty folder.
        struct stat info {};
        const bool examined = fd >= 0 ? ::fstat(fd, &info) == 0 : ::lstat(folder.native.constData(), &info) == 0;
        if (!examined || !S_ISDIR(info.st_mode) ||
            (info.st_dev != folder.device && m_scanner.isOtherVolume(folder.path))) {
            if (fd >= 0)
                ::close(fd);
            nothing(folder);
            return;
        }
        // Past a firmlink, the folders below are on the volume it leads to.
        folder.device = info.st_dev;
    }

    auto pending = std::make_unique<Pending>();
    pending->folder = std::move(folder);
    const Folder& self = pending->folder;
    std::vector<Folder> subfolders;
    const auto onFolder = [&](int dirFd, const char* raw) {
        Folder child;
        child.name = NativePath::decode(raw);
        child.path = joined(self.path, child.name);
        child.native = joinedNative(self.native, raw);
        child.depth = self.depth + 1;
        if (deep) {
            child.mergesUp = self.isPackage;
            child.isPackage = child.mergesUp || hasPackageExtension(child.name);
            child.device = self.device;
        } else {
            struct stat info {};
            if (::fstatat(dirFd, raw, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(info.st_mode))
                return;
            if (info.st_dev != self.device && m_scanner.isOtherVolume(child.path))
                return;
            const PackageTest& isPackage = m_scanner.m_services.isPackage;
            child.isPackage = (isPackage ? isPackage(child.path) : std::nullopt)
                                  .value_or(hasPackageExtension(child.name));
            // The folders a user meets first carry the file manager's names ("Descargas" for
            // Downloads on a Mac in Spanish); below them the plain names cost nothing to ask.
            child.name = m_scanner.m_services.displayName(child.path);
            child.device = info.st_dev;
        }
        subfolders.push_back(std::move(child));
    };
    qint64 directFiles = 0;
    qint64 directBytes = 0;
    const bool holdsSkipped = m_scanner.m_skipParents.contains(self.path);
    const auto onFile = [&](const char* raw, qint64 size) {
        if (holdsSkipped && m_scanner.isSkippedFile(self.path, raw))
            return;
        ++directFiles;
        addChecked(directBytes, size);
        if (size >= fileFloor && !self.isPackage) {
            const QString name = NativePath::decode(raw);
            pending->files.push_back(fileNode(name, joined(self.path, name), size));
        } else {
            addChecked(pending->smallBytes, size);
            ++pending->smallCount;
        }
    };
    readFolder(fd, onFolder, onFile); // an unreadable folder stays in the tree, empty
    m_progress.add(directFiles, directBytes, self.path);

    if (subfolders.empty()) {
        finish(pending.release());
        return;
    }
    Pending* parent = pending.release();
    parent->results.resize(subfolders.size());
    parent->unfinished.store(subfolders.size(), std::memory_order_relaxed);
    // The first listed is walked first; the others wait on this thread's stack, or are shared.
    for (size_t i = subfolders.size(); i-- > 0;) {
        subfolders[i].parent = parent;
        subfolders[i].slot = i;
        local.push_back(std::move(subfolders[i]));
    }
}

void DiskScanner::Walk::finish(Pending* done)
{
    // Builds the folder's node from its own listing and its sub-folders' results, hands it to the
    // folder that listed it, and goes on up while that one has nothing left to wait for.
    for (std::unique_ptr<Pending> pending(done); pending;) {
        const Folder& folder = pending->folder;
        qint64 smallBytes = pending->smallBytes;
        qint64 smallCount = pending->smallCount;
        FileNode::Children subdirs;
        subdirs.reserve(pending->results.size());
        for (Pending::Result& result : pending->results) {
            addChecked(smallBytes, result.bytes);
            addChecked(smallCount, result.count);
            if (result.node)
                subdirs.push_back(std::move(result.node));
        }
        Pending::Result out;
        if (folder.mergesUp) {
            out.bytes = smallBytes; // its own sub-folders merged into it the same way
            out.count = smallCount;
        } else {
            out.node = makeDirectory(folder.name, folder.path, std::move(subdirs), std::move(pending->files),
                                     smallBytes, smallCount, folder.depth, folder.isPackage);
        }
        Pending* parent = folder.parent;
        if (!parent) {
            end(std::move(out.node));
            return;
        }
        parent->results[folder.slot] = std::move(out);
        pending.reset();
        if (parent->unfinished.fetch_sub(1, std::memory_order_acq_rel) != 1)
            return;
        pending.reset(parent);
    }
}

DiskScanner::DiskScanner() : DiskScanner(Services{}) {}

DiskScanner::DiskScanner(Services services) : m_services(std::move(services))
{
    if (!m_services.isGated)
        m_services.isGated = [](const QString&) { return false; };
    if (!m_services.displayName)
        m_services.displayName = lastComponent;
    for (const QString& path : std::as_const(m_services.skipPaths))
        m_skipParents.insert(path.left(std::max<qsizetype>(path.lastIndexOf(QLatin1Char('/')), 1)));
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

bool DiskScanner::isOtherVolume(const QString& path) const
{
    return (m_services.isVolume ? m_services.isVolume(path) : std::nullopt).value_or(true);
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
    // The threads live for this scan only: between scans the scanner holds none.
    Walk walk(*this, progress);
    auto tree = walk.run(std::move(folder), m_services.helpers);
    return tree ? std::move(tree) : emptyFolder(folder.name, folder.path, false);
}

} // namespace nubo
