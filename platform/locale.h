#pragma once

#include <string>
#include <vector>

#include "platform/files.h"

/// How a language writes the time of day, in two ways, since not every system has the data of every
/// locale.
struct ORVTimeFormat {
    /// The name of a locale, such as "en_US". A system with locale data uses its medium style.
    const char* locale;

    /// The same style as a pattern for `strftime`, for systems without such data. Where it begins
    /// with %I, a leading zero of the hour is left out.
    const char* pattern;
};

namespace platform {

/// Returns the languages that the user prefers, the most preferred first, as tags such as
/// "zh-Hans-CN".
std::vector<std::string> preferredLanguages();

/// Returns hours, minutes and seconds of the date in the user's time zone.
std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format);

}  // namespace platform
