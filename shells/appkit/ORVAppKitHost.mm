// Connects the application with AppKit and Grand Central Dispatch.
// Tests: tests/appkit/appkit_test.mm.

#include "shells/appkit/ORVAppKitHost.h"

#import <AppKit/AppKit.h>

ORVAppKitHost::ORVAppKitHost(std::unique_ptr<ORVUserDefaults> userDefaults)
    : files_(platform::makeFiles()), userDefaults_(std::move(userDefaults)) {}

std::unique_ptr<ORVSerialQueue> ORVAppKitHost::makeSerialQueue(const std::string& label) {
    return std::make_unique<platform::DispatchQueue>(label);
}

void ORVAppKitHost::terminate() {
    [[NSApplication sharedApplication] terminate:nil];
}
