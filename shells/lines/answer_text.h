#pragma once

#include <map>
#include <string>

#include "app/ORVTaskView.h"
#include "app/ORVTemplate.h"

/// Answers as text for scripts and status bars: harmless for a terminal, without colours.
namespace lines {

/// Fills the user's template.
std::string filledTemplate(const ORVTemplate& ownTemplate, const ORVTaskView& view,
                           ORVClock::TimePoint now, const ORVTimeFormat& timeFormat);

/// Returns a task as one line with tabs: status, date of the family's last change, folder, title,
/// thread identifier and, if wanted, the parent's identifier, which is empty for heads.
std::string tabbedTask(const ORVTaskView& view, bool tellsParent);

/// Returns "Task in view: <thread identifier>", or why no task is in view.
std::string focusText(const ORVCodexFocusState& focusState);

/// Returns one line for every title: thread identifier, tab, title, line feed.
std::string titlesText(const std::map<std::string, std::string>& titles);

}  // namespace lines
