#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "ctl/arguments.h"
#include "focus/ORVCodexFocusLogSource.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVCodexSessionSource.h"

/// The calls of brimletctl. Each returns the program's exit status.
namespace ctl {

inline constexpr int kAnswered = 0;
inline constexpr int kNothingToShow = 1;  ///< Or it cannot be read, or the answer not be written.
inline constexpr int kUsageError = 2;

/// The sources of this user's data, for the time of one call.
struct Sources {
    explicit Sources(const std::string& codexHome) : Sources(codexHome, platform::makeFiles()) {}
    Sources(const std::string& codexHome, std::unique_ptr<ORVFiles> someFiles)
        : files(std::move(someFiles)), session(*files, clock, codexHome), focus(*files) {}

    std::unique_ptr<ORVFiles> files;
    ORVSystemClock clock;
    ORVCodexSessionSource session;
    ORVCodexFocusLogSource focus;
};

/// A fixed text, as the answer.
int showText(std::string_view text);

int showLatest(Sources& sources, const Arguments& arguments);
int showTask(Sources& sources, const Arguments& arguments);
int showHere(Sources& sources, const Arguments& arguments);
int showFocus(Sources& sources, const Arguments& arguments);
int showTitles(Sources& sources, const Arguments& arguments);

/// All tasks, read by as many threads as there are processors (tasks.cpp).
int showTasks(Sources& sources, const Arguments& arguments, const std::string& codexHome);

/// A task's history, drawn or as JSON (history.cpp).
int showHistory(Sources& sources, const Arguments& arguments);

/// Answers one query a line until the input ends (query.cpp).
int answerQueries(Sources& sources, std::FILE* input);

/// Writes the answer. `status` is the exit status when that succeeds; a reader that left is no
/// failure.
int finish(std::string_view answer, int status);

/// Why there is no snapshot, in words for a person; `whatIsMissing` where nothing went wrong.
std::string reason(Sources& sources, const ORVErrorSlot& error, const std::string& whatIsMissing);

/// Why the session files cannot be found: a folder that is missing and one that may not be read are
/// told apart, and named.
std::string reasonForNoSessions(Sources& sources);

/// The real path of the folder; none, after a complaint, where it cannot be entered.
std::optional<std::string> realFolder(ORVFiles& files, const std::string& folder);

}  // namespace ctl
