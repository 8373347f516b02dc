// Reads the languages in the system's settings, and writes the time in a locale's style, with
// Foundation. Tests: tests/platform/apple_test.mm.

#import "platform/foundation_apple.h"
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

std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format) {
    @autoreleasepool {
        // A new formatter is made each time, because a formatter keeps its first time zone.
        NSDateFormatter* formatter = [[[NSDateFormatter alloc] init] autorelease];
        formatter.locale = [[[NSLocale alloc]
            initWithLocaleIdentifier:foundationString(format.locale)] autorelease];
        formatter.dateStyle = NSDateFormatterNoStyle;
        formatter.timeStyle = NSDateFormatterMediumStyle;
        // Whole seconds, because a double would round the last nanoseconds up to the next second.
        NSDate* second =
            [NSDate dateWithTimeIntervalSince1970:static_cast<NSTimeInterval>(date.seconds)];
        NSString* text = [formatter stringFromDate:second];
        const char* bytes = text.UTF8String;
        return bytes ? bytes : "";
    }
}

}  // namespace platform
