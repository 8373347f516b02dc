// Tests histories, and over random homes that every way to ask for a task gives the same figures.

#include <limits>
#include <random>

#include "app/compaction_ledger.h"
#include "app/figures.h"
#include "sessions/ORVTaskList.h"
#include "tests/sessions/SessionSourceTest.h"

namespace {

using records::compacted;
using records::contextCompacted;
using records::tokenCount;

class HistoriesTest : public SessionSourceTest {
protected:
    static std::string sessionMeta(const std::string& folder) {
        return R"({"timestamp":"2026-11-24T16:45:20Z","type":"session_meta","payload":{"id":"x","cwd":)" +
               folder + "}}\n";
    }

    void makeTask(const std::string& name, std::int64_t date, const std::string& content) {
        disk.write("/codex/sessions/" + name + ".jsonl", content);
        disk.setDate("/codex/sessions/" + name + ".jsonl", date);
    }

    std::string described(const std::optional<ORVSessionSnapshot>& found) {
        return found ? found->threadID() + " " + app::statusTitle(*found).text() + " " +
                           std::to_string(found->lastUpdated().seconds) + " " + found->fileURL()
                     : "nothing";
    }
};

std::string describedHistory(const ORVHistory& history) {
    std::string text;
    for (const ORVHistoryEvent& event : history) {
        text += event.usage ? std::to_string(event.usage->inputTokens()) + " " : "C ";
    }
    return text;
}

TEST_F(HistoriesTest, AHistoryTellsEveryUsageAndEachCompactionOnce) {
    ORVCodexSessionSource recording(disk, clock, "/codex",
                                    {.eventsPerFile = std::numeric_limits<std::size_t>::max()});
    const auto title = [&] {
        return app::statusTitle(*recording.snapshotForThreadID(kTask, nullptr)).text();
    };
    const std::string first = "/codex/sessions/a-" + std::string(kTask) + ".jsonl";
    const std::string second = "/codex/sessions/b-" + std::string(kTask) + ".jsonl";
    disk.write(first, tokenCount("10") + compacted("w1") + tokenCount("0") + tokenCount("20") +
                          tokenCount("x") + contextCompacted("1"));
    disk.setDate(first, 10);
    disk.write(second, compacted("w1") + tokenCount("30") + contextCompacted("") +
                           contextCompacted("") + compacted("w2") + compacted("w2"));
    disk.setDate(second, 20);
    EXPECT_EQ("C5 · --%", title());
    EXPECT_EQ("10 C 20 C 30 C C C ", describedHistory(*recording.historyForThreadID(kTask)));
    EXPECT_EQ("2026-11-24T16:45:21.002Z", recording.historyForThreadID(kTask)->front().at);
    disk.append(second, tokenCount("40"));
    EXPECT_EQ("C5 · 0%", title());
    EXPECT_EQ("10 C 20 C 30 C C C 40 ", describedHistory(*recording.historyForThreadID(kTask)));
    EXPECT_EQ(nullptr, recording.historyForThreadID(kOther));
}

TEST_F(HistoriesTest, ALongHistoryIsThinnedToItsHighest) {
    ORVCodexSessionSource recording(disk, clock, "/codex", {.eventsPerFile = 64});
    const auto title = [&] {
        return app::statusTitle(*recording.snapshotForThreadID(kTask, nullptr)).text();
    };
    std::string content;
    for (int i = 0; i < 1'000; ++i) {
        content +=
            i == 500 ? compacted("w") : tokenCount(std::to_string(i == 700 ? 272'000 : i + 1));
    }
    disk.write(fileOf(kTask), content);
    EXPECT_EQ("C1 · 0%", title());
    const auto history = recording.historyForThreadID(kTask);
    EXPECT_GE(64U, history->size());
    EXPECT_LE(16U, history->size());
    const std::string text = describedHistory(*history);
    const auto compactions = app::compactionsOf(*history);
    ASSERT_EQ(1U, compactions.size()) << text;
    EXPECT_EQ(500U, compactions[0].answers);
    EXPECT_EQ(500, compactions[0].before->inputTokens());
    EXPECT_EQ(502, compactions[0].after->inputTokens());
    EXPECT_NE(std::string::npos, text.find(" 272000 ")) << text;
    EXPECT_TRUE(text.ends_with(" 1000 ")) << text;
}

TEST_F(HistoriesTest, WhoeverAsksGetsTheSameFigures) {
    std::mt19937 random(7);
    const std::string kIDs[] = {kTask, kOther, "01A20E72-983B-7E83-81C7-E87B7B63D181",
                                "01a20e72-a408-7c60-a888-3804d9c9faff"};
    const std::string kFolders[] = {"\"/\"", "\"/a\"", "\"/a/b\"", "7"};
    for (int round = 0; round < 60; ++round) {
        disk.remove("/codex/sessions");
        for (int file = 0; file < 8; ++file) {
            std::string content = sessionMeta(kFolders[random() % 4]);
            for (int line = 0; line < 6; ++line) {
                const std::string kLines[] = {tokenCount(std::to_string(random() % 300'000)),
                                              compacted("w" + std::to_string(random() % 4)),
                                              contextCompacted(std::to_string(random() % 3)),
                                              R"({"type":"compacted","payload":{}})"
                                              "\n"};
                content += kLines[random() % 4];
            }
            const std::string name = std::to_string(random() % 3) + "/" + std::to_string(file) +
                                     "-" + (random() % 9 == 0 ? "" : kIDs[random() % 4]) +
                                     (random() % 5 == 0 ? "_" + kIDs[random() % 4] : "");
            makeTask(name, static_cast<std::int64_t>(random() % 5), content);
        }
        ORVCodexSessionSource fresh(disk, clock, "/codex");
        ORVTaskList list(disk, clock, "/codex/sessions");
        ASSERT_TRUE(list.refresh(nullptr));
        const std::vector<ORVTask> tasks = list.matching("");
        for (const ORVTask& task : tasks) {
            const std::string figures = described(source.snapshotForTask(task, nullptr));
            if (ORVCodexSessionSource::threadIDFromSessionURL(task.newestFile().path)) {
                EXPECT_EQ(described(fresh.snapshotForThreadID(task.threadID, nullptr)), figures);
            } else {
                EXPECT_EQ(described(fresh.snapshotForSessionURL(task.newestFile().path, nullptr)),
                          figures);
            }
        }
        const auto latest = fresh.latestSnapshotWithError(nullptr);
        EXPECT_EQ(latest->lastUpdated(), tasks.front().newestFile().modifiedAt);
    }
}

}  // namespace
