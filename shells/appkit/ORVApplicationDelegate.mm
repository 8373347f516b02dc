// Starts the application when AppKit is ready, and connects it with AppKit and Grand Central
// Dispatch. Tests: tests/appkit/appkit_test.mm.

#import "shells/appkit/ORVApplicationDelegate.h"

#include "shells/appkit/program_log.h"

ORVAppKitHost::ORVAppKitHost(std::unique_ptr<ORVUserDefaults> userDefaults)
    : files_(platform::makeFiles()), userDefaults_(std::move(userDefaults)) {}

std::unique_ptr<ORVSerialQueue> ORVAppKitHost::makeSerialQueue(const std::string& label) {
    return std::make_unique<platform::DispatchQueue>(label);
}

void ORVAppKitHost::terminate() {
    [[NSApplication sharedApplication] terminate:nil];
}

@implementation ORVApplicationDelegate

@synthesize controller = controller_;

- (instancetype)initWithUserDefaults:(std::unique_ptr<ORVUserDefaults>&&)userDefaults {
    self = [super init];
    if (self) {
        host_ = std::make_unique<ORVAppKitHost>(std::move(userDefaults));
        delegate_ = std::make_shared<ORVAppDelegate>(*host_);
    }
    return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    // An application without a window naps, and then its timer may be minutes late.
    activity_ = [[[NSProcessInfo processInfo]
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Following the task in view"] retain];
    delegate_->applicationDidFinishLaunching();
    controller_ = [[ORVStatusItemController alloc] initWithDelegate:*delegate_];
    host_->runLoop().setTurnEnd([self] {
        [controller_ update];
        [self logStatus];
    });
}

/// Logs the outcome of the first refresh, and every change after it. The focus line names no task.
- (void)logStatus {
    const std::string status =
        delegate_->lastSnapshot() ? "A task is shown" : delegate_->focusLine();
    if (!status.empty() && status != loggedStatus_) {
        appkit::log(status);
        loggedStatus_ = status;
    }
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    appkit::log("Ends, as the user or the system wants");
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
