#pragma once

#include <map>
#include <optional>
#include <string>

#include "app/ORVTemplate.h"
#include "ctl/commands.h"
#include "focus/ORVCodexFocusState.h"
#include "platform/ORVError.h"
#include "sessions/ORVSessionSnapshot.h"

/// The answers of brimletctl, as JSON and as text for people. Scripts rely on the JSON: its keys
/// and their order never change. Callers add line feeds, except to titlesText.
namespace ctl {

using Titles = std::map<std::string, std::string>;

std::string snapshotJSON(const std::optional<ORVSessionSnapshot>& snapshot);
std::string focusJSON(const ORVCodexFocusState& focusState);
std::string titlesJSON(const Titles& titles);
std::string errorJSON(const ORVErrorSlot& error);

/// Return whole answers, each an object with the value and the error.
std::string snapshotAnswer(const std::optional<ORVSessionSnapshot>& snapshot,
                           const ORVErrorSlot& error);
std::string focusAnswer(const ORVCodexFocusState& focusState, const ORVErrorSlot& error);
std::string titlesAnswer(const Titles& titles);

/// Returns the snapshot object with one more key, "folder".
std::string taskJSON(const ORVSessionSnapshot& snapshot, const std::optional<std::string>& folder);

/// Returns "C3 · 47%  Fix the tests", with a colour for the percentage if colours are wanted.
std::string snapshotText(const ORVSessionSnapshot& snapshot, bool isColored);

/// Returns "2026-01-02T03:04:05.123456789Z". A date outside of the years 0 to 9999 becomes the
/// first or the last second of them.
std::string utcText(ORVFileDate date);

/// Fills the user's template from the snapshot. The folder is looked up only if the template names
/// it. The time of day is written in the system's language: only `watch` reads the chosen one.
std::string filledTemplate(const ORVTemplate& ownTemplate, const ORVSessionSnapshot& snapshot,
                           Sources& sources);

/// Returns "Task in view: <thread identifier>", or why no task is in view.
std::string focusText(const ORVCodexFocusState& focusState);

/// Returns one line for every title: thread identifier, tab, title, line feed.
std::string titlesText(const Titles& titles);

}  // namespace ctl
