#include "fuzz/model/SessionModel.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "fuzz/model/JSON.h"
#include "fuzz/model/text.h"

namespace model {
namespace {

using Kind = JSON::Kind;

std::uint64_t wholeOr(const JSON* value, std::uint64_t otherwise) {
    return value ? value->wholeNumber().value_or(otherwise) : otherwise;
}

std::int64_t asSigned(std::uint64_t value) {
    constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(value, kLargest));
}

bool isWholeCompaction(const JSON& record, const JSON* payload) {
    constexpr std::uint64_t kNotWhole = std::numeric_limits<std::uint64_t>::max();
    if (!payload || wholeOr(record.member("ordinal"), kNotWhole) == kNotWhole ||
        wholeOr(payload->member("window_number"), 0) == 0) {
        return false;
    }
    for (const char* key : {"first_window_id", "previous_window_id", "window_id"}) {
        if (payload->stringMember(key).empty()) {
            return false;
        }
    }
    return payload->member("message", Kind::string) &&
           payload->member("replacement_history", Kind::array);
}

}  // namespace

void Figures::read(std::string_view line) {
    const bool hasCompact = contains(line, "compact");
    const bool hasTokenCount = contains(line, "token_count");
    const auto record = hasCompact || hasTokenCount ? JSON::object(line) : std::nullopt;
    if (!record) {
        return;
    }
    const JSON* payload = record->member("payload", Kind::object);
    const std::string type = record->stringMember("type");
    const JSON* payloadType = payload ? payload->member("type", Kind::string) : nullptr;
    const std::string event = type == "event_msg" && payloadType ? payloadType->text : "";
    if (hasCompact) {
        const bool isUnderstood = type == "compacted" && isWholeCompaction(*record, payload);
        const bool isAboutCompaction = contains(lowerCased(type), "compact") ||
                                       contains(lowerCased(event), "compact") ||
                                       (type == "event_msg" && !payloadType);
        if (event == "context_compacted") {
            const std::string timestamp = record->stringMember("timestamp");
            readCompaction(timestamp.empty() ? "" : "legacy:" + timestamp);
        } else if (isUnderstood) {
            readCompaction("current:" + payload->stringMember("window_id"));
        } else if (isAboutCompaction) {
            toldOfCompaction = true;
            compactionStatus = 2;
        }
    }
    if (hasTokenCount && event == "token_count") {
        readTokenCount(*payload);
    }
}

void Figures::readCompaction(const std::string& name) {
    toldOfCompaction = true;
    compactionStatus = 0;
    if (!name.empty() && !compactions.insert(name).second) {
        return;
    }
    namelessCompactions += name.empty() ? 1 : 0;
    usage.reset();
    contextStatus = 1;
}

void Figures::readTokenCount(const JSON& payload) {
    const JSON* info = payload.member("info", Kind::object);
    const JSON* last = info ? info->member("last_token_usage", Kind::object) : nullptr;
    const JSON* inputValue = last ? last->member("input_tokens") : nullptr;
    const JSON* windowValue = info ? info->member("model_context_window") : nullptr;
    if (!windowValue) {
        windowValue = payload.member("model_context_window");
    }
    const auto input = inputValue ? inputValue->wholeNumber() : std::nullopt;
    const std::uint64_t window = wholeOr(windowValue, 0);
    if (!input || window == 0) {
        contextStatus = 2;
    } else if (*input > 0) {
        usage = {asSigned(*input), asSigned(window)};
        contextStatus = 0;
    } else if (!usage) {
        contextStatus = 1;
    }
}

std::string described(const std::optional<std::pair<std::int64_t, std::int64_t>>& usage,
                      std::int64_t contextStatus, std::int64_t compactions,
                      std::int64_t compactionStatus) {
    return "usage " +
           (usage ? std::to_string(usage->first) + " of " + std::to_string(usage->second)
                  : "none") +
           " status " + std::to_string(contextStatus) + "\ncompactions " +
           std::to_string(compactions) + " status " + std::to_string(compactionStatus);
}

std::string described(const Figures& figures) {
    const auto count =
        static_cast<std::int64_t>(figures.compactions.size()) + figures.namelessCompactions;
    return described(figures.usage, figures.contextStatus, count, figures.compactionStatus);
}

std::string described(const std::string& title, const std::string& threadID,
                      const std::string& path, const std::string& figures, ORVFileDate date) {
    return "title " + title + "\nid " + threadID + "\nfile " + path + '\n' + figures + "\ndate " +
           std::to_string(date.seconds) + '.' + std::to_string(date.nanoseconds);
}

/// Session files in the order in which a walk meets them; false where there is no walk.
bool SessionModel::walkedFiles(std::vector<std::pair<std::string, ORVFileDate>>& found,
                               std::string& error) {
    const auto anyName = [](std::string_view) { return true; };
    const auto take = [&](ORVWalkedFile&& file) {
        if (extension(file.path) == "jsonl") {
            found.emplace_back(file.path, file.modifiedAt);
        }
    };
    if (!files_.walk(home_ + "/sessions", anyName, take, [](ORVError&&) {})) {
        error = "Orvellan 1";
        return false;
    }
    return true;
}

std::optional<ORVFileDate> SessionModel::folderDateOf(const std::string& path) {
    const MemoryFiles::Item* item = files_.find(folder(path));
    return item && item->hasAttributes && item->givesDate ? std::optional(item->modifiedAt)
                                                          : std::nullopt;
}

bool SessionModel::searchIsGood(const Search& search) {
    const std::string& newest = search.paths.back();
    return files_.find(newest) && search.folderDate && folderDateOf(newest) == search.folderDate &&
           clock_.now() - search.at < std::chrono::seconds(10);
}

std::vector<std::string> SessionModel::filesOfTask(const std::string& threadID,
                                                   std::string& error) {
    if (threadID.empty()) {
        return {};
    }
    const auto known = searches_.find(threadID);
    if (known != searches_.end() && searchIsGood(known->second)) {
        return known->second.paths;
    }
    std::vector<std::pair<std::string, ORVFileDate>> found;
    if (!walkedFiles(found, error)) {
        return {};
    }
    std::vector<std::pair<ORVFileDate, std::string>> ofTask;
    for (const auto& [path, date] : found) {
        if (contains(lowerCased(fileName(path)), lowerCased(threadID))) {
            ofTask.emplace_back(date, path);
        }
    }
    searches_.erase(threadID);
    if (ofTask.empty()) {
        return {};
    }
    std::sort(ofTask.begin(), ofTask.end());
    Search search;
    for (const auto& [date, path] : ofTask) {
        search.paths.push_back(path);
    }
    search.folderDate = folderDateOf(search.paths.back());
    search.at = clock_.now();
    searches_[threadID] = search;
    return search.paths;
}

bool SessionModel::readMore(Reading& reading, const MemoryFiles::Item& item, std::string& error) {
    if (reading.bytes.size() == item.size()) {
        return true;
    }
    if (!item.canBeOpened) {
        error = "posix 13";
        return false;
    }
    const std::uint64_t end = std::min<std::uint64_t>(item.content.size(), item.damagedFrom);
    while (reading.bytes.size() < end) {
        reading.bytes += item.content[reading.bytes.size()];
    }
    if (reading.bytes.size() < item.size() && reading.bytes.size() >= item.damagedFrom) {
        error = "posix 5";
        return false;
    }
    return true;
}

std::optional<SessionModel::FileAnswer> SessionModel::fileAnswer(const std::string& path,
                                                                 std::string& error) {
    const MemoryFiles::Item* item = files_.find(path);
    if (!item || !item->hasAttributes) {
        error = item ? "posix 5" : "posix 2";
        return std::nullopt;
    }
    if (!item->givesSize || !item->givesDate) {
        return std::nullopt;
    }
    const auto number = item->givesNumber ? std::optional(item->number) : std::nullopt;
    Reading& reading = readings_[path];
    const bool isReplaced = reading.fileNumber && number && reading.fileNumber != number;
    if (isReplaced || item->size() < reading.bytes.size()) {
        reading.bytes.clear();
    }
    reading.fileNumber = number;
    if (!readMore(reading, *item, error)) {
        return std::nullopt;
    }
    lookAtIndex();
    FileAnswer answer{"Codex", fileName(path), {}, item->modifiedAt};
    for (std::size_t i = 0; i + 36 <= fileName(path).size(); ++i) {
        if (isThreadID(fileName(path).substr(i, 36))) {
            answer.threadID = fileName(path).substr(i, 36);
            break;
        }
    }
    const auto titles = titlesByID();
    if (titles.contains(answer.threadID)) {
        answer.title = titles.at(answer.threadID);
    }
    for (const std::string& line : completeLines(reading.bytes)) {
        answer.figures.read(line);
    }
    return answer;
}

std::string SessionModel::task(const std::string& threadID, std::string& error) {
    const std::vector<std::string> paths = filesOfTask(threadID, error);
    if (paths.empty()) {
        error = error.empty() ? "Orvellan 2" : error;
        return "none";
    }
    std::optional<FileAnswer> newest;
    std::set<std::string> compactions;
    std::int64_t nameless = 0;
    int status = 0;
    for (const std::string& path : paths) {
        newest = fileAnswer(path, error);
        if (!newest) {
            return "none";
        }
        const Figures& figures = newest->figures;
        compactions.insert(figures.compactions.begin(), figures.compactions.end());
        nameless += figures.namelessCompactions;
        status = figures.toldOfCompaction ? figures.compactionStatus : status;
    }
    const auto count = static_cast<std::int64_t>(compactions.size()) + nameless;
    return described(newest->title, threadID, paths.back(),
                     described(newest->figures.usage, newest->figures.contextStatus, count, status),
                     newest->date);
}

std::string SessionModel::latest(std::string& error) {
    std::vector<std::pair<std::string, ORVFileDate>> found;
    if (!walkedFiles(found, error) || found.empty()) {
        return "none";
    }
    auto newest = found.front();
    for (const auto& file : found) {
        newest = file.second > newest.second ? file : newest;
    }
    const std::string name = fileName(newest.first);
    for (std::size_t i = 0; i + 36 <= name.size(); ++i) {
        if (isThreadID(name.substr(i, 36))) {
            return task(name.substr(i, 36), error);
        }
    }
    const auto answer = fileAnswer(newest.first, error);
    if (!answer) {
        return "none";
    }
    return described(answer->title, answer->threadID, newest.first, described(answer->figures),
                     answer->date);
}

void SessionModel::lookAtIndex() {
    const MemoryFiles::Item* item = files_.find(home_ + "/session_index.jsonl");
    if (!item || !item->hasAttributes || !item->givesDate || indexDate_ == item->modifiedAt) {
        return;
    }
    const bool canBeRead = item->canBeOpened && item->damagedFrom > item->content.size();
    if (canBeRead && isUTF8(item->content)) {
        index_ = item->content;
        indexDate_ = item->modifiedAt;
    }
}

std::map<std::string, std::string> SessionModel::titlesByID() const {
    std::map<std::string, std::string> titles;
    for (const std::string& line : textLines(index_)) {
        const auto entry = JSON::object(line);
        if (!entry) {
            continue;
        }
        const std::string id = entry->stringMember("id");
        const std::string name = entry->stringMember("thread_name");
        const std::string title = name.empty() ? entry->stringMember("title") : name;
        if (!id.empty() && !title.empty()) {
            titles[id] = title;
        }
    }
    return titles;
}

std::string SessionModel::titles() {
    lookAtIndex();
    std::string text;
    for (const auto& [id, title] : titlesByID()) {
        text += id + '\t' + title + '\n';
    }
    return text;
}

}  // namespace model
