// Asks whether the processor has AVX2. This file is compiled for processors without it as well.
// Tests: tests/text/marked_lines_test.cpp.

#include "text/marker_search_wide.h"

namespace text {

bool wideScanIsAvailable() {
    return __builtin_cpu_supports("avx2");
}

}  // namespace text
