#pragma once

#include <string>

namespace platform {

/// The user's home folder: `$HOME` where it is set and not empty, else what the password database
/// says: first /etc/passwd itself, then, for a user who is not in it (as on a Mac), the C library,
/// which may load modules and ask over a socket. An absolute path without a slash at its end (""
/// for the root folder itself), so that "/name" can be appended; a relative `$HOME` counts from the
/// working folder.
std::string homeFolder();

}  // namespace platform
