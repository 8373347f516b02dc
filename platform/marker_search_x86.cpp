#include "platform/marker_search_wide.h"

namespace platform {

bool wideScanIsAvailable() {
    return __builtin_cpu_supports("avx2");
}

}  // namespace platform
