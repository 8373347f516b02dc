// Asks the processor for AVX2; compiled for the oldest one. Tests:
// tests/text/marked_lines_test.cpp.

#include "text/marker_search_wide.h"

namespace text {

bool wideScanIsAvailable() {
    return __builtin_cpu_supports("avx2");
}

}  // namespace text
