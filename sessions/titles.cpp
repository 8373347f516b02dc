// Reads the title index. Tests: tests/sessions/snapshots_test.cpp.

#include <cerrno>

#include "sessions/ORVTitleIndex.h"
#include "text/bytes.h"
#include "text/json.h"
#include "text/unicode.h"

namespace {

/// Enough for some hundred thousand tasks. A larger file counts as unreadable.
constexpr std::size_t kIndexLimitBytes = 64 * 1024 * 1024;

const ORVJSONShape& entryShape() {
    constexpr bool kText = true;
    static const ORVJSONShape kShape("", {{"id", kText}, {"thread_name", kText}, {"title", kText}});
    return kShape;
}

}  // namespace

void ORVTitleIndex::refreshIfNeeded() {
    const auto modifiedAt = files_.contentModificationDate(path_);
    if (modifiedAt && modifiedAt == modifiedAt_) {
        return;
    }
    error_.reset();
    auto text = readText();
    if (text && modifiedAt) {
        titles_ = titlesIn(std::move(*text));
        modifiedAt_ = modifiedAt;
    }
}

/// Returns the whole file, and none when it cannot be read; error_ then says why.
std::optional<std::string> ORVTitleIndex::readText() {
    const auto attributes = files_.attributesOfItem(path_, &error_);
    if (!attributes) {
        if (error_->code == ENOENT) {
            error_.reset();
        }
        return std::nullopt;
    }
    if (attributes->size.value_or(0) > kIndexLimitBytes) {
        error_ = platform::posixError(EFBIG);
        return std::nullopt;  // Reading it up to the limit at every refresh would be in vain.
    }
    auto text = platform::contentsOfFile(files_, path_, kIndexLimitBytes, &error_);
    if (text && !text::isValidUTF8(*text)) {
        error_ = platform::posixError(EILSEQ);
        text.reset();
    }
    return text;
}

ORVTitleIndex::Titles ORVTitleIndex::titlesIn(std::string text) {
    const std::size_t length = text.size();
    text.append(text::kReadableBytesBeyond, ' ');  // The JSON reader needs them.
    ORVJSONReader json;
    Titles titles;
    text::forEachLine(std::string_view(text).substr(0, length), [&](std::string_view line) {
        const auto entry = json.readObject(line, entryShape());
        if (!entry) {
            return;
        }
        const std::string& id = (*entry)["id"].text;
        const std::string& threadName = (*entry)["thread_name"].text;
        const std::string& title = threadName.empty() ? (*entry)["title"].text : threadName;
        if (!id.empty() && !title.empty()) {
            titles[id] = title;
        }
    });
    return titles;
}

std::string ORVTitleIndex::titleOf(const std::string& threadID) const {
    const auto title = titles_.find(threadID);
    return title == titles_.end() ? "Codex" : title->second;
}
