// The menu bar copies the delegate's texts and states; nothing is decided here.
// Tests: tests/appkit/appkit_test.mm.

#import "shells/appkit/ORVStatusItemController.h"

#import "platform/foundation_apple.h"
#include "text/unicode.h"

NS_ASSUME_NONNULL_BEGIN

/// The actions of the menu's items.
@interface ORVStatusItemController ()
- (void)refresh:(id)sender;
- (void)changeLanguage:(id)sender;
@end

namespace {

/// As wide as a small screen, in Chinese.
constexpr std::size_t kMostCharacters = 100;

/// Makes a title harmless: one from the index may hold megabytes, control characters, and
/// characters that turn the direction of the text around them.
NSString* stringOf(const std::string& text) {
    return platform::foundationString(text::forTerminal(text::shortened(text, kMostCharacters)));
}

SEL _Nullable selectorOf(ORVMenuAction action) {
    switch (action) {
        case ORVMenuAction::none:
            break;
        case ORVMenuAction::refresh:
            return @selector(refresh:);
        case ORVMenuAction::terminate:
            return @selector(terminate:);
        case ORVMenuAction::changeLanguage:
            return @selector(changeLanguage:);
    }
    return nullptr;
}

/// Calls the setters of changed properties only, because every call draws the item again.
void updateItem(ORVShownMenuItem& pair) {
    const ORVMenuItem& item = *pair.item;
    NSMenuItem* shown = pair.shown;
    NSString* title = stringOf(item.title);
    if (![shown.title isEqualToString:title]) {
        shown.title = title;
    }
    if (shown.enabled != item.enabled) {
        shown.enabled = item.enabled;
    }
    if (shown.hidden != item.hidden) {
        shown.hidden = item.hidden;
    }
    const NSInteger state = item.state ? NSControlStateValueOn : NSControlStateValueOff;
    if (shown.state != state) {
        shown.state = state;
    }
    if (pair.image != item.image) {
        pair.image = item.image;
        shown.image = item.image
                          ? [NSImage imageWithSystemSymbolName:stringOf(item.image->name)
                                      accessibilityDescription:stringOf(item.image->description)]
                          : nil;
    }
}

}  // namespace

@implementation ORVStatusItemController

@synthesize statusItem = statusItem_;

- (instancetype)initWithDelegate:(ORVAppDelegate&)delegate {
    self = [super init];
    if (self) {
        delegate_ = &delegate;
        statusItem_ = [[[NSStatusBar systemStatusBar]
            statusItemWithLength:NSVariableStatusItemLength] retain];
        // Digits of one width: a changed percentage must not shift the items beside this one.
        statusItem_.button.font =
            [NSFont monospacedDigitSystemFontOfSize:[NSFont menuBarFontOfSize:0].pointSize
                                             weight:NSFontWeightRegular];
        statusItem_.menu = [self menuShowing:*delegate.statusItem().menu];
        [self update];
    }
    return self;
}

- (void)dealloc {
    [[NSStatusBar systemStatusBar] removeStatusItem:statusItem_];
    [statusItem_ release];
    [super dealloc];
}

- (NSMenu*)menuShowing:(const ORVMenu&)menu {
    NSMenu* shown = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    shown.autoenablesItems = NO;
    for (const std::unique_ptr<ORVMenuItem>& item : menu.items) {
        [shown addItem:item->isSeparator() ? [NSMenuItem separatorItem]
                                           : [self menuItemShowing:*item]];
    }
    return shown;
}

/// Makes a native item with everything that never changes; update adds the rest.
- (NSMenuItem*)menuItemShowing:(ORVMenuItem&)item {
    NSMenuItem* shown =
        [[[NSMenuItem alloc] initWithTitle:@""
                                    action:selectorOf(item.action)
                             keyEquivalent:stringOf(item.keyEquivalent)] autorelease];
    shown.keyEquivalentModifierMask = NSEventModifierFlagCommand;
    if (item.action == ORVMenuAction::terminate) {
        shown.target = [NSApplication sharedApplication];
    } else if (item.action != ORVMenuAction::none) {
        shown.target = self;
    }
    shown.tag = static_cast<NSInteger>(item.tag.value_or(0));
    if (item.submenu) {
        shown.submenu = [self menuShowing:*item.submenu];
    }
    items_.push_back({&item, shown, std::nullopt});
    return shown;
}

- (void)update {
    const ORVStatusItem& statusItem = delegate_->statusItem();
    NSStatusBarButton* button = statusItem_.button;
    NSString* title = stringOf(statusItem.title);
    if (![button.title isEqualToString:title]) {
        button.title = title;
    }
    NSString* toolTip = stringOf(statusItem.toolTip);
    if (![button.toolTip isEqualToString:toolTip]) {
        button.toolTip = toolTip;
    }
    NSString* label = stringOf(delegate_->spokenStatus());
    if (![button.accessibilityLabel isEqualToString:label]) {
        button.accessibilityLabel = label;
    }
    for (ORVShownMenuItem& pair : items_) {
        updateItem(pair);
    }
}

- (void)refresh:(id)sender {
    [self choose:sender];
}

- (void)changeLanguage:(id)sender {
    [self choose:sender];
}

- (void)choose:(NSMenuItem*)chosen {
    for (const ORVShownMenuItem& pair : items_) {
        if (pair.shown == chosen) {
            delegate_->chooseItem(*pair.item);
        }
    }
    [self update];
}

@end

NS_ASSUME_NONNULL_END
