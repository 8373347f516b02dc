#pragma once

#include <map>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "app/compaction_ledger.h"

/// The answers of commands as JSON. Scripts rely on them: keys and their order never change. None
/// has a line end.
namespace json {

/// Return the objects of which answers are made; null for what is absent.
std::string snapshot(const std::optional<ORVSessionSnapshot>& snapshot);
std::string focus(const ORVCodexFocusState& focusState);
std::string error(const ORVErrorSlot& error);

/// Returns the answer about one task to a query, which knows files alone.
std::string snapshotAnswer(const std::optional<ORVSessionSnapshot>& snapshot,
                           const ORVErrorSlot& error);

/// Returns the answer about one task, with what the agent says.
std::string taskAnswer(const ORVTaskView& view);

std::string focusAnswer(const ORVCodexFocusState& focusState, const ORVErrorSlot& error);
std::string titlesAnswer(const std::map<std::string, std::string>& titles);
std::string errorAnswer(const ORVError& error);

/// Returns all tasks of the list that could be read.
std::string tasksAnswer(const ORVTaskListView& list);

/// Returns a task's history and its compactions. An error of the view is told only if the request
/// could not be understood.
std::string historyAnswer(const ORVTaskView& view, const ORVHistory& history,
                          const std::vector<app::Compaction>& compactions);

/// `at` is the time stamp of the record; "" for none.
std::string limitsAnswer(const std::vector<ORVRateLimit>& limits, const std::string& at);

/// Returns "2026-01-02T03:04:05.123456789Z". A date outside of the years 0 to 9999 becomes the
/// first or the last second of them.
std::string utcText(ORVFileDate date);

/// Returns the status item with its whole menu as one JSON object, without a line end.
std::string statusItem(const ORVStatusItem& statusItem);

/// Returns the status item in the form that Waybar, i3status-rust and others read:
/// {"text":…,"tooltip":…,"class":…,"percentage":…}. The tooltip holds the visible information
/// lines; the class is unknown, low, medium, high or full. Texts are escaped for Pango's markup.
std::string waybar(const ORVAppDelegate& delegate);

}  // namespace json

/// Answers as text for scripts and status bars: harmless for a terminal, without colours.
namespace lines {

/// Returns a task as one line with tabs: status, date of the family's last change, folder, title,
/// thread identifier and, if wanted, the parent's identifier, which is empty for heads.
std::string tabbedTask(const ORVTaskView& view, bool tellsParent);

/// Returns "Task in view: <thread identifier>", or why no task is in view.
std::string focusText(const ORVCodexFocusState& focusState);

/// Returns one line for every title: thread identifier, tab, title, line feed.
std::string titlesText(const std::map<std::string, std::string>& titles);

}  // namespace lines
