#pragma once

#include <string>
#include <vector>

namespace platform {

/// The languages that the user prefers, most preferred first, as tags such as "zh-Hans-CN".
std::vector<std::string> preferredLanguages();

}  // namespace platform
