// The short title of a task. It is the same in every language, since there is no room for words.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/status_title.h"

#include <array>
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
