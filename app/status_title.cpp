// Writes figures without words: a task's short title, percentages and bars.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/status_title.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace app {

const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot) {
    const bool isAvailable = snapshot.contextStatus() == ORVContextStatusAvailable;
    return isAvailable && snapshot.contextUsage() ? &*snapshot.contextUsage() : nullptr;
}

std::string wholePercent(double percentage) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.0f", percentage);
    return text.data();
}

std::string bar(double percentage) {
    constexpr int kCells = 10;
    const auto filled = std::lround(std::clamp(percentage, 0.0, 100.0) / kCells);
    std::string cells;
    for (int cell = 0; cell < kCells; ++cell) {
        cells += cell < filled ? "█" : "░";
    }
    return cells;
}

std::string statusItemTitle(const ORVSessionSnapshot& snapshot) {
    std::string title = "C";
    title += snapshot.compactionStatus() == ORVCompactionStatusValid
                 ? std::to_string(snapshot.compactionCount())
                 : "–";
    const ORVContextUsage* usage = shownUsage(snapshot);
    if (!usage) {
        return title + " · --%";
    }
    return title + " · " + wholePercent(usage->percentage()) + '%';
}

}  // namespace app
