#pragma once

#include "platform/VolumeCapacity.h"

namespace nubo {

/// Volume figures from the file-system statistics (statvfs through QStorageInfo). Linux has no
/// purgeable-space notion, so the important-usage figure is always missing.
class StorageVolumeCapacity final : public VolumeCapacity
{
public:
    [[nodiscard]] VolumeFigures figures(const QString& path) const override;
};

} // namespace nubo
