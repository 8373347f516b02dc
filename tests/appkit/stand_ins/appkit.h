#pragma once

// Declares what GNUstep lacks of a Mac's frameworks, for tests of the menu-bar shell on Linux. The
// compiler reads it before every source of the shell.

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

#undef NS_UNAVAILABLE
#define NS_UNAVAILABLE __attribute__((unavailable))

enum : NSUInteger { NSEventModifierFlagCommand = NSCommandKeyMask };
enum : NSUInteger { NSEventMaskAny = NSAnyEventMask };

/// GNUstep takes the common modes for a mode of their own, which stands for that of an open menu.
#define NSEventTrackingRunLoopMode NSRunLoopCommonModes

using CFStringRef = NSString*;
bool CFPreferencesAppSynchronize(CFStringRef domain);

@interface NSStatusBarButton (StandIn)
@property(nonatomic, copy) NSString* accessibilityLabel;
@end

@interface NSStatusItem (StandIn)
@property(nonatomic, readonly) NSStatusBarButton* button;
@property(nonatomic, getter=isVisible) BOOL visible;
@end

@interface NSMenuItem (StandIn)
@property(nonatomic, getter=isEnabled) BOOL enabled;
@property(nonatomic, getter=isHidden) BOOL hidden;
@end

@interface ORVStandInMenuItem : NSMenuItem {
    BOOL hidden_;
}
@property(nonatomic, getter=isHidden) BOOL hidden;
@end

@interface ORVStandInSymbol : NSImage {
@public
    std::string symbol;  ///< "name/description"
}
@end

@interface NSImage (StandIn)
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description;
@end

@interface NSFont (StandIn)
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
@end

@interface NSApplication (StandIn)
@property(nonatomic, readonly) NSApplicationActivationPolicy activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
@end

@interface NSUserDefaults (StandIn)
- (instancetype)initWithSuiteName:(NSString*)name;
@end

@interface NSTimer (StandIn)
- (void)setTolerance:(NSTimeInterval)tolerance;
@end

/// Everything that the shell has asked of the system.
inline struct ORVStandInRecord {
    int statusItems = 0;             ///< Those in the menu bar, and once more those that are alive.
    int setterCalls = 0;             ///< On the status item's button and on menu items.
    int symbols = 0;                 ///< Images that are alive.
    NSActivityOptions activity = 0;  ///< The options of the activity; 0 for none.
    NSApplicationActivationPolicy activationPolicy = NSApplicationActivationPolicyRegular;
    NSTimeInterval tolerance = 0;  ///< Of the timer that was made last.
    std::string suiteName;         ///< The name of the user defaults that were opened last.
    std::string synchronized;      ///< The names of the user defaults that were written through.
    std::vector<std::string> log;  ///< What the program has written into the system's log.
} ORVStandIn;
