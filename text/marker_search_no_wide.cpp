// For processors whose widest vectors of bytes are 16 bytes, and for builds of several processors
// at once, which take the common width.

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
