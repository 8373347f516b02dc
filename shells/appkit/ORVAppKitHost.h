#pragma once

#include <memory>
#include <string>

#include "app/ORVAppHost.h"
#import "platform/main_run_loop_apple.h"

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
