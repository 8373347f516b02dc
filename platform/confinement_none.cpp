// For systems on which a program cannot confine itself without a sandbox profile, and for builds
// with sanitizers, which start processes.

#include <sys/resource.h>

#include "platform/confinement.h"

namespace platform {

ORVConfinement confineProcess(const ORVFileRights&) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    return {};
}

void confineThreadToReading(const std::vector<std::string>&) {}

}  // namespace platform
