// What the results of a refresh look like: the menu bar's title and the menu's information lines.
// Each rendering sets every text that it owns, so that none of an earlier one survives.

#include <array>
#include <cmath>
#include <cstdio>
#include <initializer_list>

#include "app/ORVAppDelegate.h"
#include "app/status_title.h"
#include "platform/time_of_day.h"

namespace {

/// Fills a format's placeholders (%@, %ld, %.0f) with these texts in turn; "%%" is a percent sign.
std::string filled(std::string_view format, std::initializer_list<std::string> values) {
    constexpr std::string_view kPlaceholders[] = {"%@", "%ld", "%.0f"};
    std::string result;
    const std::string* value = values.begin();
    while (!format.empty()) {
        std::size_t used = 1;
        if (format.starts_with("%%")) {
            used = 2;
            result += '%';
        } else {
            std::string_view piece = format.substr(0, 1);
            for (const std::string_view placeholder : kPlaceholders) {
                if (format.starts_with(placeholder) && value != values.end()) {
                    used = placeholder.size();
                    piece = *value++;
                    break;
                }
            }
            result += piece;
        }
        format.remove_prefix(used);
    }
    return result;
}

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
    titleItem_->title = filled(text("task_format"), {snapshot.title()});
    focusItem_->hidden = true;
    compactionItem_->title =
        snapshot.compactionStatus() == ORVCompactionStatusValid
            ? filled(text("compaction_format"), {std::to_string(snapshot.compactionCount())})
            : text("compaction_incompatible");
    statusItem_.title = app::statusItemTitle(snapshot);
    statusItem_.percentage.reset();
    if (const ORVContextUsage* usage = app::shownUsage(snapshot)) {
        statusItem_.percentage = usage->percentage();
        contextItem_->title =
            filled(text("context_format"), {formattedTokenCount(usage->inputTokens()),
                                            formattedTokenCount(usage->contextWindow()),
                                            printed("%.0f", usage->percentage())});
    } else {
        contextItem_->title =
            text(snapshot.contextStatus() == ORVContextStatusIncompatible ? "context_incompatible"
                                                                          : "context_waiting");
    }
    updatedItem_->title =
        filled(text("updated_format"),
               {platform::mediumTimeOfDay(snapshot.lastUpdated(), localizer_->locale())});
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
