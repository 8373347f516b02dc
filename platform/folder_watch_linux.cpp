// Watches folders with inotify. It tells what this machine writes, but not what other machines
// write on a shared file system. Therefore only file systems that are known to be local are
// watched. Tests: tests/platform/linux_test.cpp, tests/sessions/session_tree_test.cpp.

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <unordered_map>

#include "platform/descriptors.h"
#include "platform/files.h"

namespace platform {
namespace {

/// All programs of a user share a limit of at least 8,192.
constexpr std::size_t kMostFolders = 2'000;

/// More changes than these in one go, which are as many as the system keeps at least twice over,
/// count as lost: whoever writes so fast could keep us reading for ever.
constexpr int kMostReads = 64;
constexpr std::size_t kReadBytes = 16 * 1024;

bool isLocal(const std::string& folder) {
    constexpr std::uint32_t kXFS = 0x58465342;  // Magic numbers that not every header has.
    constexpr std::uint32_t kZFS = 0x2FC12FC1;
    constexpr std::uint32_t kBcachefs = 0xCA451A4E;
    constexpr std::uint32_t kLocal[] = {
        EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC, kXFS, kZFS, kBcachefs};
    struct statfs system;
    return statfs(folder.c_str(), &system) == 0 &&
           std::find(std::begin(kLocal), std::end(kLocal),
                     static_cast<std::uint32_t>(system.f_type)) != std::end(kLocal);
}

class InotifyWatch final : public ORVFolderWatch {
public:
    bool watch(const std::string& folder) override {
        if (descriptor_.number() < 0) {
            descriptor_ = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        }
        if (descriptor_.number() < 0 || numbers_.size() >= kMostFolders || !isLocal(folder)) {
            return false;
        }
        const int number = inotify_add_watch(descriptor_.number(), folder.c_str(),
                                             IN_MODIFY | IN_ATTRIB | IN_ONLYDIR);
        if (number < 0) {
            return false;
        }
        // The path may have been that of another folder, and the folder may have had another path.
        const auto known = numbers_.find(folder);
        if (known != numbers_.end() && known->second != number) {
            forget(folder);
        }
        folders_[number] = folder;
        numbers_[folder] = number;
        return true;
    }

    void forget(const std::string& folder) override {
        const auto known = numbers_.find(folder);
        if (known == numbers_.end()) {
            return;
        }
        const auto path = folders_.find(known->second);
        if (path != folders_.end() && path->second == folder) {
            inotify_rm_watch(descriptor_.number(), known->second);
            folders_.erase(path);
        }
        numbers_.erase(known);
    }

    bool visitChanges(const ChangeVisitor& visit) override {
        alignas(inotify_event) char buffer[kReadBytes];
        for (int reads = 0; descriptor_.number() >= 0 && reads < kMostReads; ++reads) {
            const ssize_t count = read(descriptor_.number(), buffer, sizeof buffer);
            if (count < 0 && errno == EAGAIN) {
                return true;
            }
            if (count <= 0 || !visitEvents({buffer, static_cast<std::size_t>(count)}, visit)) {
                break;
            }
        }
        reset();
        return false;
    }

private:
    /// Returns false when the system says that changes were lost.
    bool visitEvents(std::string_view bytes, const ChangeVisitor& visit) {
        while (bytes.size() >= sizeof(inotify_event)) {
            inotify_event event;
            std::memcpy(&event, bytes.data(), sizeof event);
            const char* const name = bytes.data() + sizeof event;
            bytes.remove_prefix(std::min(bytes.size(), sizeof event + event.len));
            if ((event.mask & IN_Q_OVERFLOW) != 0) {
                return false;
            }
            const auto folder = folders_.find(event.wd);
            if (folder != folders_.end() && event.len > 0) {
                visit(folder->second + '/' + name);
            }
        }
        return true;
    }

    void reset() {
        descriptor_ = FileDescriptor();
        folders_.clear();
        numbers_.clear();
    }

    FileDescriptor descriptor_;
    std::unordered_map<int, std::string> folders_;  ///< By the number of the watch.
    std::unordered_map<std::string, int> numbers_;  ///< By the folder's path.
};

}  // namespace

std::unique_ptr<ORVFolderWatch> makeFolderWatch() {
    return std::make_unique<InotifyWatch>();
}

}  // namespace platform
