// The administrator prompt of macOS: NSAppleScript runs the "do shell script … with administrator
// privileges" text that portable code built, and the system shows its own password dialog.
// Calls and conversions only; every decision about the text lives in core/admin.
#include "platform/AdminRunner.h"

#import <Foundation/Foundation.h>

#include <mutex>

namespace nubo {

namespace {

class AppleScriptAdminRunner final : public AdminRunner
{
public:
    AdminOutcome run(const AdminRequest& request) override
    {
        // Scripts may run on background threads (since Mac OS X 10.6), but two password prompts
        // at once would only confuse the user: one at a time.
        const std::lock_guard lock(m_mutex);
        @autoreleasepool {
            // initWithSource: answers nil when the script object cannot be made.
            NSAppleScript* script = [[NSAppleScript alloc] initWithSource:request.script.toNSString()];
            if (script == nil)
                return AdminOutcome::Unavailable;
#if !__has_feature(objc_arc)
            [script autorelease];
#endif
            // executeAndReturnError: fills the error dictionary when the script fails, which
            // includes a cancelled prompt and a wrong password.
            // The result is nil when an error occurred; both are checked so that no path where
            // the script did not finish can read as success.
            NSDictionary<NSString*, id>* error = nil;
            NSAppleEventDescriptor* result = [script executeAndReturnError:&error];
            return error == nil && result != nil ? AdminOutcome::Succeeded : AdminOutcome::Failed;
        }
    }

private:
    std::mutex m_mutex;
};

} // namespace

std::unique_ptr<AdminRunner> makeAdminRunner()
{
    return std::make_unique<AppleScriptAdminRunner>();
}

} // namespace nubo
