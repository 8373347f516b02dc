#include <gtest/gtest.h>

#include "app/refresh_step.h"
#include "app/status_title.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

namespace {

constexpr auto kValid = ORVCompactionStatusValid;

ORVSessionSnapshot snapshotWith(std::int64_t compactions, ORVCompactionStatus compactionStatus,
                                std::optional<ORVContextUsage> usage,
                                ORVContextStatus contextStatus = ORVContextStatusAvailable) {
    return {"t", "id", "/x", compactions, usage, contextStatus, compactionStatus, {}};
}

TEST(StatusTitleTest, CompactionsThenTheShareInUse) {
    const ORVContextUsage usage(128'000, 272'000);
    const std::pair<const char*, ORVSessionSnapshot> kCases[] = {
        {"C3 · 47%", snapshotWith(3, kValid, usage)},
        {"C0 · 150%", snapshotWith(0, kValid, ORVContextUsage(150, 100))},
        {"C0 · 0%", snapshotWith(0, kValid, ORVContextUsage(5, 0))},
        {"C– · 47%", snapshotWith(3, ORVCompactionStatusIncompatible, usage)},
        {"C3 · --%", snapshotWith(3, kValid, std::nullopt)},
        {"C3 · --%", snapshotWith(3, kValid, usage, ORVContextStatusIncompatible)}};
    for (const auto& [title, snapshot] : kCases) {
        EXPECT_EQ(title, app::statusItemTitle(snapshot));
    }
}

/// A session source that tells what it was asked and whether it leaves an error.
class RecordingSource final : public ORVAgentSessionSource {
public:
    std::string asked;
    bool fails = false;

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot*) override { return {}; }
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override {
        asked = threadID;
        if (fails) {
            storeErrorIfEmpty(error, {"Orvellan", 2, ""});
            return {};
        }
        return snapshotWith(0, kValid, {});
    }
    std::map<std::string, std::string> threadTitles() override { return {}; }
};

TEST(RefreshStepTest, ASnapshotIsAskedForOnlyWhileATaskIsInView) {
    MemoryFiles disk;
    ORVCodexFocusLogSource focusSource(disk, "/logs", "/Info.plist");
    RecordingSource source;
    const auto refresh = [&](int failingCall) {
        source.asked.clear();
        disk.failingCall = failingCall == 0 ? 0 : disk.calls + failingCall;
        return app::refreshFromFiles(focusSource, source);
    };
    constexpr int kAttributesOfTheLog = 3;  // After the property list and the walk.
    ORVRefreshResults results = refresh(0);
    EXPECT_EQ(ORVCodexFocusStatusLogsUnavailable, results.focusState.status());
    EXPECT_EQ("", source.asked);
    EXPECT_EQ(ENOENT, results.error->code);

    disk.append("/logs/main.log", records::log("1 activity TASK"));
    results = refresh(0);
    EXPECT_EQ(records::kTask, source.asked);
    EXPECT_TRUE(results.snapshot);
    EXPECT_FALSE(results.error);
    results = refresh(kAttributesOfTheLog);
    EXPECT_TRUE(results.snapshot);
    EXPECT_EQ(EIO, results.error->code) << "the focus source's error stands beside a snapshot";
    source.fails = true;
    results = refresh(kAttributesOfTheLog);
    EXPECT_FALSE(results.snapshot);
    EXPECT_EQ(EIO, results.error->code) << "and before a missing task";
    EXPECT_EQ(2, refresh(0).error->code);

    disk.append("/logs/main.log", records::log("2 activity client-new-thread:1"));
    results = refresh(0);
    EXPECT_EQ("", source.asked);
    EXPECT_FALSE(results.snapshot);
    EXPECT_FALSE(results.error);
}

}  // namespace
