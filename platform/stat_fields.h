#pragma once

#include <sys/stat.h>

#include "platform/files.h"

/// The few fields of `stat` that are named otherwise, or missing, on one of the systems.
namespace platform {

ORVFileDate modificationDate(const struct stat& status);

/// Whether an item can be hidden by a flag, beside a name that begins with a dot. Where it can,
/// a walk needs the attributes of every item.
bool hiddenFlagExists();

bool hasHiddenFlag(const struct stat& status);

}  // namespace platform
