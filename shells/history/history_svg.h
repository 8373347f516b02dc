#pragma once

#include <string>
#include <vector>

#include "sessions/ORVHistoryEvent.h"

namespace history {

/// The history as an SVG document of its own, for light and dark pages. `title` may hold any
/// bytes; what does not fit is cut in the picture and stays whole in the document's title.
std::string svg(const std::vector<ORVHistoryEvent>& events, const std::string& title);

}  // namespace history
