#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <string>

#include "app/ORVAppDelegate.h"
#include "app/ORVAppHost.h"
#import "platform/main_run_loop_apple.h"
#import "shells/appkit/ORVStatusItemController.h"

/// The application's host on a Mac with a desktop.
class ORVAppKitHost final : public ORVAppHost {
public:
    explicit ORVAppKitHost(std::unique_ptr<ORVUserDefaults> userDefaults);

    ORVUserDefaults& standardUserDefaults() override { return *userDefaults_; }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) override;
    ORVMainRunLoop& runLoop() override { return runLoop_; }
    ORVFiles& files() override { return *files_; }
    const ORVClock& clock() override { return clock_; }
    void terminate() override;

private:
    ORVMainRunLoop runLoop_;
    ORVSystemClock clock_;
    std::unique_ptr<ORVFiles> files_;
    std::unique_ptr<ORVUserDefaults> userDefaults_;
};

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
