#include "fuzz/model/FocusModel.h"

#include <algorithm>

#include "fuzz/model/text.h"

namespace model {
namespace {

constexpr const char* kActivity = "thread_stream_view_activity_changed";
constexpr const char* kOwnerSync =
    "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync ";
constexpr const char* kRenderState = "rendererWindowAppearance=";

struct Event {
    std::string time;
    std::string says;  ///< As focusAfter.
};

struct Window {
    std::string id;
    bool isPrimary = false;
    bool isFocused = false;
    bool isVisible = false;
    std::optional<std::size_t> route;  ///< The event that tells the window's route.

    bool isInView() const { return isPrimary && isFocused && isVisible; }
};

/// "" for a field that is absent.
std::string field(const std::string& name, const std::string& line) {
    const std::size_t found = line.find(name + '=');
    return found == std::string::npos ? "" : firstWord(line.substr(found + name.size() + 1));
}

bool isAboutFocus(const std::string& line) {
    return (contains(line, kActivity) || contains(line, kOwnerSync) ||
            contains(line, kRenderState)) &&
           isUTF8(line);
}

std::string routeSays(const std::string& line) {
    std::string route = field("ownerRoutePath", line);
    route = route.substr(0, route.find('?'));
    route = route.substr(0, route.find('#'));
    if (route.starts_with("/local/")) {
        return isThreadID(route.substr(7)) ? "0 " + route.substr(7) : "4";
    }
    return route == "/" ? "1" : "4";
}

/// What an activity line says by itself; "" for nothing.
std::string activitySays(const std::string& line) {
    if (!contains(line, kActivity) || field("active", line) != "true" || firstWord(line).empty()) {
        return "";
    }
    const std::string appearance = field("rendererWindowAppearance", line);
    const std::string focused = field("rendererWindowFocused", line);
    if (appearance.empty() || focused.empty()) {
        return "4";
    }
    if (appearance != "primary" || focused != "true") {
        return "";
    }
    const std::string conversation = field("conversationId", line);
    if (conversation.starts_with("client-new-thread:")) {
        return "1";
    }
    return isThreadID(conversation) ? "0 " + conversation : "4";
}

/// Thinks through lines. Events are never forgotten, so that a number tells one for good.
class Thought {
public:
    void read(int reading, const std::string& line) {
        if (!isAboutFocus(line)) {
            return;
        }
        const bool isOwnerSync = contains(line, kOwnerSync);
        const std::string contents =
            field(isOwnerSync ? "originWebContentsId" : "rendererWebContentsId", line);
        const std::string id = field(isOwnerSync ? "windowId" : "rendererWindowId", line);
        const auto key = std::pair(reading, contents);
        const bool isKnown = windows_.contains(key) && windows_[key].id == id;
        if (isOwnerSync && !isKnown) {
            return;
        }
        if (isOwnerSync) {
            windows_[key].route = addEvent(firstWord(line), routeSays(line));
        } else if (!contents.empty() && !id.empty()) {
            readRenderState(key, id, isKnown, line);
        }
        const bool isKnownNow = windows_.contains(key) && windows_[key].id == id;
        if (isKnownNow && windows_[key].route) {
            if (windows_[key].isInView()) {
                offer(*windows_[key].route);
            }
        } else if (const std::string says = activitySays(line); !says.empty()) {
            offer(addEvent(firstWord(line), says));
        }
    }

    std::string result() const { return latest_ ? events_[*latest_].says : "3"; }

private:
    void readRenderState(const std::pair<int, std::string>& key, const std::string& id,
                         bool isKnown, const std::string& line) {
        const std::string appearance = field("rendererWindowAppearance", line);
        const std::string focused = field("rendererWindowFocused", line);
        const std::string visible = field("rendererWindowVisible", line);
        if (appearance.empty() || focused.empty() || visible.empty()) {
            return;
        }
        Window window = isKnown ? windows_[key] : Window{};
        window.id = id;
        const bool wasFocused = window.isFocused;
        window.isPrimary = appearance == "primary";
        window.isFocused = focused == "true";
        window.isVisible = visible == "true";
        if (!wasFocused && window.isInView() && window.route) {
            events_[*window.route].time = firstWord(line);
        }
        windows_[key] = window;
    }

    std::size_t addEvent(const std::string& time, const std::string& says) {
        events_.push_back({time, says});
        return events_.size() - 1;
    }

    void offer(std::size_t event) {
        if (!latest_ || events_[event].time >= events_[*latest_].time) {
            latest_ = event;
        }
    }

    std::vector<Event> events_;
    std::map<std::pair<int, std::string>, Window> windows_;
    std::optional<std::size_t> latest_;
};

}  // namespace

std::string focusAfter(const LinesRead& lines) {
    Thought thought;
    for (const auto& [reading, line] : lines) {
        thought.read(reading, line);
    }
    return thought.result();
}

std::vector<std::string> FocusModel::walkedFiles(std::string& error) {
    std::vector<std::pair<ORVFileDate, std::string>> found;
    std::string walkError;
    files_.walk(
        logs_, [](std::string_view) { return true; },
        [&](ORVWalkedFile&& file) {
            if (extension(file.path) == "log") {
                found.emplace_back(file.modifiedAt, file.path);
            }
        },
        [&](ORVError&& failure) {
            walkError = walkError.empty() ? "posix " + std::to_string(failure.code) : walkError;
        });
    error = error.empty() ? walkError : error;
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (const auto& [date, path] : found) {
        paths.push_back(path);
    }
    return paths;
}

std::string FocusModel::focus(std::string& error) {
    const std::vector<std::string> paths = walkedFiles(error);
    if (paths.empty()) {
        return "2";
    }
    for (const std::string& path : paths) {
        lookAt(path, error);
    }
    std::erase_if(readings_, [&](const auto& reading) {
        return std::find(paths.begin(), paths.end(), reading.first) == paths.end();
    });
    return focusAfter(lines_);
}

void FocusModel::lookAt(const std::string& path, std::string& error) {
    const MemoryFiles::Item* item = files_.find(path);
    if (!item->hasAttributes) {
        error = "posix 5";
        return;
    }
    if (!item->givesSize) {
        return;
    }
    const auto number = item->givesNumber ? std::optional(item->number) : std::nullopt;
    const auto known = readings_.find(path);
    const bool isReplaced = known != readings_.end() && known->second.fileNumber && number &&
                            known->second.fileNumber != number;
    if (known == readings_.end() || isReplaced || item->size() < known->second.bytes.size()) {
        readings_[path] = Reading{++readingsBegun_, "", std::nullopt};
    }
    Reading& reading = readings_[path];
    reading.fileNumber = number;
    readMore(reading, *item, error);
}

void FocusModel::readMore(Reading& reading, const MemoryFiles::Item& item, std::string& error) {
    if (reading.bytes.size() == item.size()) {
        return;
    }
    if (!item.canBeOpened) {
        error = "posix 13";
        return;
    }
    const std::size_t linesBefore = completeLines(reading.bytes).size();
    const std::uint64_t end = std::min<std::uint64_t>(item.content.size(), item.damagedFrom);
    while (reading.bytes.size() < end) {
        reading.bytes += item.content[reading.bytes.size()];
    }
    const std::vector<std::string> lines = completeLines(reading.bytes);
    for (std::size_t i = linesBefore; i < lines.size(); ++i) {
        lines_.emplace_back(reading.number, lines[i]);
    }
    if (reading.bytes.size() < item.size() && reading.bytes.size() >= item.damagedFrom) {
        error = "posix 5";
    }
}

}  // namespace model
