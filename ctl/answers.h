#pragma once

#include <map>
#include <optional>
#include <string>

#include "app/ORVTemplate.h"
#include "ctl/commands.h"
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

/// The snapshot object with one more key, "folder".
std::string taskJSON(const ORVSessionSnapshot& snapshot, const std::optional<std::string>& folder);

/// "C3 · 47%  Fix the tests"; with colours the percentage has one.
std::string snapshotText(const ORVSessionSnapshot& snapshot, bool isColored);

/// The status-item title, with the percentage in its colour where colours are wanted.
std::string statusText(const ORVSessionSnapshot& snapshot, bool isColored);

/// "2026-01-02T03:04:05.123456789Z". The first or last second of a year with four digits stands for
/// a date outside of them.
std::string utcText(ORVFileDate date);

/// The user's template, filled from the snapshot; its folder is looked up only where the template
/// names it.
std::string filledTemplate(const ORVTemplate& ownTemplate, const ORVSessionSnapshot& snapshot,
                           Sources& sources);

/// "Task in view: <thread identifier>", or why none is.
std::string focusText(const ORVCodexFocusState& focusState);

/// Thread identifier, tab, title, line feed; one line for every title.
std::string titlesText(const Titles& titles);

}  // namespace ctl
