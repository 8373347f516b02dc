#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <vector>

#include "app/ORVAppDelegate.h"

NS_ASSUME_NONNULL_BEGIN

/// An item of the delegate's menu and the native item that shows it.
struct ORVShownMenuItem {
    ORVMenuItem* item;  ///< Owned by the application's delegate.
    NSMenuItem* shown;  ///< Owned by its menu.
    std::optional<ORVMenuImage>
        image;  ///< The image on display; an NSImage does not tell its name.
};

/// Copies the status item and its menu, which the application's delegate decides, into the menu
/// bar, and passes clicks to the delegate. Used on the main thread only.
@interface ORVStatusItemController : NSObject {
    ORVAppDelegate* delegate_;
    NSStatusItem* statusItem_;
    std::vector<ORVShownMenuItem> items_;
}

/// Adds the status item to the menu bar. The delegate must be launched and outlive the controller.
- (instancetype)initWithDelegate:(ORVAppDelegate&)delegate NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@property(nonatomic, readonly) NSStatusItem* statusItem;

/// Copies what has changed, even while the menu is open.
- (void)update;

@end

NS_ASSUME_NONNULL_END
