#pragma once

#include <cstdint>

/// SplitMix64: the standard distributions differ between libraries.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }
    std::uint64_t below(std::uint64_t limit) { return next() % limit; }
    std::uint64_t between(std::uint64_t low, std::uint64_t high) {
        return low + below(high - low + 1);
    }
    bool oneIn(std::uint64_t n) { return below(n) == 0; }

private:
    std::uint64_t state_;
};
