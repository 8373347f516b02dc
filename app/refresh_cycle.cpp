// The main loop: every two seconds, and whenever the user asks, one refresh reads files on the
// refresh queue; its results come back to the UI thread and are rendered there.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/ORVAppDelegate.h"

namespace {

constexpr std::chrono::milliseconds kRefreshInterval(2'000);

}  // namespace

void ORVAppDelegate::applicationDidFinishLaunching() {
    localizer_ = std::make_unique<ORVLocalizer>(host_.standardUserDefaults());
    if (showsOnlyEnglish_) {
        localizer_->showOnlyEnglish();
    }
    refreshQueue_ = host_.makeSerialQueue("com.orvellan.brimlet.refresh");
    statusItem_.toolTip = "Brimlet";
    statusItem_.menu = buildMenu();
    applyLocalization();
    request_ = host_.refreshRequest();
    source_ = std::make_unique<ORVCodexSessionSource>(
        host_.files(), host_.clock(), host_.codexHome(), ORVSessionWants{request_.eventsPerFile});
    focusSource_ = std::make_unique<ORVCodexFocusLogSource>(host_.files(), host_.clock());
    refresh(nullptr);
    refreshTimer_ =
        host_.runLoop().makeRepeatingTimer(kRefreshInterval, [this] { refresh(nullptr); });
}

void ORVAppDelegate::refresh(const ORVMenuItem* sender) {
    if (sender && sender == refreshItem_) {
        manualRefreshPending_ = true;
        showManualRefreshFeedbackForKey("refresh_checking");
    }
    if (refreshing_) {
        return;  // The refresh under way serves this request.
    }
    refreshing_ = true;
    refreshQueue_->dispatch([self = shared_from_this()] {
        auto results = std::make_shared<ORVRefreshResults>(
            app::refreshFromFiles(self->request_, *self->focusSource_, *self->source_));
        self->host_.runLoop().post([self, results] { self->finishRefresh(std::move(*results)); });
    });
}

void ORVAppDelegate::finishRefresh(ORVRefreshResults&& results) {
    refreshing_ = false;
    const bool isManual = manualRefreshPending_;
    manualRefreshPending_ = false;
    lastFocusState_ = std::move(results.focusState);
    lastError_ = std::move(results.error);
    lastSnapshot_ = std::move(results.snapshot);  // Without a snapshot the old one goes, too.
    lastFolder_ = std::move(results.folder);
    lastHistory_ = std::move(results.history);
    renderLastResults();
    if (isManual) {
        finishManualRefreshFeedbackWithKey(lastError_ ? "refresh_failed" : "refresh_complete");
    } else {
        applyManualRefreshFeedbackIfNeeded();
    }
}
