#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/files.h"

/// A disk in memory with faults on demand. It counts its calls, so that a test can make each of
/// them fail. Paths are absolute, without "." and ".."; folders list their items in
/// the order of their names.
class MemoryFiles : public ORVFiles {
public:
    struct Item {
        bool isFolder = false;
        std::string content;
        std::uint64_t number = 0;
        ORVFileDate modifiedAt;
    };

    // Changes. Folders are made as needed. Every change has a later date than the one before; a
    // folder's date changes when a name in it is added or removed.

    void makeFolder(const std::string& path);
    void write(const std::string& path, std::string content);  ///< Keeps the file's number.
    void append(const std::string& path, const std::string& content);
    void replace(const std::string& path, std::string content);  ///< Gives it a new number.
    void rename(const std::string& from, const std::string& to);
    void remove(const std::string& path);  ///< Removes a folder with its content.
    void setDate(const std::string& path, std::int64_t seconds, std::int32_t nanoseconds = 0);

    const std::map<std::string, Item>& items() const { return items_; }

    /// The targets of links, by path. There are no other links.
    std::map<std::string, std::string> realPaths;

    // Faults.

    enum class Fault {
        error,         ///< The call fails with EIO, whichever call it is.
        unseenFolder,  ///< The names in a folder cannot be read.
        largerSize,    ///< The file is cut after its size was read.
        smallerSize,   ///< The file grows after its size was read.
        noSize,
        noDate,
        noFileNumber,
        shortRead,  ///< A read returns a single byte.
        earlyEnd,   ///< A read finds the end of a file that is followed as it grows.
    };

    int failingCall = 0;  ///< The number of the call with the fault, as in `calls`; 0 for none.
    Fault fault = Fault::error;
    std::size_t bytesPerRead = std::numeric_limits<std::size_t>::max();
    bool givesFileNumbers = true;  ///< Some file systems have none.
    bool tellsHoles = false;       ///< Whether every run of NULs is a hole.
    bool lacksMemory = false;      ///< Whether a read throws std::bad_alloc.
    std::set<std::string> locked;  ///< Files that may not be read.

    // Several threads may read at once.
    std::atomic<int> calls = 0;
    std::atomic<int> faults = 0;  ///< How many have happened: not every call can have every fault.
    std::atomic<int> opened = 0;

    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links links,
                                              ORVErrorSlot* error) override;
    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override;
    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override;
    bool itemExists(const std::string& path) override;
    std::optional<std::string> realPath(const std::string& path) override;
    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override;

private:
    class OpenFile;
    class OpenFolder;
    Item& make(const std::string& path);
    void touchFolderOf(const std::string& path);
    bool happens(Fault kind);
    const Item* beginCall(const std::string& path, ORVErrorSlot* error);

    std::map<std::string, Item> items_;
    ORVFileDate now_{1'000'000'000, 0};
    std::uint64_t lastNumber_ = 0;
};
