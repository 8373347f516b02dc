// What the menu bar and the refresh item show after the user has asked for a refresh: "checking",
// then for a moment whether it succeeded. Feedback is drawn over whatever is rendered meanwhile.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/ORVAppDelegate.h"

namespace {

constexpr std::chrono::milliseconds kFeedbackTime(1'200);

const char* imageForKey(std::string_view key) {
    if (key == "refresh_complete") {
        return "checkmark.circle.fill";
    }
    if (key == "refresh_failed") {
        return "exclamationmark.triangle.fill";
    }
    if (key == "refresh_access_required") {
        return "lock.fill";
    }
    return "arrow.triangle.2.circlepath";
}

}  // namespace

void ORVAppDelegate::showManualRefreshFeedbackForKey(const std::string& key) {
    ++manualRefreshFeedbackGeneration_;
    manualRefreshFeedbackKey_ = key;
    applyManualRefreshFeedbackIfNeeded();
}

void ORVAppDelegate::finishManualRefreshFeedbackWithKey(const std::string& key) {
    showManualRefreshFeedbackForKey(key);
    const std::uint64_t generation = manualRefreshFeedbackGeneration_;
    host_.runLoop().postAfter(kFeedbackTime, [self = shared_from_this(), generation] {
        if (self->manualRefreshFeedbackGeneration_ != generation) {
            return;  // Newer feedback is on display.
        }
        self->manualRefreshFeedbackKey_.reset();
        self->refreshItem_->enabled = true;
        self->applyLocalization();
    });
}

void ORVAppDelegate::applyManualRefreshFeedbackIfNeeded() {
    if (!manualRefreshFeedbackActive()) {
        return;
    }
    const std::string feedback = text(*manualRefreshFeedbackKey_);
    statusItem_.title = feedback;
    refreshItem_->enabled = false;
    setTitleAndImage(*refreshItem_, feedback, imageForKey(*manualRefreshFeedbackKey_));
}
