// The menu-bar shell's own sources, driven as a user would, under GNUstep: what it makes of the
// application's menu, and what comes back when something is chosen. How it looks on a Mac, and what
// a Mac does with it, no test here can tell.

#include <gtest/gtest.h>

#include <dispatch/dispatch.h>

#include <cstdlib>

#include "platform/dispatch_queue.h"
#import "shells/appkit/ORVApplicationDelegate.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

/// Says when it ends.
@interface ORVProbe : NSObject {
    bool* hasEnded_;
}
- (instancetype)initWithFlag:(bool*)hasEnded;
@end

@implementation ORVProbe

- (instancetype)initWithFlag:(bool*)hasEnded {
    self = [super init];
    hasEnded_ = hasEnded;
    return self;
}

- (void)dealloc {
    *hasEnded_ = true;
    [super dealloc];
}

@end

/// Lets the test compare what is shown with what was to be shown.
@interface ORVApplicationDelegate (Test)
- (ORVAppDelegate&)application;
@end

@implementation ORVApplicationDelegate (Test)
- (ORVAppDelegate&)application {
    return *delegate_;
}
@end

/// Counts the changes that menus tell of while it lives.
@interface ORVChangeCounter : NSObject {
    int changes_;
}
@property(nonatomic, readonly) int changes;
@end

@implementation ORVChangeCounter

@synthesize changes = changes_;

- (instancetype)init {
    self = [super init];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(count:)
                                                 name:NSMenuDidChangeItemNotification
                                               object:nil];
    return self;
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (void)count:(NSNotification*)notification {
    ++changes_;
}

@end

/// Without one GNUstep enables every item of a menu that is not open before it looks for a key.
@interface ORVMenuDelegate : NSObject
@end

@implementation ORVMenuDelegate
@end

namespace {

constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
constexpr const char* kLog = "Library/Logs/com.openai.codex/main.log";
NSString* const kMode = @"BrimletLanguageMode";

std::string text(NSString* string) {
    return string ? [string UTF8String] : "(nil)";
}

std::string nameOf(SEL action) {
    return action ? text(NSStringFromSelector(action)) : "";
}

/// Runs the main run loop in this mode until the condition holds; false after ten seconds.
template <typename Condition>
bool runUntil(Condition condition, NSString* mode = NSDefaultRunLoopMode) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:10];
    while (!condition()) {
        if ([end timeIntervalSinceNow] < 0) {
            return false;
        }
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        [[NSRunLoop currentRunLoop] runMode:mode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
        [pool release];
    }
    return true;
}

void runFor(double seconds) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:seconds];
    runUntil([end] { return [end timeIntervalSinceNow] < 0; });
}

class AppKitTest : public testing::Test {
protected:
    AppKitTest() {
        setenv("HOME", home.root().c_str(), 1);
        setenv("TZ", "UTC", 1);
        [NSTimeZone resetSystemTimeZone];
        [[NSUserDefaults standardUserDefaults] setInteger:1 forKey:kMode];
        home.append(file, records::compacted("w1") + records::tokenCount("128000"));
        home.write(".codex/session_index.jsonl", records::title(kTask, "Fix the tests"));
        openTask("1");
    }
    ~AppKitTest() override {
        if (delegate) {
            runUntil([&] { return shown("refreshItem").enabled; });
            runFor(0.3);  // A refresh under way ends.
            [delegate release];
        }
        [[NSUserDefaults standardUserDefaults] removeObjectForKey:kMode];
    }

    void launch() {
        delegate = [[ORVApplicationDelegate alloc] init];
        [delegate applicationDidFinishLaunching:[NSNotification notificationWithName:@""
                                                                              object:nil]];
    }

    void openTask(const std::string& time) {
        home.append(kLog, time +
                              " thread_stream_view_activity_changed active=true "
                              "rendererWindowAppearance=primary rendererWindowFocused=true "
                              "conversationId=" +
                              kTask + "\n");
    }

    void fillTo(std::string_view tokens) { home.append(file, records::tokenCount(tokens)); }

    const ORVStatusItem& model() const { return [delegate application].statusItem(); }
    NSStatusItem* statusItem() const { return delegate.controller.statusItem; }
    std::string barTitle() const { return text(statusItem().button.title); }
    bool showsTitle(const std::string& title) const { return barTitle() == title; }

    /// The native item in the place of the one with this name.
    NSMenuItem* shown(std::string_view field) const {
        const auto indexIn = [field](const ORVMenu& menu) -> NSInteger {
            for (std::size_t i = 0; i < menu.items.size(); ++i) {
                if (menu.items[i]->field == field) {
                    return static_cast<NSInteger>(i);
                }
            }
            return -1;
        };
        const NSInteger index = indexIn(*model().menu);
        if (index >= 0) {
            return [statusItem().menu itemAtIndex:index];
        }
        const auto& language = model().menu->items[10];
        return
            [[[statusItem().menu itemAtIndex:10] submenu] itemAtIndex:indexIn(*language->submenu)];
    }

    void choose(const char* field) {
        NSMenuItem* item = shown(field);
        [item.menu performActionForItemAtIndex:[item.menu indexOfItem:item]];
    }

    bool pressCommandAnd(NSString* key) {
        NSEvent* event = [NSEvent keyEventWithType:NSKeyDown
                                          location:NSZeroPoint
                                     modifierFlags:NSEventModifierFlagCommand
                                         timestamp:0
                                      windowNumber:0
                                           context:nil
                                        characters:key
                       charactersIgnoringModifiers:key
                                         isARepeat:NO
                                           keyCode:0];
        [statusItem().menu setDelegate:(id)menuDelegate];
        return [statusItem().menu performKeyEquivalent:event];
    }

    std::string symbol(const char* field) const {
        ORVStandInSymbol* image = (ORVStandInSymbol*)shown(field).image;
        return image ? text(image.symbolName) + "/" + text(image.accessibilityDescription) : "";
    }

    void expectShown(const ORVMenu& menu, NSMenu* shownMenu) const;
    void expectEverythingShown() const {
        EXPECT_EQ(model().title, barTitle());
        EXPECT_EQ(model().toolTip, text(statusItem().button.toolTip));
        EXPECT_EQ([delegate application].spokenStatus(),
                  text(statusItem().button.accessibilityLabel));
        expectShown(*model().menu, statusItem().menu);
    }

    TemporaryHome home;
    ORVApplicationDelegate* delegate = nil;
    ORVMenuDelegate* menuDelegate = [[[ORVMenuDelegate alloc] init] autorelease];
    const std::string file =
        std::string(".codex/sessions/rollout-2026-11-24T16-45-20-") + kTask + ".jsonl";
};

void AppKitTest::expectShown(const ORVMenu& menu, NSMenu* shownMenu) const {
    ASSERT_EQ(menu.items.size(), static_cast<std::size_t>(shownMenu.numberOfItems));
    EXPECT_FALSE(shownMenu.autoenablesItems);
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const ORVMenuItem& item = *menu.items[i];
        SCOPED_TRACE(item.field);
        NSMenuItem* native = [shownMenu itemAtIndex:static_cast<NSInteger>(i)];
        ASSERT_EQ(item.isSeparator(), native.isSeparatorItem);
        if (item.isSeparator()) {
            continue;
        }
        EXPECT_EQ(item.title, text(native.title));
        EXPECT_EQ(item.enabled, native.enabled);
        EXPECT_EQ(item.hidden, native.hidden);
        EXPECT_EQ(item.tag.value_or(0), native.tag);
        EXPECT_EQ(item.state ? NSControlStateValueOn : NSControlStateValueOff, native.state);
        EXPECT_EQ(item.keyEquivalent, text(native.keyEquivalent));
        EXPECT_EQ(item.image ? item.image->name + "/" + item.image->description : "",
                  symbol(item.field.c_str()));
        ASSERT_EQ(item.submenu != nullptr, native.submenu != nil);
        if (item.submenu) {
            expectShown(*item.submenu, native.submenu);
        }
    }
}

TEST_F(AppKitTest, TheMenuBarShowsWhatTheApplicationDecides) {
    launch();
    EXPECT_EQ("C– · --%", barTitle()) << "before the first refresh can end";
    expectEverythingShown();
    EXPECT_EQ(NSVariableStatusItemLength, statusItem().length);
    ASSERT_EQ(1U, ORVStandInStatusItems().size());
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    EXPECT_EQ("Current task: Fix the tests", text(shown("titleItem").title));
    EXPECT_EQ("Brimlet, Context usage: 128k / 272k (47%), Compactions: 1",
              text(statusItem().button.accessibilityLabel));
    EXPECT_TRUE(shown("focusItem").hidden);
    expectEverythingShown();
    home.append(kLog, "2 thread_stream_view_activity_changed active=true\n");
    ASSERT_TRUE(runUntil([&] { return !shown("focusItem").hidden; }));
    expectEverythingShown();
}

TEST_F(AppKitTest, ActionsAndTargets) {
    struct Expectation {
        const char* field;
        const char* action;
        id target;
        NSInteger tag;
    };
    launch();
    const Expectation kExpected[] = {
        {"titleItem", "", nil, 0},
        {"contextItem", "", nil, 0},
        {"refreshItem", "refresh:", delegate.controller, 0},
        {"quitItem", "terminate:", NSApp, 0},
        {"systemLanguageItem", "changeLanguage:", delegate.controller, 0},
        {"englishLanguageItem", "changeLanguage:", delegate.controller, 1},
        {"chineseLanguageItem", "changeLanguage:", delegate.controller, 2}};
    for (const Expectation& e : kExpected) {
        SCOPED_TRACE(e.field);
        NSMenuItem* item = shown(e.field);
        EXPECT_EQ(e.action, nameOf(item.action));
        EXPECT_EQ(e.target, item.target) << "a target that is found by searching is another";
        EXPECT_EQ(e.tag, item.tag);
        EXPECT_TRUE(!item.action || !item.target || [item.target respondsToSelector:item.action]);
    }
    EXPECT_EQ(NSEventModifierFlagCommand, shown("refreshItem").keyEquivalentModifierMask);
    EXPECT_EQ(NSEventModifierFlagCommand, shown("quitItem").keyEquivalentModifierMask);
}

TEST_F(AppKitTest, TheRefreshCommandShowsWhatBecomesOfIt) {
    launch();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    choose("refreshItem");
    EXPECT_EQ("Checking…", barTitle()) << "at once, not with the next turn";
    EXPECT_EQ("arrow.triangle.2.circlepath/Checking…", symbol("refreshItem"));
    EXPECT_FALSE(shown("refreshItem").enabled);
    fillTo("136000");
    expectEverythingShown();
    ASSERT_TRUE(runUntil([&] { return showsTitle("✓ Check Complete"); }));
    EXPECT_EQ("checkmark.circle.fill/✓ Check Complete", symbol("refreshItem"));
    expectEverythingShown();
    (void)pressCommandAnd(@"r");
    EXPECT_EQ("✓ Check Complete", barTitle()) << "the disabled command has no key";
    NSDate* shownAt = [NSDate date];
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 50%"); }));
    EXPECT_GT(-[shownAt timeIntervalSinceNow], 1.0);
    EXPECT_EQ("arrow.clockwise/Detect Now", symbol("refreshItem"));
    expectEverythingShown();
    EXPECT_TRUE(pressCommandAnd(@"r"));
    EXPECT_EQ("Checking…", barTitle());
}

TEST_F(AppKitTest, WhatDidNotChangeIsNotSetAgain) {
    launch();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    NSImage* image = shown("languageItem").image;
    ORVChangeCounter* counter = [[[ORVChangeCounter alloc] init] autorelease];
    [delegate.controller update];
    choose("titleItem");
    EXPECT_EQ(0, counter.changes);
    EXPECT_EQ(image, shown("languageItem").image);
    choose("chineseLanguageItem");
    EXPECT_LT(10, counter.changes);
}

TEST_F(AppKitTest, FeedbackThatIsOvertakenEndsNothing) {
    launch();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    choose("refreshItem");
    ASSERT_TRUE(runUntil([&] { return showsTitle("✓ Check Complete"); }));
    runFor(0.7);
    [delegate application].finishManualRefreshFeedbackWithKey("refresh_failed");
    runFor(0.8);  // The first would have ended by now.
    EXPECT_FALSE(shown("refreshItem").enabled);
    EXPECT_EQ("exclamationmark.triangle.fill", symbol("refreshItem").substr(0, 29));
    choose("chineseLanguageItem");
    EXPECT_FALSE(shown("refreshItem").enabled) << "outlives a change of the language";
    expectEverythingShown();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
}

TEST_F(AppKitTest, ALanguageIsShownAndStoredAtOnce) {
    launch();
    EXPECT_EQ("com.orvellan.brimlet", text(ORVStandInSuiteName())) << "shared with the tool";
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    EXPECT_EQ("Quit Brimlet", text(shown("quitItem").title));
    choose("chineseLanguageItem");
    EXPECT_EQ("当前任务：Fix the tests", text(shown("titleItem").title));
    EXPECT_EQ(NSControlStateValueOn, shown("chineseLanguageItem").state);
    EXPECT_EQ(NSControlStateValueOff, shown("englishLanguageItem").state);
    EXPECT_EQ(2, [[NSUserDefaults standardUserDefaults] integerForKey:kMode]);
    expectEverythingShown();
    choose("englishLanguageItem");
    EXPECT_EQ("Quit Brimlet", text(shown("quitItem").title));
    choose("systemLanguageItem");
    EXPECT_EQ("退出 Brimlet", text(shown("quitItem").title));
    EXPECT_EQ(NSControlStateValueOn, shown("systemLanguageItem").state);
    expectEverythingShown();
}

TEST_F(AppKitTest, TheTimerGoesOnWhileTheMenuIsOpen) {
    launch();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    for (const auto& step : {std::pair("136000", "C1 · 50%"), std::pair("163200", "C1 · 60%")}) {
        fillTo(step.first);
        EXPECT_TRUE(runUntil([&] { return showsTitle(step.second); }, NSEventTrackingRunLoopMode));
    }
    expectEverythingShown();
}

TEST_F(AppKitTest, WhatATurnLeavesBehindEndsWithIt) {
    ORVMainRunLoop loop;
    bool hasEnded = false;
    bool hadEnded = false;
    bool turnEnded = false;
    loop.setTurnEnd([&] { turnEnded = true; });
    loop.post([&] { [[[ORVProbe alloc] initWithFlag:&hasEnded] autorelease]; });
    loop.post([&] { hadEnded = hasEnded && turnEnded; });
    ASSERT_TRUE(runUntil([&] { return hasEnded; }));
    EXPECT_TRUE(hadEnded);
    int firings = 0;
    auto timer = loop.makeRepeatingTimer(std::chrono::milliseconds(20), [&] { ++firings; });
    EXPECT_TRUE(runUntil([&] { return firings >= 3; }));
    timer.reset();
    const int firingsBefore = firings;
    runFor(0.1);
    EXPECT_EQ(firingsBefore, firings) << "a timer ends with its owner";
}

TEST_F(AppKitTest, TheQueueIsPrivateSerialAndNamed) {
    ORVAppKitHost host;
    const auto queue = host.makeSerialQueue("a.label");
    std::string label;
    bool isOnMainThread = true;
    bool hasEnded = false;
    bool hadEnded = false;
    std::atomic<bool> isDone = false;
    queue->dispatch([&] {
        label = dispatch_queue_get_label(dispatch_stand_in_current_queue());
        isOnMainThread = [NSThread isMainThread];
        [[[ORVProbe alloc] initWithFlag:&hasEnded] autorelease];
    });
    queue->dispatch([&] {
        hadEnded = hasEnded;
        isDone = true;
    });
    ASSERT_TRUE(runUntil([&] { return isDone.load(); }));
    EXPECT_EQ("a.label", label);
    EXPECT_FALSE(isOnMainThread);
    EXPECT_TRUE(hadEnded) << "what a step leaves behind ends with it";
}

TEST_F(AppKitTest, AnyBytesCanBeATitle) {
    const std::string name = "Tidy\\u0000 \\ud83d\\ude80 \\u200f";
    home.write(".codex/session_index.jsonl", records::title(kTask, name));
    launch();
    ASSERT_TRUE(runUntil([&] { return showsTitle("C1 · 47%"); }));
    using namespace std::string_literals;
    EXPECT_EQ("Current task: Tidy\0 🚀 \u200f"s, model().menu->items[0]->title);
    EXPECT_EQ(24U, [shown("titleItem").title length]);
    const_cast<ORVStatusItem&>(model()).title = "a\xFFz";
    [delegate.controller update];
    EXPECT_EQ("a\uFFFDz", barTitle());
}

TEST_F(AppKitTest, TheStatusItemLeavesWithItsController) {
    launch();
    EXPECT_EQ(NSActivityUserInitiatedAllowingIdleSystemSleep, ORVStandInActivity())
        << "it may not nap";
    runFor(0.3);
    NSStatusItem* item = [[statusItem() retain] autorelease];
    EXPECT_TRUE(item);
    [delegate release];
    delegate = nil;
    EXPECT_EQ(0U, ORVStandInActivity());
    EXPECT_EQ(0U, ORVStandInStatusItems().size());
}

}  // namespace

/// Tests run inside of a running application.

@interface ORVTestRunner : NSObject
- (void)runTests:(NSNotification*)notification;
@end

@implementation ORVTestRunner
- (void)runTests:(NSNotification*)notification {
    _exit(RUN_ALL_TESTS());
}
@end

int main(int count, char** values) {
    testing::InitGoogleTest(&count, values);
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    [NSApplication sharedApplication];
    [[NSNotificationCenter defaultCenter] addObserver:[[ORVTestRunner alloc] init]
                                             selector:@selector(runTests:)
                                                 name:NSApplicationDidFinishLaunchingNotification
                                               object:nil];
    [NSApp run];
    [pool release];
    return 1;
}
