#include "core/apps/LeftoverKeys.h"

#include <QStringList>

namespace nubo {

LeftoverKeys LeftoverKeys::of(const InstalledApp& app)
{
    LeftoverKeys keys;
    if (app.bundleID)
        keys.id = app.bundleID->toLower();
    keys.name = app.name.toLower();
    keys.compact = QString(keys.name).remove(QLatin1Char(' '));
    if (keys.id) {
        const QStringList parts = keys.id->split(QLatin1Char('.'), Qt::SkipEmptyParts);
        if (parts.size() >= 3)
            keys.vendor = parts.at(1);
    }
    keys.stripped = keys.name;
    if (keys.vendor) {
        const QString prefix = *keys.vendor + QLatin1Char(' ');
        if (keys.name.startsWith(prefix))
            keys.stripped = keys.name.mid(prefix.size());
    }
    return keys;
}

} // namespace nubo
