#include "core/disk/DiskInfo.h"

#include <algorithm>

namespace nubo {

qint64 DiskInfo::used() const
{
    return std::max<qint64>(0, total - available);
}

double DiskInfo::fraction() const
{
    if (total < 1)
        return 0.0;
    return std::clamp(double(used()) / double(total), 0.0, 1.0);
}

DiskInfo DiskInfo::current(const VolumeCapacity& volume)
{
    return fromFigures(volume.figures(QStringLiteral("/")));
}

DiskInfo DiskInfo::fromFigures(const VolumeFigures& figures)
{
    const auto nonNegative = [](std::optional<qint64> value) { return std::max<qint64>(0, value.value_or(0)); };
    DiskInfo info;
    info.total = nonNegative(figures.total);
    info.available = nonNegative(figures.importantUsage ? figures.importantUsage : figures.available);
    info.name = figures.name.value_or(QString()).trimmed();
    return info;
}

} // namespace nubo
