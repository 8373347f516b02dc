// Looks up the home folder, if possible without a name service, which may open a socket, and lets
// one process of a program run at a time. Tests: tests/platform/linux_test.cpp,
// tests/platform/run_lock_test.cpp.

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include "platform/descriptors.h"
#include "platform/files.h"
#include "platform/program.h"

namespace platform {
namespace {

std::string workingFolder() {
    const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
    return folder ? folder.get() : "";
}

/// Returns a field of a line of the password file, "name:password:user:group:comment:home:shell".
/// Fields are counted from 0.
std::string_view field(std::string_view line, int number) {
    for (; number > 0; --number) {
        const std::size_t colon = line.find(':');
        line = colon == std::string_view::npos ? "" : line.substr(colon + 1);
    }
    return line.substr(0, line.find(':'));
}

/// Returns the home folder that the file names, and "" when the user is not in it.
std::string homeInPasswordFile() {
    constexpr std::size_t kLimitBytes = 1024 * 1024;
    const auto files = makeFiles();
    const std::string user = std::to_string(getuid());
    const std::string contents =
        contentsOfFile(*files, "/etc/passwd", kLimitBytes, nullptr).value_or("");
    std::string_view rest = contents;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (field(line, 2) == user) {
            return std::string(field(line, 5));
        }
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return {};
}

/// Returns the home folder that the C library finds, and "" when it finds none.
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

/// Failures are left to the call that opens the file.
void makeFolders(const std::string& folder) {
    std::size_t end = 0;
    while (end != folder.npos) {
        end = folder.find('/', end + 1);
        mkdir(folder.substr(0, end).c_str(), S_IRWXU);
    }
}

}  // namespace

std::string homeFolder() {
    const char* variable = std::getenv("HOME");
    std::string home = variable && *variable ? variable : homeInPasswordFile();
    if (home.empty()) {
        home = homeInPasswordDatabase();
    }
    home = absolutePath(std::move(home));
    return home == "/" ? "" : home;
}

std::string absolutePath(std::string path) {
    if (!path.starts_with('/')) {
        path = workingFolder() + '/' + path;
    }
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

RunLock lockForRun(const std::string& folder, ORVErrorSlot* error) {
    makeFolders(folder);
    const std::string path = folder + "/running.lock";
    FileDescriptor file(
        open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (file.number() < 0 ||
        uninterrupted([&] { return flock(file.number(), LOCK_EX | LOCK_NB); }) != 0) {
        const int reason = errno;
        storeError(error, posixError(reason));
        return reason == EWOULDBLOCK ? RunLock::heldByAnother : RunLock::unknown;
    }
    file.release();  // It stays open, since closing it would give up the lock.
    return RunLock::held;
}

}  // namespace platform
