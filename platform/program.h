#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/ORVError.h"

/// This program: where it is, what it does for itself when it begins, and what it finds around it.
namespace platform {

/// Returns the path of the running program's file, links followed; "" when the system does not tell
/// it.
std::string programPath();

/// Returns the folder in which a release for Linux brings the characters of UTF-8. Its C library,
/// which is linked statically, finds none on a system with another C library. There may be no such
/// folder.
inline std::string localesOfProgram() {
    const std::string path = programPath();
    return path.substr(0, path.rfind('/')) + "/../share/brimlet/locale";
}

/// What is known of the program in a Mac's menu bar, as far as this user runs it.
struct MenuBarProgram {
    std::optional<std::string> place;  ///< Of its bundle; none while it does not run.
    bool isRunning = false;
    std::string text;  ///< For a person, in English.
};

/// Returns none on systems without a menu bar. The text tells when the program's version is not
/// `ownVersion`.
std::optional<MenuBarProgram> menuBarProgram(const std::string& ownVersion);

/// Closes all descriptors above the standard ones that the parent process left open. Called before
/// anything is opened.
void closeInheritedDescriptors();

/// Makes the allocator return large blocks to the system when they are freed, so that reading a
/// long line does not leave the resident memory larger. Called before anything large is allocated.
void returnFreedMemory();

// Around it

/// Returns the user's home folder: `$HOME` if it is set and not empty, else that in /etc/passwd,
/// and for a user who is not in that file (as on a Mac) that from the C library, which may load
/// modules and open a socket.
///
/// The path is absolute and has no slash at its end, so that "/name" can be appended; for the root
/// folder it is "". A relative `$HOME` is taken relative to the working folder.
std::string homeFolder();

/// Returns a path relative to the working folder as an absolute one, without a slash at its end.
std::string absolutePath(std::string path);

enum class RunLock { held, heldByAnother, unknown };

/// Asks for the lock of which one process at a time holds one, on a file in this folder. It is held
/// until the process ends, however it ends.
///
/// A missing folder is made, for this user alone. The answer is `unknown`, with the system's error
/// in the slot, where the file cannot be made or its file system has no locks.
RunLock lockForRun(const std::string& folder, ORVErrorSlot* error);

/// Returns the string under `key` in the root dictionary of a property list; none when the bytes
/// are not such a list, or the value is absent or of another type. Linux reads the XML form only.
std::optional<std::string> propertyListString(std::string_view bytes, const std::string& key);

}  // namespace platform
