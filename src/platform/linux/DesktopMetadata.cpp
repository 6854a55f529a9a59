#include "platform/linux/DesktopMetadata.h"

namespace nubo {

std::optional<QDateTime> DesktopMetadata::lastUsedDate(const QString&) const
{
    return std::nullopt;
}

std::unique_ptr<Metadata> makeMetadata()
{
    return std::make_unique<DesktopMetadata>();
}

} // namespace nubo
