#pragma once

#include "platform/marker_search.h"

namespace platform {

/// Whether findMarkerWide may be called: this processor compares 32 bytes at once.
bool wideScanIsAvailable();

/// The position of the first marker in [begin, end), or `end`, 32 bytes at once.
const char* findMarkerWide(const ORVMarkerSearch& search, const char* begin, const char* end);

}  // namespace platform
