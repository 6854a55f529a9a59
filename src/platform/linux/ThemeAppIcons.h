#pragma once

#include "platform/AppIcons.h"

#include <QStringList>

namespace nubo {

/// Icons from the freedesktop icon themes. A desktop entry's "Icon" is a file when it is a full
/// path, otherwise a name looked up in the user's theme, the themes it inherits and "hicolor",
/// under each "icons" folder, at the closest size not smaller than asked (a scalable picture
/// otherwise), then in the plain "pixmaps" folders. A program or entry without an icon gets the
/// theme's generic application icon.
class ThemeAppIcons final : public AppIcons
{
public:
    /// `iconFolders`: where themes live, first wins ("~/.icons", then each XDG data folder's
    /// "icons"); `pixmapFolders`: folders of loose pictures; `theme`: the desktop's theme name.
    ThemeAppIcons(QStringList iconFolders, QStringList pixmapFolders, const QString& theme);

    [[nodiscard]] QImage icon(const QString& path, int pixels) const override;

    /// The picture file for an icon name at `pixels`; empty when no theme has it.
    [[nodiscard]] QString lookUp(const QString& name, int pixels) const;

private:
    QStringList m_iconFolders;
    QStringList m_pixmapFolders;
    QStringList m_themes; ///< the user's theme, what it inherits, then "hicolor"
};

} // namespace nubo
