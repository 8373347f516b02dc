// Reads property lists with Foundation. Tests: tests/platform/apple_test.mm.

#import "platform/foundation_apple.h"
#include "platform/program.h"

namespace platform {
namespace {

/// Whether the list can be passed to Foundation, which recurses for every level of an XML list on a
/// thread whose stack may have 512 KB. An application's list has three levels and some dozens of
/// containers.
bool hasFewContainers(std::string_view list) {
    constexpr int kLimit = 512;
    int count = 0;
    for (auto start = list.find('<'); start != list.npos; start = list.find('<', start + 1)) {
        const std::string_view tag = list.substr(start + 1);
        count += tag.starts_with("array") || tag.starts_with("dict") ? 1 : 0;
    }
    return count <= kLimit;
}

}  // namespace

std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key) {
    if (!hasFewContainers(bytes)) {
        return std::nullopt;
    }
    @autoreleasepool {
        NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        NSPropertyListFormat format = NSPropertyListOpenStepFormat;
        id list = [NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:&format
                                                              error:nullptr];
        const bool isXMLOrBinary =
            format == NSPropertyListXMLFormat_v1_0 || format == NSPropertyListBinaryFormat_v1_0;
        if (!isXMLOrBinary || ![list isKindOfClass:[NSDictionary class]]) {
            return std::nullopt;
        }
        id value = [list objectForKey:foundationString(key)];
        // Null also for a text that is not valid UTF-16 and so cannot be written in UTF-8.
        const char* text = [value isKindOfClass:[NSString class]] ? [value UTF8String] : nullptr;
        return text ? std::optional<std::string>(text) : std::nullopt;
    }
}

}  // namespace platform
