#include "platform/stat_fields.h"

namespace platform {

ORVFileDate modificationDate(const struct stat& status) {
    return {status.st_mtim.tv_sec, static_cast<std::int32_t>(status.st_mtim.tv_nsec)};
}

bool hiddenFlagExists() {
    return false;
}

bool hasHiddenFlag(const struct stat&) {
    return false;
}

}  // namespace platform
