// Brimlet in the menu bar: no window, no Dock icon, no menu of its own beside the status item's.

#import <AppKit/AppKit.h>

#import "shells/appkit/ORVApplicationDelegate.h"

int main() {
    @autoreleasepool {
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
