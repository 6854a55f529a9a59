#pragma once

#include <QString>
#include <QStringList>

namespace nubo::UserDirectories {

/// The folders a freedesktop home names for the desktop, downloads, documents, music, pictures,
/// public files, templates and videos, as the user's "user-dirs.dirs" sets them (their names are
/// localised: "Descargas", "Imágenes"). Only absolute folders other than the home itself are
/// given; a missing or malformed file gives none.
[[nodiscard]] QStringList configured(const QString& home);
/// The download folder the user's "user-dirs.dirs" names, else "Downloads" in the home.
[[nodiscard]] QString downloads(const QString& home);

} // namespace nubo::UserDirectories
