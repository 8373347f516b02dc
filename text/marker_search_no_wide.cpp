// For processors whose vectors have 16 bytes, and for builds for several processors at once, which
// use the width that all have.

#include <cassert>

#include "text/marker_search_wide.h"

namespace text {

bool wideScanIsAvailable() {
    return false;
}

const char* findMarkerWide(const ScannedMarker*, std::size_t, const char*, const char* end) {
    assert(false);
    return end;
}

}  // namespace text
