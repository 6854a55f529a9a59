#include "platform/linux/DesktopWorkspace.h"

#include <QDesktopServices>
#include <QUrl>

namespace nubo {

void DesktopWorkspace::openUrl(const QString& url)
{
    const QUrl address(url);
    // macOS settings pages mean nothing here; handing them to xdg-open would only show an error.
    if (address.scheme().startsWith(QLatin1String("x-apple")))
        return;
    QDesktopServices::openUrl(address);
}

} // namespace nubo
