#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <vector>

#include "app/ORVAppDelegate.h"

NS_ASSUME_NONNULL_BEGIN

/// A menu item in the menu bar and the one that it shows.
struct ORVShownMenuItem {
    ORVMenuItem* item;                  ///< Owned by the application's delegate.
    NSMenuItem* shown;                  ///< Owned by its menu.
    std::optional<ORVMenuImage> image;  ///< As shown; a native image does not tell its name.
};

/// The status item in the menu bar and its menu: copies of what the application's delegate decides.
/// Clicks go back to the delegate. Main thread only.
@interface ORVStatusItemController : NSObject {
    ORVAppDelegate* delegate_;
    NSStatusItem* statusItem_;
    std::vector<ORVShownMenuItem> items_;
}

/// Adds the status item to the menu bar. The delegate was launched and outlives the controller.
- (instancetype)initWithDelegate:(ORVAppDelegate&)delegate NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@property(nonatomic, readonly) NSStatusItem* statusItem;

/// Copies what has changed, also while the menu is open.
- (void)update;

@end

NS_ASSUME_NONNULL_END
