#pragma once

// Stands in for what GNUstep lacks of a Mac's frameworks, in tests of the menu-bar shell on Linux:
// read before every other line of the shell's sources. Each remembers what it was asked for.

#import <AppKit/AppKit.h>

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

@interface NSImage (StandIn)
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description;
@end

/// What imageWithSystemSymbolName gives.
@interface ORVStandInSymbol : NSImage {
    NSString* symbolName_;
    NSString* accessibilityDescription_;
}
@property(nonatomic, copy) NSString* symbolName;
@property(nonatomic, copy) NSString* accessibilityDescription;
@end

@interface NSApplication (StandIn)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
@end

@interface NSUserDefaults (StandIn)
- (instancetype)initWithSuiteName:(NSString*)name;
@end

/// The status items in the menu bar, which does not keep them alive.
std::vector<NSStatusItem*>& ORVStandInStatusItems();

NSApplicationActivationPolicy ORVStandInActivationPolicy();

/// What the process is busy with; 0 for nothing.
NSActivityOptions ORVStandInActivity();

/// The name of the suite of user defaults opened last; nil before.
NSString* ORVStandInSuiteName();
