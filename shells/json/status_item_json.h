#pragma once

#include <string>

#include "app/ORVMenu.h"

namespace json {

/// Returns the status item with its whole menu as one JSON object, without a line end.
std::string statusItem(const ORVStatusItem& statusItem);

}  // namespace json
