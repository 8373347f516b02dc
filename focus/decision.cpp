// Turns the current event into the answer to the application's question: which task is in view.
// Tests: tests/focus/focus_test.cpp.

#include "focus/ORVCodexFocusLogSource.h"
#include "platform/home_folder.h"

ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files)
    : ORVCodexFocusLogSource(files, platform::homeFolder() + "/Library/Logs/com.openai.codex") {}

ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files, std::string logsRoot)
    : ORVCodexFocusLogSource(files, std::move(logsRoot), installedCodexInfoPlistURL(files)) {}

ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files, std::string logsRoot,
                                               std::string codexInfoPlistURL)
    : files_(files),
      logsRoot_(std::move(logsRoot)),
      codexInfoPlistURL_(std::move(codexInfoPlistURL)) {}

ORVCodexFocusState ORVCodexFocusLogSource::currentFocusStateWithError(ORVErrorSlot* error) {
    auto version = installedCodexVersion();
    const auto answer = [&](ORVCodexFocusStatus status, const char* message,
                            std::optional<std::string> threadID = std::nullopt) {
        return ORVCodexFocusState(status, std::move(threadID), std::move(version), message);
    };
    const std::vector<std::string> urls = logFileURLsWithError(error);
    if (urls.empty()) {
        return answer(ORVCodexFocusStatusLogsUnavailable, "没有找到 Codex 桌面日志");
    }
    if (initialized_) {
        consumeUpdatesFromLogURLs(urls, error);
    } else {
        initializeFromLogURLs(urls, error);
    }
    if (!latestEvent_) {
        return answer(ORVCodexFocusStatusNoFocusRecord, "尚未捕获 Codex 任务切换记录");
    }
    if (latestEvent_->incompatibleFormat) {
        return answer(ORVCodexFocusStatusIncompatible, "Codex 会话日志格式已变化");
    }
    if (latestEvent_->waitingForThread) {
        return answer(ORVCodexFocusStatusNewTask, "新任务正在建立会话");
    }
    return answer(ORVCodexFocusStatusTaskInView, "已同步当前 Codex 任务", latestEvent_->threadID);
}

void ORVCodexFocusLogSource::acceptEventIfNewer(std::shared_ptr<ORVFocusLogEvent> event) {
    if (event && (!latestEvent_ || event->timestamp >= latestEvent_->timestamp)) {
        latestEvent_ = std::move(event);
    }
}
