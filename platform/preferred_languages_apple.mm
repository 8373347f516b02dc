// Reads the list in the system's settings. Tests: tests/platform/apple_test.mm.

#import <Foundation/Foundation.h>

#include "platform/locale.h"

namespace platform {

std::vector<std::string> preferredLanguages() {
    @autoreleasepool {
        std::vector<std::string> languages;
        for (NSString* language in [NSLocale preferredLanguages]) {
            languages.emplace_back(language.UTF8String);
        }
        return languages;
    }
}

}  // namespace platform
