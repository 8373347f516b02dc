// Tests: tests/ctl/brimletctl_test.cpp.

#include <unistd.h>

#include <array>

#include "platform/program.h"

namespace platform {

std::string programPath() {
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : "";
}

std::optional<MenuBarProgram> menuBarProgram(const std::string&) {
    return std::nullopt;
}

}  // namespace platform
