#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionDiscoveryTest = SessionSourceTest;
using std::chrono::milliseconds;
using std::chrono::seconds;

TEST_F(SessionDiscoveryTest, NamesThatBelongToTheTask) {
    const std::string upperCase = "01A20E72-983B-7E83-81C7-E87B7B63D181";
    const std::string folder = "/codex/sessions/2026/";
    const std::vector<std::string> expected = {folder + "b-" + kTask + "_" + kOther + ".jsonl",
                                               folder + "c-" + upperCase + ".JSONL",
                                               folder + "a/and/deeper/" + kTask + ".jsonl"};
    for (const std::string& file : expected) {
        disk.write(file, "", file == expected.back() ? 2'000 : 1'000);
    }
    for (const char* other : {".jsonl.bak", "-jsonl", ".json", ""}) {
        disk.append(folder + kTask + other, "");
    }
    disk.append(folder + kOther + ".jsonl", "");
    EXPECT_EQ(expected, source.sessionURLsForThreadID(kTask, &error))
        << "oldest first, equal dates by path";
    EXPECT_EQ(expected.back(), source.sessionURLForThreadID(upperCase, &error));
    EXPECT_EQ(4U, source.sessionURLsForThreadID("01a20e7", &error).size()) << "any part will do";
    EXPECT_TRUE(source.sessionURLsForThreadID("", &error).empty());
    EXPECT_EQ(std::nullopt, source.sessionURLForThreadID("none", &error));
    EXPECT_FALSE(error);
}

TEST_F(SessionDiscoveryTest, LettersBeyondASCIIAreComparedWithoutCase) {
    disk.append("/codex/sessions/ÄRGER-ß.jsonl", "");
    disk.append("/codex/sessions/\xC4rger.jsonl", "");
    EXPECT_EQ(1U, source.sessionURLsForThreadID("ärger-SS", &error).size());
    EXPECT_EQ(1U, source.sessionURLsForThreadID("\xC4RGER", &error).size());
    EXPECT_EQ(2U, source.sessionURLsForThreadID("rGer", &error).size());
}

TEST_F(SessionDiscoveryTest, ASearchIsGoodForTenSecondsWhileItsFolderKeepsItsDate) {
    const std::string newest = fileOf(kTask, "new");
    const std::string oldest = fileOf(kTask, "old");
    const auto count = [&] { return source.sessionURLsForThreadID(kTask, &error).size(); };
    disk.append(oldest, "");
    disk.append(newest, "");
    disk.setDate("/codex/sessions/new", 5'000);
    EXPECT_EQ(2U, count());

    disk.remove(oldest);
    clock.time += milliseconds(9'999);
    EXPECT_EQ(2U, count()) << "the other folder's changes go unnoticed";
    clock.time -= seconds(3'600);
    EXPECT_EQ(2U, count()) << "a clock set back";
    clock.time += seconds(3'600) + milliseconds(1);
    EXPECT_EQ(1U, count()) << "ten seconds are over";

    disk.append(fileOf(kTask, "new") + "-b.jsonl", "");
    EXPECT_EQ(2U, count()) << "the folder changed";
    disk.setDate("/codex/sessions/new", 5'000);
    count();
    disk.remove(fileOf(kTask, "new") + "-b.jsonl");
    disk.setDate("/codex/sessions/new", 5'000);
    EXPECT_EQ(1U, count()) << "the newest file is gone";
    disk.remove(newest);
    EXPECT_EQ(0U, count());
    disk.append(newest, "");
    disk.append(oldest, "");
    disk.setDate("/codex/sessions/new", 5'000);
    EXPECT_EQ(2U, count()) << "a search that found nothing is not remembered";
}

TEST_F(SessionDiscoveryTest, IdentifiersInNames) {
    const auto found = [](const std::string& name) {
        return ORVCodexSessionSource::threadIDFromSessionURL("/x-" + kOther + "/" + name);
    };
    EXPECT_EQ(kTask, found("rollout-" + kTask + "_" + kOther + ".jsonl"));
    EXPECT_EQ(kTask, found("f" + kTask + "0.jsonl")) << "no word boundaries";
    EXPECT_EQ(kTask, found(kTask));
    EXPECT_EQ(kOther, found(kOther + ".jsonl"));
    EXPECT_EQ(std::nullopt, found("01a20e72-983b-7e83-81c7-e87b7b63d18.jsonl"));
    EXPECT_EQ(std::nullopt, found("01a20e72-983b-7e83-81c7-e87b7b63g181.jsonl"));
}

}  // namespace
