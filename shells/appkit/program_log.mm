// Tests: tests/appkit/appkit_test.mm.

#include "shells/appkit/program_log.h"

#include <os/log.h>

namespace appkit {
namespace {

/// The sentence is declared public, because the system hides the texts of other programs' users.
void write(os_log_type_t type, const std::string& sentence) {
    static const os_log_t log = os_log_create("com.orvellan.brimlet", "run");
    os_log_with_type(log, type, "%{public}s", sentence.c_str());
}

}  // namespace

void log(const std::string& sentence) {
    write(OS_LOG_TYPE_DEFAULT, sentence);  // Informational messages are not kept on disk.
}

void logFailure(const std::string& sentence) {
    write(OS_LOG_TYPE_ERROR, sentence);
}

}  // namespace appkit
