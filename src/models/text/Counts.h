#pragma once

#include <QString>

namespace nubo::Counts {

/// "1 elemento" or "N elementos": the item count every list, badge and confirmation shows.
[[nodiscard]] QString items(qint64 count);

} // namespace nubo::Counts
