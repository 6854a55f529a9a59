// Prints how many paths per second the two gates judge: Privacy::isGated sits on the scanners'
// hot path (every folder they consider), Safety::check runs for every removable candidate.
#include "core/files/SystemRoots.h"
#include "core/privacy/Privacy.h"
#include "core/safety/Safety.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>

using namespace nubo;

namespace {

template <typename Judge>
double perSecond(const QStringList& paths, int rounds, Judge judge)
{
    int hits = 0;
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < rounds; ++round) {
        for (const QString& path : paths)
            hits += judge(path) ? 1 : 0;
    }
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    if (hits < 0)
        std::printf("unreachable\n");
    return double(paths.size()) * rounds / seconds;
}

} // namespace

int main()
{
    QTemporaryDir base;
    const QString home = base.path() + QStringLiteral("/home");
    QStringList existing;
    for (const char* folder : {"Library/Caches/com.a/x", "Library/Caches/com.b", "Library/Application Support/App",
                               "Projects/site/node_modules/pkg", "Downloads/old", "Library/Developer/Xcode/DerivedData/A",
                               "Movies/clips", "Library/Mail/V10"}) {
        QDir(home).mkpath(QString::fromUtf8(folder));
        existing << home + QLatin1Char('/') + QString::fromUtf8(folder);
    }

    // What a home scan asks: mostly ordinary folders, some guarded ones, some outside the home.
    QStringList scanned = existing;
    scanned << home + QStringLiteral("/Library/Mail/V10/INBOX.mbox") << home + QStringLiteral("/Desktop")
            << home + QStringLiteral("/Pictures/Fotos.photoslibrary/resources") << QStringLiteral("/usr/local/lib")
            << home + QStringLiteral("/Library/Containers/com.x/Data") << home + QStringLiteral("/Code/a/b/c/d/e");

    Privacy without(home, [] { return false; });
    Privacy with(home, [] { return true; });
    const double gatedWith = perSecond(scanned, 200'000, [&](const QString& p) { return with.isGated(p); });
    const double gatedWithout = perSecond(scanned, 200'000, [&](const QString& p) { return without.isGated(p); });

    Safety safety(SystemRoots{home, base.path() + QStringLiteral("/Library"), base.path() + QStringLiteral("/tmp")},
                  SafetyRules::forMac());
    QStringList candidates;
    for (const QString& folder : existing)
        candidates << folder + QStringLiteral("/item");
    const double checks = perSecond(candidates, 20'000, [&](const QString& p) { return safety.isAllowed(p); });
    // Linux's rules add the mount table (read at most once a second) and, outside the home, the
    // owner of the item: the shared temporary folder is where a scan meets them most.
    Safety linuxGate(SystemRoots{home, base.path() + QStringLiteral("/Library"), QStringLiteral("/tmp")},
                     SafetyRules::forLinux());
    QStringList outside = candidates;
    outside << base.path() + QStringLiteral("/item") << QStringLiteral("/tmp/nothing-here/x");
    const double linuxChecks = perSecond(outside, 20'000, [&](const QString& p) { return linuxGate.isAllowed(p); });

    std::printf("Privacy::isGated with access:    %12.0f paths/s\n", gatedWith);
    std::printf("Privacy::isGated without access: %12.0f paths/s\n", gatedWithout);
    std::printf("Safety::check, existing parents: %12.0f paths/s\n", checks);
    std::printf("Safety::check, Linux rules:      %12.0f paths/s\n", linuxChecks);
    return 0;
}
