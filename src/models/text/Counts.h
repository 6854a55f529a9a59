#pragma once

#include <QString>

namespace nubo::Counts {

/// A count as the user's locale writes it, with its grouping ("16.168" in Spanish): every count
/// the interface shows goes through here, so a long one stays readable.
[[nodiscard]] QString number(qint64 count);
/// "1 elemento" or "N elementos": the item count every list, badge and confirmation shows.
[[nodiscard]] QString items(qint64 count);

} // namespace nubo::Counts
