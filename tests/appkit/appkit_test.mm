// Runs the menu-bar shell's own sources under GNUstep: how they show the application's menu, what
// they do when an item is chosen, and what they ask of the system. No test here can tell how it
// looks on a Mac, or what a Mac does with it.

#include <dispatch/dispatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#import "platform/foundation_apple.h"
#import "shells/appkit/ORVApplicationDelegate.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

@interface ORVApplicationDelegate (Test)
- (ORVAppDelegate&)application;
@end

@implementation ORVApplicationDelegate (Test)
- (ORVAppDelegate&)application {
    return *delegate_;
}
@end

namespace {

constexpr const char* kLog = "Library/Logs/com.openai.codex/main.log";
constexpr const char* kDomain = "com.orvellan.brimlet.appkit-test";
NSString* const kMode = @"BrimletLanguageMode";

std::string text(NSString* string) {
    return string ? [string UTF8String] : "(nil)";
}

class AppKitTest : public testing::Test {
protected:
    AppKitTest() {
        setenv("HOME", home.root().c_str(), 1);
        [[NSUserDefaults standardUserDefaults] setInteger:1 forKey:kMode];
        home.append(file, records::compacted("w1") + records::tokenCount("128000"));
        home.append(kLog, records::log("1 activity TASK"));
    }
    ~AppKitTest() override {
        // Closures that have not run yet use the application's host.
        dispatch_stand_in_finish();
        while (dispatch_stand_in_run_delayed() != 0) {
        }
        [delegate release];
        [[NSUserDefaults standardUserDefaults] removeObjectForKey:kMode];
        [pool release];
    }

    /// Launches the application; the first refresh has not run yet.
    void launch() {
        @autoreleasepool {
            delegate = [[ORVApplicationDelegate alloc]
                initWithUserDefaults:platform::userDefaultsInDomain(kDomain)];
            [delegate applicationDidFinishLaunching:nil];
        }
        collect(*model().menu, menu());
    }

    ORVStatusItem& model() const {
        return const_cast<ORVStatusItem&>([delegate application].statusItem());
    }
    NSStatusBarButton* button() const { return delegate.controller.statusItem.button; }
    NSMenu* menu() const { return delegate.controller.statusItem.menu; }

    void collect(const ORVMenu& menu, NSMenu* shown) {
        ASSERT_EQ(menu.items.size(), static_cast<std::size_t>(shown.numberOfItems));
        EXPECT_FALSE(shown.autoenablesItems);
        for (std::size_t i = 0; i < menu.items.size(); ++i) {
            ORVMenuItem& item = *menu.items[i];
            NSMenuItem* native = [shown itemAtIndex:static_cast<NSInteger>(i)];
            ASSERT_EQ(item.isSeparator(), native.isSeparatorItem);
            ASSERT_EQ(item.submenu != nullptr, native.submenu != nil);
            if (!item.isSeparator()) {
                items.emplace_back(&item, native);
            }
            if (item.submenu) {
                collect(*item.submenu, native.submenu);
            }
        }
    }

    NSMenuItem* shown(std::string_view field) const {
        return std::find_if(items.begin(), items.end(),
                            [&](const auto& pair) { return pair.first->field == field; })
            ->second;
    }

    void choose(std::string_view field) {
        NSMenuItem* item = shown(field);
        [item.menu performActionForItemAtIndex:[item.menu indexOfItem:item]];
    }

    void expectEverythingShown() const {
        EXPECT_EQ(model().title, text(button().title));
        EXPECT_EQ(model().toolTip, text(button().toolTip));
        EXPECT_EQ([delegate application].spokenStatus(), text(button().accessibilityLabel));
        for (const auto& [wanted, native] : items) {
            const ORVMenuItem& item = *wanted;
            SCOPED_TRACE(item.field);
            EXPECT_EQ(item.title, text(native.title));
            EXPECT_EQ(item.enabled, native.enabled);
            EXPECT_EQ(item.hidden, native.hidden);
            EXPECT_EQ(item.tag.value_or(0), native.tag);
            EXPECT_EQ(item.state ? NSControlStateValueOn : NSControlStateValueOff, native.state);
            EXPECT_EQ(item.keyEquivalent, text(native.keyEquivalent));
            EXPECT_EQ(NSEventModifierFlagCommand, native.keyEquivalentModifierMask);
            const bool isTerminate = item.action == ORVMenuAction::terminate;
            const id handler = isTerminate ? (id)NSApp : (id)delegate.controller;
            if (!item.submenu) {  // GNUstep sets the target of an item with a submenu.
                EXPECT_EQ(item.action == ORVMenuAction::none ? nil : handler, native.target)
                    << "a target that is found by searching may be another";
            }
            ASSERT_EQ(item.image.has_value(), native.image != nil);
            if (item.image) {
                EXPECT_EQ(item.image->name + "/" + item.image->description,
                          ((ORVStandInSymbol*)native.image)->symbol);
            }
        }
    }

    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    TemporaryHome home;
    ORVApplicationDelegate* delegate = nil;
    std::vector<std::pair<ORVMenuItem*, NSMenuItem*>> items;
    const std::string file = ".codex/sessions/" + records::kTask + ".jsonl";
};

/// Runs the loop in the common modes, which GNUstep takes for a mode of their own. The tests use
/// them as the mode of an open menu.
template <typename Condition>
void runWhileMenuIsOpenUntil(Condition isMet) {
    NSDate* end = [NSDate dateWithTimeIntervalSinceNow:30];
    while (!isMet() && [end timeIntervalSinceNow] > 0) {
        @autoreleasepool {
            NSDate* soon = [NSDate dateWithTimeIntervalSinceNow:0.02];
            [[NSRunLoop currentRunLoop] runMode:NSRunLoopCommonModes beforeDate:soon];
        }
    }
}

// This test comes first: a turn that outlived its test would end the others.
TEST_F(AppKitTest, ATurnOfAnyKindEndsWithItsUpdateAndItsPool) {
    NSDate* before = [NSDate date];
    auto owned = std::make_unique<ORVMainRunLoop>();
    ORVMainRunLoop& loop = *owned;
    const auto queue = ORVAppKitHost(nullptr).makeSerialQueue("a.label");
    const auto kept = std::make_shared<int>();
    const std::string kTurn = "closure on main update on main ";
    std::string order;
    const auto note = [&order](const char* what) {
        order += std::string(what) + dispatch_stand_in_current_queue()->label + " ";
        (void)[NSImage imageWithSystemSymbolName:@"left" accessibilityDescription:@"behind"];
    };
    const auto closure = [note, kept] { note("closure on "); };
    loop.setTurnEnd([&] { note("update on "); });
    const std::function<void()> kKinds[] = {
        [&] {
            queue->dispatch([&, kept] {
                note("step on ");
                EXPECT_EQ(QOS_CLASS_UTILITY, dispatch_stand_in_current_queue()->attributes.qosClass)
                    << "reading gives way to the user";
                loop.post(closure);
            });
            dispatch_stand_in_finish();
            EXPECT_EQ("step on a.label ", order.substr(0, 16));
            order.erase(0, 16);
        },
        [&] {
            loop.postAfter(std::chrono::milliseconds(1'200), closure);
            EXPECT_EQ(1'200'000'000U, dispatch_stand_in_run_delayed());
        },
        [&] {
            loop.repeat(std::chrono::milliseconds(2'500), closure);
            NSDate* fires = [[NSRunLoop currentRunLoop] limitDateForMode:NSRunLoopCommonModes];
            EXPECT_EQ(0.25, ORVStandIn.tolerance) << "a tenth";
            EXPECT_GT(2.6, [fires timeIntervalSinceNow]);
            EXPECT_LT(2.4, [fires timeIntervalSinceDate:before]);
            loop.repeat(std::chrono::milliseconds(1), closure);
            runWhileMenuIsOpenUntil([&] { return order.size() >= 2 * kTurn.size(); });
            EXPECT_EQ(kTurn + kTurn, order.substr(0, 2 * kTurn.size()));
            order.resize(kTurn.size());
        }};
    for (const auto& run : kKinds) {
        SCOPED_TRACE(&run - kKinds);
        @autoreleasepool {
            order.clear();
            run();
            EXPECT_EQ(kTurn, order);
            EXPECT_EQ(0, ORVStandIn.symbols) << "what it leaves behind ends with it";
        }
    }
    owned.reset();
    order.clear();
    runWhileMenuIsOpenUntil([passes = 0]() mutable { return ++passes > 2; });
    EXPECT_EQ("", order);
    EXPECT_EQ(2, kept.use_count()) << "closures end, those of a timer with the loop";
}

TEST_F(AppKitTest, TheStatusItemFromLaunchToTheEnd) {
    launch();
    EXPECT_EQ("C– · --%", text(button().title)) << "before the first refresh can end";
    expectEverythingShown();
    EXPECT_EQ(NSVariableStatusItemLength, delegate.controller.statusItem.length);
    EXPECT_EQ([NSFont userFixedPitchFontOfSize:[NSFont menuBarFontOfSize:0].pointSize],
              button().font)
        << "digits of one width, as large as the menu bar's";
    EXPECT_EQ(NSActivityUserInitiatedAllowingIdleSystemSleep, ORVStandIn.activity)
        << "it may not nap";
    dispatch_stand_in_finish();
    EXPECT_EQ("C1 · 47%", text(button().title));
    expectEverythingShown();
    @autoreleasepool {
        ASSERT_EQ(2, ORVStandIn.statusItems);
        [delegate release];
        delegate = nil;
        EXPECT_EQ(0, ORVStandIn.statusItems);
    }
    EXPECT_EQ(0U, ORVStandIn.activity);
    EXPECT_EQ(0, ORVStandIn.symbols);
}

TEST_F(AppKitTest, WhatChangedIsCopiedByItselfAndOnce) {
    launch();
    dispatch_stand_in_finish();
    const ORVMenuImage kImage{"a", "b"};
    const std::function<void(ORVMenuItem&)> kChanges[] = {
        [](ORVMenuItem& item) { item.title += "+"; },
        [](ORVMenuItem& item) { item.enabled = !item.enabled; },
        [](ORVMenuItem& item) { item.hidden = !item.hidden; },
        [](ORVMenuItem& item) { item.state = !item.state; },
        [&](ORVMenuItem& item) { item.image = kImage; },
        [](ORVMenuItem& item) { item.image->name = "c"; },
        [](ORVMenuItem& item) { item.image->description = "d"; },
        [](ORVMenuItem& item) { item.image.reset(); }};
    for (const auto& change : kChanges) {
        SCOPED_TRACE(&change - kChanges);
        for (const auto& pair : items) {
            change(*pair.first);
            [delegate.controller update];
            expectEverythingShown();
            const int calls = ORVStandIn.setterCalls;
            [delegate.controller update];
            EXPECT_EQ(calls, ORVStandIn.setterCalls) << "what is set is drawn again";
        }
    }
    model().toolTip += "+";
    model().title = "a\xFFz";  // A title may hold any bytes.
    [delegate.controller update];
    EXPECT_EQ("Brimlet+", text(button().toolTip));
    EXPECT_EQ("a\uFFFDz", text(button().title));
    model().title = std::string("\0🚀 \u202ex", 10);
    items.front().first->title = std::string(1'000'000, 'x');
    [delegate.controller update];
    EXPECT_EQ(" 🚀  x", text(button().title)) << "nothing that steers the text around it";
    EXPECT_EQ(std::string(99, 'x') + "…", text(items.front().second.title));
}

TEST_F(AppKitTest, WhatIsChosenIsDoneAndShownAtOnce) {
    launch();
    dispatch_stand_in_finish();
    const int symbols = ORVStandIn.symbols;
    @autoreleasepool {
        choose("refreshItem");
        EXPECT_FALSE(shown("refreshItem").enabled) << "at once";
        expectEverythingShown();
        dispatch_stand_in_finish();
        expectEverythingShown();
        dispatch_stand_in_run_delayed();
        EXPECT_TRUE(shown("refreshItem").enabled);
        expectEverythingShown();
    }
    EXPECT_EQ(symbols, ORVStandIn.symbols) << "an image ends with its use";
    choose("chineseLanguageItem");
    expectEverythingShown();
    EXPECT_EQ(2, [[NSUserDefaults standardUserDefaults] integerForKey:kMode]);
    EXPECT_EQ(kDomain, ORVStandIn.suiteName);
    EXPECT_EQ(std::string(kDomain) + " ", ORVStandIn.synchronized) << "each choice, once";
    choose("systemLanguageItem");
    EXPECT_EQ("退出 Brimlet", text(shown("quitItem").title)) << "the system's language";
}

TEST_F(AppKitTest, TheProgramsSettingsAreThoseThatTheToolShares) {
    (void)platform::standardUserDefaults([](const ORVStoringFailure&) {});
    EXPECT_EQ("com.orvellan.brimlet", ORVStandIn.suiteName);
}

TEST_F(AppKitTest, TheLogTellsOfTheFirstRefreshAndOfChanges) {
    launch();
    ORVStandIn.log.clear();
    const auto refresh = [this] {
        choose("refreshItem");
        dispatch_stand_in_finish();
        dispatch_stand_in_run_delayed();
    };
    refresh();
    refresh();
    home.append(kLog, "2 thread_stream_view_activity_changed active=true\n");
    refresh();
    [delegate applicationWillTerminate:nil];
    EXPECT_EQ(
        (std::vector<std::string>{"com.orvellan.brimlet: A task is shown",
                                  "com.orvellan.brimlet: " + [delegate application].focusLine(),
                                  "com.orvellan.brimlet: Ends, as the user or the system wants"}),
        ORVStandIn.log);
}

}  // namespace

int main(int count, char** values) {
    testing::InitGoogleTest(&count, values);
    @autoreleasepool {
        [NSApplication sharedApplication];
        return RUN_ALL_TESTS();
    }
}
