#pragma once

#include <string>

namespace platform {

/// Returns the user's home folder: `$HOME` if it is set and not empty, else that in /etc/passwd,
/// and for a user who is not in that file (as on a Mac) that from the C library, which may load
/// modules and open a socket.
///
/// The path is absolute and has no slash at its end, so that "/name" can be appended; for the root
/// folder it is "". A relative `$HOME` is taken relative to the working folder.
std::string homeFolder();

/// Returns a path relative to the working folder as an absolute one, without a slash at its end.
std::string absolutePath(std::string path);

}  // namespace platform
