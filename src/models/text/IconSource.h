#pragma once

#include <QString>

namespace nubo::IconSource {

/// The image address the views load an application's or a file's icon from:
/// "image://appicon/" and the path's bytes in base64url, so quotes, "#", "%" and names that are
/// not UTF-8 reach the platform exactly; empty for an empty path.
[[nodiscard]] QString of(const QString& path);
/// The path an address's id (what follows "image://appicon/") names; empty for any other text.
[[nodiscard]] QString pathOf(const QString& id);

} // namespace nubo::IconSource
