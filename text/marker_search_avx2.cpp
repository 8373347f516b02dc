// This file is compiled for AVX2. Its function may be called only on processors that have it.

#include "text/marker_scan.h"
#include "text/marker_search_wide.h"

namespace text {

const char* findMarkerWide(const ScannedMarker* markers, std::size_t count, const char* begin,
                           const char* end) {
    return MarkerScan<32>(markers, count, begin, end).run();
}

}  // namespace text
