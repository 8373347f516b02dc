// The file system of Linux and macOS. A path may name any kind of item, and may name another item
// at the next system call. Therefore nothing here waits for a FIFO, and a walk enters no link that
// it finds. Tests: tests/platform/files_test.cpp, over real folders.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace platform {
namespace {

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Returns the modification date, which has another name in macOS's `struct stat`.
template <typename Status>
ORVFileDate modificationDate(const Status& status) {
    if constexpr (requires { status.st_mtimespec; }) {
        return {status.st_mtimespec.tv_sec, static_cast<std::int32_t>(status.st_mtimespec.tv_nsec)};
    } else {
        return {status.st_mtim.tv_sec, static_cast<std::int32_t>(status.st_mtim.tv_nsec)};
    }
}

/// Whether this is macOS, where a flag can hide an item as a name with a dot does. A walk there
/// needs the attributes of every item.
template <typename Status>
constexpr bool hiddenFlagExists() {
    return requires(Status status) {
        status.st_flags;
    };
}

template <typename Status>
bool hasHiddenFlag(const Status& status) {
    constexpr auto kHidden = 0x8000U;  // UF_HIDDEN, which Linux does not have.
    if constexpr (hiddenFlagExists<Status>()) {
        return (status.st_flags & kHidden) != 0;
    } else {
        return false;
    }
}

class FileDescriptor {
public:
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor() {
        if (number_ >= 0) {
            close(number_);
        }
    }
    int number() const { return number_; }
    int release() { return std::exchange(number_, -1); }

private:
    int number_;
};

class PosixOpenFile final : public ORVOpenFile {
public:
    explicit PosixOpenFile(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                      ORVErrorSlot* error) override {
        const auto count = uninterrupted([&] {
            return pread(descriptor_.number(), buffer, capacity, static_cast<off_t>(offset));
        });
        if (count < 0) {
            storeError(error, posixError(errno));
            return std::nullopt;
        }
        return static_cast<std::size_t>(count);
    }

private:
    FileDescriptor descriptor_;
};

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

Directory openDirectory(const std::string& path, bool followLink) {
    const int flags =
        O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | (followLink ? 0 : O_NOFOLLOW);
    FileDescriptor descriptor(uninterrupted([&] { return open(path.c_str(), flags); }));
    if (descriptor.number() < 0) {
        return nullptr;
    }
    Directory directory(fdopendir(descriptor.number()));
    if (directory) {
        descriptor.release();
    }
    return directory;
}

/// One walk. Folders wait in a list and are opened by path, one at a time, so that only one
/// descriptor is open and nothing recurses. A folder whose path is too long for the system counts
/// as one that cannot be read.
class Walk {
public:
    Walk(const ORVFiles::NameTest& wanted, const ORVFiles::FileVisitor& visit,
         const ORVFiles::ErrorHandler& failed)
        : wanted_(wanted), visit_(visit), failed_(failed) {}

    bool run(const std::string& root) {
        const bool started = readFolder(root, true);
        while (!waitingFolders_.empty()) {
            const std::string folder = std::move(waitingFolders_.back());
            waitingFolders_.pop_back();
            readFolder(folder, false);
        }
        return started;
    }

private:
    bool readFolder(const std::string& path, bool isRoot) {
        const Directory directory = openDirectory(path, isRoot);
        if (!directory) {
            failed_(posixError(errno));
            return false;
        }
        const std::string prefix = path.ends_with('/') ? path : path + '/';
        errno = 0;
        while (const dirent* entry = readdir(directory.get())) {
            visitEntry(directory.get(), prefix, *entry);
            errno = 0;
        }
        if (errno != 0) {
            failed_(posixError(errno));
        }
        return true;
    }

    void visitEntry(DIR* directory, const std::string& prefix, const dirent& entry) {
        const std::string_view name = entry.d_name;
        if (name.starts_with('.')) {
            return;
        }
        const bool isWanted = wanted_(name);
        const bool kindIsKnown = entry.d_type != DT_UNKNOWN && !hiddenFlagExists<struct stat>();
        if (kindIsKnown && entry.d_type == DT_DIR) {
            waitingFolders_.push_back(prefix + entry.d_name);
            return;
        }
        if (kindIsKnown && !(entry.d_type == DT_REG && isWanted)) {
            return;
        }
        struct stat status;
        const int result = uninterrupted(
            [&] { return fstatat(dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW); });
        if (result != 0 || hasHiddenFlag(status)) {
            return;  // The item was removed meanwhile, or it is hidden.
        }
        if (S_ISDIR(status.st_mode)) {
            waitingFolders_.push_back(prefix + entry.d_name);
        } else if (S_ISREG(status.st_mode) && isWanted) {
            visit_({prefix + entry.d_name, modificationDate(status),
                    static_cast<std::uint64_t>(status.st_ino)});
        }
    }

    const ORVFiles::NameTest& wanted_;
    const ORVFiles::FileVisitor& visit_;
    const ORVFiles::ErrorHandler& failed_;
    std::vector<std::string> waitingFolders_;
};

class PosixFiles final : public ORVFiles {
public:
    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed) override {
        return Walk(wanted, visit, failed).run(root);
    }

    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override {
        struct stat status;
        if (uninterrupted([&] { return lstat(path.c_str(), &status); }) != 0) {
            storeError(error, posixError(errno));
            return std::nullopt;
        }
        return ORVFileAttributes{static_cast<std::uint64_t>(status.st_size),
                                 static_cast<std::uint64_t>(status.st_ino),
                                 modificationDate(status)};
    }

    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        struct stat status;
        if (uninterrupted([&] { return stat(path.c_str(), &status); }) != 0) {
            return std::nullopt;
        }
        return modificationDate(status);
    }

    bool itemExists(const std::string& path) override {
        struct stat status;
        return uninterrupted([&] { return stat(path.c_str(), &status); }) == 0;
    }

    std::optional<std::string> realPath(const std::string& path) override {
        if (path.find('\0') != std::string::npos) {
            return std::nullopt;  // The system would take the part before it for the path.
        }
        const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                               &std::free);
        return real ? std::optional<std::string>(real.get()) : std::nullopt;
    }

    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override {
        // Without O_NONBLOCK, opening a FIFO would wait for a writer.
        const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
        FileDescriptor descriptor(uninterrupted([&] { return open(path.c_str(), flags); }));
        if (descriptor.number() < 0) {
            storeError(error, posixError(errno));
            return nullptr;
        }
        return std::make_unique<PosixOpenFile>(std::move(descriptor));
    }
};

}  // namespace

std::unique_ptr<ORVFiles> makeFiles() {
    return std::make_unique<PosixFiles>();
}

}  // namespace platform
