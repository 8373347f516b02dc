#include "platform/marker_search.h"

#include <utility>

#include "platform/marker_scan.h"
#include "platform/marker_search_wide.h"

namespace {

const char* findMarker(const ORVMarkerSearch& search, const char* begin, const char* end) {
    const auto& markers = search.markers();
    return platform::MarkerScan<16>(markers.data(), markers.size(), begin, end).run();
}

}  // namespace

ORVMarkerSearch::ORVMarkerSearch(std::vector<ORVMarker> markers)
    : markers_(std::move(markers)),
      scan_(platform::wideScanIsAvailable() ? platform::findMarkerWide : findMarker) {}

const char* ORVMarkerSearch::find(const char* begin, const char* end) const {
    return scan_(*this, begin, end);
}
