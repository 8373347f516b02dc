#include "platform/marker_search.h"

#include <utility>

#include "platform/marker_scan.h"
#include "platform/marker_search_wide.h"

ORVMarkerSearch::ORVMarkerSearch(std::vector<ORVMarker> markers) : markers_(std::move(markers)) {
    for (const ORVMarker& marker : markers_) {
        scanned_.push_back(
            {marker.text.data(), marker.text.size(), marker.rareByte, marker.otherRareByte});
    }
}

const char* ORVMarkerSearch::find(const char* begin, const char* end) const {
    static const bool kIsWide = platform::wideScanIsAvailable();
    return kIsWide ? platform::findMarkerWide(scanned_.data(), scanned_.size(), begin, end)
                   : platform::MarkerScan<16>(scanned_.data(), scanned_.size(), begin, end).run();
}
