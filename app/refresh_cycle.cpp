// The main loop: every two seconds, and whenever the user asks, one refresh reads files on the
// refresh queue; its results come back to the UI thread and are rendered there. While a refresh
// that was asked for by hand runs, and for a moment after it, feedback about it is drawn over the
// figures. Tests: tests/app/app_delegate_test.cpp.

#include <new>
#include <utility>

#include "app/ORVAppDelegate.h"

namespace {

constexpr std::chrono::milliseconds kRefreshInterval(2'000);
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

void ORVAppDelegate::applicationDidFinishLaunching() {
    localizer_ =
        std::make_unique<ORVLocalizer>(host_.standardUserDefaults(), host_.preferredLanguages());
    if (showsOnlyEnglish_) {
        localizer_->showOnlyEnglish();
    }
    refreshQueue_ = host_.makeSerialQueue("com.orvellan.brimlet.refresh");
    statusItem_.toolTip = "Brimlet";
    statusItem_.menu = buildMenu();
    applyLocalization();
    request_ = host_.refreshRequest();
    viewer_ = std::make_unique<ORVTaskViewer>(host_.files(), host_.clock(), host_.codexHome(),
                                              request_.wants);
    if (request_.list) {
        listViewer_ = std::make_unique<ORVTaskViewer>(host_.files(), host_.clock(),
                                                      host_.codexHome(), request_.listWants);
        viewer_->findTasksIn(listViewer_->tasks());
    }
    refresh(nullptr);
    host_.runLoop().repeat(kRefreshInterval, [this] { refresh(nullptr); });
}

void ORVAppDelegate::refresh(const ORVMenuItem* sender) {
    if (sender && sender == refreshItem_) {
        manualRefreshPending_ = true;
        showManualRefreshFeedbackForKey("refresh_checking");
    }
    if (!refreshing_) {  // Else the refresh under way serves this request.
        beginRefresh();
    }
}

void ORVAppDelegate::beginRefresh() {
    refreshing_ = true;
    refreshQueue_->dispatch([self = shared_from_this(), request = request_] {
        auto results = std::make_shared<ORVRefreshResults>();
        results->task = request.task;
        if (request.list) {
            try {
                results->list = self->listViewer_->list(*request.list);
            } catch (const std::bad_alloc&) {
                // There is no list until the next refresh.
            }
        }
        results->view = self->viewer_->view(request.task);
        self->host_.runLoop().post([self, results] { self->finishRefresh(std::move(*results)); });
    });
}

void ORVAppDelegate::finishRefresh(ORVRefreshResults&& results) {
    refreshing_ = false;
    const bool isManual = manualRefreshPending_;
    manualRefreshPending_ = false;
    const bool isIncomplete = results.list && !results.list->isComplete;
    lastList_ = std::move(results.list);
    if (results.task == request_.task) {
        lastView_ = std::move(results.view);  // Without a snapshot the old one goes, too.
    }
    renderLastResults();
    if (isManual) {
        finishManualRefreshFeedbackWithKey(lastError() ? "refresh_failed" : "refresh_complete");
    } else {
        applyManualRefreshFeedbackIfNeeded();
    }
    if (std::exchange(refreshAgain_, false) || isIncomplete) {
        beginRefresh();
    }
}

void ORVAppDelegate::showTask(ORVShownTask task) {
    if (request_.task == task) {
        return;
    }
    request_.task = std::move(task);
    lastView_.reset();
    renderLastResults();
    refreshAgain_ = refreshing_;
    refresh(nullptr);
}

void ORVAppDelegate::showList(ORVListRequest list) {
    request_.list = std::move(list);
    refreshAgain_ = refreshing_;
    refresh(nullptr);
}

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
