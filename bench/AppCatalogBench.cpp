// Prints how long the application catalogue takes on a machine-sized fixture: 300 applications
// (each a real bundle with resources, a framework, an extension and a service inside) and 2,000
// entries in the Library folders searched for orphans. The orphan search walks every bundle to
// depth 6, which is its expensive step. Usage: nubo-apps-bench [DIR] (a temporary folder by default).
#include "core/apps/AppCatalog.h"
#include "core/files/SystemRoots.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"
#include "platform/Metadata.h"
#include "platform/Workspace.h"
#include "support/PlistWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

using namespace nubo;
using nubo::test::PlistFormat;

namespace {

constexpr int kApps = 300;
constexpr int kLibraryEntries = 2000;

void write(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(path.left(path.lastIndexOf(QLatin1Char('/'))));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

void bundle(const QString& path, const QString& identifier, PlistFormat format)
{
    write(path + QStringLiteral("/Contents/Info.plist"),
          test::plistBytes(QVariantMap{{QStringLiteral("CFBundleIdentifier"), identifier},
                                       {QStringLiteral("CFBundleShortVersionString"), QStringLiteral("1.0")}},
                           format));
}

QString identifierOf(int app)
{
    return QStringLiteral("com.vendor%1.app%2").arg(app % 40).arg(app);
}

void build(const SystemRoots& roots)
{
    for (int i = 0; i < kApps; ++i) {
        const QString folder = i % 10 == 0 ? QStringLiteral("/Suite%1").arg(i) : QString();
        const QString app = roots.applications + folder + QStringLiteral("/App %1.app").arg(i);
        bundle(app, identifierOf(i), i % 2 ? PlistFormat::binary : PlistFormat::xml);
        write(app + QStringLiteral("/Contents/MacOS/App"), QByteArray(8192, 'x'));
        for (int r = 0; r < 30; ++r)
            write(app + QStringLiteral("/Contents/Resources/image%1.png").arg(r), QByteArray(512, 'r'));
        for (const char* language : {"en", "es", "fr", "de"}) {
            for (int r = 0; r < 4; ++r)
                write(app + QStringLiteral("/Contents/Resources/%1.lproj/Strings%2.strings")
                                .arg(QLatin1String(language))
                                .arg(r),
                      QByteArray(128, 's'));
        }
        const QString framework = app + QStringLiteral("/Contents/Frameworks/Kit.framework/Versions/A");
        write(framework + QStringLiteral("/Kit"), QByteArray(4096, 'k'));
        for (int r = 0; r < 10; ++r)
            write(framework + QStringLiteral("/Resources/res%1").arg(r), QByteArray(256, 'k'));
        bundle(app + QStringLiteral("/Contents/PlugIns/Share.appex"),
               identifierOf(i) + QStringLiteral(".share"), PlistFormat::binary);
        bundle(app + QStringLiteral("/Contents/XPCServices/Render.xpc"),
               QStringLiteral("net.render%1.service").arg(i), PlistFormat::binary);
    }
    const char* folders[] = {"Containers", "Application Support", "Saved Application State", "HTTPStorages",
                             "WebKit"};
    for (int i = 0; i < kLibraryEntries; ++i) {
        const QString folder = roots.userLibrary() + QLatin1Char('/') + QLatin1String(folders[i % 5]);
        // Half belong to installed apps (or their extensions), half to apps that are gone.
        QString name = i % 2 ? identifierOf(i % kApps) + (i % 4 == 1 ? QStringLiteral(".share") : QString())
                             : QStringLiteral("org.gone%1.tool").arg(i);
        if (i % 5 == 2)
            name += QStringLiteral(".savedState");
        write(folder + QLatin1Char('/') + name + QStringLiteral("/data"), QByteArray(2048, 'd'));
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir temporary;
    const QString base = argc > 1 ? QString::fromLocal8Bit(argv[1]) : temporary.path();
    SystemRoots roots{base + QStringLiteral("/Users/ana"), base + QStringLiteral("/Library"),
                      base + QStringLiteral("/tmp")};
    roots.applications = base + QStringLiteral("/Applications");
    roots.systemApplications = base + QStringLiteral("/System/Applications");

    QElapsedTimer timer;
    timer.start();
    build(roots);
    std::printf("fixture: %d apps, %d library entries, built in %.2f s\n", kApps, kLibraryEntries,
                double(timer.nsecsElapsed()) / 1e9);

    const Safety safety(roots, SafetyRules::forMac());
    const Privacy privacy(roots.home, [] { return true; });
    const std::unique_ptr<Workspace> workspace = makeWorkspace();
    const std::unique_ptr<Metadata> metadata = makeMetadata();
    const AppCatalog catalog(roots, safety, privacy, *workspace, *metadata);

    std::vector<double> loads;
    std::vector<double> orphans;
    std::vector<double> leftovers;
    qsizetype apps = 0;
    qsizetype found = 0;
    qsizetype leftoverCount = 0;
    for (int round = 0; round < 5; ++round) {
        timer.restart();
        const QList<InstalledApp> list = catalog.load();
        loads.push_back(double(timer.nsecsElapsed()) / 1e6);
        apps = list.size();

        timer.restart();
        found = catalog.orphanedLeftovers().size();
        orphans.push_back(double(timer.nsecsElapsed()) / 1e6);

        timer.restart();
        leftoverCount = 0;
        for (int i = 0; i < 20 && i < list.size(); ++i)
            leftoverCount += catalog.leftovers(list.at(i)).size();
        leftovers.push_back(double(timer.nsecsElapsed()) / 1e6 / 20);
    }
    // The same search with the Library folders moved away: what is left is the walk of the bundles.
    const QString library = roots.userLibrary();
    QDir().rename(library, library + QStringLiteral(".away"));
    std::vector<double> walks;
    for (int round = 0; round < 5; ++round) {
        timer.restart();
        (void)catalog.orphanedLeftovers();
        walks.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    QDir().rename(library + QStringLiteral(".away"), library);

    std::printf("load: %lld apps, median %.1f ms\n", static_cast<long long>(apps), median(loads));
    std::printf("leftovers(for:): median %.2f ms per app (%lld items for 20 apps)\n", median(leftovers),
                static_cast<long long>(leftoverCount));
    std::printf("orphanedLeftovers: %lld orphans, median %.1f ms, best %.1f ms (5 runs)\n",
                static_cast<long long>(found), median(orphans),
                *std::min_element(orphans.begin(), orphans.end()));
    std::printf("orphanedLeftovers without Library entries (the bundle walk alone): median %.1f ms\n",
                median(walks));
    return 0;
}
