#pragma once

#include <string>

#include "app/ORVAppDelegate.h"

namespace json {

/// Returns the status item with its whole menu as one JSON object, without a line end.
std::string statusItem(const ORVStatusItem& statusItem);

/// Returns the status item in the form that Waybar, i3status-rust and others read:
/// {"text":…,"tooltip":…,"class":…,"percentage":…}. The tooltip holds the visible information
/// lines; the class is unknown, low, medium, high or full. Texts are escaped for Pango's markup.
std::string waybar(const ORVAppDelegate& delegate);

}  // namespace json
