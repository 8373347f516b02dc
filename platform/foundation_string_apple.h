#pragma once

#import <Foundation/Foundation.h>

#include <string_view>

namespace platform {

/// Returns an autoreleased string, and nil for bytes that are not UTF-8.
inline NSString* foundationString(std::string_view text) {
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

}  // namespace platform
