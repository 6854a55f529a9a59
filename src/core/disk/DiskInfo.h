#pragma once

#include "platform/VolumeCapacity.h"

#include <QString>

namespace nubo {

/// Capacity and free space of the start-up volume, as the disk card and the menu-bar panel show
/// them. A plain value; figures that could not be read are 0.
struct DiskInfo
{
    qint64 total = 0;
    qint64 available = 0;
    /// The volume's own name; empty where it has none.
    QString name = QString();

    /// Bytes in use: total minus available, never below 0.
    [[nodiscard]] qint64 used() const;
    /// Share of the volume in use, 0 to 1; 0 when the total is below 1 byte.
    [[nodiscard]] double fraction() const;

    /// The figures of "/" through `volume`. Never fails.
    [[nodiscard]] static DiskInfo current(const VolumeCapacity& volume);

    /// The free space counts purgeable space as free where the platform can say how much
    /// (as the system's storage view does), else the plain free space; missing figures are 0,
    /// and so is a negative one, which only a broken reader gives.
    [[nodiscard]] static DiskInfo fromFigures(const VolumeFigures& figures);

    friend bool operator==(const DiskInfo&, const DiskInfo&) = default;
};

} // namespace nubo
