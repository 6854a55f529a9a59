#include "core/files/Home.h"

#include <QDir>

#include <pwd.h>
#include <unistd.h>

namespace nubo::Home {

namespace {

QString resolveHome(bool allowOverride)
{
    const QByteArray override = allowOverride ? qgetenv("NUBO_HOME") : QByteArray();
    QString home;
    if (!override.isEmpty()) {
        home = QString::fromLocal8Bit(override);
    } else if (const passwd* entry = getpwuid(getuid()); entry && entry->pw_dir && *entry->pw_dir) {
        home = QString::fromLocal8Bit(entry->pw_dir);
    } else {
        home = QDir::homePath();
    }
    home = QDir::cleanPath(home);
    return home;
}

} // namespace

const QString& url()
{
    static const QString home = resolveHome(true);
    return home;
}

const QString& real()
{
    static const QString home = resolveHome(false);
    return home;
}

QString path(const QString& relative)
{
    if (relative.isEmpty())
        return url();
    return url() + QLatin1Char('/') + relative;
}

} // namespace nubo::Home
