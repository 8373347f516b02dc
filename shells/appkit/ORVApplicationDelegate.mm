// Starts the application when AppKit is ready. Tests: tests/appkit/appkit_test.mm.

#import "shells/appkit/ORVApplicationDelegate.h"

@implementation ORVApplicationDelegate

@synthesize controller = controller_;

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    // An application without a window naps, and then its timer may be minutes late.
    activity_ = [[[NSProcessInfo processInfo]
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Following the task in view"] retain];
    host_ = std::make_unique<ORVAppKitHost>();
    delegate_ = std::make_shared<ORVAppDelegate>(*host_);
    delegate_->applicationDidFinishLaunching();
    controller_ = [[ORVStatusItemController alloc] initWithDelegate:*delegate_];
    host_->runLoop().setTurnEnd([controller = controller_] { [controller update]; });
}

/// Only tests call dealloc, because AppKit ends the process without it. A test must first let every
/// refresh end, since a refresh uses the host.
- (void)dealloc {
    if (activity_) {
        [[NSProcessInfo processInfo] endActivity:activity_];
    }
    [activity_ release];
    [controller_ release];
    [super dealloc];
}

@end
