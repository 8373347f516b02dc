// Brimlet in the menu bar: no window, no Dock icon, no menu of its own beside the status item's.
// Tests: tests/appkit/launch_test.mm.

#import <AppKit/AppKit.h>

#include <string_view>

#include "app/version.h"
#include "platform/program.h"
#import "shells/appkit/ORVApplicationDelegate.h"
#include "shells/appkit/program_log.h"
#include "shells/appkit/self_test.h"

namespace {

/// Logs the exception's name; its reason might hold a title.
void logException(NSException* exception) {
    appkit::logFailure("Uncaught exception: " + std::string(exception.name.UTF8String));
}

/// Whether this process is the one that shows the status item. One is enough in a menu bar, and
/// none is too few: where nothing can be locked, a second copy is shown.
bool mayRun() {
    // The system removes old files from the folders for temporary ones, and a second process would
    // then lock a file of its own.
    const std::string folder = platform::homeFolder() + "/Library/Application Support/Brimlet";
    ORVErrorSlot error;
    switch (platform::lockForRun(folder, &error)) {
        case platform::RunLock::held:
            return true;
        case platform::RunLock::heldByAnother:
            appkit::log("Ends, because another copy runs");
            return false;
        case platform::RunLock::unknown:
            appkit::logFailure("Cannot tell whether another copy runs: " + error->description);
            return true;
    }
}

}  // namespace

/// AppKit itself catches what is thrown while it handles an event or a timer, and goes on.
@interface ORVApplication : NSApplication
@end

@implementation ORVApplication
- (void)reportException:(NSException*)exception {
    logException(exception);
    [super reportException:exception];
}
@end

/// Arguments mean nothing, except "--self-test".
int main(int count, char** values) {
    @autoreleasepool {
        if (count > 1 && values[1] == std::string_view("--self-test")) {
            return appkit::selfTest();
        }
        appkit::log("Version " BRIMLET_VERSION " starts as process " +
                    std::to_string([NSProcessInfo processInfo].processIdentifier));
        if (!mayRun()) {
            return 0;
        }
        NSApplication* application = [ORVApplication sharedApplication];
        NSSetUncaughtExceptionHandler(logException);  // AppKit may have set one of its own.
        ORVApplicationDelegate* delegate = [[ORVApplicationDelegate alloc]
            initWithUserDefaults:platform::standardUserDefaults([](const ORVStoringFailure&) {})];
        application.delegate = delegate;
        // AppKit would take arguments for documents.
        [[NSUserDefaults standardUserDefaults]
            registerDefaults:@{@"NSTreatUnknownArgumentsAsOpen" : @"NO"}];
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        [application run];
        [delegate release];
    }
    return 0;
}
