// Chooses the width of the vectors once, for the processor at hand.
// Tests: tests/text/marked_lines_test.cpp.

#include "text/marker_search.h"

#include "text/marker_scan.h"
#include "text/marker_search_wide.h"

const char* ORVMarkerSearch::find(const char* begin, const char* end) const {
    static const bool kIsWide = text::wideScanIsAvailable();
    return kIsWide ? text::findMarkerWide(markers_.data(), count_, begin, end)
                   : text::MarkerScan<16>(markers_.data(), count_, begin, end).run();
}
