#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "focus/ORVCodexFocusLogSource.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "sessions/ORVCodexSessionSource.h"

/// The calls of brimletctl. Each returns the program's exit status.
namespace ctl {

inline constexpr int kAnswered = 0;
inline constexpr int kNothingToShow = 1;  ///< Or it cannot be read, or the answer not be written.
inline constexpr int kUsageError = 2;

enum class Format { text, json };

/// The sources of this user's data, for the time of one call.
struct Sources {
    Sources() : Sources(platform::makeFiles()) {}
    explicit Sources(std::unique_ptr<ORVFiles> someFiles)
        : files(std::move(someFiles)), session(*files, clock), focus(*files) {}

    std::unique_ptr<ORVFiles> files;
    ORVSystemClock clock;
    ORVCodexSessionSource session;
    ORVCodexFocusLogSource focus;
};

/// A fixed text, as the answer.
int showText(std::string_view text);

int showLatest(Sources& sources, Format format);
int showTask(Sources& sources, const std::string& threadID, Format format);
int showFocus(Sources& sources, Format format);
int showTitles(Sources& sources, Format format);

/// Answers one query a line until the input ends (query.cpp).
int answerQueries(Sources& sources, std::FILE* input);

}  // namespace ctl
