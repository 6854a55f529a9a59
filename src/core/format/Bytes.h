#pragma once

#include <QLocale>
#include <QString>

namespace nubo::Bytes {

/// The one text every size shown to the user goes through: decimal units (1 KB = 1000 bytes),
/// KB to TB only, no decimals for KB, one for MB, two for GB and TB, trailing zeros dropped, the
/// locale's decimal separator, and the unit after a space. Counts below 1 read "0 KB".
[[nodiscard]] QString string(qint64 bytes, const QLocale& locale = QLocale());

} // namespace nubo::Bytes
