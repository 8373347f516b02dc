// Brimlet in the menu bar: no window, no Dock icon, no menu of its own beside the status item's.

#import <AppKit/AppKit.h>

#import "shells/appkit/ORVApplicationDelegate.h"

namespace {

/// Whether another process runs this bundle. Outside of a bundle there is no way to know.
bool isRunningAlready() {
    NSString* identifier = [NSBundle mainBundle].bundleIdentifier;
    if (!identifier) {
        return false;
    }
    const pid_t ownProcess = [NSProcessInfo processInfo].processIdentifier;
    for (NSRunningApplication* application in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if (application.processIdentifier != ownProcess) {
            return true;
        }
    }
    return false;
}

}  // namespace

int main() {
    @autoreleasepool {
        if (isRunningAlready()) {
            return 0;  // One is enough in a menu bar.
        }
        NSApplication* application = [NSApplication sharedApplication];
        ORVApplicationDelegate* delegate = [[ORVApplicationDelegate alloc] init];
        application.delegate = delegate;
        // Arguments mean nothing; AppKit would take them for documents.
        [[NSUserDefaults standardUserDefaults]
            registerDefaults:@{@"NSTreatUnknownArgumentsAsOpen" : @"NO"}];
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        [application run];
        [delegate release];
    }
    return 0;
}
