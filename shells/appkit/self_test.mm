// Checks on a Mac what no other system can show: that the menu bar takes the status item, and that
// the program goes on while a menu is open. Tests: tests/appkit/launch_test.mm.

#include "shells/appkit/self_test.h"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#import "platform/foundation_apple.h"
#import "shells/appkit/ORVApplicationDelegate.h"

namespace appkit {
namespace {

constexpr const char* kDomain = "com.orvellan.brimlet.self-test";
constexpr const char* kKey = "BrimletLanguageMode";
constexpr std::int64_t kEnglish = 1;
constexpr NSTimeInterval kPatience = 20;  // Seconds; a virtual machine may be slow.

/// A temporary home folder with one task, which is in view. It is this process's home.
class MadeUpHome {
public:
    MadeUpHome() {
        std::string name = std::filesystem::temp_directory_path() / "brimlet.XXXXXX";
        root_ = mkdtemp(name.data()) ? name : "/var/empty";
        setenv("HOME", root_.c_str(), 1);
        append(kSession,
               R"({"timestamp":"2026-11-24T16:45:21.399Z","ordinal":1,"type":"compacted",)"
               R"("payload":{"message":"","window_number":1,"first_window_id":"w0",)"
               R"("previous_window_id":"w0","window_id":"w1",)"
               R"("replacement_history":[]}})");
        use(128'000);
        append("Library/Logs/com.openai.codex/main.log",
               "2026-11-24T16:45:20.000Z info thread_stream_view_activity_changed active=true "
               "rendererWindowAppearance=primary rendererWindowFocused=true "
               "conversationId=01a20e72-983b-7e83-81c7-e87b7b63d181");
    }
    ~MadeUpHome() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    MadeUpHome(const MadeUpHome&) = delete;
    MadeUpHome& operator=(const MadeUpHome&) = delete;

    /// Lets the task use this many of its 272,000 tokens.
    void use(int tokens) const {
        append(
            kSession,
            R"({"timestamp":"2026-11-24T16:45:22.399Z","type":"event_msg","payload":{"type":"token_count","info":{)"
            R"("last_token_usage":{"input_tokens":)" +
                std::to_string(tokens) + R"(},"model_context_window":272000}}})");
    }

private:
    void append(const std::string& name, const std::string& line) const {
        const std::filesystem::path path = root_ / name;
        std::error_code ignored;
        std::filesystem::create_directories(path.parent_path(), ignored);
        std::ofstream(path, std::ios::app) << line << '\n';
    }

    static constexpr const char* kSession =
        ".codex/sessions/rollout-2026-11-24T16-45-20-01a20e72-983b-7e83-81c7-e87b7b63d181.jsonl";
    std::filesystem::path root_;
};

class SelfTest {
public:
    /// Every check is made, whatever failed before it.
    int run() {
        checkBar();
        checkMenu();
        expectTitle(@"C1 · 47%", "a posted closure runs while a menu is open");
        home_.use(136'000);
        expectTitle(@"C1 · 50%", "a timer fires while a menu is open");
        checkSpeech();
        checkLanguage();
        return status_;
    }

    SelfTest() {
        defaults_->setInteger(kEnglish, kKey);
        delegate_ = [[ORVApplicationDelegate alloc]
            initWithUserDefaults:platform::userDefaultsInDomain(kDomain)];
        NSApplication* application = [NSApplication sharedApplication];
        [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
        [application finishLaunching];
        // AppKit itself would launch the delegate only in a loop that this program does not run.
        [delegate_
            applicationDidFinishLaunching:
                [NSNotification notificationWithName:NSApplicationDidFinishLaunchingNotification
                                              object:application]];
    }
    SelfTest(const SelfTest&) = delete;
    SelfTest& operator=(const SelfTest&) = delete;

private:
    NSStatusItem* item() const { return delegate_.controller.statusItem; }

    void check(bool holds, const std::string& what) {
        std::printf("%s: %s\n", holds ? "ok" : "FAILED", what.c_str());
        std::fflush(stdout);
        status_ = holds ? status_ : EXIT_FAILURE;
    }

    /// Handles events in the mode of an open menu until `isMet`, and returns whether it is.
    template <typename Condition>
    static bool waitFor(Condition isMet) {
        NSDate* end = [NSDate dateWithTimeIntervalSinceNow:kPatience];
        while (!isMet() && [end timeIntervalSinceNow] > 0) {
            @autoreleasepool {
                NSEvent* event =
                    [NSApp nextEventMatchingMask:NSEventMaskAny
                                       untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                          inMode:NSEventTrackingRunLoopMode
                                         dequeue:YES];
                if (event) {
                    [NSApp sendEvent:event];
                }
            }
        }
        return isMet();
    }
    void expectTitle(NSString* title, const std::string& what) {
        const bool isShown = waitFor([&] { return [item().button.title isEqualToString:title]; });
        check(isShown, isShown ? what : what + "; the title is " + item().button.title.UTF8String);
    }

    void checkBar() {
        check([[NSBundle mainBundle].bundleIdentifier isEqualToString:@"com.orvellan.brimlet"],
              "the bundle has the identifier under which settings are stored");
        NSStatusBarButton* button = item().button;
        check(button && button.title.length > 0 && button.font.pointSize > 0,
              "the menu bar gives a button, which has a title and a font");
        check(item().visible, "the menu bar shows the item");
        check(waitFor([&] {
                  return button.window.screen &&
                         NSIntersectsRect(button.window.frame, button.window.screen.frame);
              }),
              "the item has a place on a screen");
    }

    void checkMenu() {
        NSInteger images = 0;
        for (NSMenuItem* each in item().menu.itemArray) {
            images += each.image.size.width > 0 ? 1 : 0;
        }
        check(item().menu.numberOfItems > 0 && images == 2,
              "the item has a menu, and the system knows both symbols in it");
    }

    void checkSpeech() {
        check([item().button.accessibilityLabel hasPrefix:@"Brimlet, Context usage: 136k"],
              "a screen reader says what is shown");
    }

    /// Chooses the last language, and so not English.
    void checkLanguage() {
        NSMenu* languages = nil;
        for (NSMenuItem* each in item().menu.itemArray) {
            languages = each.submenu ? each.submenu : languages;
        }
        [languages performActionForItemAtIndex:languages.numberOfItems - 1];
        const auto stored = defaults_->integerForKey(kKey);
        check(stored && *stored == [languages itemAtIndex:languages.numberOfItems - 1].tag &&
                  [languages itemAtIndex:languages.numberOfItems - 1].state ==
                      NSControlStateValueOn &&
                  *stored != kEnglish,
              "a language that is chosen is stored, and read back");
        [[NSUserDefaults standardUserDefaults]
            removePersistentDomainForName:platform::foundationString(kDomain)];
    }

    int status_ = EXIT_SUCCESS;
    const MadeUpHome home_;
    const std::unique_ptr<ORVUserDefaults> defaults_ = platform::userDefaultsInDomain(kDomain);
    ORVApplicationDelegate* delegate_ = nil;  ///< Never released: a refresh may still use it.
};

}  // namespace

int selfTest() {
    return SelfTest().run();
}

}  // namespace appkit
