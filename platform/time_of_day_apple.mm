#import "platform/foundation_string_apple.h"
#include "platform/time_of_day.h"

namespace platform {

std::string mediumTimeOfDay(ORVFileDate date, const std::string& locale) {
    @autoreleasepool {
        // A fresh one for each time: it knows the time zone of the moment.
        NSDateFormatter* formatter = [[[NSDateFormatter alloc] init] autorelease];
        formatter.locale =
            [[[NSLocale alloc] initWithLocaleIdentifier:foundationString(locale)] autorelease];
        formatter.dateStyle = NSDateFormatterNoStyle;
        formatter.timeStyle = NSDateFormatterMediumStyle;
        const NSTimeInterval seconds =
            static_cast<double>(date.seconds) + static_cast<double>(date.nanoseconds) / 1e9;
        NSString* text =
            [formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:seconds]];
        const char* bytes = text.UTF8String;
        return bytes ? bytes : "";
    }
}

}  // namespace platform
