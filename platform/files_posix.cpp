// The file system of Linux and macOS. A path may name any kind of item, and may name another item
// at the next system call. Therefore nothing here waits for a FIFO, and a walk enters no link that
// it finds. Tests: tests/platform/files_test.cpp, over real folders.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "platform/descriptors.h"
#include "platform/files.h"

namespace platform {
namespace {

/// Dates of an item.
struct Dates {
    ORVFileDate modified;
    ORVFileDate changed;  ///< In any way: content, name, place or rights.
};

/// Returns the dates, which have other names in macOS's `struct stat`.
template <typename Status>
Dates datesOf(const Status& status) {
    const auto date = [](const timespec& time) {
        return ORVFileDate{time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)};
    };
    if constexpr (requires { status.st_mtimespec; }) {
        return {date(status.st_mtimespec), date(status.st_ctimespec)};
    } else {
        return {date(status.st_mtim), date(status.st_ctim)};
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

    std::uint64_t nextData(std::uint64_t offset) override {
        const off_t data = lseek(descriptor_.number(), static_cast<off_t>(offset), SEEK_DATA);
        if (data < 0 && errno == ENXIO) {
            return std::numeric_limits<std::uint64_t>::max();
        }
        return data < 0 ? offset : static_cast<std::uint64_t>(data);
    }

private:
    FileDescriptor descriptor_;
};

ORVItemStatus itemStatus(const struct stat& status) {
    using Kind = ORVItemStatus::Kind;
    const Kind kind = hasHiddenFlag(status)     ? Kind::other
                      : S_ISREG(status.st_mode) ? Kind::file
                      : S_ISDIR(status.st_mode) ? Kind::folder
                                                : Kind::other;
    const auto [modified, changed] = datesOf(status);
    return {kind, modified, changed, static_cast<std::uint64_t>(status.st_ino),
            static_cast<std::uint64_t>(status.st_size)};
}

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

class PosixOpenFolder final : public ORVOpenFolder {
public:
    explicit PosixOpenFolder(FileDescriptor descriptor)
        : number_(descriptor.number()), descriptor_(std::move(descriptor)) {}

    void readItems(const NameTest& wanted, const FileVisitor& visitFile,
                   const FolderVisitor& visitFolder, const FailureHandler& failed) override {
        if (!beginReading()) {
            failed("", posixError(errno));
            return;
        }
        while (const dirent* entry = nextEntry()) {
            if (entry->d_name[0] != '.') {
                visitEntry(*entry, wanted(entry->d_name), visitFile, visitFolder, failed);
            }
        }
        if (errno != 0) {
            failed("", posixError(errno));
        }
    }

    std::optional<ORVItemStatus> statusOf(const char* path, ORVErrorSlot* error) const override {
        struct stat status;
        if (uninterrupted([&] { return fstatat(number_, path, &status, AT_SYMLINK_NOFOLLOW); }) !=
            0) {
            storeError(error, posixError(errno));
            return std::nullopt;
        }
        return itemStatus(status);
    }

private:
    /// A list of names takes memory, which who asks only for single items does without.
    bool beginReading() {
        if (directory_) {
            rewinddir(directory_.get());
        } else if (directory_.reset(fdopendir(number_)); directory_) {
            descriptor_.release();
        } else if (errno == ENOMEM) {
            throw std::bad_alloc();  // The folder is not to blame.
        }
        return directory_ != nullptr;
    }

    /// Returns null at the end, where errno is 0, and when reading failed.
    const dirent* nextEntry() {
        const dirent* entry = nullptr;
        do {
            errno = 0;
            entry = readdir(directory_.get());
        } while (!entry && errno == EINTR);
        return entry;
    }

    void visitEntry(const dirent& entry, bool isWanted, const FileVisitor& visitFile,
                    const FolderVisitor& visitFolder, const FailureHandler& failed) const {
        if (entry.d_type != DT_UNKNOWN && !hiddenFlagExists<struct stat>()) {
            if (entry.d_type == DT_DIR) {
                visitFolder(entry.d_name);
            }
            if (entry.d_type != DT_REG || !isWanted) {
                return;
            }
        }
        ORVErrorSlot error;
        const auto status = statusOf(entry.d_name, &error);
        if (!status && error->code != ENOENT) {
            failed(entry.d_name, std::move(*error));
        } else if (status && status->kind == ORVItemStatus::Kind::folder) {
            visitFolder(entry.d_name);
        } else if (status && status->kind == ORVItemStatus::Kind::file && isWanted) {
            visitFile(entry.d_name, *status);
        }
    }

    const int number_;
    FileDescriptor descriptor_;  ///< Owns the number until the list of names does.
    Directory directory_;
};

class PosixFiles final : public ORVFiles {
public:
    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links links,
                                              ORVErrorSlot* error) override {
        const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK |
                          (links == Links::followed ? 0 : O_NOFOLLOW);
        FileDescriptor descriptor(uninterrupted([&] { return open(path.c_str(), flags); }));
        if (descriptor.number() < 0) {
            storeError(error, posixError(errno));
            return nullptr;
        }
        return std::make_unique<PosixOpenFolder>(std::move(descriptor));
    }

    std::unique_ptr<ORVFolderWatch> makeFolderWatch() override {
        return platform::makeFolderWatch();
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
                                 datesOf(status).modified};
    }

    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        struct stat status;
        if (uninterrupted([&] { return stat(path.c_str(), &status); }) != 0) {
            return std::nullopt;
        }
        return datesOf(status).modified;
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
