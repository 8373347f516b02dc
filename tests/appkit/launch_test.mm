// Linked with the menu-bar program's own `main`: looks at the running application from inside, and
// quits it as a user does. The process ends with status 0 when everything was as expected.

#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>

#import "shells/appkit/ORVApplicationDelegate.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

namespace {

constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";

void expect(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "FAILED: %s\n", what);
        _exit(1);
    }
}

NSStatusItem* statusItem() {
    ORVApplicationDelegate* delegate = (ORVApplicationDelegate*)[NSApp delegate];
    return delegate.controller.statusItem;
}

}  // namespace

@interface ORVLaunchTest : NSObject {
    int looks_;
}
- (void)start:(NSNotification*)notification;
- (void)look:(NSTimer*)timer;
@end

@implementation ORVLaunchTest

+ (void)load {
    [[NSNotificationCenter defaultCenter] addObserver:[[ORVLaunchTest alloc] init]
                                             selector:@selector(start:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
}

- (void)start:(NSNotification*)notification {
    [NSTimer scheduledTimerWithTimeInterval:0.1
                                     target:self
                                   selector:@selector(look:)
                                   userInfo:nil
                                    repeats:YES];
}

- (void)look:(NSTimer*)timer {
    expect(++looks_ < 100, "the first figures come within ten seconds");
    if (![statusItem().button.title isEqualToString:@"C1 · 47%"]) {
        return;
    }
    [timer invalidate];
    expect(ORVStandInActivationPolicy() == NSApplicationActivationPolicyAccessory,
           "no icon in the Dock");
    expect(ORVStandInStatusItems().size() == 1, "one status item");
    expect(ORVStandInSuiteName() == nil, "the program's own settings are opened without a name");
    NSMenu* menu = statusItem().menu;
    NSMenu* languages = [menu itemAtIndex:10].submenu;
    [languages performActionForItemAtIndex:2];
    expect([[NSUserDefaults standardUserDefaults] integerForKey:@"BrimletLanguageMode"] == 2,
           "a language is stored");
    [menu performActionForItemAtIndex:menu.numberOfItems - 1];
    expect(false, "choosing the last item quits");
}

@end

namespace {

/// The home that the program finds when it begins.
struct Home : TemporaryHome {
    Home() {
        write(std::string(".codex/sessions/rollout-2026-11-24T16-45-20-") + kTask + ".jsonl",
              records::compacted("w1") + records::tokenCount("128000"));
        write("Library/Logs/com.openai.codex/main.log",
              std::string("1 thread_stream_view_activity_changed active=true "
                          "rendererWindowAppearance=primary rendererWindowFocused=true "
                          "conversationId=") +
                  kTask + "\n");
        setenv("HOME", root().c_str(), 1);
    }
} home;

}  // namespace
