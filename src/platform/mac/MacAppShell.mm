// The program's place on the Mac desktop: the activation policy (Dock icon and menu bar, or the
// menu-bar icon only), the answer to being opened again while running, and Sparkle's updater
// when the build found the framework. Calls only; when to switch is decided by the window code.
//
// Reopening. Qt installs its own application delegate and answers
// applicationShouldHandleReopen:hasVisibleWindows: itself: it re-sends "the application became
// active" with forced delivery (QEvent::ApplicationActivate, applicationStateChanged) and says
// yes. That event also comes for every ordinary activation, for example when the menu-bar panel
// opens, so the window code could not tell a click on the Dock icon from a glance at the panel.
// Replacing Qt's delegate would break what Qt does through it (quit, open-file and URL events).
// Instead this backend takes the reopen Apple event itself ('rapp', kAEReopenApplication, which
// AppKit turns into that delegate call) through NSAppleEventManager. AppKit installs its default
// handlers before it posts NSApplicationWillFinishLaunchingNotification, and a handler installed
// from then on replaces AppKit's one (Apple's NSAppleEventManager documentation and "How Cocoa
// Applications Handle Apple Events"), so the shell listens for that notification rather than
// becoming the delegate. Qt's delegate is left untouched.
#include "platform/AppShell.h"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#ifdef NUBO_HAS_SPARKLE
#import <Sparkle/Sparkle.h>
#endif

@interface NuboReopenListener : NSObject
@property(nonatomic, copy) void (^onReopen)(void);
- (void)start;
- (void)install;
- (void)handleReopen:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation NuboReopenListener {
    id _launchObserver;
    BOOL _installed;
}

- (void)start
{
    if (NSRunningApplication.currentApplication.finishedLaunching) {
        [self install];
        return;
    }
    if (_launchObserver != nil)
        return;
    __weak NuboReopenListener* weakSelf = self;
    _launchObserver = [NSNotificationCenter.defaultCenter
        addObserverForName:NSApplicationWillFinishLaunchingNotification
                    object:nil
                     queue:nil
                usingBlock:^(NSNotification* note) {
                  (void)note;
                  [weakSelf install];
                }];
}

- (void)install
{
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(handleReopen:withReplyEvent:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
    _installed = YES;
}

// Apple events are dispatched on the main thread, which is Qt's user-interface thread.
- (void)handleReopen:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply
{
    (void)event;
    (void)reply;
    if (self.onReopen)
        self.onReopen();
}

- (void)dealloc
{
    if (_launchObserver != nil)
        [NSNotificationCenter.defaultCenter removeObserver:_launchObserver];
    // The manager does not retain its handlers: never leave it pointing at a freed listener.
    if (_installed)
        [NSAppleEventManager.sharedAppleEventManager removeEventHandlerForEventClass:kCoreEventClass
                                                                          andEventID:kAEReopenApplication];
}

@end

namespace nubo {

namespace {

void applyPresence(AppShell::Presence presence)
{
    if (presence == AppShell::Presence::Accessory) {
        [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
        return;
    }
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
    // A policy switch alone leaves the menu bar with whichever application was in front; the
    // user just asked for our window, so bring the program forward. macOS 14 replaced the
    // ignoring-other-apps call (which no longer has an effect there) with plain activate.
    if (@available(macOS 14.0, *))
        [NSApp activate];
    else
        [NSApp activateIgnoringOtherApps:YES];
}

class MacAppShell final : public AppShell
{
public:
    ~MacAppShell() override
    {
        m_listener.onReopen = nil;
        m_listener = nil;
    }

    // Called on the user-interface thread, like every NSApp call.
    void setPresence(Presence presence) override
    {
        @autoreleasepool {
            applyPresence(presence);
        }
    }

    void setReopenHandler(std::function<void()> handler) override
    {
        @autoreleasepool {
            if (m_listener == nil) {
                m_listener = [[NuboReopenListener alloc] init];
                [m_listener start];
            }
            if (!handler) {
                m_listener.onReopen = nil;
                return;
            }
            // What AppKit's own answer would have meant: a regular application again, then the
            // window code shows its main window.
            auto shared = std::make_shared<std::function<void()>>(std::move(handler));
            m_listener.onReopen = ^{
              applyPresence(Presence::Regular);
              (*shared)();
            };
        }
    }

#ifdef NUBO_HAS_SPARKLE
    bool canCheckForUpdates() const override { return true; }

    // SPUStandardUpdaterController must be made and used on the main thread (Sparkle's API
    // reference). Starting it runs Sparkle's own schedule of background checks, configured by
    // the SUFeedURL and SUPublicEDKey keys of the bundle's Info.plist.
    void startUpdater() override
    {
        if (m_updater != nil)
            return;
        @autoreleasepool {
            m_updater = [[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                      updaterDelegate:nil
                                                                   userDriverDelegate:nil];
        }
    }

    void checkForUpdates() override
    {
        startUpdater();
        @autoreleasepool {
            [m_updater checkForUpdates:nil];
        }
    }
#else
    // Built without Sparkle: nothing to check, and the commands stay hidden.
    bool canCheckForUpdates() const override { return false; }
    void startUpdater() override {}
    void checkForUpdates() override {}
#endif

private:
    NuboReopenListener* m_listener = nil;
#ifdef NUBO_HAS_SPARKLE
    SPUStandardUpdaterController* m_updater = nil;
#endif
};

} // namespace

std::unique_ptr<AppShell> makeAppShell()
{
    return std::make_unique<MacAppShell>();
}

} // namespace nubo
