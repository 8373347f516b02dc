#include "app/status_title.h"

#include <array>
#include <cstdio>

namespace app {

const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot) {
    const bool isAvailable = snapshot.contextStatus() == ORVContextStatusAvailable;
    return isAvailable && snapshot.contextUsage() ? &*snapshot.contextUsage() : nullptr;
}

std::string statusItemTitle(const ORVSessionSnapshot& snapshot) {
    const bool countIsValid = snapshot.compactionStatus() == ORVCompactionStatusValid;
    const std::string prefix =
        countIsValid ? "C" + std::to_string(snapshot.compactionCount()) : "C–";
    const ORVContextUsage* usage = shownUsage(snapshot);
    if (!usage) {
        return prefix + " · --%";
    }
    std::array<char, 64> share{};
    std::snprintf(share.data(), share.size(), "%.0f%%", usage->percentage());
    return prefix + " · " + share.data();
}

}  // namespace app
