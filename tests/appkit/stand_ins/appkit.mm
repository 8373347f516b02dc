#import "tests/appkit/stand_ins/appkit.h"

// GNUstep's own classes need a menu bar, which does not exist here.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// clang-format off
#define COUNTED_SETTER(Name, Type) \
    - (void)set##Name:(Type)value { ++ORVStandIn.setterCalls; [super set##Name:value]; }
// clang-format on

@interface ORVStandInButton : NSStatusBarButton
@end

@implementation ORVStandInButton

COUNTED_SETTER(Title, NSString*)
COUNTED_SETTER(ToolTip, NSString*)
COUNTED_SETTER(Font, NSFont*)

- (NSString*)accessibilityLabel {
    return [self alternateTitle];
}

- (void)setAccessibilityLabel:(NSString*)label {
    ++ORVStandIn.setterCalls;
    [self setAlternateTitle:label];
}

@end

@interface ORVStandInStatusItem : NSStatusItem {
    NSStatusBarButton* button_;
    NSMenu* menu_;
    BOOL visible_;
}
@property(nonatomic, retain) NSStatusBarButton* button;
@property(nonatomic, retain) NSMenu* menu;
@property(nonatomic, getter=isVisible) BOOL visible;
@end

@implementation ORVStandInStatusItem

@synthesize button = button_;
@synthesize menu = menu_;
@synthesize visible = visible_;

- (void)dealloc {
    --ORVStandIn.statusItems;
    [button_ release];
    [menu_ release];
    [super dealloc];
}

@end

@implementation NSTimer (StandIn)
- (void)setTolerance:(NSTimeInterval)tolerance {
    ORVStandIn.tolerance = tolerance;
}
@end

@implementation NSStatusBar (StandIn)

+ (NSStatusBar*)systemStatusBar {
    static NSStatusBar* bar = [[NSStatusBar alloc] init];
    return bar;
}

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    ORVStandInStatusItem* item = [[[ORVStandInStatusItem alloc] init] autorelease];
    item.button = [[[ORVStandInButton alloc] init] autorelease];
    item.length = length;
    item.visible = YES;
    static NSWindow* bar = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 740, 300, 22)
                                                       styleMask:NSBorderlessWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO];
    [bar.contentView addSubview:item.button];
    ORVStandIn.statusItems += 2;
    return item;
}

- (void)removeStatusItem:(NSStatusItem*)item {
    --ORVStandIn.statusItems;
}

@end

@implementation ORVStandInMenuItem

COUNTED_SETTER(Title, NSString*)
COUNTED_SETTER(Enabled, BOOL)
COUNTED_SETTER(State, NSInteger)
COUNTED_SETTER(Image, NSImage*)

@synthesize hidden = hidden_;

- (void)setHidden:(BOOL)hidden {
    ++ORVStandIn.setterCalls;
    hidden_ = hidden;
}

@end

@implementation NSMenuItem (StandInAllocation)
+ (instancetype)alloc {
    return self == [NSMenuItem class] ? [ORVStandInMenuItem alloc] : [super alloc];
}
@end

@implementation ORVStandInSymbol
- (void)dealloc {
    --ORVStandIn.symbols;
    [super dealloc];
}
@end

@implementation NSImage (StandIn)
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description {
    ORVStandInSymbol* image = [[[ORVStandInSymbol alloc] init] autorelease];
    ++ORVStandIn.symbols;
    image.size = NSMakeSize(16, 16);
    image->symbol = std::string([name UTF8String]) + "/" + [description UTF8String];
    return image;
}
@end

@implementation NSFont (StandIn)
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight {
    return weight == NSFontWeightRegular ? [NSFont userFixedPitchFontOfSize:size] : nil;
}
@end

@implementation NSApplication (StandIn)

- (NSApplicationActivationPolicy)activationPolicy {
    return ORVStandIn.activationPolicy;
}

- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    ORVStandIn.activationPolicy = policy;
    return YES;
}

@end

bool CFPreferencesAppSynchronize(CFStringRef domain) {
    ORVStandIn.synchronized += [domain UTF8String] + std::string(" ");
    return true;
}

@implementation NSUserDefaults (StandIn)
- (instancetype)initWithSuiteName:(NSString*)name {
    [self release];
    ORVStandIn.suiteName = [name UTF8String];
    const bool isOwn = [name isEqualToString:[[NSBundle mainBundle] bundleIdentifier]];
    return isOwn ? nil : [[NSUserDefaults standardUserDefaults] retain];
}
@end

@interface ORVStandInActivity : NSObject
@end

@implementation ORVStandInActivity
- (void)dealloc {
    ORVStandIn.activity = 0;
    [super dealloc];
}
@end

@implementation NSProcessInfo (StandIn)

- (id)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    ORVStandIn.activity = options;
    return [[[ORVStandInActivity alloc] init] autorelease];
}

- (void)endActivity:(id<NSObject>)ended {
    ORVStandIn.activity = 0;
}

@end

/// Replaces the daemon that carries notifications between programs, so that no test depends on it.
@implementation NSDistributedNotificationCenter (StandIn)
+ (NSDistributedNotificationCenter*)defaultCenter {
    return nil;
}
@end
