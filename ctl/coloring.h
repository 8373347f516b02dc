#pragma once

#include <string>
#include <string_view>

#include "ctl/arguments.h"

/// Colours of text that answers a call, by the sequences that every terminal with colours knows.
namespace ctl {

/// Whether text on this descriptor is to be coloured.
bool isColored(Coloring coloring, int descriptor);

/// The text in the colour of how full a context window is: green, yellow from 60 %, red from 85 %.
std::string coloredByPercentage(std::string_view text, double percentage);

std::string bold(std::string_view text);
std::string dimmed(std::string_view text);

}  // namespace ctl
