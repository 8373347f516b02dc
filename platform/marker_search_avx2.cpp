// Compiled with AVX2 enabled, called only where the processor has it.

#include "platform/marker_scan.h"
#include "platform/marker_search_wide.h"

namespace platform {

bool wideScanIsAvailable() {
    return __builtin_cpu_supports("avx2");
}

const char* findMarkerWide(const ORVMarkerSearch& search, const char* begin, const char* end) {
    return MarkerScan<32>(search.markers().data(), search.markers().size(), begin, end).run();
}

}  // namespace platform
