#include "core/files/SystemRoots.h"

#include "core/files/Home.h"

#include <QDir>

#include <unistd.h>

namespace nubo {

namespace {

QString temporaryFolder()
{
#ifdef __APPLE__
    // The same folder NSTemporaryDirectory() answers, asked of the C library.
    char buffer[1024];
    const size_t length = confstr(_CS_DARWIN_USER_TEMP_DIR, buffer, sizeof buffer);
    if (length > 0 && length <= sizeof buffer)
        return QString::fromLocal8Bit(buffer);
#endif
    return QDir::tempPath();
}

} // namespace

SystemRoots SystemRoots::system()
{
    SystemRoots roots{Home::url(), QStringLiteral("/Library"), temporaryFolder()};
    if (Home::real() != roots.home)
        roots.realHome = Home::real();
    return roots;
}

} // namespace nubo
