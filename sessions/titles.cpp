// The title index: "session_index.jsonl" in the Codex home, to which the agent appends a line at
// every rename. It is read as a whole, and again only when its date has changed.
// Tests: tests/sessions/snapshots_test.cpp.

#include "sessions/ORVCodexSessionSource.h"
#include "text/byte_buffer.h"
#include "text/unicode.h"

namespace {

/// Enough for some hundred thousand tasks. A larger file counts as unreadable.
constexpr std::size_t kIndexLimitBytes = 64 * 1024 * 1024;

const ORVJSONShape& entryShape() {
    static const ORVJSONShape kShape{
        "", false, {{"id", true}, {"thread_name", true}, {"title", true}}};
    return kShape;
}

}  // namespace

void ORVCodexSessionSource::refreshTitleIndexIfNeeded() {
    if (titlesAreFinal_) {
        return;
    }
    const std::string path = titleIndexPath();
    const auto modifiedAt = files_.contentModificationDate(path);
    if (!modifiedAt || modifiedAt == titleIndexModifiedAt_) {
        return;
    }
    if (auto titles = readTitleIndex(path)) {
        titleIndex_ = std::move(*titles);
        titleIndexModifiedAt_ = modifiedAt;
    }
}

std::optional<std::map<std::string, std::string>> ORVCodexSessionSource::readTitleIndex(
    const std::string& path) {
    const auto attributes = files_.attributesOfItem(path, nullptr);
    if (!attributes || attributes->size.value_or(0) > kIndexLimitBytes) {
        return std::nullopt;  // Reading it up to the limit at every refresh would be in vain.
    }
    auto text = platform::contentsOfFile(files_, path, kIndexLimitBytes);
    if (!text || !text::isValidUTF8(*text)) {
        return std::nullopt;
    }
    const std::size_t length = text->size();
    text->append(ORVByteBuffer::kReadableBytesBeyond, ' ');  // The JSON reader needs them.
    std::map<std::string, std::string> titles;
    text::forEachLine(std::string_view(*text).substr(0, length), [&](std::string_view line) {
        const auto entry = jsonReader_.readObject(line, entryShape());
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
    jsonReader_.releaseMemory();
    return titles;
}

void ORVCodexSessionSource::readTitlesOnce() {
    refreshTitleIndexIfNeeded();
    titlesAreFinal_ = true;
}

std::string ORVCodexSessionSource::titleIndexPath() const {
    return codexHome_ + "/session_index.jsonl";
}

std::map<std::string, std::string> ORVCodexSessionSource::threadTitles() {
    refreshTitleIndexIfNeeded();
    return titleIndex_;
}
