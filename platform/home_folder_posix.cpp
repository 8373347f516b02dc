#include "platform/home_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace platform {
namespace {

std::string homeInPasswordDatabase() {
    std::vector<char> buffer(16 * 1024);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_dir) {
        return {};
    }
    return found->pw_dir;
}

}  // namespace

std::string homeFolder() {
    const char* variable = std::getenv("HOME");
    std::string home = variable && *variable ? variable : homeInPasswordDatabase();
    if (!home.starts_with('/')) {
        std::error_code failure;
        const std::string workingFolder = std::filesystem::current_path(failure).string();
        home = workingFolder + '/' + home;
    }
    while (home.ends_with('/')) {
        home.pop_back();
    }
    return home;
}

}  // namespace platform
