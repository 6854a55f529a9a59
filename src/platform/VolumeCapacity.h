#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace nubo {

/// The capacity figures of the volume holding a path, each missing when it cannot be read.
/// `importantUsage` is the free space counting what the system would purge for an important
/// need (macOS's own storage view shows this); platforms without the notion leave it out.
struct VolumeFigures
{
    std::optional<qint64> total;
    std::optional<qint64> importantUsage;
    std::optional<qint64> available;
    /// The volume's own name as the file manager shows it ("Macintosh HD", a Linux file system's
    /// label); missing where the volume has none.
    std::optional<QString> name = std::nullopt;
};

/// Reads the capacity figures of a volume. Never fails: what cannot be read is missing.
class VolumeCapacity
{
public:
    virtual ~VolumeCapacity() = default;
    [[nodiscard]] virtual VolumeFigures figures(const QString& path) const = 0;
};

/// The reader of the platform the program was built for: the volume resource values of the
/// file URL on macOS, the file-system statistics call elsewhere.
[[nodiscard]] std::unique_ptr<VolumeCapacity> makeVolumeCapacity();

} // namespace nubo
