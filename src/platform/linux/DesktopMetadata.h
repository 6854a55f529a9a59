#pragma once

#include "platform/Metadata.h"

namespace nubo {

/// Linux keeps no record of when an application was last opened (Spotlight's counterpart,
/// where a desktop has one, indexes documents, not launches), so every answer is none and the
/// catalogue falls back to the file system's access date.
class DesktopMetadata final : public Metadata
{
public:
    [[nodiscard]] std::optional<QDateTime> lastUsedDate(const QString& path) const override;
};

} // namespace nubo
