#include "platform/stat_fields.h"

namespace platform {

ORVFileDate modificationDate(const struct stat& status) {
    return {status.st_mtimespec.tv_sec, static_cast<std::int32_t>(status.st_mtimespec.tv_nsec)};
}

bool hiddenFlagExists() {
    return true;
}

bool hasHiddenFlag(const struct stat& status) {
    return (status.st_flags & UF_HIDDEN) != 0;
}

}  // namespace platform
