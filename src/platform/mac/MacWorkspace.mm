// The Mac's workspace, through AppKit's NSWorkspace and NSRunningApplication. Only calls and
// conversions live here; every decision about what the answers mean is made in portable code.
#include "platform/Workspace.h"

#include "core/files/NativePath.h"

#import <AppKit/AppKit.h>
#include <QUrl>

namespace nubo {

namespace {

QString pathOf(NSURL* url)
{
    return url && url.isFileURL ? QString::fromNSString(url.path) : QString();
}

// A Boolean resource value of the folder at `path`, read from the file system.
std::optional<bool> flagOf(const QString& path, NSURLResourceKey key)
{
    @autoreleasepool {
        NSURL* url = [NSURL fileURLWithPath:path.toNSString() isDirectory:YES];
        NSNumber* value = nil;
        if (![url getResourceValue:&value forKey:key error:nil] || value == nil)
            return std::nullopt;
        return static_cast<bool>(value.boolValue);
    }
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

    // The address is made from the path's exact bytes, so a name that is not UTF-8 still selects
    // that very item. Safe from any thread (NSWorkspace activateFileViewerSelectingURLs:).
    void reveal(const QString& path) override
    {
        if (!path.startsWith(QLatin1Char('/')))
            return;
        @autoreleasepool {
            const QByteArray bytes = NativePath::encode(path);
            NSURL* item = [NSURL fileURLWithFileSystemRepresentation:bytes.constData()
                                                         isDirectory:NO
                                                       relativeToURL:nil];
            if (item)
                [[NSWorkspace sharedWorkspace] activateFileViewerSelectingURLs:@[ item ]];
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
                entry.terminated = app.terminated;
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

    bool canActivate() const override { return true; }

protected:
    // The shared file manager may be asked from any thread; it answers the path itself when it
    // cannot name the item, which the portable caller treats as no answer.
    std::optional<QString> systemDisplayName(const QString& path) const override
    {
        @autoreleasepool {
            NSString* name = [[NSFileManager defaultManager] displayNameAtPath:path.toNSString()];
            return name ? std::optional<QString>(QString::fromNSString(name)) : std::nullopt;
        }
    }

    // Asked from the scanner's threads: each answer comes from a URL made for the call and used
    // by that thread alone. A path that cannot be read gives no answer rather than a guess.
    std::optional<bool> systemIsVolume(const QString& path) const override
    {
        return flagOf(path, NSURLIsVolumeKey);
    }

    std::optional<bool> systemIsPackage(const QString& path) const override
    {
        return flagOf(path, NSURLIsPackageKey);
    }

public:
    bool canHide() const override { return true; }

    void activate(const RunningApplication& app) override
    {
        @autoreleasepool {
            [running(app) activateWithOptions:0];
        }
    }

    void hide(const RunningApplication& app) override
    {
        @autoreleasepool {
            [running(app) hide];
        }
    }

    void unhide(const RunningApplication& app) override
    {
        @autoreleasepool {
            [running(app) unhide];
        }
    }

    void terminate(const RunningApplication& app) override
    {
        @autoreleasepool {
            [running(app) terminate];
        }
    }

    void forceTerminate(const RunningApplication& app) override
    {
        @autoreleasepool {
            [running(app) forceTerminate];
        }
    }

private:
    // nil when the application has ended; messages to nil do nothing.
    static NSRunningApplication* running(const RunningApplication& app)
    {
        if (app.pid <= 0)
            return nil;
        return [NSRunningApplication runningApplicationWithProcessIdentifier:pid_t(app.pid)];
    }
};

} // namespace

std::unique_ptr<Workspace> makeWorkspace()
{
    return std::make_unique<MacWorkspace>();
}

} // namespace nubo
