// Linked with the menu-bar program's own `main`. It looks at the running application from inside
// and quits it as a user does; the process ends with status 0 when everything was as expected.

#import <AppKit/AppKit.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#import "shells/appkit/ORVApplicationDelegate.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

namespace {

constexpr const char* kSecondCopy = "BRIMLET_SECOND_COPY";
NSString* const kMode = @"BrimletLanguageMode";

TemporaryHome* home = nullptr;
int looks = 0;
bool quits = false;

void expect(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "FAILED: %s\n", what);
        _exit(1);
    }
}

/// Makes the home before `main` begins. A second copy has the home of the first one.
bool prepareHome() {
    if (std::getenv(kSecondCopy)) {
        return false;
    }
    home = new TemporaryHome;
    home->write(".codex/sessions/rollout-2026-11-24T16-45-20-" + records::kTask + ".jsonl",
                records::compacted("w1") + records::tokenCount("128000"));
    home->write("Library/Logs/com.openai.codex/main.log", records::log("1 activity TASK"));
    setenv("HOME", home->root().c_str(), 1);
    std::atexit([] {
        delete home;
        expect(quits, "the program launches, and ends when it is to");
    });
    return true;
}
[[maybe_unused]] const bool kIsPrepared = prepareHome();

}  // namespace

@interface ORVLaunchTest : NSObject
@end

@implementation ORVLaunchTest

+ (void)load {
    [[NSNotificationCenter defaultCenter] addObserver:[[ORVLaunchTest alloc] init]
                                             selector:@selector(prepare:)
                                                 name:NSApplicationWillFinishLaunchingNotification
                                               object:nil];
}

- (void)prepare:(NSNotification*)notification {
    expect(!std::getenv(kSecondCopy), "a second copy ends before it launches");
    expect([[[NSUserDefaults standardUserDefaults] stringForKey:@"NSTreatUnknownArgumentsAsOpen"]
               isEqualToString:@"NO"],
           "arguments are no documents");
    [NSTimer scheduledTimerWithTimeInterval:0.1
                                     target:self
                                   selector:@selector(look:)
                                   userInfo:nil
                                    repeats:YES];
}

- (void)look:(NSTimer*)timer {
    expect(++looks < 400, "the first figures come within 40 seconds");
    ORVApplicationDelegate* delegate = (ORVApplicationDelegate*)[NSApp delegate];
    NSStatusItem* statusItem = delegate.controller.statusItem;
    if (![statusItem.button.title isEqualToString:@"C1 · 47%"]) {
        return;
    }
    [timer invalidate];
    expect([NSApp activationPolicy] == NSApplicationActivationPolicyAccessory,
           "no icon in the Dock");
#ifdef GNUSTEP  // The log of a Mac cannot be read from here.
    expect(ORVStandIn.log.front().starts_with("com.orvellan.brimlet: Version "),
           "the start is logged");
    NSException* exception = [NSException exceptionWithName:@"A" reason:@"B" userInfo:nil];
    NSGetUncaughtExceptionHandler()(exception);
    [NSApp reportException:exception];
    const std::string logged = "com.orvellan.brimlet error: Uncaught exception: A";
    expect(std::count(ORVStandIn.log.begin(), ORVStandIn.log.end(), logged) == 2,
           "exceptions are logged, without their reasons");
#endif
    setenv(kSecondCopy, "1", 1);
    const std::string program = [[NSBundle mainBundle] executablePath].UTF8String;
    expect(std::system(("'" + program + "'").c_str()) == 0, "a second copy ends at once");
    expect(std::system(("HOME=/dev/null '" + program + "' 2>/dev/null").c_str()) != 0,
           "where nothing can be locked, it launches");
    unsetenv(kSecondCopy);
    NSMenu* menu = statusItem.menu;
    [[menu itemAtIndex:10].submenu performActionForItemAtIndex:2];
    expect([[NSUserDefaults standardUserDefaults] integerForKey:kMode] == 2,
           "a language is stored, among the program's own settings");
    [[NSUserDefaults standardUserDefaults]
        removePersistentDomainForName:[NSBundle mainBundle].bundleIdentifier];
    quits = true;
    [menu performActionForItemAtIndex:menu.numberOfItems - 1];
    expect(false, "choosing the last item quits");
}

@end
