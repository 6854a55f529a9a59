#pragma once

#include "platform/Metadata.h"

#include <QHash>

namespace nubo {

/// Metadata for tests: last-used dates by path, none for any other path.
class FakeMetadata final : public Metadata
{
public:
    std::optional<QDateTime> lastUsedDate(const QString& path) const override
    {
        const auto found = lastUsed.constFind(path);
        if (found == lastUsed.constEnd())
            return std::nullopt;
        return *found;
    }

    QHash<QString, QDateTime> lastUsed;
};

} // namespace nubo
