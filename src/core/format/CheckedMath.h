#pragma once

#include <QtGlobal>

namespace nubo {

/// Adds two byte counts. A byte total that overflows 64 bits means a bug or corrupt input that
/// would otherwise show the user a nonsense figure, so it stops the program instead of wrapping.
[[nodiscard]] qint64 checkedAdd(qint64 a, qint64 b);

/// Adds `b` to `total` in place with the same overflow rule as checkedAdd.
void addChecked(qint64& total, qint64 b);

} // namespace nubo
