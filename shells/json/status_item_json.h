#pragma once

#include <string>

#include "app/ORVMenu.h"

namespace json {

/// The status item and its menu, whole, as one object without a line end.
std::string statusItem(const ORVStatusItem& statusItem);

}  // namespace json
