// Accessibility through the AX API: trust checks and minimising another application's windows.
// Calls and conversions only; when to ask and whom to minimise is decided in portable code,
// which makes every call on the interface thread, one application per turn of the event loop.
#include "platform/Accessibility.h"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

namespace nubo {

namespace {

constexpr float kMessagingTimeoutSeconds = 1.5f;

class AxAccessibility final : public Accessibility
{
public:
    AxAccessibility()
    {
        // A limit set on one element holds for that element only, not for the windows it hands
        // out; set on the system-wide element it holds for every call this process makes, so a
        // hung application cannot keep the interface thread for the default several seconds
        // per window.
        if (AXUIElementRef systemWide = AXUIElementCreateSystemWide()) {
            AXUIElementSetMessagingTimeout(systemWide, kMessagingTimeoutSeconds);
            CFRelease(systemWide);
        }
    }

    bool isSupported() const override { return true; }

    bool isTrusted() const override { return AXIsProcessTrusted(); }

    bool requestTrust() override
    {
        @autoreleasepool {
            // The prompt is shown asynchronously; the answer is the trust as it stands now.
            NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
            return AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
        }
    }

    void minimizeWindows(qint64 pid) override
    {
        if (pid <= 0)
            return;
        AXUIElementRef app = AXUIElementCreateApplication(pid_t(pid));
        if (!app)
            return;
        AXUIElementSetMessagingTimeout(app, kMessagingTimeoutSeconds);
        CFTypeRef windows = nullptr;
        if (AXUIElementCopyAttributeValue(app, kAXWindowsAttribute, &windows) == kAXErrorSuccess && windows) {
            if (CFGetTypeID(windows) == CFArrayGetTypeID()) {
                const auto list = static_cast<CFArrayRef>(windows);
                for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
                    const auto window =
                        static_cast<AXUIElementRef>(const_cast<void*>(CFArrayGetValueAtIndex(list, i)));
                    AXUIElementSetAttributeValue(window, kAXMinimizedAttribute, kCFBooleanTrue);
                }
            }
            CFRelease(windows);
        }
        CFRelease(app);
    }
};

} // namespace

std::unique_ptr<Accessibility> makeAccessibility()
{
    return std::make_unique<AxAccessibility>();
}

} // namespace nubo
