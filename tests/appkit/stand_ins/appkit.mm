#import "tests/appkit/stand_ins/appkit.h"

#import <objc/runtime.h>

#include <cstdlib>
#include <map>

// GNUstep's own have no menu bar to work with.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

namespace {

// A category has no fields of its own.
std::map<const void*, BOOL> hiddenItems;
std::map<const void*, NSString*> labels;
NSApplicationActivationPolicy activationPolicy = NSApplicationActivationPolicyRegular;
NSString* suiteName = nil;
NSActivityOptions activity = 0;

}  // namespace

@implementation NSStatusBarButton (StandIn)

- (NSString*)accessibilityLabel {
    return labels[self];
}

- (void)setAccessibilityLabel:(NSString*)label {
    [labels[self] release];
    labels[self] = [label copy];
}

@end

@interface ORVStandInStatusItem : NSStatusItem {
    NSStatusBarButton* button_;
    NSMenu* menu_;
    CGFloat length_;
}
@property(nonatomic) CGFloat length;
@property(nonatomic, retain) NSMenu* menu;
@end

@implementation ORVStandInStatusItem

@synthesize length = length_;
@synthesize menu = menu_;

- (NSStatusBarButton*)button {
    if (!button_) {
        button_ = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, 100, 22)];
    }
    return button_;
}

- (void)dealloc {
    std::erase(ORVStandInStatusItems(), self);
    [button_ release];
    [menu_ release];
    [super dealloc];
}

@end

@implementation NSStatusItem (StandIn)
- (NSStatusBarButton*)button {
    return nil;
}
@end

@interface NSStatusBar (StandIn)
@end

@implementation NSStatusBar (StandIn)

+ (NSStatusBar*)systemStatusBar {
    static NSStatusBar* bar = [[NSStatusBar alloc] init];
    return bar;
}

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    ORVStandInStatusItem* item = [[[ORVStandInStatusItem alloc] init] autorelease];
    item.length = length;
    ORVStandInStatusItems().push_back(item);
    return item;
}

- (void)removeStatusItem:(NSStatusItem*)item {
    std::erase(ORVStandInStatusItems(), item);
}

@end

@implementation NSMenuItem (StandIn)

- (BOOL)isHidden {
    return hiddenItems[self];
}

- (void)setHidden:(BOOL)hidden {
    hiddenItems[self] = hidden;
}

@end

@implementation ORVStandInSymbol
@synthesize symbolName = symbolName_;
@synthesize accessibilityDescription = accessibilityDescription_;
@end

@implementation NSImage (StandIn)

+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description {
    ORVStandInSymbol* symbol =
        [[[ORVStandInSymbol alloc] initWithSize:NSMakeSize(16, 16)] autorelease];
    symbol.symbolName = name;
    symbol.accessibilityDescription = description;
    return symbol;
}

@end

@implementation NSApplication (StandIn)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    activationPolicy = policy;
    return YES;
}
@end

@implementation NSUserDefaults (StandIn)
- (instancetype)initWithSuiteName:(NSString*)name {
    [self release];
    suiteName = [name copy];
    return [[NSUserDefaults standardUserDefaults] retain];
}
@end

@interface NSProcessInfo (StandIn)
@end

@implementation NSProcessInfo (StandIn)

- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    activity = options;
    return [[[NSObject alloc] init] autorelease];
}

- (void)endActivity:(id<NSObject>)ended {
    activity = 0;
}

@end

/// In GNUstep the common modes are a mode like any other, in which no loop ever runs.
@interface NSRunLoop (StandIn)
@end

@implementation NSRunLoop (StandIn)

+ (void)load {
    method_exchangeImplementations(class_getInstanceMethod(self, @selector(addTimer:forMode:)),
                                   class_getInstanceMethod(self, @selector(standInAddTimer:
                                                                                   forMode:)));
}

- (void)standInAddTimer:(NSTimer*)timer forMode:(NSString*)mode {
    if (![mode isEqualToString:NSRunLoopCommonModes]) {
        [self standInAddTimer:timer forMode:mode];
        return;
    }
    [self standInAddTimer:timer forMode:NSDefaultRunLoopMode];
    [self standInAddTimer:timer forMode:NSEventTrackingRunLoopMode];
    [self standInAddTimer:timer forMode:NSModalPanelRunLoopMode];
}

@end

std::vector<NSStatusItem*>& ORVStandInStatusItems() {
    static std::vector<NSStatusItem*> items;
    return items;
}

NSApplicationActivationPolicy ORVStandInActivationPolicy() {
    return activationPolicy;
}

NSActivityOptions ORVStandInActivity() {
    return activity;
}

NSString* ORVStandInSuiteName() {
    return suiteName;
}
