#include "fuzz/MemoryFiles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <utility>

#include "text/paths.h"

namespace {

class MemoryOpenFile final : public ORVOpenFile {
public:
    MemoryOpenFile(const MemoryFiles::Item& item, std::size_t bytesPerRead)
        : item_(item), bytesPerRead_(bytesPerRead) {}

    std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                      ORVErrorSlot* error) override {
        if (item_.isFolder || offset >= item_.damagedFrom) {
            storeError(error, platform::posixError(item_.isFolder ? EISDIR : EIO));
            return std::nullopt;
        }
        const std::uint64_t end = std::min<std::uint64_t>(item_.content.size(), item_.damagedFrom);
        if (offset >= end) {
            return 0;
        }
        const auto count =
            std::min({static_cast<std::size_t>(end - offset), capacity, bytesPerRead_});
        std::memcpy(buffer, item_.content.data() + offset, count);
        return count;
    }

private:
    const MemoryFiles::Item& item_;
    const std::size_t bytesPerRead_;
};

}  // namespace

MemoryFiles::Item* MemoryFiles::find(const std::string& path) {
    const auto found = items_.find(path);
    return found == items_.end() ? nullptr : &found->second;
}

MemoryFiles::Item& MemoryFiles::make(const std::string& path) {
    Item& item = items_[path];
    item.number = ++lastNumber_;
    item.modifiedAt = now;
    touchFolderOf(path);
    return item;
}

void MemoryFiles::touchFolderOf(const std::string& path) {
    const std::string folder = text::folderOf(path);
    if (folder != path) {
        makeFolder(folder);
        items_[folder].modifiedAt = now;
    }
}

void MemoryFiles::makeFolder(const std::string& path) {
    if (!find(path)) {
        make(path).isFolder = true;
    }
}

void MemoryFiles::write(const std::string& path, std::string content) {
    Item* found = find(path);
    Item& item = found ? *found : make(path);
    item.content = std::move(content);
    item.modifiedAt = now;
}

void MemoryFiles::append(const std::string& path, const std::string& content) {
    const Item* item = find(path);
    write(path, (item ? item->content : "") + content);
}

void MemoryFiles::replace(const std::string& path, std::string content) {
    items_.erase(path);
    make(path).content = std::move(content);
}

void MemoryFiles::rename(const std::string& from, const std::string& to) {
    if (!find(from) || from == to) {
        return;
    }
    Item item = std::move(items_[from]);
    remove(from);
    items_[to] = std::move(item);
    touchFolderOf(to);
}

void MemoryFiles::remove(const std::string& path) {
    if (items_.erase(path) > 0) {
        touchFolderOf(path);
    }
}

bool MemoryFiles::walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
                       const ErrorHandler& failed) {
    const auto start = items_.find(root);
    if (start == items_.end() || !start->second.canBeOpened) {
        failed(platform::posixError(start == items_.end() ? ENOENT : EACCES));
        return false;
    }
    std::set<std::string> entered = {root};
    for (auto next = std::next(start); next != items_.end(); ++next) {
        const auto& [path, item] = *next;
        const std::string_view name = text::lastPathComponent(path);
        if (!entered.contains(text::folderOf(path)) || name.starts_with('.')) {
            continue;
        }
        if (item.isFolder && item.canBeOpened) {
            entered.insert(path);
        } else if (item.isFolder) {
            failed(platform::posixError(EACCES));
        } else if (wanted(name)) {
            visit({path, item.modifiedAt});
        }
    }
    return true;
}

std::optional<ORVFileAttributes> MemoryFiles::attributesOfItem(const std::string& path,
                                                               ORVErrorSlot* error) {
    const Item* item = find(path);
    if (!item || !item->hasAttributes) {
        storeError(error, platform::posixError(item ? EIO : ENOENT));
        return std::nullopt;
    }
    return ORVFileAttributes{item->givesSize ? std::optional(item->size()) : std::nullopt,
                             item->givesNumber ? std::optional(item->number) : std::nullopt,
                             item->givesDate ? std::optional(item->modifiedAt) : std::nullopt};
}

std::optional<ORVFileDate> MemoryFiles::contentModificationDate(const std::string& path) {
    const auto attributes = attributesOfItem(path, nullptr);
    return attributes ? attributes->modifiedAt : std::nullopt;
}

bool MemoryFiles::itemExists(const std::string& path) {
    return find(path) != nullptr;
}

std::unique_ptr<ORVOpenFile> MemoryFiles::openForReading(const std::string& path,
                                                         ORVErrorSlot* error) {
    const Item* item = find(path);
    if (!item || !item->canBeOpened) {
        storeError(error, platform::posixError(item ? EACCES : ENOENT));
        return nullptr;
    }
    return std::make_unique<MemoryOpenFile>(*item, bytesPerRead);
}
