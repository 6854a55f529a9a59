// The Mac's workspace, through AppKit's NSWorkspace and NSRunningApplication. Only calls and
// conversions live here; every decision about what the answers mean is made in portable code.
#include "platform/Workspace.h"

#include <QUrl>

#import <AppKit/AppKit.h>

namespace nubo {

namespace {

QString pathOf(NSURL* url)
{
    return url && url.isFileURL ? QString::fromNSString(url.path) : QString();
}

class MacWorkspace final : public Workspace
{
public:
    void openUrl(const QString& url) override
    {
        @autoreleasepool {
            NSURL* address = QUrl(url).toNSURL();
            if (address)
                [[NSWorkspace sharedWorkspace] openURL:address];
        }
    }

    QList<RunningApplication> runningApplications() const override
    {
        QList<RunningApplication> result;
        @autoreleasepool {
            // Safe from any thread: NSRunningApplication answers its properties atomically.
            for (NSRunningApplication* app in [[NSWorkspace sharedWorkspace] runningApplications]) {
                RunningApplication entry;
                entry.pid = app.processIdentifier;
                entry.name = app.localizedName ? QString::fromNSString(app.localizedName) : QString();
                entry.bundlePath = pathOf(app.bundleURL);
                entry.hidden = app.hidden;
                entry.active = app.active;
                entry.regular = app.activationPolicy == NSApplicationActivationPolicyRegular;
                result << entry;
            }
        }
        return result;
    }

    std::optional<QString> applicationLocation(const QString& bundleIdentifier) const override
    {
        @autoreleasepool {
            // Documented as safe to call from any thread.
            NSURL* url = [[NSWorkspace sharedWorkspace]
                URLForApplicationWithBundleIdentifier:bundleIdentifier.toNSString()];
            const QString path = pathOf(url);
            if (path.isEmpty())
                return std::nullopt;
            return path;
        }
    }
};

} // namespace

std::unique_ptr<Workspace> makeWorkspace()
{
    return std::make_unique<MacWorkspace>();
}

} // namespace nubo
