#pragma once

#include <string>

#include "app/ORVAppDelegate.h"

namespace json {

/// The status item as Waybar, i3status-rust and others read it: a line
/// {"text":…,"tooltip":…,"class":…,"percentage":…}. The tooltip is the visible information lines,
/// the class one of unknown, low, medium, high and full. Texts are escaped for Pango's markup.
std::string waybar(const ORVAppDelegate& delegate);

}  // namespace json
