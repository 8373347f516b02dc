#include "platform/home_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace platform {
namespace {

std::string workingFolder() {
    const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
    return folder ? folder.get() : "";
}

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
        home = workingFolder() + '/' + home;
    }
    while (home.ends_with('/')) {
        home.pop_back();
    }
    return home;
}

}  // namespace platform
