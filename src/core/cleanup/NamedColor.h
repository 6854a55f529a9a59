#pragma once

#include <QString>

namespace nubo {

/// The system's named tints a cleanup category may use for its icon. The views turn a name into
/// the platform's own shade; core only ever speaks of the name.
enum class NamedColor { teal, gray, orange, red, blue, indigo, purple, brown, cyan, green, mint, yellow, pink };

namespace NamedColors {
/// The lower-case name ("teal", "gray", …) the views look the tint up by.
[[nodiscard]] QString name(NamedColor color);
} // namespace NamedColors

} // namespace nubo
