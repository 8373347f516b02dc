#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

/// Functions for all fuzz targets. A target ends the program when its bytes break a law.
namespace fuzz {

/// Ends the program when the two differ, in NDEBUG builds as well.
inline void expectEqual(const std::string& law, const std::string& one, const std::string& other) {
    if (one != other) {
        std::fprintf(stderr, "not so: %s\n%s\n%s\n", law.c_str(), one.c_str(), other.c_str());
        std::abort();
    }
}

inline void expect(const std::string& law, bool holds) {
    expectEqual(law, "", holds ? "" : "(it does not hold)");
}

/// Returns the bytes of one input, cut to a length that takes little time.
inline std::string text(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 8192;
    return {reinterpret_cast<const char*>(data), size < kLimitBytes ? size : kLimitBytes};
}

inline std::vector<std::string> lines(std::string_view text) {
    std::vector<std::string> found(1);
    for (const char c : text) {
        c == '\n' ? found.emplace_back() : found.back() += c;
    }
    return found;
}

}  // namespace fuzz
