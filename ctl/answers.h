#pragma once

#include <map>
#include <optional>
#include <string>

#include "focus/ORVCodexFocusState.h"
#include "platform/ORVError.h"
#include "sessions/ORVSessionSnapshot.h"

/// The answers of brimletctl as JSON values and as text for people; no line ends. Scripts rely on
/// the JSON; its keys and their order are fixed.
namespace ctl {

using Titles = std::map<std::string, std::string>;

std::string snapshotJSON(const std::optional<ORVSessionSnapshot>& snapshot);
std::string focusJSON(const ORVCodexFocusState& focusState);
std::string titlesJSON(const Titles& titles);
std::string errorJSON(const ORVErrorSlot& error);

/// Whole answers: an object without a line feed.
std::string snapshotAnswer(const std::optional<ORVSessionSnapshot>& snapshot,
                           const ORVErrorSlot& error);
std::string focusAnswer(const ORVCodexFocusState& focusState, const ORVErrorSlot& error);
std::string titlesAnswer(const Titles& titles);

/// "C3 · 47%  Fix the tests"
std::string snapshotText(const ORVSessionSnapshot& snapshot);

/// "Task in view: <thread identifier>", or why none is.
std::string focusText(const ORVCodexFocusState& focusState);

/// Thread identifier, tab, title, line feed; one line for every title.
std::string titlesText(const Titles& titles);

}  // namespace ctl
