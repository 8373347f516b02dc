// Why there is nothing to show and what to do about it, and other things that several commands
// tell or find out. Tests: tests/ctl/brimletctl_test.cpp.

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "app/figures.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "platform/locale.h"
#include "platform/program.h"

namespace ctl {
namespace {

constexpr const char* kTryDoctor = "; try: brimletctl doctor";
constexpr const char* kTryTasks = "; try: brimletctl tasks";

void explainSeveral(const Invocation& invocation, const ORVTaskView& view) {
    complain(std::to_string(view.choiceCount) + " tasks have an identifier with " +
             invocation.arguments.task.value + "; give more of it. The newest:");
    for (const ORVTaskChoice& choice : view.choices) {
        note("  " + choice.shortID + "  " +
             app::ageText(app::age(choice.changedAt, invocation.clock.now())) + "  " +
             choice.title);
    }
}

}  // namespace

CodexHome codexHome(const std::optional<std::string>& option) {
    if (option) {
        return {platform::absolutePath(*option), "named by --codex-home"};
    }
    const char* variable = std::getenv("CODEX_HOME");
    if (variable && *variable == '/') {
        return {platform::absolutePath(variable), "named by $CODEX_HOME"};
    }
    return {ORVCodexSessionSource::defaultCodexHome(),
            variable && *variable ? "in the home folder, since $CODEX_HOME is no absolute path"
                                  : "in the home folder"};
}

std::optional<std::string> realFolder(ORVFiles& files, const std::string& folder) {
    auto path = files.realPath(folder);
    if (path && access((*path + "/.").c_str(), X_OK) == 0) {
        return path;
    }
    complain("cannot enter the folder " + folder + ": " + platform::posixError(errno).description +
             kTryTasks);
    return std::nullopt;
}

std::optional<ORVShownTask> realTask(ORVFiles& files, const Arguments& arguments) {
    ORVShownTask task = arguments.task;
    if (task.choice == ORVShownTask::Choice::inFolder) {
        auto folder = realFolder(files, arguments.folder);
        if (!folder) {
            return std::nullopt;
        }
        task.value = std::move(*folder);
    }
    return task;
}

void explainAbsence(Invocation& invocation, const ORVTaskView& view) {
    switch (view.absence) {
        case ORVAbsence::none:
        case ORVAbsence::notInView:
            return;
        case ORVAbsence::noSessionsFolder:
            return complain(reasonForNoSessions(invocation) + kTryDoctor);
        case ORVAbsence::noSessionFile:
            return complain("there is no session file in " +
                            invocation.viewer.sessions().sessionsFolder() + kTryDoctor);
        case ORVAbsence::noSuchTask:
            return complain("there is no session file of the task " +
                            invocation.arguments.task.value + kTryTasks);
        case ORVAbsence::severalTasks:
            return explainSeveral(invocation, view);
        case ORVAbsence::noTaskInFolder:
            return complain("no task works in " +
                            invocation.files->realPath(invocation.arguments.folder).value_or("") +
                            kTryTasks);
        case ORVAbsence::unreadable:
            return complain("cannot read the session file" +
                            (view.error ? ": " + view.error->description : "") + kTryDoctor);
    }
}

void tellOfUnreadable(Invocation& invocation, bool isTaskUnreadable) {
    if (invocation.arguments.format == Format::ownTemplate) {
        return;
    }
    const auto unreadable =
        isTaskUnreadable ? unreadableSessions(invocation) : invocation.viewer.unreadable();
    if (!unreadable.empty()) {
        complain(unreadableText(unreadable) + "; brimletctl doctor tells more");
    }
}

std::vector<ORVUnreadable> unreadableSessions(Invocation& invocation) {
    ORVTaskList& tasks = invocation.viewer.tasks();
    tasks.refresh(nullptr);
    std::vector<ORVUnreadable> unreadable = tasks.tree().unreadable();
    tasks.tree().forEachFile([&](const ORVWalkedFile& file) {
        ORVErrorSlot failure;
        if (!invocation.files->openForReading(file.path, &failure) && failure) {
            unreadable.push_back({file.path, *failure, false});
        }
    });
    return unreadable;
}

std::string unreadableText(const std::vector<ORVUnreadable>& unreadable) {
    const ORVUnreadable& first = unreadable.front();
    const std::string count = std::to_string(unreadable.size());
    return (unreadable.size() == 1 ? "1 folder or file cannot be read: "
                                   : count + " folders or files cannot be read, the first: ") +
           first.path + ": " + first.error.description;
}

std::string reasonForNoSessions(Invocation& invocation) {
    const std::string folder = invocation.viewer.sessions().sessionsFolder();
    ORVErrorSlot error;
    (void)invocation.files->openFolder(folder, ORVFiles::Links::followed, &error);
    return error && error->code != ENOENT
               ? "cannot read the sessions folder " + folder + ": " + error->description
               : "there is no sessions folder " + folder;
}

std::string troubleWithTitles(Invocation& invocation) {
    const ORVErrorSlot& error = invocation.viewer.sessions().titleIndexError();
    return error ? "cannot read the titles in " + invocation.viewer.sessions().titleIndexPath() +
                       ": " + error->description
                 : "";
}

bool isColoured(Colours colours) {
    if (colours != Colours::automatic) {
        return colours == Colours::always;
    }
    return isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR") && !terminalIsDumb();
}

bool terminalIsDumb() {
    const char* const terminal = std::getenv("TERM");
    return !terminal || std::string_view(terminal) == "dumb";
}

std::string filledTemplate(const Invocation& invocation, const ORVTaskView& view) {
    ORVTemplateValues values;
    values.status = app::statusTitle(*view.snapshot).text();
    values.view = &view;
    values.now = invocation.clock.now();
    values.timeFormat = systemLanguage(true).timeFormat;
    return invocation.arguments.ownTemplate->filled(values) + '\n';
}

const ORVLanguage& systemLanguage(bool showsUnicode) {
    const auto languages = platform::preferredLanguages();
    return l10n::languageForTag(languages.empty() || !showsUnicode ? "" : languages.front());
}

}  // namespace ctl
