#include <algorithm>

#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionDiscoveryTest = SessionSourceTest;
using std::chrono::milliseconds;
using std::chrono::seconds;

TEST_F(SessionDiscoveryTest, NamesThatBelongToTheTask) {
    const std::string upperCase = "01A20E72-983B-7E83-81C7-E87B7B63D181";
    const std::string folder = ".codex/sessions/2026/";
    home.append(folder + "b-" + kTask + "_" + kOther + ".jsonl", "");
    home.append(folder + "c-" + upperCase + ".JSONL", "");
    home.append(folder + "deeper/and/deeper/" + kTask + ".jsonl", "");
    home.append(folder + kTask + ".jsonl.bak", "");
    home.append(folder + "." + kTask + ".jsonl", "");
    home.append(folder + ".hidden/" + kTask + ".jsonl", "");
    home.append(folder + kOther + ".jsonl", "");
    home.makeLink(folder + "link-" + kTask + ".jsonl", home.path(folder + kOther + ".jsonl"));
    home.makeLink(folder + "loop", home.path(".codex/sessions"));
    for (const char* name : {"b-", "c-"}) {
        const std::string file = folder + name +
                                 (name[0] == 'b' ? kTask + ("_" + std::string(kOther)) + ".jsonl"
                                                 : upperCase + ".JSONL");
        home.setDate(file, 2'000);
    }
    home.setDate(folder + "deeper/and/deeper/" + kTask + ".jsonl", 3'000);

    const std::vector<std::string> expected = {
        home.path(folder + "b-" + kTask + "_" + kOther + ".jsonl"),
        home.path(folder + "c-" + upperCase + ".JSONL"),
        home.path(folder + "deeper/and/deeper/" + kTask + ".jsonl")};
    EXPECT_EQ(expected, source.sessionURLsForThreadID(kTask, &error))
        << "oldest first, equal dates by path";
    EXPECT_EQ(expected.back(), source.sessionURLForThreadID(upperCase, &error));
    EXPECT_EQ(4U, source.sessionURLsForThreadID("01a20e7", &error).size()) << "any part will do";
    EXPECT_TRUE(source.sessionURLsForThreadID("", &error).empty());
    EXPECT_FALSE(error);
    home.makeLink(folder + "dangling.jsonl", "nowhere");
    EXPECT_EQ(home.path(folder + kOther + ".jsonl"), source.latestSessionURLWithError(&error));
}

TEST_F(SessionDiscoveryTest, LettersBeyondASCIIAreComparedWithoutCase) {
    home.append(".codex/sessions/ÄRGER-ß.jsonl", "");
    home.append(".codex/sessions/\xC4rger.jsonl", "");
    EXPECT_EQ(1U, source.sessionURLsForThreadID("ärger-SS", &error).size());
    if (!home.holds(".codex/sessions/\xC4rger.jsonl")) {
        return;  // A Mac's disk has names in UTF-8 only.
    }
    EXPECT_EQ(1U, source.sessionURLsForThreadID("\xC4RGER", &error).size());
    EXPECT_EQ(2U, source.sessionURLsForThreadID("rGer", &error).size());
}

TEST_F(SessionDiscoveryTest, ASearchIsGoodForTenSecondsWhileItsFolderKeepsItsDate) {
    home.append(fileOf(kTask, "new"), "");
    home.append(fileOf(kTask, "old"), "");
    home.setDate(fileOf(kTask, "old"), 1'000);
    home.setDate(".codex/sessions/new", 5'000);
    const auto count = [&] { return source.sessionURLsForThreadID(kTask, &error).size(); };
    EXPECT_EQ(2U, count());

    home.remove(fileOf(kTask, "old"));
    clock.advance(milliseconds(9'999));
    EXPECT_EQ(2U, count()) << "the other folder's changes go unnoticed";
    clock.advance(-seconds(3'600));
    EXPECT_EQ(2U, count()) << "a clock set back";
    clock.advance(seconds(3'600) + milliseconds(1));
    EXPECT_EQ(1U, count()) << "ten seconds are over";

    home.append(fileOf(kTask, "new", "-b"), "");
    EXPECT_EQ(2U, count()) << "the folder changed";
    home.setDate(".codex/sessions/new", 5'000);
    count();
    home.remove(".codex/sessions/new");
    EXPECT_EQ(0U, count()) << "the newest file is gone";
    home.append(fileOf(kTask, "old"), "");
    EXPECT_EQ(1U, count()) << "a search that found nothing is not remembered";
}

TEST_F(SessionDiscoveryTest, WithoutASessionsFolder) {
    EXPECT_FALSE(source.latestSnapshotWithError(&error));
    EXPECT_FALSE(error) << "an empty one is no error";
    EXPECT_EQ("Orvellan 2", title());
    home.remove(".codex");
    EXPECT_EQ("Orvellan 1", title());
    EXPECT_FALSE(source.latestSnapshotWithError(&error));
    EXPECT_EQ(1, error->code);
    home.write(".codex/sessions", "a file");
    EXPECT_EQ("Orvellan 1", title());
}

TEST_F(SessionDiscoveryTest, IdentifiersInNames) {
    const auto found = [](const char* name) {
        return ORVCodexSessionSource::threadIDFromSessionURL(std::string("/x-") + kOther + "/" +
                                                             name);
    };
    const std::string task = kTask;
    EXPECT_EQ(task, found(("rollout-" + task + "_" + kOther + ".jsonl").c_str()));
    EXPECT_EQ(task, found(("f" + task + "0.jsonl").c_str())) << "no word boundaries";
    EXPECT_EQ("01A20E72-983B-7E83-81C7-E87B7B63D181",
              found("01A20E72-983B-7E83-81C7-E87B7B63D181.jsonl"));
    EXPECT_EQ(std::nullopt, found("01a20e72-983b-7e83-81c7-e87b7b63d18.jsonl"));
    EXPECT_EQ(std::nullopt, found("01a20e72-983b-7e83-81c7-e87b7b63g181.jsonl"));
}

}  // namespace
