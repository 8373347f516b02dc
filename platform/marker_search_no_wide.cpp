// For processors whose widest vectors of bytes are 16 bytes, and for builds of several processors
// at once, which take the common width.

#include <cassert>

#include "platform/marker_search_wide.h"

namespace platform {

bool wideScanIsAvailable() {
    return false;
}

const char* findMarkerWide(const ScannedMarker*, std::size_t, const char*, const char* end) {
    assert(false);
    return end;
}

}  // namespace platform
