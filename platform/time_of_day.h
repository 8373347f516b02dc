#pragma once

#include <string>

#include "platform/files.h"

namespace platform {

/// Hours, minutes and seconds in the user's time zone, in the medium style of the locale "en_US" or
/// "zh_CN".
std::string mediumTimeOfDay(ORVFileDate date, const std::string& locale);

}  // namespace platform
