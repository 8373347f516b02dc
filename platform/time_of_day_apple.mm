#import "platform/foundation_string_apple.h"
#include "platform/time_of_day.h"

namespace platform {

std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format) {
    @autoreleasepool {
        // A fresh one for each time: it knows the time zone of the moment.
        NSDateFormatter* formatter = [[[NSDateFormatter alloc] init] autorelease];
        formatter.locale =
            [[[NSLocale alloc] initWithLocaleIdentifier:foundationString(format.locale)] autorelease];
        formatter.dateStyle = NSDateFormatterNoStyle;
        formatter.timeStyle = NSDateFormatterMediumStyle;
        // Whole seconds: a double would round the last nanoseconds of one up to the next.
        NSDate* second =
            [NSDate dateWithTimeIntervalSince1970:static_cast<NSTimeInterval>(date.seconds)];
        NSString* text = [formatter stringFromDate:second];
        const char* bytes = text.UTF8String;
        return bytes ? bytes : "";
    }
}

}  // namespace platform
