#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// What fuzz targets share. A target gets bytes and ends the program when a law does not hold.
namespace fuzz {

/// Ends the program when the two are not the same, under a debugger and in NDEBUG builds alike.
inline void expectEqual(std::string_view law, const std::string& expected,
                        const std::string& found) {
    if (expected != found) {
        std::fprintf(stderr, "not so: %.*s\nexpected %s\nfound    %s\n",
                     static_cast<int>(law.size()), law.data(), expected.c_str(), found.c_str());
        std::abort();
    }
}

inline void expect(std::string_view law, bool holds) {
    expectEqual(law, "it holds", holds ? "it holds" : "it does not");
}

/// The bytes of one input, bounded, so that no input takes long.
inline std::string text(const std::uint8_t* data, std::size_t size, std::size_t limit = 8192) {
    return {reinterpret_cast<const char*>(data), size < limit ? size : limit};
}

/// An input's bytes, taken from the front for decisions; zeros once they are used up.
class Choices {
public:
    explicit Choices(std::string bytes) : bytes_(std::move(bytes)) {}

    bool areLeft() const { return next_ < bytes_.size(); }

    /// From 0 to bound - 1; the bound is at most 256.
    std::size_t below(std::size_t bound) {
        return areLeft() ? static_cast<unsigned char>(bytes_[next_++]) % bound : 0;
    }

    template <typename T, std::size_t Count>
    const T& pick(const T (&table)[Count]) {
        return table[below(Count)];
    }

private:
    const std::string bytes_;
    std::size_t next_ = 0;
};

}  // namespace fuzz
