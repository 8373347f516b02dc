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

/// The commands of brimletctl except `doctor` and `watch`. Each returns the program's exit status.
namespace ctl {

inline constexpr int kAnswered = 0;
inline constexpr int kNothingToShow = 1;  ///< Also when something cannot be read or written.
inline constexpr int kUsageError = 2;

/// The sources of this user's data.
struct Sources {
    explicit Sources(const std::string& codexHome, ORVSessionWants wants = {},
                     std::unique_ptr<ORVFiles> someFiles = platform::makeFiles())
        : files(std::move(someFiles)),
          session(*files, clock, codexHome, wants),
          focus(*files, clock) {}

    std::unique_ptr<ORVFiles> files;
    ORVSystemClock clock;
    ORVCodexSessionSource session;
    ORVCodexFocusLogSource focus;
};

/// Answers with a fixed text.
int showText(std::string_view text);

int showLatest(Sources& sources, const Arguments& arguments);
int showTask(Sources& sources, const Arguments& arguments);
int showHere(Sources& sources, const Arguments& arguments);
int showFocus(Sources& sources, const Arguments& arguments);
int showTitles(Sources& sources, const Arguments& arguments);

/// Shows all tasks (tasks.cpp).
int showTasks(Sources& sources, const Arguments& arguments);

/// Shows a task's history, drawn, as SVG or as JSON (history.cpp).
int showHistory(Sources& sources, const Arguments& arguments);

/// Answers one query a line until the input ends (query.cpp).
int answerQueries(Sources& sources, std::FILE* input);

/// Writes the answer. Returns `status` if that succeeds, kAnswered if the reader has closed its
/// end, which is no failure, and kNothingToShow if writing fails.
int finish(std::string_view answer, int status);

/// Returns, for a person, why there is no snapshot: `whatIsMissing` unless something went wrong.
std::string reason(Sources& sources, const ORVErrorSlot& error, const std::string& whatIsMissing);

/// Returns, for a person, why no session files are found: the sessions folder is missing, or it may
/// not be read.
std::string reasonForNoSessions(Sources& sources);

/// Returns the folder's path without links. Complains and returns none when the folder cannot be
/// entered.
std::optional<std::string> realFolder(ORVFiles& files, const std::string& folder);

}  // namespace ctl
