#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "app/ORVTaskViewer.h"
#include "ctl/arguments.h"
#include "l10n/languages.h"
#include "platform/clock.h"
#include "platform/confinement.h"
#include "platform/files.h"

/// The commands of brimletctl. Each returns the program's exit status.
namespace ctl {

/// The folder in which the agent keeps its files.
struct CodexHome {
    std::string path;    ///< Absolute, without a slash at its end.
    std::string origin;  ///< Why it is this one, for a person: "named by $CODEX_HOME".
};

/// Returns the folder that the option names, else $CODEX_HOME if that is an absolute path, else
/// ".codex" in the home folder.
CodexHome codexHome(const std::optional<std::string>& option);

/// A call with everything that it may need to be answered.
struct Invocation {
    Invocation(const Arguments& someArguments, CodexHome someHome)
        : Invocation(someArguments, std::move(someHome), wantsOf(someArguments)) {}

    const Arguments& arguments;
    const CodexHome home;
    const std::unique_ptr<ORVFiles> files = platform::makeFiles();
    const ORVSystemClock clock;
    ORVTaskViewer viewer;

private:
    Invocation(const Arguments& someArguments, CodexHome someHome, ORVTaskWants wants)
        : arguments(someArguments),
          home(std::move(someHome)),
          viewer(*files, clock, home.path, wants) {}
    static ORVTaskWants wantsOf(const Arguments& arguments);
};

// One task and lists (commands.cpp, tasks.cpp, history.cpp)

int showTask(Invocation& invocation);  ///< latest, task, here
int showTasks(Invocation& invocation);
int showHistory(Invocation& invocation);
int showLimits(Invocation& invocation);
int showFocus(Invocation& invocation);
int showTitles(Invocation& invocation);

/// Answers one query a line until the input ends (query.cpp).
int answerQueries(ORVTaskViewer& viewer, std::FILE* input);

/// Shows every place that the program reads, what was found there, and what `watch` would show
/// (doctor.cpp). Returns kAnswered when a task can be shown, else kNothingToShow.
int doctor(Invocation& invocation, const ORVConfinement& confinement);

/// Run the whole application on this terminal, or as lines on standard output, until it is stopped
/// (watch.cpp). When a read of a file hangs at that moment, the process is ended by _exit instead.
int watch(const Arguments& arguments, const std::string& codexHome);
int top(const Arguments& arguments, const std::string& codexHome);

// What several commands need (reasons.cpp)

/// Returns the task that is asked for, with the folder's path without links. Complains and returns
/// none when the folder cannot be entered.
std::optional<ORVShownTask> realTask(ORVFiles& files, const Arguments& arguments);
std::optional<std::string> realFolder(ORVFiles& files, const std::string& folder);

/// Complains that there is no task to show, why, and what to do.
void explainAbsence(Invocation& invocation, const ORVTaskView& view);

/// Complains of folders and files that may have changed an answer but could not be read; of every
/// one there is where a task itself could not be read.
void tellOfUnreadable(Invocation& invocation, bool isTaskUnreadable);

/// Opens every session file, since a file that cannot be read may be an old one of its task.
std::vector<ORVUnreadable> unreadableSessions(Invocation& invocation);

/// Returns how many of them there are, at least one, and which is the first, and why.
std::string unreadableText(const std::vector<ORVUnreadable>& unreadable);

/// Returns, for a person, why no session files are found: the sessions folder is missing, or it may
/// not be read.
std::string reasonForNoSessions(Invocation& invocation);

/// Returns why the index of titles, which exists, could not be read when it was last asked for; ""
/// when it could, or there is none.
std::string troubleWithTitles(Invocation& invocation);

/// Fills the user's template, for a task that was found, as a line.
std::string filledTemplate(const Invocation& invocation, const ORVTaskView& view);

/// Whether text on standard output is to be coloured.
bool isColoured(Colours colours);

/// Whether TERM names no terminal that understands control sequences.
bool terminalIsDumb();

/// Returns the language of this system's user, which a command that stores nothing speaks; English
/// where only ASCII can be shown.
const ORVLanguage& systemLanguage(bool showsUnicode);

}  // namespace ctl
