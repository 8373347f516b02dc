// What the system tells of running programs, without AppKit, which would start a connection to the
// screen. Tests: tests/platform/program_test.cpp,
// tests/ctl/brimletctl_test.cpp.

#include <fcntl.h>
#include <libproc.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "platform/files.h"
#include "platform/program.h"

namespace platform {
namespace {

std::string pathOfProcess(pid_t process) {
    std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
    const int length = proc_pidpath(process, path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : "";
}

bool isOwn(pid_t process) {
    proc_bsdshortinfo info{};
    return proc_pidinfo(process, PROC_PIDT_SHORTBSDINFO, 0, &info, sizeof info) == sizeof info &&
           info.pbsi_uid == getuid();
}

/// Returns the bundles of this user's processes that show the status item, one for each process.
std::vector<std::string> runningBundles() {
    constexpr std::string_view kProgram = "/Contents/MacOS/Brimlet";
    constexpr std::size_t kRoomForStarts = 64;
    std::vector<pid_t> processes(static_cast<std::size_t>(proc_listallpids(nullptr, 0)) +
                                 kRoomForStarts);
    const int count =
        proc_listallpids(processes.data(), static_cast<int>(processes.size() * sizeof(pid_t)));
    processes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    std::vector<std::string> bundles;
    for (const pid_t process : processes) {
        std::string path = pathOfProcess(process);
        if (path.ends_with(kProgram) && isOwn(process)) {
            path.resize(path.size() - kProgram.size());
            bundles.push_back(std::move(path));
        }
    }
    return bundles;
}

std::string versionOf(const std::string& bundle) {
    constexpr std::size_t kLimit = 1 << 20;
    const auto list =
        contentsOfFile(*makeFiles(), bundle + "/Contents/Info.plist", kLimit, nullptr);
    return (list ? propertyListString(*list, "CFBundleShortVersionString") : std::nullopt)
        .value_or("unknown");
}

bool isQuarantined(const std::string& bundle) {
    return getxattr(bundle.c_str(), "com.apple.quarantine", nullptr, 0, 0, 0) >= 0;
}

}  // namespace

std::string programPath() {
    return pathOfProcess(getpid());
}

std::optional<MenuBarProgram> menuBarProgram(const std::string& ownVersion) {
    const std::vector<std::string> bundles = runningBundles();
    if (bundles.empty()) {
        return MenuBarProgram{std::nullopt, false, "Brimlet.app does not run"};
    }
    const std::string version = versionOf(bundles.front());
    std::string text = "version " + version + " runs";
    if (bundles.size() > 1) {
        text += ", " + std::to_string(bundles.size()) + " times, the last from " + bundles.back();
    }
    if (version != ownVersion) {
        text += "; brimletctl has another version, " + ownVersion;
    }
    if (isQuarantined(bundles.front())) {
        text += "; it is in quarantine, and macOS may refuse to start it";
    }
    if (std::getenv("CODEX_HOME")) {
        text += "; it reads ~/.codex, since applications do not get CODEX_HOME";
    }
    text += "; if it is not shown, allow it in System Settings, Menu Bar";
    return MenuBarProgram{bundles.front(), true, text};
}

/// What the system's libraries have opened by now would not outlive a start of another program, and
/// stays.
void closeInheritedDescriptors() {
    constexpr int kMost = 64 * 1024;
    for (int i = STDERR_FILENO + 1; i < std::min(getdtablesize(), kMost); ++i) {
        if (fcntl(i, F_GETFD) == 0) {
            close(i);
        }
    }
}

/// The system's allocator returns freed memory by itself.
void returnFreedMemory() {}

}  // namespace platform
