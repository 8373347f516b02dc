// Writes answers as text from views that are complete. Tests: tests/ctl/brimletctl_test.cpp.

#include "app/figures.h"
#include "shells/lines/answers.h"
#include "text/unicode.h"

namespace lines {

std::string tabbedTask(const ORVTaskView& view, bool tellsParent) {
    const ORVSessionSnapshot& snapshot = *view.snapshot;
    return app::statusTitle(snapshot).text() + '\t' + json::utcText(view.changedAt) + '\t' +
           text::forTerminal(view.folder.value_or("--")) + '\t' +
           text::forTerminal(snapshot.title()) + '\t' + text::forTerminal(snapshot.threadID()) +
           (tellsParent ? '\t' + text::forTerminal(view.isHelper ? view.parentID.value_or("") : "")
                        : "") +
           '\n';
}

std::string focusText(const ORVCodexFocusState& focusState) {
    switch (focusState.status()) {
        case ORVCodexFocusStatusTaskInView:
            return "Task in view: " + *focusState.threadID();
        case ORVCodexFocusStatusNewTask:
            return "No task in view: a new task is being set up";
        case ORVCodexFocusStatusLogsUnavailable:
            return "No task in view: the Codex desktop application has written no logs here";
        case ORVCodexFocusStatusNoFocusRecord:
            return "No task in view: none was opened in the Codex desktop application so far";
        case ORVCodexFocusStatusIncompatible:
            return "No task in view: the format of the Codex desktop logs changed";
    }
    return focusState.message();
}

std::string titlesText(const std::map<std::string, std::string>& titles) {
    std::string text;
    for (const auto& [threadID, title] : titles) {
        text += text::forTerminal(threadID) + '\t' + text::forTerminal(title) + '\n';
    }
    return text;
}

}  // namespace lines
