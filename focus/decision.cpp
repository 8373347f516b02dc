// Turns the current event into the answer to the application's question: which task is in view. The
// answer also tells the version of the installed desktop application. Tests:
// tests/focus/focus_test.cpp.

#include "focus/ORVCodexFocusLogSource.h"
#include "platform/program.h"

namespace {

constexpr const char* kInfoPlistPaths[] = {"/Applications/Codex.app/Contents/Info.plist",
                                           "/Applications/ChatGPT.app/Contents/Info.plist"};

/// No application's property list is nearly as large. A larger file counts as absent.
constexpr std::size_t kInfoPlistLimitBytes = 256 * 1024;

const ORVMarkerSearch& markers() {
    static const ORVMarkerSearch kSearch(focus::kMarkers);
    return kSearch;
}

}  // namespace

ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock)
    : ORVCodexFocusLogSource(files, clock,
                             platform::homeFolder() + "/Library/Logs/com.openai.codex") {}

ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock,
                                               std::string logsRoot)
    : ORVCodexFocusLogSource(files, clock, std::move(logsRoot), installedCodexInfoPlistURL(files)) {
}

/// A line with NULs is valid text, so it must be read, unless it is too long.
ORVCodexFocusLogSource::ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock,
                                               std::string logsRoot, std::string infoPlistPath)
    : files_(files),
      follower_(files, clock, markers(), ORVFileFollower::NULs::mayMatter),
      logsRoot_(std::move(logsRoot)),
      infoPlistPath_(std::move(infoPlistPath)) {}

ORVCodexFocusState ORVCodexFocusLogSource::currentFocusStateWithError(ORVErrorSlot* error) {
    auto version = installedCodexVersion();
    const auto answer = [&](ORVCodexFocusStatus status, const char* message,
                            std::optional<std::string> threadID = std::nullopt) {
        return ORVCodexFocusState(status, std::move(threadID), std::move(version), message);
    };
    const std::vector<std::string> paths = logFileURLsWithError(error);
    if (paths.empty()) {
        return answer(ORVCodexFocusStatusLogsUnavailable, "没有找到 Codex 桌面日志");
    }
    if (initialized_) {
        consumeUpdatesFromLogURLs(paths, error);
    } else {
        initializeFromLogURLs(paths, error);
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

std::string ORVCodexFocusLogSource::installedCodexInfoPlistURL(ORVFiles& files) {
    for (const char* path : kInfoPlistPaths) {
        if (files.itemExists(path)) {
            return path;
        }
    }
    return kInfoPlistPaths[0];
}

std::optional<std::string> ORVCodexFocusLogSource::installedCodexVersion() {
    const auto list =
        platform::contentsOfFile(files_, infoPlistPath_, kInfoPlistLimitBytes, nullptr);
    return list ? platform::propertyListString(*list, "CFBundleShortVersionString") : std::nullopt;
}
