#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The bytes of one input, taken from the front for decisions; zeros once they are used up.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool empty() const { return rest_.empty(); }

    std::size_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const auto value = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }

    /// From 0 to bound - 1; the bound is at most 256.
    std::size_t below(std::size_t bound) { return byte() % bound; }

    bool oneIn(std::size_t chances) { return below(chances) == chances - 1; }

    template <typename T, std::size_t Count>
    const T& pick(const T (&table)[Count]) {
        static_assert(Count <= 256);
        return table[below(Count)];
    }

    std::string text(std::size_t size) {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return std::string(taken);
    }

private:
    std::string_view rest_;
};
