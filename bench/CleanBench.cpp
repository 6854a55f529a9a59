// Times the cleanup catalogue the way the cleanup screen runs it: every category's scan as its own
// task on the shared thread pool, all at once, against one home folder. Prints each category's
// item count, bytes and time, then how long "du -s" takes over the same home (the walk every disk
// scan has to beat), and last "items=N bytes=N seconds=S".
//
//   nubo-clean-bench <home>                   scan <home> (full disk access assumed)
//   nubo-clean-bench --generate <home> [N]    first build a home-shaped tree of about N files
//                                             (default 300000), then scan it
//   nubo-clean-bench --detail [N]             the cleanup pane's detail page over one category
//                                             of N items (default 5000): milliseconds to build
//                                             the page, and to tick one item and build it again,
//                                             and how often the page hears of one tick
//
// Tools are the real ones (xcrun and docker, where installed). The temporary folders are
// <home>/.bench-tmp/user and <home>/.bench-tmp/shared when they exist, else the system's, so a
// generated tree is measured on its own.
#include "core/apps/AppCatalog.h"
#include "core/cleanup/CatalogRules.h"
#include "core/cleanup/CleanCatalog.h"
#include "core/deletion/Deleter.h"
#include "core/format/CheckedMath.h"
#include "core/naming/Naming.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "core/scanner/DiskScanner.h"
#include "core/shell/Shell.h"
#include "core/shell/ShellToolRunner.h"
#include "models/app/ModelServices.h"
#include "models/clean/CleanModel.h"
#include "platform/AdminRunner.h"
#include "platform/Metadata.h"
#include "platform/Workspace.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThreadPool>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <random>

using namespace nubo;

namespace {

class TreeMaker
{
public:
    explicit TreeMaker(QString home) : m_home(std::move(home)) {}

    void file(const QString& relative, int bytes, double ageDays = 0)
    {
        const QString path = m_home + QLatin1Char('/') + relative;
        const QString parent = QFileInfo(path).path();
        if (parent != m_lastFolder) {
            QDir().mkpath(parent);
            m_lastFolder = parent;
        }
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly))
            return;
        out.write(QByteArray(bytes, 'n'));
        out.close();
        ++m_files;
        if (ageDays > 0)
            age(path, ageDays);
    }

    void big(const QString& relative, qint64 bytes, double ageDays)
    {
        const QString path = m_home + QLatin1Char('/') + relative;
        QDir().mkpath(QFileInfo(path).path());
        const int fd = ::open(QFile::encodeName(path).constData(), O_CREAT | O_WRONLY, 0644);
        if (fd < 0)
            return;
        // Reserved blocks count as allocated; where they cannot be reserved, a sparse file still
        // has the length.
#ifdef __APPLE__
        (void)::ftruncate(fd, bytes);
#else
        if (::posix_fallocate(fd, 0, bytes) != 0)
            (void)::ftruncate(fd, bytes);
#endif
        ::close(fd);
        ++m_files;
        age(path, ageDays);
    }

    static void age(const QString& path, double days)
    {
        const qint64 at = QDateTime::currentSecsSinceEpoch() - qint64(days * 86400);
        const timespec stamps[2] = {{time_t(at), 0}, {time_t(at), 0}};
        ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), stamps, AT_SYMLINK_NOFOLLOW);
    }

    int size() { return int(m_random() % 6000) + 200; }
    qint64 files() const { return m_files; }
    const QString& home() const { return m_home; }

private:
    QString m_home;
    QString m_lastFolder;
    qint64 m_files = 0;
    std::mt19937 m_random{7};
};

// Spreads `count` files over a few levels of folders below `root`.
void spread(TreeMaker& maker, const QString& root, int count, double ageDays = 0)
{
    for (int i = 0; i < count; ++i) {
        maker.file(QStringLiteral("%1/d%2/e%3/f%4.dat").arg(root).arg(i / 400).arg((i / 40) % 10).arg(i), maker.size(),
                   ageDays);
    }
}

void generate(const QString& home, qint64 total)
{
    TreeMaker maker(home);
    const auto share = [total](double fraction) { return int(double(total) * fraction); };
    std::printf("generating about %lld files in %s\n", static_cast<long long>(total), qPrintable(home));
    std::fflush(stdout);

    // The Library: application caches, package caches, logs, application data, developer data.
    for (int app = 0; app < 60; ++app)
        spread(maker, QStringLiteral("Library/Caches/com.vendor%1.app").arg(app), share(0.12) / 60);
    spread(maker, QStringLiteral("Library/Caches/Homebrew"), share(0.01));
    spread(maker, QStringLiteral("Library/Caches/pip"), share(0.01));
    for (int app = 0; app < 20; ++app)
        spread(maker, QStringLiteral("Library/Logs/com.vendor%1.app").arg(app), share(0.01) / 20);
    for (int app = 0; app < 40; ++app)
        spread(maker, QStringLiteral("Library/Application Support/com.vendor%1.app").arg(app), share(0.10) / 40);
    for (int project = 0; project < 10; ++project)
        spread(maker, QStringLiteral("Library/Developer/Xcode/DerivedData/Project%1-abcdefghijklmnopqrstuvwxyzab").arg(project),
               share(0.10) / 10);
    for (const char* version : {"16.0 (20A362)", "17.0 (21A329)"})
        spread(maker, QStringLiteral("Library/Developer/Xcode/iOS DeviceSupport/") + QLatin1String(version), share(0.01));
    spread(maker, QStringLiteral("Library/Developer/Xcode/Archives/2024-01-05/App 05-01-2024, 10.00.xcarchive"),
           share(0.005));
    spread(maker, QStringLiteral("Library/Developer/CoreSimulator/Caches/dyld"), share(0.01));

    // Projects with their dependencies, half of them untouched for two months.
    for (int project = 0; project < 40; ++project) {
        const QString root = QStringLiteral("code/project%1").arg(project);
        spread(maker, root + QStringLiteral("/node_modules"), share(0.30) / 40);
        spread(maker, root + QStringLiteral("/src"), share(0.02) / 40);
        spread(maker, root + QStringLiteral("/.git/objects"), share(0.03) / 40);
        maker.file(root + QStringLiteral("/package.json"), 300, project % 2 ? 60 : 3);
    }
    spread(maker, QStringLiteral(".npm/_cacache"), share(0.05));

    // Personal folders, a Trash, downloads both old and new, and two large old films.
    spread(maker, QStringLiteral("Documents"), share(0.06));
    spread(maker, QStringLiteral("Pictures"), share(0.04));
    spread(maker, QStringLiteral("Music"), share(0.075));
    spread(maker, QStringLiteral("Downloads"), share(0.02), 120);
    for (int i = 0; i < 20; ++i)
        maker.file(QStringLiteral("Downloads/Installer%1.dmg").arg(i), 50000, i * 10);
    spread(maker, QStringLiteral(".Trash"), share(0.01));
    maker.big(QStringLiteral("Movies/holiday.mov"), 600LL * 1024 * 1024, 300);
    maker.big(QStringLiteral("Documents/disk.img"), 700LL * 1024 * 1024, 250);

    // Temporary folders of our own, so the system's are not measured.
    spread(maker, QStringLiteral(".bench-tmp/user"), share(0.005), 5);
    spread(maker, QStringLiteral(".bench-tmp/shared"), share(0.005), 5);
    // Spread leaves the folders fresh; age the tops the temporary rules look at.
    for (const char* folder : {".bench-tmp/user", ".bench-tmp/shared"}) {
        const QString path = home + QLatin1Char('/') + QLatin1String(folder);
        for (const QString& name : QDir(path).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
            TreeMaker::age(path + QLatin1Char('/') + name, 5);
    }
    std::printf("generated %lld files\n", static_cast<long long>(maker.files()));
}

double timeDu(const QString& home)
{
    QElapsedTimer timer;
    timer.start();
    const ShellResult result = Shell::run(QStringLiteral("/usr/bin/du"), {QStringLiteral("-s"), home},
                                          std::chrono::minutes(30));
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    return result.status == 0 ? seconds : -1;
}

// The detail page of one category holding `count` items, built by the real cleanup model.
int detailPage(qsizetype count)
{
    QTemporaryDir dir;
    SystemRoots roots = SystemRoots::system();
    roots.home = dir.path();
    const Safety safety(roots, SafetyRules::forMac());
    const Privacy privacy(roots.home, [] { return true; });
    const std::unique_ptr<AdminRunner> admin = makeAdminRunner();
    const std::unique_ptr<Workspace> workspace = makeWorkspace();
    const std::unique_ptr<Metadata> metadata = makeMetadata();
    const Deleter deleter(safety, *admin);
    DiskScanner scanner;
    const AppCatalog apps(roots, safety, privacy, *workspace, *metadata);
    const QString category = QStringLiteral("caches");
    const CleanCatalog catalog([&roots, category, count](const QString& id) {
        return CleanCategory::Scan([&roots, id, category, count] {
            QList<CleanItem> items;
            if (id == category) {
                for (qsizetype i = 0; i < count; ++i)
                    items.append(CleanItem::atPath(roots.home + QStringLiteral("/Library/Caches/app-%1").arg(i),
                                                   roots.home, std::nullopt, 4096 + i));
            }
            return items;
        });
    });
    const auto services = std::make_shared<ModelServices>(ModelServices{
        .home = roots.home, .safety = safety, .deleter = deleter, .scanner = scanner, .catalog = catalog,
        .apps = apps, .runCommands = {}, .runAsAdministrator = {}, .quit = {}, .haptics = {}});
    CleanModel model(services);
    model.scan();
    while (model.isScanning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    model.open(category);
    int heard = 0;
    QObject::connect(&model, &CleanModel::detailChanged, &model, [&heard] { ++heard; });
    QCoreApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    const qsizetype rows = model.detail().value(QStringLiteral("items")).toList().size();
    const double build = double(timer.nsecsElapsed()) / 1e6;
    heard = 0;
    timer.restart();
    model.toggleItem(model.items(category).constFirst().id);
    QCoreApplication::processEvents();
    (void)model.detail();
    const double tick = double(timer.nsecsElapsed()) / 1e6;
    std::printf("items=%lld rows=%lld build_ms=%.1f tick_ms=%.1f notices_per_tick=%d\n",
                static_cast<long long>(count), static_cast<long long>(rows), build, tick, heard);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList arguments = app.arguments().mid(1);
    if (arguments.value(0) == QLatin1String("--detail"))
        return detailPage(arguments.size() > 1 ? arguments.at(1).toLongLong() : 5000);
    if (arguments.value(0) == QLatin1String("--generate")) {
        if (arguments.size() < 2) {
            std::fprintf(stderr, "usage: nubo-clean-bench --generate <home> [files]\n");
            return 2;
        }
        generate(QDir(arguments.at(1)).absolutePath(), arguments.size() > 2 ? arguments.at(2).toLongLong() : 300000);
        arguments.removeFirst();
    }
    if (arguments.isEmpty()) {
        std::fprintf(stderr, "usage: nubo-clean-bench [--generate] <home> [files]\n");
        return 2;
    }
    const QString home = QDir(arguments.first()).absolutePath();

    SystemRoots roots = SystemRoots::system();
    roots.home = home;
    QString shared = QStringLiteral("/private/tmp");
    if (QFileInfo::exists(home + QStringLiteral("/.bench-tmp/user"))) {
        roots.temporary = home + QStringLiteral("/.bench-tmp/user");
        shared = home + QStringLiteral("/.bench-tmp/shared");
    }
    const Safety safety(roots, SafetyRules::forMac());
    const Privacy privacy(home, [] { return true; });
    const std::unique_ptr<Workspace> workspace = makeWorkspace();
    const std::unique_ptr<Metadata> metadata = makeMetadata();
    const Naming naming(Naming::lookupIn(*workspace));
    const ShellToolRunner tools;
    const AppCatalog apps(roots, safety, privacy, *workspace, *metadata);

    auto context = std::make_shared<CleanContext>(safety, privacy, naming, tools, roots);
    context->sharedTemporaries = {shared};
    context->findTool = [](const QString& name) { return Shell::which(name); };
    context->orphans = [&apps] { return apps.orphanedLeftovers(); };
    const CleanCatalog catalog(CatalogRules::make(context));

    // One warm-up pass of du, so both walks meet the same cached tree.
    timeDu(home);

    struct Figures
    {
        qsizetype items = 0;
        qint64 bytes = 0;
        double seconds = 0;
    };
    const QList<CleanCategory>& categories = catalog.all();
    QList<Figures> figures(categories.size());
    std::mutex lock;
    QElapsedTimer whole;
    whole.start();
    for (qsizetype i = 0; i < categories.size(); ++i) {
        QThreadPool::globalInstance()->start([&, i] {
            QElapsedTimer timer;
            timer.start();
            const QList<CleanItem> items = categories.at(i).scan();
            Figures own{items.size(), 0, 0};
            for (const CleanItem& item : items)
                addChecked(own.bytes, item.size);
            own.seconds = double(timer.nsecsElapsed()) / 1e9;
            const std::lock_guard guard(lock);
            figures[i] = own;
        });
    }
    QThreadPool::globalInstance()->waitForDone();
    const double seconds = double(whole.nsecsElapsed()) / 1e9;

    qsizetype items = 0;
    qint64 bytes = 0;
    for (qsizetype i = 0; i < categories.size(); ++i) {
        std::printf("%-14s items=%-6lld bytes=%-14lld seconds=%.3f\n", qPrintable(categories.at(i).id),
                    static_cast<long long>(figures[i].items), static_cast<long long>(figures[i].bytes),
                    figures[i].seconds);
        items += figures[i].items;
        addChecked(bytes, figures[i].bytes);
    }
    const double du = timeDu(home);
    std::printf("threads=%d du_seconds=%.3f ratio=%.2f\n", QThreadPool::globalInstance()->maxThreadCount(), du,
                du > 0 ? seconds / du : 0.0);
    std::printf("items=%lld bytes=%lld seconds=%.3f\n", static_cast<long long>(items), static_cast<long long>(bytes),
                seconds);
    return 0;
}
