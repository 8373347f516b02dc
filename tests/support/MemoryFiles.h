#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "platform/clock.h"
#include "platform/files.h"
#include "text/bytes.h"

class ManualClock final : public ORVClock {
public:
    TimePoint now() const override { return time; }

    TimePoint time{std::chrono::hours(500'000)};
};

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

    void makeFolder(const std::string& path) {
        if (!items_.contains(path)) {
            make(path).isFolder = true;
        }
    }
    /// Keeps the file's number.
    void write(const std::string& path, std::string content) {
        Item& item = items_.contains(path) ? items_[path] : make(path);
        ++now_.nanoseconds;
        item.content = std::move(content);
        item.modifiedAt = now_;
    }
    /// Gives the file this date.
    void write(const std::string& path, std::string content, std::int64_t seconds) {
        write(path, std::move(content));
        setDate(path, seconds);
    }
    void append(const std::string& path, const std::string& content) {
        write(path, items_.contains(path) ? items_[path].content + content : content);
    }
    /// Gives the file a new number.
    void replace(const std::string& path, std::string content) {
        make(path).content = std::move(content);
    }
    void rename(const std::string& from, const std::string& to) {
        const Item item = items_[from];
        remove(from);
        make(to) = item;
    }
    /// Removes a folder with its content.
    void remove(const std::string& path) {
        std::erase_if(items_, [&](const auto& entry) {
            return entry.first == path || entry.first.starts_with(path + '/');
        });
        touchFolderOf(path);
    }
    void setDate(const std::string& path, std::int64_t seconds, std::int32_t nanoseconds = 0) {
        items_.at(path).modifiedAt = {seconds, nanoseconds};
    }

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
    std::set<std::string> locked;  ///< Items that may not be opened.

    // Several threads may read at once.
    std::atomic<int> calls = 0;
    std::atomic<int> faults = 0;  ///< How many have happened: not every call can have every fault.
    std::atomic<int> opened = 0;

    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links,
                                              ORVErrorSlot* error) override {
        const Item* item = beginOpening(path, error);
        if (item && !item->isFolder) {
            storeError(error, platform::posixError(ENOTDIR));
            return nullptr;
        }
        const bool isUnseen = happens(Fault::unseenFolder);
        return item ? std::make_unique<OpenFolder>(*this, path, isUnseen) : nullptr;
    }

    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override {
        constexpr std::uint64_t kFolderBytes = 4096;
        const Item* item = beginCall(path, error);
        if (!item) {
            return std::nullopt;
        }
        std::uint64_t size = item->isFolder ? kFolderBytes : item->content.size();
        size = (happens(Fault::largerSize) ? size + 100 : size) /
               (happens(Fault::smallerSize) ? 2 : 1);
        ORVFileAttributes attributes;
        if (!happens(Fault::noSize)) {
            attributes.size = size;
        }
        if (!happens(Fault::noDate)) {
            attributes.modifiedAt = item->modifiedAt;
        }
        if (!happens(Fault::noFileNumber) && givesFileNumbers) {
            attributes.fileIdentifier = item->number;
        }
        return attributes;
    }

    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        const Item* item = beginCall(path, nullptr);
        return item ? std::optional(item->modifiedAt) : std::nullopt;
    }

    bool itemExists(const std::string& path) override {
        return beginCall(path, nullptr) != nullptr;
    }

    std::optional<std::string> realPath(const std::string& path) override {
        ++calls;
        const std::string item = path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
        const auto link = realPaths.find(item);
        const std::string& real = link == realPaths.end() ? item : link->second;
        return !happens(Fault::error) && items_.contains(real) ? std::optional(real) : std::nullopt;
    }

    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override {
        const Item* item = beginOpening(path, error);
        opened += item ? 1 : 0;
        return item ? std::make_unique<OpenFile>(*this, path) : nullptr;
    }

private:
    class OpenFile final : public ORVOpenFile {
    public:
        OpenFile(MemoryFiles& disk, const std::string& path) : disk_(disk), path_(path) {}

        std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                          ORVErrorSlot* error) override {
            const Item* item = disk_.beginCall(path_, error);
            if (disk_.lacksMemory) {
                throw std::bad_alloc();
            }
            if (!item || item->isFolder) {
                storeErrorIfEmpty(error, platform::posixError(EISDIR));
                return std::nullopt;
            }
            // A file that is read as a whole never seems to end early: its date would not change
            // when its end appears.
            const bool isFollowed =
                !path_.ends_with("session_index.jsonl") && !path_.ends_with(".plist");
            if (offset >= item->content.size() || (isFollowed && disk_.happens(Fault::earlyEnd))) {
                return 0;
            }
            const std::size_t most = disk_.happens(Fault::shortRead) ? 1 : disk_.bytesPerRead;
            return item->content.copy(buffer, std::min(capacity, most), offset);
        }

        std::uint64_t nextData(std::uint64_t offset) override {
            const std::string& content = disk_.items_[path_].content;
            const std::size_t data = content.find_first_not_of('\0', offset);
            return !disk_.tellsHoles           ? offset
                   : data == std::string::npos ? std::numeric_limits<std::uint64_t>::max()
                                               : data;
        }

    private:
        MemoryFiles& disk_;
        const std::string path_;
    };

    class OpenFolder final : public ORVOpenFolder {
    public:
        OpenFolder(MemoryFiles& disk, const std::string& path, bool isUnseen)
            : disk_(disk), prefix_(path + '/'), isUnseen_(isUnseen) {}

        void readItems(const NameTest& wanted, const FileVisitor& visitFile,
                       const FolderVisitor& visitFolder, const FailureHandler& failed) override {
            if (isUnseen_) {
                failed("", platform::posixError(EIO));
                return;
            }
            for (auto at = disk_.items_.lower_bound(prefix_);
                 at != disk_.items_.end() && at->first.starts_with(prefix_); ++at) {
                const std::string name = at->first.substr(prefix_.size());
                if (name.starts_with('.') || name.find('/') != std::string::npos) {
                    continue;
                }
                if (at->second.isFolder) {
                    visitFolder(name.c_str());
                } else if (wanted(name)) {
                    visitFile(name.c_str(), statusOf(at->second));
                }
            }
        }

        std::optional<ORVItemStatus> statusOf(const char* path,
                                              ORVErrorSlot* error) const override {
            const bool isItself = std::string_view(path) == ".";
            const Item* item =
                disk_.beginCall(isItself ? text::folderOf(prefix_) : prefix_ + path, error);
            return item ? std::optional(statusOf(*item)) : std::nullopt;
        }

    private:
        ORVItemStatus statusOf(const Item& item) const {
            using Kind = ORVItemStatus::Kind;
            return {item.isFolder ? Kind::folder : Kind::file, item.modifiedAt, item.modifiedAt,
                    disk_.givesFileNumbers ? item.number : 0, item.content.size()};
        }

        MemoryFiles& disk_;
        const std::string prefix_;
        const bool isUnseen_;
    };

    Item& make(const std::string& path) {
        touchFolderOf(path);
        return items_[path] = Item{false, "", ++lastNumber_, now_};
    }

    void touchFolderOf(const std::string& path) {
        ++now_.nanoseconds;
        if (const std::string folder = text::folderOf(path); folder != path) {
            makeFolder(folder);
            items_[folder].modifiedAt = now_;
        }
    }

    /// Whether this fault must happen in the present call.
    bool happens(Fault kind) {
        const bool isNow = calls == failingCall && fault == kind;
        faults += isNow ? 1 : 0;
        return isNow;
    }

    /// Counts the call. Returns null, with an error, when it fails or when there is no item.
    const Item* beginCall(const std::string& path, ORVErrorSlot* error) {
        ++calls;
        const auto found = items_.find(path);
        const bool isFault = happens(Fault::error);
        if (isFault || found == items_.end()) {
            storeError(error, platform::posixError(isFault ? EIO : ENOENT));
            return nullptr;
        }
        return &found->second;
    }

    const Item* beginOpening(const std::string& path, ORVErrorSlot* error) {
        if (locked.contains(path)) {
            storeError(error, platform::posixError(EACCES));
            return nullptr;
        }
        return beginCall(path, error);
    }

    std::map<std::string, Item> items_;
    ORVFileDate now_{1'000'000'000, 0};
    std::uint64_t lastNumber_ = 0;
};
