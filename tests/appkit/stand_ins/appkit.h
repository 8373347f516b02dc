#pragma once

// Stands in for what GNUstep lacks of a Mac's frameworks, in tests of the menu-bar shell on Linux:
// read before every other line of the shell's sources.

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

#undef NS_UNAVAILABLE
#define NS_UNAVAILABLE __attribute__((unavailable))

enum : NSUInteger { NSEventModifierFlagCommand = NSCommandKeyMask };

@interface NSStatusBarButton (StandIn)
@property(nonatomic, copy) NSString* accessibilityLabel;
@end

@interface NSStatusItem (StandIn)
@property(nonatomic, readonly) NSStatusBarButton* button;
@end

@interface NSMenuItem (StandIn)
@property(nonatomic, getter=isEnabled) BOOL enabled;
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

/// What the shell asked the system for.
inline struct ORVStandInRecord {
    std::vector<NSStatusItem*> statusItems;  ///< In the menu bar, which does not keep them alive.
    int setterCalls = 0;                     ///< On the status item's button and on menu items.
    int symbols = 0;                         ///< Images that are alive.
    NSActivityOptions activity = 0;          ///< What the process is busy with; 0 for nothing.
    NSApplicationActivationPolicy activationPolicy = NSApplicationActivationPolicyRegular;
    std::string suiteName;  ///< Of the user defaults opened last.
} ORVStandIn;
