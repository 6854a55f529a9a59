// Opening at login through the Service Management framework's main-app service (macOS 13 and
// later). Calls only; the model reads the status back after every change.
#include "platform/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

namespace nubo {

namespace {

class MainAppLoginItem final : public LoginItem
{
public:
    bool isRegistered() const override
    {
        return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
    }

    bool registerApp() override
    {
        @autoreleasepool {
            NSError* error = nil;
            return [SMAppService.mainAppService registerAndReturnError:&error];
        }
    }

    bool unregisterApp() override
    {
        @autoreleasepool {
            NSError* error = nil;
            return [SMAppService.mainAppService unregisterAndReturnError:&error];
        }
    }
};

} // namespace

std::unique_ptr<LoginItem> makeLoginItem()
{
    return std::make_unique<MainAppLoginItem>();
}

} // namespace nubo
