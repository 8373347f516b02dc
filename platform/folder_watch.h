#pragma once

#include <memory>

#include "platform/files.h"

namespace platform {

/// Returns a watch of this system; null where there is none.
std::unique_ptr<ORVFolderWatch> makeFolderWatch();

}  // namespace platform
