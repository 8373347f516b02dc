#include "shells/appkit/ORVAppKitSurroundings.h"

#import <AppKit/AppKit.h>

#include "platform/dispatch_queue.h"

ORVAppKitSurroundings::ORVAppKitSurroundings()
    : files_(platform::makeFiles()),
      userDefaults_(platform::standardUserDefaults([](const std::string&) {})) {}

std::unique_ptr<ORVSerialQueue> ORVAppKitSurroundings::makeSerialQueue(const std::string& label) {
    return std::make_unique<platform::DispatchQueue>(label);
}

void ORVAppKitSurroundings::terminate() {
    [[NSApplication sharedApplication] terminate:nil];
}
