// For a system that has no means a program without a sandbox could use, and for sanitizers, which
// start processes themselves.

#include <sys/resource.h>

#include "platform/confinement.h"

namespace platform {

ORVConfinement confineProcess(const std::vector<std::string>&) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    return {};
}

void confineThreadToReading() {}

}  // namespace platform
