#pragma once

#include <optional>
#include <string>

/// This program: where it is, and what it does for itself when it begins.
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

}  // namespace platform
