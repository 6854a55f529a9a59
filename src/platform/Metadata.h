#pragma once

#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

namespace nubo {

/// What the system's metadata index knows about a file beyond the file system itself. For now
/// one question: when an application bundle was last opened, as the system recorded it (on a
/// Mac, Spotlight's "kMDItemLastUsedDate"). Where the platform keeps no such record the answer is
/// none, and callers fall back to the file system's access date themselves. Safe from any thread.
class Metadata
{
public:
    virtual ~Metadata() = default;

    [[nodiscard]] virtual std::optional<QDateTime> lastUsedDate(const QString& path) const = 0;
};

/// The backend of the platform the program was built for.
[[nodiscard]] std::unique_ptr<Metadata> makeMetadata();

} // namespace nubo
