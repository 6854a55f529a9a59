#pragma once

#include <QImage>
#include <QString>

#include <memory>

namespace nubo {

/// The picture the system shows for an application or a file, drawn at a size in pixels: the
/// workspace's icon on a Mac, the icon a desktop entry names in the user's icon theme on Linux.
/// Safe to call from several threads at once; it reads the disk, so never from the interface
/// thread. A null image when the system has nothing to show, for the view's own fallback.
class AppIcons
{
public:
    virtual ~AppIcons() = default;
    /// `path`: an application bundle, a desktop entry or any file; `pixels`: the side of the
    /// square the picture must fit.
    [[nodiscard]] virtual QImage icon(const QString& path, int pixels) const = 0;
};

/// The backend of the platform the program was built for; build it on the interface thread,
/// which is where the desktop's theme can be asked.
[[nodiscard]] std::unique_ptr<AppIcons> makeAppIcons();

} // namespace nubo
