#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/marker_search.h"

/// The inner loop of ORVMarkerSearch, compiled once for every vector width. Everything here has
/// internal linkage and calls only the C library. Otherwise the linker could keep, for all
/// processors, a function that was compiled for the wider vectors.
namespace text {
namespace {

template <std::size_t Width>
struct VectorOf;
template <>
struct VectorOf<16> {
    typedef signed char Bytes __attribute__((vector_size(16)));
};
template <>
struct VectorOf<32> {
    typedef signed char Bytes __attribute__((vector_size(32)));
};

template <std::size_t Width>
class MarkerScan {
public:
    MarkerScan(const ScannedMarker* markers, std::size_t count, const char* begin, const char* end)
        : markers_(markers), count_(count), begin_(begin), end_(end) {}

    /// When the compiler knows the number of markers, it keeps the compared bytes in registers.
    const char* run() const {
        static_assert(ORVMarkerSearch::kMostMarkers == 4);
        switch (count_) {
            case 1:
                return scan<1, true>();
            case 2:
                return rareByteIsShared() ? scan<2, true>() : scan<2, false>();
            case 3:
                return rareByteIsShared() ? scan<3, true>() : scan<3, false>();
            default:
                return rareByteIsShared() ? scan<4, true>() : scan<4, false>();
        }
    }

private:
    using Bytes = typename VectorOf<Width>::Bytes;
    /// Testing whether anything was found costs as much as comparing one vector, so it is done once
    /// for a block of several vectors.
    static constexpr std::size_t kBlockBytes = 128;
    static constexpr std::size_t kVectors = kBlockBytes / Width;

    /// Compares block by block. All markers look for their rare byte at the same positions, so that
    /// they share the bytes that are loaded.
    template <std::size_t Count, bool RareByteIsShared>
    const char* scan() const {
        Bytes rare[Count];
        Bytes otherRare[Count];
        std::size_t distance[Count];
        std::size_t farthest = 0;
        for (std::size_t m = 0; m < Count; ++m) {
            const ScannedMarker& marker = markers_[m];
            rare[m] = Bytes{} + static_cast<signed char>(marker.text[marker.rareByte]);
            otherRare[m] = Bytes{} + static_cast<signed char>(marker.text[marker.otherRareByte]);
            distance[m] = marker.otherRareByte - marker.rareByte;
            farthest = distance[m] > farthest ? distance[m] : farthest;
        }
        const char* block = begin_;
        while (static_cast<std::size_t>(end_ - block) >= kBlockBytes + farthest) {
            Bytes agree[kVectors];
            Bytes any{};
            for (std::size_t v = 0; v < kVectors; ++v) {
                const char* position = block + v * Width;
                const Bytes bytes = load(position);
                Bytes found{};
                for (std::size_t m = 0; m < Count; ++m) {
                    const Bytes other = load(position + distance[m]) == otherRare[m];
                    found |= RareByteIsShared ? other : (bytes == rare[m]) & other;
                }
                if constexpr (RareByteIsShared) {
                    found &= bytes == rare[0];
                }
                agree[v] = found;
                any |= found;
            }
            if (__builtin_expect(isSet(any), 0)) {
                if (const char* found = verified(block, agree)) {
                    return found;
                }
            }
            block += kBlockBytes;
        }
        return scanBytes(block);
    }

    bool rareByteIsShared() const {
        for (std::size_t m = 1; m < count_; ++m) {
            if (markers_[m].text[markers_[m].rareByte] != markers_[0].text[markers_[0].rareByte]) {
                return false;
            }
        }
        return true;
    }

    static Bytes load(const char* position) {
        Bytes bytes;
        std::memcpy(&bytes, position, Width);
        return bytes;
    }

    static bool isSet(Bytes bytes) {
        std::uint64_t words[Width / sizeof(std::uint64_t)];
        std::memcpy(words, &bytes, Width);
        std::uint64_t any = 0;
        for (const std::uint64_t word : words) {
            any |= word;
        }
        return any != 0;
    }

    /// Returns the first marker of the block that agrees as a whole, not only in its rare bytes;
    /// null when none does.
    const char* verified(const char* block, const Bytes* agree) const {
        for (std::size_t base = 0; base < kBlockBytes; base += sizeof(std::uint64_t)) {
            std::uint64_t lanes = 0;
            std::memcpy(&lanes, reinterpret_cast<const char*>(agree) + base, sizeof lanes);
            if (lanes == 0) {
                continue;
            }
            for (const char* position = block + base; position != block + base + sizeof lanes;
                 ++position) {
                if (const char* found = markerAround(position)) {
                    return found;
                }
            }
        }
        return nullptr;
    }

    /// Searches the end of the range, which is too short for a block, byte by byte.
    const char* scanBytes(const char* position) const {
        for (; position != end_; ++position) {
            if (const char* found = markerAround(position)) {
                return found;
            }
        }
        return end_;
    }

    /// Returns the beginning of the marker whose rare byte stands at the position; null when none
    /// stands there.
    const char* markerAround(const char* position) const {
        const auto before = static_cast<std::size_t>(position - begin_);
        const auto after = static_cast<std::size_t>(end_ - position);
        for (std::size_t m = 0; m < count_; ++m) {
            const ScannedMarker& marker = markers_[m];
            if (*position == marker.text[marker.rareByte] && marker.rareByte <= before &&
                marker.size - marker.rareByte <= after &&
                std::memcmp(position - marker.rareByte, marker.text, marker.size) == 0) {
                return position - marker.rareByte;
            }
        }
        return nullptr;
    }

    const ScannedMarker* markers_;
    std::size_t count_;
    const char* begin_;
    const char* end_;
};

}  // namespace
}  // namespace text
