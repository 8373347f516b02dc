#pragma once

#include "text/marker_search.h"

namespace text {

/// Whether findMarkerWide may be called: this processor compares 32 bytes at once.
bool wideScanIsAvailable();

/// The marker in [begin, end) whose rare byte comes first, or `end`, 32 bytes at once.
const char* findMarkerWide(const ScannedMarker* markers, std::size_t count, const char* begin,
                           const char* end);

}  // namespace text
