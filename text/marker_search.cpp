#include "text/marker_search.h"

#include <utility>

#include "text/marker_scan.h"
#include "text/marker_search_wide.h"

ORVMarkerSearch::ORVMarkerSearch(std::vector<ORVMarker> markers) : markers_(std::move(markers)) {
    for (const ORVMarker& marker : markers_) {
        scanned_.push_back(
            {marker.text.data(), marker.text.size(), marker.rareByte, marker.otherRareByte});
    }
}

const char* ORVMarkerSearch::find(const char* begin, const char* end) const {
    static const bool kIsWide = text::wideScanIsAvailable();
    return kIsWide ? text::findMarkerWide(scanned_.data(), scanned_.size(), begin, end)
                   : text::MarkerScan<16>(scanned_.data(), scanned_.size(), begin, end).run();
}
