#pragma once

#include <QHashFunctions>
#include <QString>

namespace nubo {

/// One running application as the activity list shows it: the sampler's processor and memory
/// figures joined with what the workspace knows about the application. A plain value; two records
/// are equal when every field is, and `id()` (the main process id) names it in lists.
struct AppUsage
{
    qint32 pid = 0;
    QString name;
    QString bundleURL; // the application's bundle, absolute; empty when it has none
    double cpu = 0;    // percent of one core: 100 is one core fully busy, more is possible
    qint64 memory = 0; // bytes held by the application and all its helper processes
    bool isHidden = false;
    bool isActive = false;

    [[nodiscard]] qint32 id() const { return pid; }

    friend bool operator==(const AppUsage&, const AppUsage&) = default;
};

[[nodiscard]] size_t qHash(const AppUsage& usage, size_t seed = 0);

} // namespace nubo
