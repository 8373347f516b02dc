// Tests tasks, working folders and histories over random homes: every way to ask for a task must
// give the same figures.

#include <limits>
#include <random>

#include "tests/sessions/SessionSourceTest.h"

namespace {

using records::compacted;
using records::contextCompacted;
using records::tokenCount;

class TasksTest : public SessionSourceTest {
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
        return found ? found->threadID() + " " + app::statusItemTitle(*found) + " " +
                           std::to_string(found->lastUpdated().seconds) + " " + found->fileURL()
                     : "nothing";
    }

    std::string identifiers() {
        std::string all;
        const auto tasks = source.tasksWithError(nullptr);
        for (const ORVTask& task : *tasks) {
            all += task.threadID + "/" + std::to_string(task.files.size()) + "\n";
        }
        return all;
    }

    std::string taskIn(const std::string& folder) {
        const auto found = source.snapshotForFolder("/" + folder, nullptr);
        return found ? found->threadID() : "nothing";
    }
};

TEST_F(TasksTest, ATaskIsAllFilesWhoseNamesHoldItsIdentifier) {
    const std::string upper = "01A20E72-983B-7E83-81C7-E87B7B63D181";
    makeTask("a-" + std::string(kTask), 10, "");
    makeTask("b-" + upper, 20, "");
    makeTask("c-" + std::string(kTask) + "_" + kOther, 15, "");
    makeTask("2/" + std::string(kOther), 30, "");
    makeTask("notes", 40, "");
    makeTask("2/notes", 40, "");
    EXPECT_EQ("notes.jsonl/1\nnotes.jsonl/1\n" + std::string(kOther) + "/2\n" + upper + "/3\n",
              identifiers());
    disk.remove("/codex/sessions");
    EXPECT_EQ(std::nullopt, source.tasksWithError(&error));
    EXPECT_EQ(1, error->code);
}

TEST_F(TasksTest, TheDeepestFolderWinsAmongEqualsTheNewestFile) {
    const auto quoted = [&](const std::string& folder) { return "\"/" + folder + '"'; };
    disk.makeFolder("/code/site/deep");
    disk.realPaths["/link/site"] = "/code/site";
    makeTask("root", 90, sessionMeta("\"/\""));
    makeTask("code", 80, sessionMeta(quoted("code")));
    makeTask("old-site", 10, sessionMeta(quoted("code/site")));
    makeTask("site", 20, sessionMeta(quoted("link/site/")));
    makeTask("gone", 99, sessionMeta(quoted("gone")));
    EXPECT_EQ("site.jsonl", taskIn("code/site/deep")) << "as it really is, through the link";
    EXPECT_EQ("site.jsonl", taskIn("code/site"));
    EXPECT_EQ("code.jsonl", taskIn("code"));
    EXPECT_EQ("code.jsonl", taskIn("code/sit")) << "a name is not the beginning of another";
    EXPECT_EQ("root.jsonl", taskIn("elsewhere"));
    EXPECT_EQ("gone.jsonl", taskIn("gone")) << "as it is written";
    disk.remove("/codex/sessions/root.jsonl");
    EXPECT_EQ("nothing", taskIn("elsewhere"));
}

TEST_F(TasksTest, OnlyAFirstLineThatTellsAnAbsoluteFolderCounts) {
    const std::string kFirstLines[] = {"",
                                       "no JSON\n",
                                       "{}\n",
                                       sessionMeta("7"),
                                       sessionMeta("null"),
                                       sessionMeta("\"relative\""),
                                       sessionMeta("\"\""),
                                       "{\"type\":\"other\",\"payload\":{\"cwd\":\"/\"}}\n",
                                       "{}\n" + sessionMeta("\"/\""),
                                       R"({"x":")" + std::string(2'000'000, 'x') +
                                           R"(","type":"session_meta","payload":{"cwd":"/"}})"
                                           "\n",
                                       sessionMeta("\"/\\u0000\"")};
    for (const std::string& line : kFirstLines) {
        makeTask("a", 10, line);
        disk.remove("/codex/sessions/b.jsonl");
        EXPECT_EQ("nothing", taskIn("x")) << line.substr(0, 80);
        disk.replace("/codex/sessions/a.jsonl", "");
    }
    makeTask("a", 10,
             R"({"x":")" + std::string(100'000, 'x') + "\"," + sessionMeta("\"/\"").substr(1));
    EXPECT_EQ("a.jsonl", taskIn("x")) << "a long first line";
}

TEST_F(TasksTest, AFirstLineIsReadOncePerFile) {
    const std::string file = "/codex/sessions/a.jsonl";
    const std::string line = sessionMeta("\"/\"");
    disk.write(file, line.substr(0, 20));
    EXPECT_EQ("nothing", taskIn("x"));
    int opened = disk.opened;
    EXPECT_EQ("nothing", taskIn("x"));
    EXPECT_EQ(opened, disk.opened) << "not even half a line is read again";
    disk.append(file, line.substr(20));
    EXPECT_EQ("a.jsonl", taskIn("x"));
    opened = disk.opened;
    EXPECT_EQ("a.jsonl", taskIn("x"));
    EXPECT_EQ(opened, disk.opened);
    disk.append(file, tokenCount("136000"));
    EXPECT_EQ("a.jsonl", taskIn("x"));
    EXPECT_EQ(opened + 1, disk.opened) << "for its figures alone";
    disk.replace(file, sessionMeta("\"/elsewhere\""));
    EXPECT_EQ("nothing", taskIn("x")) << "another file";
}

std::string describedHistory(const ORVHistory& history) {
    std::string text;
    for (const ORVHistoryEvent& event : history) {
        text += event.usage ? std::to_string(event.usage->inputTokens()) + " " : "C ";
    }
    return text;
}

TEST_F(TasksTest, AHistoryTellsEveryUsageAndEachCompactionOnce) {
    ORVCodexSessionSource source(disk, clock, "/codex", {std::numeric_limits<std::size_t>::max()});
    const auto title = [&] {
        return app::statusItemTitle(*source.snapshotForThreadID(kTask, nullptr));
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
    EXPECT_EQ("10 C 20 C 30 C C C ", describedHistory(*source.historyForThreadID(kTask)));
    EXPECT_EQ("2026-11-24T16:45:21.002Z", source.historyForThreadID(kTask)->front().at);
    disk.append(second, tokenCount("40"));
    EXPECT_EQ("C5 · 0%", title());
    EXPECT_EQ("10 C 20 C 30 C C C 40 ", describedHistory(*source.historyForThreadID(kTask)));
    EXPECT_EQ(nullptr, source.historyForThreadID(kOther));
}

TEST_F(TasksTest, ALongHistoryIsThinnedToItsHighest) {
    ORVCodexSessionSource source(disk, clock, "/codex", {64});
    const auto title = [&] {
        return app::statusItemTitle(*source.snapshotForThreadID(kTask, nullptr));
    };
    std::string content;
    for (int i = 0; i < 1'000; ++i) {
        content +=
            i == 500 ? compacted("w") : tokenCount(std::to_string(i == 700 ? 272'000 : i + 1));
    }
    disk.write(fileOf(kTask), content);
    EXPECT_EQ("C1 · 0%", title());
    const auto history = source.historyForThreadID(kTask);
    EXPECT_GE(64U, history->size());
    EXPECT_LE(16U, history->size());
    const std::string text = describedHistory(*history);
    EXPECT_NE(std::string::npos, text.find("C ")) << text;
    EXPECT_NE(std::string::npos, text.find(" 272000 ")) << text;
    EXPECT_TRUE(text.ends_with(" 1000 ")) << text;
}

TEST_F(TasksTest, WhoeverAsksGetsTheSameFigures) {
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
        const auto tasks = source.tasksWithError(nullptr);
        for (const ORVTask& task : *tasks) {
            const std::string figures = described(source.snapshotForTask(task, nullptr));
            if (ORVCodexSessionSource::threadIDFromSessionURL(task.newestFile().path)) {
                EXPECT_EQ(described(fresh.snapshotForThreadID(task.threadID, nullptr)), figures);
            } else {
                EXPECT_EQ(described(fresh.snapshotForSessionURL(task.newestFile().path, nullptr)),
                          figures);
            }
        }
        const auto latest = fresh.latestSnapshotWithError(nullptr);
        EXPECT_EQ(latest->lastUpdated(), tasks->front().newestFile().modifiedAt);
        const auto here = fresh.snapshotForFolder("/a/b/c", nullptr);
        if (here && ORVCodexSessionSource::threadIDFromSessionURL(here->fileURL())) {
            EXPECT_EQ(described(source.snapshotForThreadID(here->threadID(), nullptr)),
                      described(here));
        }
        source.forgetFiles();
    }
}

}  // namespace
