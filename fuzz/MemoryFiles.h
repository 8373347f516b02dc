#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/files.h"

/// A file system in memory, in which everything has a date and a number and may go wrong. Walks
/// meet items in the order of their paths. Paths are absolute and without "." and "..".
class MemoryFiles final : public ORVFiles {
public:
    struct Item {
        bool isFolder = false;
        std::string content;
        std::uint64_t number = 0;
        ORVFileDate modifiedAt;

        // What goes wrong with it.
        bool hasAttributes = true;
        bool canBeOpened = true;  ///< A folder: can be walked.
        bool givesNumber = true;
        bool givesSize = true;
        bool givesDate = true;        ///< Among the attributes. A walk always tells the date.
        std::uint64_t extraSize = 0;  ///< Bytes that the attributes tell of but nobody can read.
        /// Where reading begins to fail.
        std::uint64_t damagedFrom = std::numeric_limits<std::uint64_t>::max();

        std::uint64_t size() const { return content.size() + extraSize; }
    };

    ORVFileDate now;  ///< Given to whatever changes.
    std::size_t bytesPerRead =
        std::numeric_limits<std::size_t>::max();  ///< The most that one read gives.

    // A folder's date changes when a name appears in it or goes.

    void makeFolder(const std::string& path);                  ///< And those above it.
    void write(const std::string& path, std::string content);  ///< In the same file.
    void append(const std::string& path, const std::string& content);
    void replace(const std::string& path, std::string content);  ///< By another file.
    void rename(const std::string& from, const std::string& to);
    void remove(const std::string& path);  ///< A file.

    /// Null where nothing stands at the path.
    Item* find(const std::string& path);
    const std::map<std::string, Item>& items() const { return items_; }

    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed) override;
    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override;
    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override;
    bool itemExists(const std::string& path) override;
    std::optional<std::string> realPath(const std::string& path) override {
        return itemExists(path) ? std::optional(path) : std::nullopt;
    }
    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override;

private:
    Item& make(const std::string& path);
    void touchFolderOf(const std::string& path);

    std::map<std::string, Item> items_;
    std::uint64_t lastNumber_ = 0;
};
