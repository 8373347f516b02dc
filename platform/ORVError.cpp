// Errors of the system, with its own description. Tests: tests/sessions/snapshots_test.cpp.

#include "platform/ORVError.h"

#include <system_error>

namespace platform {

ORVError posixError(int errnoValue) {
    return {"posix", errnoValue, std::generic_category().message(errnoValue)};
}

}  // namespace platform
