// All tasks at once, from the names of the session files. A name holds the identifier of its task.
// A task that was taken back to an earlier point goes on in a file whose name holds a second
// identifier after that of the task. Tests: tests/sessions/tasks_test.cpp.

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "sessions/ORVCodexSessionSource.h"
#include "text/bytes.h"
#include "text/identifiers.h"
#include "text/paths.h"

namespace {

/// Returns every thread identifier in the file's name, in lower case, because letter case does not
/// tell tasks apart.
std::vector<std::string> identifiersIn(const ORVWalkedFile& file) {
    const std::string_view name = text::lastPathComponent(file.path);
    std::vector<std::string> identifiers;
    for (std::size_t i = 0; i + text::kUUIDLength <= name.size(); ++i) {
        if (text::isUUID(name.substr(i, text::kUUIDLength))) {
            std::string identifier(name.substr(i, text::kUUIDLength));
            std::transform(identifier.begin(), identifier.end(), identifier.begin(),
                           text::lowerCasedASCII);
            if (std::find(identifiers.begin(), identifiers.end(), identifier) ==
                identifiers.end()) {
                identifiers.push_back(std::move(identifier));
            }
        }
    }
    return identifiers;
}

/// Returns an identifier in the letter case of the file's name.
std::string spellingIn(std::string_view path, const std::string& identifier) {
    const std::string_view name = text::lastPathComponent(path);
    const auto found = std::search(name.begin(), name.end(), identifier.begin(), identifier.end(),
                                   [](char a, char b) { return text::lowerCasedASCII(a) == b; });
    return {found, found + static_cast<std::ptrdiff_t>(identifier.size())};
}

bool isOlder(const ORVWalkedFile& a, const ORVWalkedFile& b) {
    return std::tie(a.modifiedAt, a.path) < std::tie(b.modifiedAt, b.path);
}

/// Newest first, equal dates by path.
bool comesBefore(const ORVTask& a, const ORVTask& b) {
    return std::tie(b.newestFile().modifiedAt, a.newestFile().path) <
           std::tie(a.newestFile().modifiedAt, b.newestFile().path);
}

}  // namespace

std::optional<std::vector<ORVTask>> ORVCodexSessionSource::tasksWithError(ORVErrorSlot* error) {
    std::vector<ORVWalkedFile> files;
    const auto take = [&](ORVWalkedFile&& file) { files.push_back(std::move(file)); };
    if (!search_.walk("", take, error)) {
        return std::nullopt;
    }
    std::sort(files.begin(), files.end(), isOlder);
    std::vector<std::vector<std::string>> identifiers;
    std::unordered_map<std::string, std::size_t> positions;  // In `tasks`, by identifier.
    std::vector<ORVTask> tasks;
    for (const ORVWalkedFile& file : files) {
        identifiers.push_back(identifiersIn(file));
        if (identifiers.back().empty()) {
            tasks.push_back({std::string(text::lastPathComponent(file.path)), {file}});
        } else if (positions.emplace(identifiers.back().front(), tasks.size()).second) {
            tasks.emplace_back();
        }
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (const std::string& identifier : identifiers[i]) {
            const auto position = positions.find(identifier);
            if (position != positions.end()) {
                tasks[position->second].files.push_back(files[i]);
            }
        }
    }
    for (const auto& [identifier, position] : positions) {
        tasks[position].threadID = spellingIn(tasks[position].newestFile().path, identifier);
    }
    std::sort(tasks.begin(), tasks.end(), comesBefore);
    return tasks;
}
