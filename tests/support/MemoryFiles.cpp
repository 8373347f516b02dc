#include "tests/support/MemoryFiles.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "text/bytes.h"

class MemoryFiles::OpenFile final : public ORVOpenFile {
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
        // A file that is read as a whole never seems to end early: its date would not change when
        // its end appears.
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

class MemoryFiles::OpenFolder final : public ORVOpenFolder {
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

    std::optional<ORVItemStatus> statusOf(const char* path, ORVErrorSlot* error) const override {
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

MemoryFiles::Item& MemoryFiles::make(const std::string& path) {
    touchFolderOf(path);
    return items_[path] = Item{false, "", ++lastNumber_, now_};
}

void MemoryFiles::touchFolderOf(const std::string& path) {
    ++now_.nanoseconds;
    if (const std::string folder = text::folderOf(path); folder != path) {
        makeFolder(folder);
        items_[folder].modifiedAt = now_;
    }
}

void MemoryFiles::makeFolder(const std::string& path) {
    if (!items_.contains(path)) {
        make(path).isFolder = true;
    }
}

void MemoryFiles::write(const std::string& path, std::string content) {
    Item& item = items_.contains(path) ? items_[path] : make(path);
    ++now_.nanoseconds;
    item.content = std::move(content);
    item.modifiedAt = now_;
}

void MemoryFiles::append(const std::string& path, const std::string& content) {
    write(path, items_.contains(path) ? items_[path].content + content : content);
}

void MemoryFiles::replace(const std::string& path, std::string content) {
    make(path).content = std::move(content);
}

void MemoryFiles::rename(const std::string& from, const std::string& to) {
    const Item item = items_[from];
    remove(from);
    make(to) = item;
}

void MemoryFiles::remove(const std::string& path) {
    std::erase_if(items_, [&](const auto& entry) {
        return entry.first == path || entry.first.starts_with(path + '/');
    });
    touchFolderOf(path);
}

void MemoryFiles::setDate(const std::string& path, std::int64_t seconds, std::int32_t nanoseconds) {
    items_.at(path).modifiedAt = {seconds, nanoseconds};
}

/// Whether this fault must happen in the present call.
bool MemoryFiles::happens(Fault kind) {
    const bool isNow = calls == failingCall && fault == kind;
    faults += isNow ? 1 : 0;
    return isNow;
}

/// Counts the call. Returns null, with an error, when it fails or when there is no item.
const MemoryFiles::Item* MemoryFiles::beginCall(const std::string& path, ORVErrorSlot* error) {
    ++calls;
    const auto found = items_.find(path);
    const bool isFault = happens(Fault::error);
    if (isFault || found == items_.end()) {
        storeError(error, platform::posixError(isFault ? EIO : ENOENT));
        return nullptr;
    }
    return &found->second;
}

std::unique_ptr<ORVOpenFolder> MemoryFiles::openFolder(const std::string& path, Links,
                                                       ORVErrorSlot* error) {
    const Item* item = beginCall(path, error);
    if (item && !item->isFolder) {
        storeError(error, platform::posixError(ENOTDIR));
        return nullptr;
    }
    const bool isUnseen = happens(Fault::unseenFolder);
    return item ? std::make_unique<OpenFolder>(*this, path, isUnseen) : nullptr;
}

std::optional<ORVFileAttributes> MemoryFiles::attributesOfItem(const std::string& path,
                                                               ORVErrorSlot* error) {
    constexpr std::uint64_t kFolderBytes = 4096;
    const Item* item = beginCall(path, error);
    if (!item) {
        return std::nullopt;
    }
    std::uint64_t size = item->isFolder ? kFolderBytes : item->content.size();
    size = (happens(Fault::largerSize) ? size + 100 : size) / (happens(Fault::smallerSize) ? 2 : 1);
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

std::optional<ORVFileDate> MemoryFiles::contentModificationDate(const std::string& path) {
    const Item* item = beginCall(path, nullptr);
    return item ? std::optional(item->modifiedAt) : std::nullopt;
}

bool MemoryFiles::itemExists(const std::string& path) {
    return beginCall(path, nullptr) != nullptr;
}

std::optional<std::string> MemoryFiles::realPath(const std::string& path) {
    ++calls;
    const std::string item = path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
    const auto link = realPaths.find(item);
    const std::string& real = link == realPaths.end() ? item : link->second;
    return !happens(Fault::error) && items_.contains(real) ? std::optional(real) : std::nullopt;
}

std::unique_ptr<ORVOpenFile> MemoryFiles::openForReading(const std::string& path,
                                                         ORVErrorSlot* error) {
    if (locked.contains(path)) {
        storeError(error, platform::posixError(EACCES));
        return nullptr;
    }
    const Item* item = beginCall(path, error);
    opened += item ? 1 : 0;
    return item ? std::make_unique<OpenFile>(*this, path) : nullptr;
}
