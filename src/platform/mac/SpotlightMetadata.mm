// Spotlight's record of an application's last launch, read through a metadata item for the
// bundle's location. A bundle Spotlight has not indexed gives no item, and no date.
#include "platform/Metadata.h"

#import <Foundation/Foundation.h>

namespace nubo {

namespace {

class SpotlightMetadata final : public Metadata
{
public:
    std::optional<QDateTime> lastUsedDate(const QString& path) const override
    {
        @autoreleasepool {
            NSURL* url = [NSURL fileURLWithPath:path.toNSString()];
            NSMetadataItem* item = [[NSMetadataItem alloc] initWithURL:url];
            if (!item)
                return std::nullopt;
            id value = [item valueForAttribute:@"kMDItemLastUsedDate"];
            if (![value isKindOfClass:[NSDate class]])
                return std::nullopt;
            return QDateTime::fromNSDate(static_cast<NSDate*>(value));
        }
    }
};

} // namespace

std::unique_ptr<Metadata> makeMetadata()
{
    return std::make_unique<SpotlightMetadata>();
}

} // namespace nubo
