#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ORVError.h"

/// A file's modification date, exactly as the file system gave it: Unix time, UTC. It is two
/// integers, because an inode may hold any 64-bit number of seconds, which must neither overflow
/// nor be rounded.
struct ORVFileDate {
    std::int64_t seconds = 0;
    std::int32_t nanoseconds = 0;  ///< 0 to 999 999 999.
    auto operator<=>(const ORVFileDate&) const = default;
};

/// The attributes of one item. An attribute that the file system does not have is absent.
struct ORVFileAttributes {
    std::optional<std::uint64_t> size;            ///< Bytes.
    std::optional<std::uint64_t> fileIdentifier;  ///< The inode; another one is another file.
    std::optional<ORVFileDate> modifiedAt;
};

/// A regular file that a walk has found.
struct ORVWalkedFile {
    std::string path;  ///< The root's path and the names below it, bytes as the system gave them.
    ORVFileDate modifiedAt;
    std::uint64_t fileIdentifier = 0;  ///< The inode; 0 where the file system has none.
    std::uint64_t size = 0;            ///< Bytes.
    bool operator==(const ORVWalkedFile&) const = default;
};

/// What the file system tells of one item; of a symbolic link, what it tells of the link itself.
struct ORVItemStatus {
    enum class Kind { file, folder, other };
    /// A file is a regular one. What a flag of macOS hides is `other`.
    Kind kind = Kind::other;
    ORVFileDate modifiedAt;
    /// When anything of the item changed: content, name, place or rights. Nobody can set it.
    ORVFileDate changedAt;
    std::uint64_t fileIdentifier = 0;  ///< The inode.
    std::uint64_t size = 0;            ///< Bytes.
    bool operator==(const ORVItemStatus&) const = default;
};

/// A folder that is open for looking at its items. Closed when destroyed.
class ORVOpenFolder {
public:
    using NameTest = std::function<bool(std::string_view name)>;
    /// A file's or folder's name, which ends in a NUL, and for a file its status.
    using FileVisitor = std::function<void(const char* name, const ORVItemStatus& status)>;
    using FolderVisitor = std::function<void(const char* name)>;
    /// An item that cannot be looked at, or "" when the list of names cannot be read further.
    using FailureHandler = std::function<void(const std::string& name, ORVError&&)>;

    virtual ~ORVOpenFolder() = default;

    /// Visits the regular files with names that `wanted` accepts, and the folders. Hidden items and
    /// symbolic links are passed over, and so is what is removed meanwhile.
    virtual void readItems(const NameTest& wanted, const FileVisitor& visitFile,
                           const FolderVisitor& visitFolder, const FailureHandler& failed) = 0;

    /// Returns the status of the item with this path below the folder. Returns none, with the
    /// system's error, when it cannot be read.
    virtual std::optional<ORVItemStatus> statusOf(const char* path, ORVErrorSlot* error) const = 0;
};

/// Tells which files were written, as far as the system does: not every system, not every file
/// system, and not for any number of folders. Its user asks for dates all the same, only more
/// rarely.
class ORVFolderWatch {
public:
    using ChangeVisitor = std::function<void(const std::string& path)>;

    virtual ~ORVFolderWatch() = default;

    /// Begins to watch the files in a folder, also when the path was watched and may hold another
    /// folder. Returns false when their changes will not be told.
    virtual bool watch(const std::string& folder) = 0;

    virtual void forget(const std::string& folder) = 0;

    /// Visits the paths of items that have changed since the last call. Returns false when some
    /// changes were lost: nothing is watched any more.
    virtual bool visitChanges(const ChangeVisitor& visit) = 0;
};

/// An open file. Closed when destroyed.
class ORVOpenFile {
public:
    virtual ~ORVOpenFile() = default;

    /// Reads at most `capacity` bytes from `offset` on. Returns how many were read, which may be
    /// fewer, and is 0 at the end of the file; none, with the system's error, when reading failed.
    virtual std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer,
                                              std::size_t capacity, ORVErrorSlot* error) = 0;

    /// Returns where the first byte at `offset` or behind it stands that does not belong to a hole,
    /// whose bytes were never written and read as NULs; the largest number when all the rest is
    /// one. Returns `offset` itself where the system does not tell.
    virtual std::uint64_t nextData(std::uint64_t offset) { return offset; }
};

/// Everything that Brimlet asks of the file system. Nothing here writes.
///
/// Paths are bytes without an encoding. Several threads may use the implementation that makeFiles
/// returns: the refresh queue, the UI thread, and threads that read many files at once. Tests
/// replace it to bring about faults.
class ORVFiles {
public:
    using NameTest = std::function<bool(std::string_view name)>;
    using FileVisitor = std::function<void(ORVWalkedFile&&)>;
    using ErrorHandler = std::function<void(ORVError&&)>;

    virtual ~ORVFiles() = default;

    /// Visits every regular file below `root`, to any depth, whose name `wanted` accepts and whose
    /// attributes can be read. Hidden files are passed over, hidden folders not entered, symbolic
    /// links neither visited nor followed (but the root itself may be one). Each folder that cannot
    /// be read is reported to `failed`, and the walk goes on. Returns false when the root itself
    /// cannot be opened; that is reported, too.
    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed);

    /// Opens a folder; when links are refused, none that is reached through a link at the end of
    /// its path. Returns null, with the system's error, when it cannot be opened.
    enum class Links { followed, refused };
    virtual std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links links,
                                                      ORVErrorSlot* error) = 0;

    /// Returns a watch without folders; null where the system has none.
    virtual std::unique_ptr<ORVFolderWatch> makeFolderWatch() { return nullptr; }

    /// Returns the attributes of the item: of a symbolic link, those of the link itself. Returns
    /// none, with the system's error, when they cannot be read.
    virtual std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                              ORVErrorSlot* error) = 0;

    /// Returns the modification date of the item, symbolic links followed; none when it cannot be
    /// read.
    virtual std::optional<ORVFileDate> contentModificationDate(const std::string& path) = 0;

    /// Whether there is an item at the path, symbolic links followed.
    virtual bool itemExists(const std::string& path) = 0;

    /// Returns the item's absolute path without links, "." and ".."; none when there is no item, or
    /// when it may not be looked up.
    virtual std::optional<std::string> realPath(const std::string& path) = 0;

    /// Opens an item of any kind for reading, and never waits. Returns null, with the system's
    /// error, when it cannot be opened.
    virtual std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                        ORVErrorSlot* error) = 0;
};

namespace platform {

/// Returns the file system of this machine.
std::unique_ptr<ORVFiles> makeFiles();

/// Returns a watch of this system; null where there is none.
std::unique_ptr<ORVFolderWatch> makeFolderWatch();

/// Returns the whole content of a file of at most `limitBytes`. Returns none, with the system's
/// error, when the file is larger or cannot be read.
std::optional<std::string> contentsOfFile(ORVFiles& files, const std::string& path,
                                          std::size_t limitBytes, ORVErrorSlot* error);

}  // namespace platform
