#pragma once

#include <optional>
#include <string>
#include <vector>

namespace terminal {

/// The size of the terminal, and what it can show.
struct Screen {
    int columns = 80;
    int rows = 24;
    bool showsUnicode = true;  ///< Otherwise everything is written in ASCII.
};

/// How full a context window is, in the steps that have colours.
enum class Fullness { unknown, low, middle, high };

/// Returns the step of a percentage: low below 60, high from 85.
inline Fullness fullnessOf(std::optional<double> percentage) {
    if (!percentage) {
        return Fullness::unknown;
    }
    return *percentage < 60 ? Fullness::low : *percentage < 85 ? Fullness::middle : Fullness::high;
}

struct Style {
    bool isReversed = false;
    bool isDimmed = false;
    bool isBold = false;
    Fullness fullness = Fullness::unknown;  ///< Becomes a colour when the terminal has colours.
    bool operator==(const Style&) const = default;
};

/// A text in one style.
struct Piece {
    std::string text;
    Style style;
    bool operator==(const Piece&) const = default;
};

/// One row of the screen from left to right, exactly as wide as the screen.
using Row = std::vector<Piece>;

}  // namespace terminal
