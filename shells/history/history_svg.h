#pragma once

#include <string>
#include <vector>

#include "sessions/ORVHistoryEvent.h"

namespace history {

/// Returns the history as an SVG document for light and dark pages. `title` may hold any bytes; a
/// title that is too long is cut in the picture and stands whole in the document's title.
std::string svg(const std::vector<ORVHistoryEvent>& events, const std::string& title);

}  // namespace history
