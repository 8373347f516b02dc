#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// A byte string to look for.
struct ORVMarker {
    std::string_view text;
    /// Positions in `text` of two bytes, the earlier one first. The two decide the speed: choose a
    /// pair that seldom stands at this distance in the data, since a common pair makes the search
    /// less than half as fast. Markers that share the byte at `rareByte` are found faster together.
    std::size_t rareByte;
    std::size_t otherRareByte;

    /// Markers are constants, so that positions outside of the text or out of order do not compile.
    consteval ORVMarker(std::string_view markerText, std::size_t rare, std::size_t otherRare)
        : text(markerText), rareByte(rare), otherRareByte(otherRare) {
        if (rare >= otherRare || otherRare >= markerText.size()) {
            throw "positions of a marker's rare bytes";
        }
    }
};

namespace text {

/// A marker made of types without functions, which marker_scan.h needs.
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
    static constexpr std::size_t kMostMarkers = 4;

    /// The markers' texts must outlive the search. At most kMostMarkers markers compile, because
    /// every number of them has a loop of its own, in which the compared bytes stay in registers.
    template <std::size_t Count>
    explicit ORVMarkerSearch(const ORVMarker (&markers)[Count]) : count_(Count) {
        static_assert(Count <= kMostMarkers);
        for (std::size_t m = 0; m < Count; ++m) {
            markers_[m] = {markers[m].text.data(), markers[m].text.size(), markers[m].rareByte,
                           markers[m].otherRareByte};
        }
    }

    /// Returns the marker in [begin, end) whose rare byte comes first, and `end` when there is
    /// none. Reads nothing outside the range.
    const char* find(const char* begin, const char* end) const;

private:
    std::array<text::ScannedMarker, kMostMarkers> markers_{};
    std::size_t count_;
};
