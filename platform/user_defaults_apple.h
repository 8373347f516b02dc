#pragma once

#include <memory>
#include <string>

#include "platform/user_defaults.h"

namespace platform {

/// Returns the settings in the domain of this name, for tests that must not touch the user's.
std::unique_ptr<ORVUserDefaults> userDefaultsInDomain(const std::string& domain);

}  // namespace platform
