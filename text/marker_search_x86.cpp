#include "text/marker_search_wide.h"

namespace text {

bool wideScanIsAvailable() {
    return __builtin_cpu_supports("avx2");
}

}  // namespace text
