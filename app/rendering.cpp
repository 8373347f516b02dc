// How the results of a refresh are shown: the menu bar's title and the menu's information lines.
// Each rendering sets all of these texts, so that no text of an earlier one survives.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/ORVAppDelegate.h"
#include "l10n/languages.h"
#include "platform/locale.h"

namespace {

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
    statusItem_.title = app::statusTitle(snapshot).text();
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
    renderAbsence(focusState.status());
}

void ORVAppDelegate::renderAbsence(ORVCodexFocusStatus status) {
    statusItem_.title =
        text(status == ORVCodexFocusStatusIncompatible ? "status_update_needed" : "status_loading");
    statusItem_.percentage.reset();
    titleItem_->title = text("task_unavailable");
    focusItem_->hidden = false;
    focusItem_->title = text(kFocusKeys[status]);
    renderPlaceholders();
}

void ORVAppDelegate::renderLoading() {
    statusItem_.title = text("status_loading");
    titleItem_->title = text("task_loading");
    focusItem_->hidden = true;
    renderPlaceholders();
}

void ORVAppDelegate::renderPlaceholders() {
    contextItem_->title = text("context_placeholder");
    compactionItem_->title = text("compaction_placeholder");
    updatedItem_->title = text("updated_placeholder");
}

void ORVAppDelegate::renderLastResults() {
    if (!lastView_) {
        renderLoading();
    } else if (lastView_->snapshot) {
        renderSnapshot(*lastView_->snapshot);
    } else {
        renderAbsence(lastView_->focusStatus());
    }
}

const std::optional<ORVSessionSnapshot>& ORVAppDelegate::lastSnapshot() const {
    static const std::optional<ORVSessionSnapshot> kNone;
    return lastView_ ? lastView_->snapshot : kNone;
}

std::shared_ptr<const ORVCodexFocusState> ORVAppDelegate::lastFocusState() const {
    return lastView_ ? lastView_->focusState : nullptr;
}

const ORVErrorSlot& ORVAppDelegate::lastError() const {
    static const ORVErrorSlot kNone;
    return lastView_ ? lastView_->error : kNone;
}

std::shared_ptr<const ORVHistory> ORVAppDelegate::lastHistory() const {
    return lastView_ ? lastView_->history : nullptr;
}

std::string ORVAppDelegate::statusLine() const {
    const std::string& line = lastSnapshot() ? lastSnapshot()->title() : focusItem_->title;
    const bool isTitleAlone =
        manualRefreshFeedbackActive() || (!lastSnapshot() && focusItem_->hidden) || line.empty();
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
    if (manualRefreshFeedbackActive()) {
        return program + statusItem_.title;
    }
    if (lastSnapshot()) {
        return program + contextItem_->title + ", " + compactionItem_->title;
    }
    return program + statusItem_.title + (focusItem_->hidden ? "" : ", " + focusItem_->title);
}

std::string ORVAppDelegate::advice() const {
    if (!lastView_ || lastView_->snapshot) {
        return {};
    }
    const bool wouldLatestShow =
        lastView_->absence == ORVAbsence::notInView && lastView_->hasSessionFiles;
    return l10n::filled(words().tryCall, {std::string("brimletctl ") +
                                          (wouldLatestShow ? "watch --latest" : "doctor")});
}
