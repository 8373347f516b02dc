#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

/// A byte string to look for.
struct ORVMarker {
    std::string_view text;
    /// Positions in `text` of two bytes, the earlier one first. The two decide the speed: choose a
    /// pair that seldom stands at this distance in the data, since a common pair makes the search
    /// less than half as fast. Markers that share the byte at `rareByte` are found faster together.
    std::size_t rareByte = 0;
    std::size_t otherRareByte = 0;

    constexpr ORVMarker() = default;

    /// Markers are constants, so that positions outside of the text or out of order do not compile.
    consteval ORVMarker(std::string_view markerText, std::size_t rare, std::size_t otherRare)
        : text(markerText), rareByte(rare), otherRareByte(otherRare) {
        if (rare >= otherRare || otherRare >= markerText.size()) {
            throw "positions of a marker's rare bytes";
        }
    }
};

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
        std::copy(markers, markers + Count, markers_.begin());
    }

    /// Returns the marker in [begin, end) whose rare byte comes first, and `end` when there is
    /// none. Reads nothing outside the range.
    const char* find(const char* begin, const char* end) const;

    /// Does what find does, 16 positions at once, which every processor can.
    const char* findNarrow(const char* begin, const char* end) const;

private:
    std::array<ORVMarker, kMostMarkers> markers_{};
    std::size_t count_;
};

namespace text {

/// Takes lines in file order, without their line feeds. They are valid during the call only.
using LinesConsumer = std::function<void(std::span<const std::string_view> lines)>;

/// Finds, in the next bytes of a file, the lines that hold one of the markers. `consumeLines` is
/// called with the line that `pending` began, if it is one of them, and then with the others. Lines
/// without a marker are passed over without being cut out.
///
/// `pending` holds the beginning of a line whose line feed has not arrived. The call completes that
/// line and leaves in `pending` the line that the chunk does not end. The bytes in `pending` are
/// never searched for a line feed again.
///
/// kReadableBytesBeyond readable bytes must follow the chunk, because consumers may read as far
/// beyond a line's end.
void consumeChunk(std::string& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const LinesConsumer& consumeLines);

}  // namespace text
