#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// A byte string to look for.
struct ORVMarker {
    std::string_view text;
    /// Positions in `text` of two bytes that seldom stand at this distance from one another in the
    /// data searched, the earlier one first. They decide the speed: a pair that is common there
    /// costs more than half. Markers that share the first byte are cheaper to look for together.
    std::size_t rareByte;
    std::size_t otherRareByte;
};

namespace text {

/// A marker without any type that brings functions along (see marker_scan.h).
struct ScannedMarker {
    const char* text;
    std::size_t size;
    std::size_t rareByte;
    std::size_t otherRareByte;
};

}  // namespace text

/// Finds the next of a few markers in one pass, many bytes at a time.
///
/// Compares the two rare bytes of every marker at 16 or 32 positions at once (whatever this
/// processor has) and the whole marker only where both agree.
class ORVMarkerSearch {
public:
    explicit ORVMarkerSearch(std::vector<ORVMarker> markers);

    /// The marker in [begin, end) whose rare byte comes first; `end` when there is none. Reads
    /// nothing outside the range.
    const char* find(const char* begin, const char* end) const;

private:
    std::vector<ORVMarker> markers_;
    std::vector<text::ScannedMarker> scanned_;  ///< Refers to the texts of markers_.
};
