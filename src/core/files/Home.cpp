#include "core/files/Home.h"

#include <QDir>

#include <pwd.h>
#include <unistd.h>

namespace nubo::Home {

namespace {

QString resolveHome()
{
    const QByteArray override = qgetenv("NUBO_HOME");
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
    static const QString home = resolveHome();
    return home;
}

QString path(const QString& relative)
{
    if (relative.isEmpty())
        return url();
    return url() + QLatin1Char('/') + relative;
}

} // namespace nubo::Home
