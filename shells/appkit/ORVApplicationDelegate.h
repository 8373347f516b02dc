#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <string>

#include "app/ORVAppDelegate.h"
#include "shells/appkit/ORVAppKitHost.h"
#import "shells/appkit/ORVStatusItemController.h"

NS_ASSUME_NONNULL_BEGIN

/// Starts the application when AppKit is ready, and keeps it until the process ends.
@interface ORVApplicationDelegate : NSObject <NSApplicationDelegate> {
    id<NSObject> activity_;
    std::unique_ptr<ORVAppKitHost> host_;
    std::shared_ptr<ORVAppDelegate> delegate_;
    ORVStatusItemController* controller_;
    std::string loggedStatus_;
}

- (instancetype)initWithUserDefaults:(std::unique_ptr<ORVUserDefaults>&&)userDefaults
    NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@property(nonatomic, readonly, nullable) ORVStatusItemController* controller;

@end

NS_ASSUME_NONNULL_END
