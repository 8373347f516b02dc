#pragma once

#include <string>

#include "platform/files.h"

/// How a language writes the time of day, in two ways, since not every system has the data of every
/// locale.
struct ORVTimeFormat {
    const char* locale;   ///< "en_US": whose medium style a system with such data takes.
    const char* pattern;  ///< The same for `strftime`; a zero that the time begins with is left out
                          ///< where the pattern begins with %I.
};

namespace platform {

/// Hours, minutes and seconds in the user's time zone.
std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format);

}  // namespace platform
