// Volume figures on macOS: the file URL's volume resource values, read in one request. The
// important-usage figure counts purgeable space as free, as the system's storage view does.
#include "platform/VolumeCapacity.h"

#import <Foundation/Foundation.h>

namespace nubo {

namespace {

std::optional<qint64> number(NSDictionary<NSURLResourceKey, id>* values, NSURLResourceKey key)
{
    id value = values[key];
    if (![value isKindOfClass:[NSNumber class]])
        return std::nullopt;
    return qint64([(NSNumber*)value longLongValue]);
}

class UrlVolumeCapacity final : public VolumeCapacity
{
public:
    VolumeFigures figures(const QString& path) const override
    {
        @autoreleasepool {
            NSURL* url = [NSURL fileURLWithPath:path.toNSString()];
            NSArray<NSURLResourceKey>* keys = @[
                NSURLVolumeTotalCapacityKey, NSURLVolumeAvailableCapacityForImportantUsageKey,
                NSURLVolumeAvailableCapacityKey, NSURLVolumeLocalizedNameKey
            ];
            // resourceValuesForKeys:error: answers nil on failure; a key it cannot read is absent.
            NSDictionary<NSURLResourceKey, id>* values = [url resourceValuesForKeys:keys error:nil];
            if (values == nil)
                return {};
            VolumeFigures figures{number(values, NSURLVolumeTotalCapacityKey),
                                  number(values, NSURLVolumeAvailableCapacityForImportantUsageKey),
                                  number(values, NSURLVolumeAvailableCapacityKey)};
            id name = values[NSURLVolumeLocalizedNameKey];
            if ([name isKindOfClass:[NSString class]])
                figures.name = QString::fromNSString((NSString*)name);
            return figures;
        }
    }
};

} // namespace

std::unique_ptr<VolumeCapacity> makeVolumeCapacity()
{
    return std::make_unique<UrlVolumeCapacity>();
}

} // namespace nubo
