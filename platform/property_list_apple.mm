// Property lists through Foundation.

#import "platform/foundation_string_apple.h"
#include "platform/property_list.h"

namespace platform {

std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key) {
    @autoreleasepool {
        NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        id list = [NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:nullptr
                                                              error:nullptr];
        if (![list isKindOfClass:[NSDictionary class]]) {
            return std::nullopt;
        }
        id value = [list objectForKey:foundationString(key)];
        // Null also for a text that is no valid UTF-16 and so has no UTF-8.
        const char* text = [value isKindOfClass:[NSString class]] ? [value UTF8String] : nullptr;
        return text ? std::optional<std::string>(text) : std::nullopt;
    }
}

}  // namespace platform
