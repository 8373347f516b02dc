#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/marker_search.h"

/// The inner loop of ORVMarkerSearch, compiled once for every vector width. Everything here has
/// internal linkage: a function compiled for a wider processor must not be the one that the linker
/// keeps for all.
namespace platform {
namespace {

inline bool standsAt(const ORVMarker& marker, const char* position, const char* end) {
    return static_cast<std::size_t>(end - position) >= marker.text.size() &&
           std::memcmp(position, marker.text.data(), marker.text.size()) == 0;
}

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
    MarkerScan(const ORVMarker* markers, std::size_t count, const char* begin, const char* end)
        : markers_(markers), count_(count), begin_(begin), end_(end) {}

    /// With the number of markers known to the compiler the compared bytes stay in registers.
    const char* run() const {
        switch (count_) {
            case 1:
                return scan<1>();
            case 2:
                return scan<2>();
            case 3:
                return scan<3>();
            default:
                return scanBytes(begin_);
        }
    }

private:
    using Bytes = typename VectorOf<Width>::Bytes;
    static constexpr std::size_t kVectors = 64 / Width;
    static constexpr std::size_t kBlockBytes = 64;

    template <std::size_t Count>
    const char* scan() const {
        Bytes rare[Count];
        Bytes otherRare[Count];
        std::size_t reach = 0;
        for (std::size_t m = 0; m < Count; ++m) {
            const ORVMarker& marker = markers_[m];
            rare[m] = Bytes{} + static_cast<signed char>(marker.text[marker.rareByte]);
            otherRare[m] = Bytes{} + static_cast<signed char>(marker.text[marker.otherRareByte]);
            reach = marker.rareByte > reach ? marker.rareByte : reach;
            reach = marker.otherRareByte > reach ? marker.otherRareByte : reach;
        }
        const char* block = begin_;
        while (static_cast<std::size_t>(end_ - block) >= kBlockBytes + reach) {
            Bytes agree[kVectors];
            Bytes any{};
            for (std::size_t v = 0; v < kVectors; ++v) {
                const char* base = block + v * Width;
                Bytes found{};
                for (std::size_t m = 0; m < Count; ++m) {
                    found |= (load(base + markers_[m].rareByte) == rare[m]) &
                             (load(base + markers_[m].otherRareByte) == otherRare[m]);
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

    /// The first position of the block at which not only the rare bytes agree.
    const char* verified(const char* block, const Bytes* agree) const {
        char lanes[kBlockBytes];
        std::memcpy(lanes, agree, kBlockBytes);
        for (std::size_t i = 0; i < kBlockBytes; ++i) {
            if (lanes[i] && anyStandsAt(block + i)) {
                return block + i;
            }
        }
        return nullptr;
    }

    /// The end of the range, too short for a block.
    const char* scanBytes(const char* position) const {
        while (position != end_ && !anyStandsAt(position)) {
            ++position;
        }
        return position;
    }

    bool anyStandsAt(const char* position) const {
        for (std::size_t m = 0; m < count_; ++m) {
            if (standsAt(markers_[m], position, end_)) {
                return true;
            }
        }
        return false;
    }

    const ORVMarker* markers_;
    std::size_t count_;
    const char* begin_;
    const char* end_;
};

}  // namespace
}  // namespace platform
