// What the lines of the desktop application's log mean. An owner-sync line names the route that a
// window shows, a render-state line tells whether the window is primary, focused and visible; both
// name the window by its web contents. An activity line names the thread that became active; it
// counts only while its window is unknown or has no route, otherwise the route counts.
// Tests: tests/focus/focus_test.cpp.

#include "focus/ORVCodexFocusLogSource.h"
#include "text/bytes.h"
#include "text/unicode.h"

namespace {

std::string_view timestampOf(std::string_view line) {
    return line.substr(0, text::findWhiteSpace(line));
}

/// Returns a field's value, and "" when the line has no such field: for fields whose empty value
/// means as little as a missing one.
std::string_view valueOrEmpty(std::string_view field, std::string_view line) {
    return ORVCodexFocusLogSource::valueForField(field, line).value_or(std::string_view());
}

}  // namespace

bool ORVCodexFocusLogSource::isValidThreadID(std::string_view text) {
    return text::isUUID(text);
}

std::optional<std::string_view> ORVCodexFocusLogSource::valueForField(std::string_view field,
                                                                      std::string_view line) {
    std::size_t name = text::findBytes(line, field);
    while (name != std::string_view::npos) {
        const std::size_t equals = name + field.size();
        if (equals < line.size() && line[equals] == '=') {
            const std::size_t value = equals + 1;
            return line.substr(value, text::findWhiteSpace(line, value) - value);
        }
        name = text::findBytes(line, field, name + 1);
    }
    return std::nullopt;
}

void ORVCodexFocusLogSource::consumeLineData(std::string_view line,
                                             ORVFocusLogFileState& fileState) {
    if (!text::isValidUTF8(line)) {
        return;
    }
    ORVFocusWindowState* window = nullptr;
    if (text::containsBytes(line, focus::kOwnerSyncMarker)) {
        window = findWindow(fileState, valueOrEmpty("originWebContentsId", line),
                            valueOrEmpty("windowId", line));
        if (!window) {
            return;  // Only a window that a render-state line has introduced has a route.
        }
        window->routeEvent = routeEventFromLine(line);
    } else {
        window = updateWindow(fileState, line);
    }
    if (!window || !window->routeEvent) {
        acceptEventIfNewer(eventFromLineData(line));
    } else if (window->primary && window->focused && window->visible) {
        acceptEventIfNewer(window->routeEvent);
    }
}

ORVFocusWindowState* ORVCodexFocusLogSource::findWindow(ORVFocusLogFileState& fileState,
                                                        std::string_view webContentsID,
                                                        std::string_view windowID) {
    const auto found = fileState.windows.find(std::string(webContentsID));
    return found != fileState.windows.end() && found->second.windowID == windowID ? &found->second
                                                                                  : nullptr;
}

std::shared_ptr<ORVFocusLogEvent> ORVCodexFocusLogSource::routeEventFromLine(
    std::string_view line) {
    constexpr std::string_view kTaskRoute = "/local/";
    auto event = std::make_shared<ORVFocusLogEvent>();
    event->timestamp = timestampOf(line);
    std::string_view route = valueOrEmpty("ownerRoutePath", line);
    route = route.substr(0, route.find_first_of("?#"));
    if (route == "/") {
        event->waitingForThread = true;
    } else if (route.starts_with(kTaskRoute) && isValidThreadID(route.substr(kTaskRoute.size()))) {
        event->threadID = route.substr(kTaskRoute.size());
    } else {
        event->incompatibleFormat = true;
    }
    return event;
}

/// Updates the window that a render-state or activity line is about, and returns it; null when that
/// window is still unknown.
ORVFocusWindowState* ORVCodexFocusLogSource::updateWindow(ORVFocusLogFileState& fileState,
                                                          std::string_view line) {
    const std::string_view webContentsID = valueOrEmpty("rendererWebContentsId", line);
    const std::string_view windowID = valueOrEmpty("rendererWindowId", line);
    ORVFocusWindowState* window = findWindow(fileState, webContentsID, windowID);
    const std::string_view appearance = valueOrEmpty("rendererWindowAppearance", line);
    const std::string_view focused = valueOrEmpty("rendererWindowFocused", line);
    const std::string_view visible = valueOrEmpty("rendererWindowVisible", line);
    if (webContentsID.empty() || windowID.empty() || appearance.empty() || focused.empty() ||
        visible.empty()) {
        return window;
    }
    if (!window) {
        window = &fileState.windows[std::string(webContentsID)];
        *window = ORVFocusWindowState{};
        window->windowID = windowID;
    }
    const bool wasFocused = window->focused;
    window->primary = appearance == "primary";
    window->focused = focused == "true";
    window->visible = visible == "true";
    const bool tookFocus = !wasFocused && window->focused && window->primary && window->visible;
    if (tookFocus && window->routeEvent) {
        // The route is in view again from the moment at which its window took the focus.
        window->routeEvent->timestamp = timestampOf(line);
    }
    return window;
}

std::shared_ptr<ORVFocusLogEvent> ORVCodexFocusLogSource::eventFromLineData(std::string_view line) {
    if (!text::containsBytes(line, focus::kActivityMarker)) {
        return nullptr;
    }
    const std::string_view timestamp = timestampOf(line);
    if (valueOrEmpty("active", line) != "true" || timestamp.empty()) {
        return nullptr;
    }
    auto event = std::make_shared<ORVFocusLogEvent>();
    event->timestamp = timestamp;
    const std::string_view appearance = valueOrEmpty("rendererWindowAppearance", line);
    const std::string_view focused = valueOrEmpty("rendererWindowFocused", line);
    if (appearance.empty() || focused.empty()) {
        event->incompatibleFormat = true;
        return event;
    }
    if (appearance != "primary" || focused != "true") {
        return nullptr;
    }
    const std::string_view conversation = valueOrEmpty("conversationId", line);
    if (conversation.starts_with("client-new-thread:")) {
        event->waitingForThread = true;
    } else if (isValidThreadID(conversation)) {
        event->threadID = conversation;
    } else {
        event->incompatibleFormat = true;
    }
    return event;
}
