#include "tests/support/MemoryFiles.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#include "text/paths.h"

class MemoryFiles::OpenFile final : public ORVOpenFile {
public:
    OpenFile(MemoryFiles& owner, const Item& item, bool isFollowed)
        : owner_(owner), item_(item), isFollowed_(isFollowed) {}

    std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                      ORVErrorSlot* error) override {
        ++owner_.calls;
        if (owner_.fails(&item_, error)) {
            return std::nullopt;
        }
        if (item_.isFolder) {
            storeError(error, platform::posixError(EISDIR));
            return std::nullopt;
        }
        if (offset >= item_.content.size() || (isFollowed_ && owner_.happens(Fault::earlyEnd))) {
            return 0;
        }
        const bool isShort = owner_.happens(Fault::shortRead);
        return item_.content.copy(buffer, isShort ? 1 : std::min(capacity, owner_.bytesPerRead),
                                  offset);
    }

private:
    MemoryFiles& owner_;
    const Item& item_;
    const bool isFollowed_;
};

const MemoryFiles::Item* MemoryFiles::find(const std::string& path) const {
    const auto found = items_.find(path);
    return found == items_.end() ? nullptr : &found->second;
}

MemoryFiles::Item& MemoryFiles::make(const std::string& path) {
    touchFolderOf(path);
    Item& item = items_[path];
    item.number = ++lastNumber_;
    item.modifiedAt = now_;
    return item;
}

void MemoryFiles::touchFolderOf(const std::string& path) {
    ++now_.nanoseconds;
    if (const std::string folder = text::folderOf(path); folder != path) {
        makeFolder(folder);
        items_[folder].modifiedAt = now_;
    }
}

void MemoryFiles::makeFolder(const std::string& path) {
    if (!find(path)) {
        make(path).isFolder = true;
    }
}

void MemoryFiles::write(const std::string& path, std::string content) {
    ++now_.nanoseconds;
    Item& item = find(path) ? items_[path] : make(path);
    item.content = std::move(content);
    item.modifiedAt = now_;
}

void MemoryFiles::append(const std::string& path, std::string_view content) {
    const Item* item = find(path);
    write(path, (item ? item->content : "") + std::string(content));
}

void MemoryFiles::replace(const std::string& path, std::string content) {
    items_.erase(path);
    make(path).content = std::move(content);
}

void MemoryFiles::rename(const std::string& from, const std::string& to) {
    Item item = items_[from];
    remove(from);
    touchFolderOf(to);
    items_[to] = std::move(item);
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

/// Whether this fault is to happen to the call under way.
bool MemoryFiles::happens(Fault kind) {
    const bool isNow = calls == failingCall && fault == kind;
    faults += isNow ? 1 : 0;
    return isNow;
}

/// Whether the call under way fails, with an error.
bool MemoryFiles::fails(const Item* item, ORVErrorSlot* error) {
    const bool isFault = happens(Fault::error);
    if (isFault || !item) {
        storeError(error, platform::posixError(isFault ? EIO : ENOENT));
    }
    return isFault || !item;
}

bool MemoryFiles::walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
                       const ErrorHandler& failed) {
    ++calls;
    const Item* start = find(root);
    ORVErrorSlot error;
    if (fails(start && start->isFolder ? start : nullptr, &error)) {
        failed(std::move(*error));
        return false;
    }
    if (happens(Fault::unseenFolder)) {
        failed(platform::posixError(EACCES));
        return true;
    }
    std::set<std::string> entered = {root};
    for (const auto& [path, item] : items_) {
        const std::string_view name = text::lastPathComponent(path);
        if (!entered.contains(text::folderOf(path)) || path == root || name.starts_with('.')) {
            continue;
        }
        if (item.isFolder) {
            entered.insert(path);
        } else if (wanted(name)) {
            visit({path, item.modifiedAt});
        }
    }
    return true;
}

std::optional<ORVFileAttributes> MemoryFiles::attributesOfItem(const std::string& path,
                                                               ORVErrorSlot* error) {
    constexpr std::uint64_t kFolderBytes = 4096;
    ++calls;
    const Item* item = find(path);
    if (fails(item, error)) {
        return std::nullopt;
    }
    std::uint64_t size = item->isFolder ? kFolderBytes : item->content.size() + extraSize;
    size += happens(Fault::largerSize) ? 100 : 0;
    size /= happens(Fault::smallerSize) ? 2 : 1;
    ORVFileAttributes attributes{size, item->number, item->modifiedAt};
    if (happens(Fault::noSize)) {
        attributes.size.reset();
    }
    if (happens(Fault::noDate)) {
        attributes.modifiedAt.reset();
    }
    if (happens(Fault::noFileNumber) || !givesFileNumbers) {
        attributes.fileNumber.reset();
    }
    return attributes;
}

std::optional<ORVFileDate> MemoryFiles::contentModificationDate(const std::string& path) {
    ++calls;
    const Item* item = find(path);
    return fails(item, nullptr) ? std::nullopt : std::optional(item->modifiedAt);
}

bool MemoryFiles::itemExists(const std::string& path) {
    ++calls;
    return !fails(find(path), nullptr);
}

std::unique_ptr<ORVOpenFile> MemoryFiles::openForReading(const std::string& path,
                                                         ORVErrorSlot* error) {
    ++calls;
    const Item* item = find(path);
    if (fails(item, error)) {
        return nullptr;
    }
    ++opened;
    // What is read whole gets another date when it gets another end.
    const bool isFollowed = !path.ends_with("session_index.jsonl") && !path.ends_with(".plist");
    return std::make_unique<OpenFile>(*this, *item, isFollowed);
}
