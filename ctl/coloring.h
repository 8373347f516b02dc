#pragma once

#include <string>
#include <string_view>

#include "ctl/arguments.h"

/// Colours text with the sequences that every terminal with colours understands.
namespace ctl {

/// Whether text on this descriptor is to be coloured.
bool isColored(Coloring coloring, int descriptor);

/// Whether TERM names no terminal that understands control sequences.
bool terminalIsDumb();

/// Returns the text in the colour for this percentage: green, yellow from 60 %, red from 85 %.
std::string coloredByPercentage(std::string_view text, double percentage);

/// Returns a status title with its percentage, which is its last word, in the same colour.
std::string coloredStatus(std::string_view title, double percentage);

std::string bold(std::string_view text);

}  // namespace ctl
