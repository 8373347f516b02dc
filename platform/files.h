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
    std::optional<std::uint64_t> size;        ///< Bytes.
    std::optional<std::uint64_t> fileNumber;  ///< The inode; a different one is another file.
    std::optional<ORVFileDate> modifiedAt;
};

/// A regular file that a walk has found.
struct ORVWalkedFile {
    std::string path;  ///< The root's path and the names below it, bytes as the system gave them.
    ORVFileDate modifiedAt;
    std::uint64_t fileNumber = 0;  ///< The inode; 0 where the file system has none.
};

/// An open file. Closed when destroyed.
class ORVOpenFile {
public:
    virtual ~ORVOpenFile() = default;

    /// Reads at most `capacity` bytes from `offset` on. Returns how many were read, which may be
    /// fewer, and is 0 at the end of the file; none, with the system's error, when reading failed.
    virtual std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer,
                                              std::size_t capacity, ORVErrorSlot* error) = 0;
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
    virtual bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
                      const ErrorHandler& failed) = 0;

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

/// Returns the whole content of a file of at most `limitBytes`, and none when the file is larger or
/// cannot be read.
std::optional<std::string> contentsOfFile(ORVFiles& files, const std::string& path,
                                          std::size_t limitBytes);

}  // namespace platform
