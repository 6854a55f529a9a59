#pragma once

#include <QString>

namespace nubo {

/// `text` as one word for a POSIX shell: wrapped in single quotes, each single quote inside
/// written as '\'' (close, escaped quote, reopen). Nothing else needs escaping between single
/// quotes, so spaces, double quotes, backslashes, "$", newlines and a leading "-" all pass
/// through as they are. An empty text becomes ''.
[[nodiscard]] QString shellQuote(const QString& text);

} // namespace nubo
