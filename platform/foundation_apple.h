#pragma once

#import <Foundation/Foundation.h>

#include <memory>
#include <string>
#include <string_view>

#include "platform/user_defaults.h"

namespace platform {

/// Returns an autoreleased string, and nil for bytes that are not UTF-8.
inline NSString* foundationString(std::string_view text) {
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

/// Returns the settings in the domain of this name, for tests that must not touch the user's.
std::unique_ptr<ORVUserDefaults> userDefaultsInDomain(const std::string& domain);

}  // namespace platform
