#include "core/apps/InstalledApp.h"

namespace nubo {

size_t qHash(const InstalledApp& app, size_t seed)
{
    size_t hash = qHashMulti(seed, app.url, app.name, app.isStore);
    hash = qHashMulti(hash, app.bundleID.has_value(), app.bundleID.value_or(QString()));
    hash = qHashMulti(hash, app.version.has_value(), app.version.value_or(QString()));
    hash = qHashMulti(hash, app.size.has_value(), app.size.value_or(0));
    hash = qHashMulti(hash, int(app.origin), app.package, app.systemWide, app.payload);
    return qHashMulti(hash, app.lastUsed.has_value(), app.lastUsed ? app.lastUsed->toMSecsSinceEpoch() : 0);
}

} // namespace nubo
