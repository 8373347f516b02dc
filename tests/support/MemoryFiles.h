#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/files.h"

/// A disk in memory that does on demand what a disk does not. Counts the calls, so that a test can
/// let each of them go wrong. Paths are absolute and without "." and ".."; walks meet items in the
/// order of their paths.
class MemoryFiles final : public ORVFiles {
public:
    struct Item {
        bool isFolder = false;
        std::string content;
        std::uint64_t number = 0;
        ORVFileDate modifiedAt;
    };

    // What others do to the files. Folders are made as needed. Every change has a later date than
    // the one before; a folder's date changes when a name appears in it or goes.

    void makeFolder(const std::string& path);
    void write(const std::string& path, std::string content);  ///< In the same file.
    void append(const std::string& path, const std::string& content);
    void replace(const std::string& path, std::string content);  ///< By another file.
    void rename(const std::string& from, const std::string& to);
    void remove(const std::string& path);  ///< With what is in it.
    void setDate(const std::string& path, std::int64_t seconds, std::int32_t nanoseconds = 0);

    const std::map<std::string, Item>& items() const { return items_; }

    /// Where links lead, by path. There are no other links.
    std::map<std::string, std::string> realPaths;

    // What goes wrong.

    enum class Fault {
        error,         ///< The call fails with EIO, whichever it is.
        unseenFolder,  ///< A walk cannot enter the folders in which the files are.
        largerSize,    ///< The file was cut after its size was told.
        smallerSize,   ///< It grew.
        noSize,
        noDate,
        noFileNumber,
        shortRead,  ///< A read gives a single byte.
        earlyEnd,   ///< A read meets the end of a file that is followed as it grows.
    };

    int failingCall = 0;  ///< The call that goes wrong, counted in `calls`; 0 for none.
    Fault fault = Fault::error;
    std::size_t bytesPerRead = std::numeric_limits<std::size_t>::max();
    bool givesFileNumbers = true;  ///< Some file systems have none.

    int calls = 0;
    int faults = 0;  ///< That happened: not every fault can happen to every call.
    int opened = 0;

    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed) override;
    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override;
    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override;
    bool itemExists(const std::string& path) override;
    std::optional<std::string> realPath(const std::string& path) override;
    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override;

private:
    class OpenFile;
    Item& make(const std::string& path);
    void touchFolderOf(const std::string& path);
    bool happens(Fault kind);
    const Item* beginCall(const std::string& path, ORVErrorSlot* error);

    std::map<std::string, Item> items_;
    ORVFileDate now_{1'000'000'000, 0};
    std::uint64_t lastNumber_ = 0;
};
