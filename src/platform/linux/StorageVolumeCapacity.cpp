#include "platform/linux/StorageVolumeCapacity.h"

#include <QStorageInfo>

namespace nubo {

VolumeFigures StorageVolumeCapacity::figures(const QString& path) const
{
    const QStorageInfo storage(path);
    if (!storage.isValid() || !storage.isReady())
        return {};
    VolumeFigures figures;
    if (const qint64 total = storage.bytesTotal(); total >= 0)
        figures.total = total;
    if (const qint64 available = storage.bytesAvailable(); available >= 0)
        figures.available = available;
    if (const QString label = storage.name(); !label.trimmed().isEmpty())
        figures.name = label;
    return figures;
}

std::unique_ptr<VolumeCapacity> makeVolumeCapacity()
{
    return std::make_unique<StorageVolumeCapacity>();
}

} // namespace nubo
