#pragma once

#include "text/marker_search.h"

namespace text {

/// Whether this processor can compare 32 bytes at once, so that findMarkerWide may be called.
bool wideScanIsAvailable();

/// Does what ORVMarkerSearch::find does, 32 bytes at once.
const char* findMarkerWide(const ScannedMarker* markers, std::size_t count, const char* begin,
                           const char* end);

}  // namespace text
