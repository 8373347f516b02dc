// Reads the first lines of session files and what they say of a task: its folder, and whether it
// works for another one. Tests: tests/sessions/task_list_test.cpp.

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/ORVFollowedFile.h"
#include "platform/parallel.h"
#include "sessions/ORVFirstLines.h"
#include "text/bytes.h"
#include "text/json.h"

namespace {

/// Enough to read most first lines with one system call: they hold the agent's instructions and
/// have some 25 KB.
constexpr std::uint64_t kFirstReadBytes = 32 * 1024;

/// Starting threads pays for more files than these.
constexpr std::size_t kWorthThreads = 64;

const ORVJSONShape& recordShape() {
    using Fields = std::vector<ORVJSONShape>;
    constexpr bool kText = true;
    static const Fields kSpawn = {{"parent_thread_id", kText}, {"agent_nickname", kText}};
    static const Fields kSource = {{"subagent", Fields{{"thread_spawn", kSpawn}}}};
    static const Fields kPayload = {{"cwd", kText},
                                    {"thread_source", kText},
                                    {"parent_thread_id", kText},
                                    {"agent_nickname", kText},
                                    {"source", kSource}};
    static const ORVJSONShape kShape("", {{"type", kText}, {"payload", kPayload}});
    return kShape;
}

std::optional<std::string> shortText(const ORVJSONValue& value) {
    const std::size_t size = value.text.size();
    return size > 0 && size <= ORVFirstLines::kLongestTextBytes ? std::optional(value.text)
                                                                : std::nullopt;
}

/// `bytes` are a complete line, behind which text::kReadableBytesBeyond can be read.
ORVFirstLine lineOf(std::string_view bytes, ORVJSONReader& json) {
    ORVFirstLine line;
    line.isComplete = true;
    const auto parsed = json.readObject(bytes, recordShape());
    if (!parsed) {
        return line;
    }
    const ORVJSONValue& record = *parsed;
    const ORVJSONValue& payload = record["payload"];
    if (record["type"].text != "session_meta") {
        return line;
    }
    line.folder = shortText(payload["cwd"]);
    if (line.folder && !line.folder->starts_with('/')) {
        line.folder.reset();
    }
    const ORVJSONValue& subagent = payload["source"]["subagent"];
    line.isHelper =
        payload["thread_source"].text == "subagent" ||
        (subagent.kind != ORVJSONValue::Kind::absent && subagent.kind != ORVJSONValue::Kind::null);
    if (line.isHelper) {
        const ORVJSONValue& spawn = subagent["thread_spawn"];
        const auto inEither = [&](std::string_view key) {
            const auto found = shortText(payload[key]);
            return found ? found : shortText(spawn[key]);
        };
        line.parentID = inEither("parent_thread_id");
        line.helperName = inEither("agent_nickname");
    }
    return line;
}

ORVFirstLines::Known nothingOf(const ORVWalkedFile& file) {
    ORVFirstLines::Known known;
    known.fileIdentifier = file.fileIdentifier;
    known.size = file.size;
    known.modifiedAt = file.modifiedAt;
    return known;
}

bool isTooLong(std::size_t length) {
    return length > ORVFirstLines::kLongestLineBytes;
}

/// Returns the length of the first line; npos when it has not ended or is too long.
std::size_t readLine(ORVFiles& files, const std::string& path, ORVReadingMemory& memory,
                     std::string& bytes, ORVErrorSlot* error) {
    const auto file = files.openForReading(path, error);
    while (file && !isTooLong(bytes.size())) {
        const std::uint64_t limit =
            bytes.empty() ? kFirstReadBytes : ORVFirstLines::kLongestLineBytes;
        const auto chunk = memory.readChunk(*file, bytes.size(), limit, error);
        if (!chunk || chunk->empty()) {
            break;
        }
        const std::size_t lineFeed = chunk->find('\n');
        const std::size_t before = bytes.size();
        bytes.append(*chunk);
        if (lineFeed != std::string_view::npos) {
            return before + lineFeed;
        }
    }
    return std::string_view::npos;
}

ORVFirstLines::Known readFrom(ORVFiles& files, const ORVWalkedFile& file,
                              ORVReadingMemory& memory) {
    ORVFirstLines::Known known = nothingOf(file);
    ORVErrorSlot error;
    std::string bytes;
    const std::size_t length = readLine(files, file.path, memory, bytes, &error);
    known.error = error ? static_cast<int>(error->code) : 0;
    known.line.isComplete = !error && (length <= bytes.size() || isTooLong(bytes.size()));
    if (known.line.isComplete && !isTooLong(length)) {
        bytes.append(text::kReadableBytesBeyond, '\0');
        known.line = lineOf(std::string_view(bytes).substr(0, length), memory.json);
    }
    return known;
}

}  // namespace

const ORVFirstLines::Known* ORVFirstLines::knownOf(const ORVWalkedFile& file) const {
    const auto found = known_.find(&file);
    return found == known_.end() ? nullptr : &found->second;
}

/// A file of which nothing is known yet counts as another one.
bool ORVFirstLines::mustRead(const Known& known, const ORVWalkedFile& file) {
    return known.isOfAnother(file) ||
           (!known.line.isComplete &&
            (known.modifiedAt != file.modifiedAt || known.size != file.size));
}

const ORVFirstLines::Known& ORVFirstLines::ofFile(const ORVWalkedFile& file) {
    Known& known = known_[&file];
    if (mustRead(known, file)) {
        known = readFrom(files_, file, memory_);
    }
    return known;
}

const ORVFirstLines::Known& ORVFirstLines::tryAgain(const ORVWalkedFile& file) {
    Known& known = known_[&file];
    if (mustRead(known, file) || known.error != 0) {
        known = readFrom(files_, file, memory_);
    }
    return known;
}

void ORVFirstLines::readAhead(std::span<const ORVWalkedFile* const> files) {
    std::vector<const ORVWalkedFile*> wanted;
    std::copy_if(files.begin(), files.end(), std::back_inserter(wanted),
                 [&](const ORVWalkedFile* file) {
                     const Known* const known = knownOf(*file);
                     return !known || mustRead(*known, *file);
                 });
    if (wanted.size() < kWorthThreads) {
        return;
    }
    std::vector<Known> results(wanted.size());
    platform::inParallel(wanted.size(), [&]() -> platform::Worker {
        return [&, memory = std::make_shared<ORVReadingMemory>()](std::size_t number) {
            results[number] = readFrom(files_, *wanted[number], *memory);
        };
    });
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        known_[wanted[i]] = std::move(results[i]);
    }
}

const ORVFirstLine* ORVFirstLines::takeFrom(std::string_view bytes, const ORVWalkedFile& file,
                                            ORVJSONReader& json) {
    const std::size_t length = bytes.find('\n');
    if (length == std::string_view::npos) {
        return nullptr;
    }
    Known known = nothingOf(file);
    known.line = lineOf(bytes.substr(0, length), json);
    const std::lock_guard<std::mutex> lock(taking_);
    return &(known_[&file] = std::move(known)).line;
}
