// Tests histories, and over random homes that every way to ask for a task gives the same figures.

#include <limits>
#include <random>

#include "app/compaction_ledger.h"
#include "app/figures.h"
#include "sessions/ORVTaskList.h"
#include "tests/sessions/SessionSourceTest.h"

namespace {

class HistoriesTest : public SessionSourceTest {
protected:
    /// Returns the figures of the task, and after them its history.
    static std::string told(ORVCodexSessionSource& from) {
        std::string text =
            app::statusTitle(*from.snapshotForThreadID(kTask, nullptr)).text() + ": ";
        for (const ORVHistoryEvent& event : *from.historyForThreadID(kTask)) {
            text += event.usage ? std::to_string(event.usage->inputTokens()) + " " : "C ";
        }
        return text;
    }

    static std::string described(const std::optional<ORVSessionSnapshot>& found) {
        return found ? found->threadID() + " " + app::statusTitle(*found).text() + " " +
                           std::to_string(found->lastUpdated().seconds) + " " + found->fileURL()
                     : "nothing";
    }
};

TEST_F(HistoriesTest, AHistoryTellsEveryUsageAndEachCompactionOnce) {
    ORVCodexSessionSource recording(disk, clock, "/codex",
                                    {.eventsPerFile = std::numeric_limits<std::size_t>::max()});
    disk.write(fileOf(kTask, "a"),
               tokenCount("10") + compacted("w1") + tokenCount("0") + tokenCount("20") +
                   tokenCount("x") + contextCompacted("1"),
               10);
    disk.write(fileOf(kTask, "b"),
               compacted("w1") + tokenCount("30") + contextCompacted("") + contextCompacted("") +
                   compacted("w2") + compacted("w2"),
               20);
    EXPECT_EQ("C5 · --%: 10 C 20 C 30 C C C ", told(recording));
    EXPECT_EQ("2026-11-24T16:45:21.002Z", recording.historyForThreadID(kTask)->front().at);
    disk.append(fileOf(kTask, "b"), tokenCount("40"));
    EXPECT_EQ("C5 · 0%: 10 C 20 C 30 C C C 40 ", told(recording));
    EXPECT_EQ(nullptr, recording.historyForThreadID(kOther));
}

TEST_F(HistoriesTest, ALongHistoryIsThinnedToItsHighest) {
    ORVCodexSessionSource recording(disk, clock, "/codex", {.eventsPerFile = 64});
    std::string content;
    for (int i = 0; i < 1'000; ++i) {
        content +=
            i == 500 ? compacted("w") : tokenCount(std::to_string(i == 700 ? 272'000 : i + 1));
    }
    disk.write(fileOf(kTask), content);
    const std::string text = told(recording);
    const auto history = recording.historyForThreadID(kTask);
    EXPECT_GE(64U, history->size());
    EXPECT_LE(16U, history->size());
    const auto compactions = app::compactionsOf(*history);
    ASSERT_EQ(1U, compactions.size()) << text;
    EXPECT_EQ(500U, compactions[0].answers);
    EXPECT_EQ(500, compactions[0].before->inputTokens());
    EXPECT_EQ(502, compactions[0].after->inputTokens());
    EXPECT_NE(std::string::npos, text.find(" 272000 ")) << text;
    EXPECT_TRUE(text.starts_with("C1 · 0%: ") && text.ends_with(" 1000 ")) << text;
}

TEST_F(HistoriesTest, WhoeverAsksGetsTheSameFigures) {
    std::mt19937 random(7);
    const std::string kIDs[] = {kTask, kOther, "01A20E72-983B-7E83-81C7-E87B7B63D181",
                                "01a20e72-a408-7c60-a888-3804d9c9faff"};
    for (int round = 0; round < 60; ++round) {
        disk.remove("/codex/sessions");
        for (int file = 0; file < 8; ++file) {
            std::string content = records::sessionMeta("");
            for (int line = 0; line < 6; ++line) {
                const std::string kLines[] = {tokenCount(std::to_string(random() % 300'000)),
                                              compacted("w" + std::to_string(random() % 4)),
                                              contextCompacted(std::to_string(random() % 3)),
                                              records::record("compacted", "{}")};
                content += kLines[random() % 4];
            }
            const std::string path = "/codex/sessions/" + std::to_string(random() % 3) + "/" +
                                     std::to_string(file) + "-" +
                                     (random() % 9 == 0 ? "" : kIDs[random() % 4]) +
                                     (random() % 5 == 0 ? "_" + kIDs[random() % 4] : "") + ".jsonl";
            disk.write(path, content, static_cast<std::int64_t>(random() % 5));
        }
        ORVCodexSessionSource fresh(disk, clock, "/codex");
        ORVTaskList list(disk, clock, "/codex/sessions");
        ASSERT_TRUE(list.refresh(nullptr));
        const std::vector<ORVTask> tasks = list.matching("");
        for (const ORVTask& task : tasks) {
            const std::string& path = task.newestFile().path;
            const auto asked = ORVCodexSessionSource::threadIDFromSessionURL(path)
                                   ? fresh.snapshotForThreadID(task.threadID, nullptr)
                                   : fresh.snapshotForSessionURL(path, nullptr);
            EXPECT_EQ(described(asked), described(source.snapshotForTask(task, nullptr)));
        }
        const auto latest = fresh.latestSnapshotWithError(nullptr);
        EXPECT_EQ(latest->lastUpdated(), tasks.front().newestFile().modifiedAt);
    }
}

}  // namespace
