#include "app/status_title.h"

#include <array>
#include <cstdio>

namespace app {

const ORVContextUsage* shownUsage(const ORVSessionSnapshot& snapshot) {
    const bool isAvailable = snapshot.contextStatus() == ORVContextStatusAvailable;
    return isAvailable && snapshot.contextUsage() ? &*snapshot.contextUsage() : nullptr;
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
    std::array<char, 64> share{};
    std::snprintf(share.data(), share.size(), " · %.0f%%", usage->percentage());
    return title + share.data();
}

}  // namespace app
