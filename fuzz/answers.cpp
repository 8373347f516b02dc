#include "fuzz/answers.h"

#include "fuzz/expect.h"
#include "fuzz/model/SessionModel.h"

namespace fuzz {
namespace {

std::string figures(const std::optional<ORVContextUsage>& usage, ORVContextStatus contextStatus,
                    std::int64_t compactions, ORVCompactionStatus compactionStatus) {
    std::optional<std::pair<std::int64_t, std::int64_t>> numbers;
    if (usage) {
        numbers = {usage->inputTokens(), usage->contextWindow()};
        expect(usage->inputTokens() >= 1 && usage->contextWindow() >= 1, "usage is in range");
    }
    expect(contextStatus != ORVContextStatusAvailable || usage, "what is available is there");
    return model::described(numbers, contextStatus, compactions, compactionStatus);
}

}  // namespace

std::string described(const std::optional<ORVSessionSnapshot>& snapshot) {
    if (!snapshot) {
        return "none";
    }
    return model::described(snapshot->title(), snapshot->threadID(), snapshot->fileURL(),
                            figures(snapshot->contextUsage(), snapshot->contextStatus(),
                                    snapshot->compactionCount(), snapshot->compactionStatus()),
                            snapshot->lastUpdated());
}

std::string described(const ORVSessionParseState& state) {
    const auto identified = static_cast<std::int64_t>(state.compactionIdentifiers.size());
    expect(state.compactionCount == identified + state.anonymousCompactionCount,
           "the count is the sum of both kinds");
    return figures(state.contextUsage, state.contextStatus, state.compactionCount,
                   state.compactionStatus);
}

std::string described(const ORVCodexFocusState& focusState) {
    static constexpr const char* kMessages[] = {
        "已同步当前 Codex 任务", "新任务正在建立会话", "没有找到 Codex 桌面日志",
        "尚未捕获 Codex 任务切换记录", "Codex 会话日志格式已变化"};
    expect(focusState.message() == kMessages[focusState.status()], "the message is the status's");
    const auto& threadID = focusState.threadID();
    return std::to_string(focusState.status()) + (threadID ? ' ' + *threadID : "");
}

std::string described(const ORVErrorSlot& error) {
    return error ? error->domain + ' ' + std::to_string(error->code) : "";
}

}  // namespace fuzz
