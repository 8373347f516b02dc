// How the results of a refresh are shown: the menu bar's title and the menu's information lines.
// Each rendering sets all of these texts, so that no text of an earlier one survives.
// Tests: tests/app/app_delegate_test.cpp.

#include <array>
#include <cmath>
#include <cstdio>

#include "app/ORVAppDelegate.h"
#include "app/status_title.h"
#include "l10n/placeholders.h"
#include "platform/time_of_day.h"

namespace {

std::string printed(const char* format, double value) {
    std::array<char, 400> text{};  // As long as the largest double.
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

/// The focus line of every focus status, in the order of their numbers.
constexpr const char* kFocusKeys[] = {"focus_task_unavailable", "focus_new_task",
                                      "focus_logs_unavailable", "focus_open_task",
                                      "focus_incompatible"};

}  // namespace

void ORVAppDelegate::renderSnapshot(const ORVSessionSnapshot& snapshot) {
    titleItem_->title = l10n::filled(text("task_format"), {snapshot.title()});
    focusItem_->hidden = true;
    compactionItem_->title =
        snapshot.compactionStatus() == ORVCompactionStatusValid
            ? l10n::filled(text("compaction_format"), {std::to_string(snapshot.compactionCount())})
            : text("compaction_incompatible");
    statusItem_.title = app::statusItemTitle(snapshot);
    statusItem_.percentage.reset();
    if (const ORVContextUsage* usage = app::shownUsage(snapshot)) {
        statusItem_.percentage = usage->percentage();
        contextItem_->title =
            l10n::filled(text("context_format"), {formattedTokenCount(usage->inputTokens()),
                                                  formattedTokenCount(usage->contextWindow()),
                                                  app::wholePercent(usage->percentage())});
    } else {
        contextItem_->title =
            text(snapshot.contextStatus() == ORVContextStatusIncompatible ? "context_incompatible"
                                                                          : "context_waiting");
    }
    updatedItem_->title =
        l10n::filled(text("updated_format"),
                     {platform::mediumTimeOfDay(snapshot.lastUpdated(), localizer_->timeFormat())});
}

void ORVAppDelegate::renderFocusState(const ORVCodexFocusState& focusState) {
    statusItem_.title =
        text(focusState.status() == ORVCodexFocusStatusIncompatible ? "status_update_needed"
                                                                    : "status_loading");
    statusItem_.percentage.reset();
    titleItem_->title = text("task_unavailable");
    focusItem_->hidden = false;
    focusItem_->title = text(kFocusKeys[focusState.status()]);
    contextItem_->title = text("context_placeholder");
    compactionItem_->title = text("compaction_placeholder");
    updatedItem_->title = text("updated_placeholder");
}

void ORVAppDelegate::renderLoading() {
    statusItem_.title = text("status_loading");
    titleItem_->title = text("task_loading");
    focusItem_->hidden = true;
    contextItem_->title = text("context_placeholder");
    compactionItem_->title = text("compaction_placeholder");
    updatedItem_->title = text("updated_placeholder");
}

void ORVAppDelegate::renderLastResults() {
    if (lastSnapshot_) {
        renderSnapshot(*lastSnapshot_);
    } else if (lastFocusState_) {
        renderFocusState(*lastFocusState_);
    } else {
        renderLoading();
    }
}

std::string ORVAppDelegate::formattedTokenCount(std::int64_t count) {
    if (count < 1000) {
        return std::to_string(count);
    }
    const double thousands = static_cast<double>(count) / 1000.0;
    const bool isWhole = std::fabs(thousands - std::round(thousands)) < 0.05;
    return printed(isWhole ? "%.0fk" : "%.1fk", thousands);
}

std::string ORVAppDelegate::statusLine() const {
    const std::string& line = lastSnapshot_ ? lastSnapshot_->title() : focusItem_->title;
    const bool isTitleAlone =
        manualRefreshFeedbackActive_ || (!lastSnapshot_ && focusItem_->hidden) || line.empty();
    return isTitleAlone ? statusItem_.title : statusItem_.title + "  " + line;
}

std::vector<std::string> ORVAppDelegate::informationLines() const {
    std::vector<std::string> lines;
    for (const ORVMenuItem* item :
         {titleItem_, focusItem_, contextItem_, compactionItem_, updatedItem_}) {
        if (!item->hidden) {
            lines.push_back(item->title);
        }
    }
    return lines;
}

std::string ORVAppDelegate::spokenStatus() const {
    const std::string program = statusItem_.toolTip + ", ";
    if (manualRefreshFeedbackActive_) {
        return program + statusItem_.title;
    }
    if (lastSnapshot_) {
        return program + contextItem_->title + ", " + compactionItem_->title;
    }
    return program + statusItem_.title + (focusItem_->hidden ? "" : ", " + focusItem_->title);
}
