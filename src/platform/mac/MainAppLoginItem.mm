// Opening at login through the Service Management framework's main-app service. It exists from
// macOS 13 on; on older systems nothing is registered and the switch reads off. Calls only; the
// model reads the status back after every change.
#include "platform/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

namespace nubo {

namespace {

class MainAppLoginItem final : public LoginItem
{
public:
    bool isRegistered() const override
    {
        if (@available(macOS 13.0, *))
            return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
        return false;
    }

    bool registerApp() override
    {
        if (@available(macOS 13.0, *)) {
            @autoreleasepool {
                NSError* error = nil;
                return [SMAppService.mainAppService registerAndReturnError:&error];
            }
        }
        return false;
    }

    bool unregisterApp() override
    {
        if (@available(macOS 13.0, *)) {
            @autoreleasepool {
                // Unregistering what is not registered reports an error; the status read
                // afterwards is what counts.
                NSError* error = nil;
                return [SMAppService.mainAppService unregisterAndReturnError:&error];
            }
        }
        return false;
    }
};

} // namespace

std::unique_ptr<LoginItem> makeLoginItem()
{
    return std::make_unique<MainAppLoginItem>();
}

} // namespace nubo
