#pragma once

#include <string>
#include <vector>

namespace platform {

/// Returns the languages that the user prefers, the most preferred first, as tags such as
/// "zh-Hans-CN".
std::vector<std::string> preferredLanguages();

}  // namespace platform
