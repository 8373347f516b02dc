#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionSnapshotTest = SessionSourceTest;
using records::compacted;
using records::contextCompacted;
using records::tokenCount;

TEST_F(SessionSnapshotTest, ATaskIsTheSumOfItsFilesAndShowsTheNewestOnesUsage) {
    const std::string files_[] = {fileOf(kTask, "a"), fileOf(kTask, "b"), fileOf(kTask, "c")};
    home.append(files_[0], compacted("w1") + contextCompacted("") + tokenCount("1000"));
    home.append(files_[1], compacted("w1") + compacted("w2") + contextCompacted("") +
                               R"({"type":"compacted"})"
                               "\n");
    home.append(files_[2], tokenCount("136000"));
    for (int i = 0; i < 3; ++i) {
        home.setDate(files_[i], 1'000.5 + i);
    }
    const auto found = snapshot();
    ASSERT_TRUE(found);
    EXPECT_EQ(4, found->compactionCount()) << "w1 once, w2, two anonymous ones";
    EXPECT_EQ(ORVCompactionStatusIncompatible, found->compactionStatus())
        << "of the newest file that says anything of compactions";
    EXPECT_EQ(136'000, found->contextUsage()->inputTokens());
    EXPECT_EQ(home.path(files_[2]), found->fileURL());
    EXPECT_EQ((ORVFileDate{1'002, 500'000'000}), found->lastUpdated());
    home.append(files_[1], compacted("w2"));
    EXPECT_EQ("C4 · 50%", title());
}

TEST_F(SessionSnapshotTest, TheLatestFileStandsForItsWholeTask) {
    home.append(fileOf(kTask, "a"), compacted("w1"));
    home.append(fileOf(kTask, "b"), compacted("w2"));
    home.append(fileOf(kOther), compacted("w3"));
    home.append(".codex/sessions/notes.jsonl", compacted("w4"));
    home.setDate(fileOf(kTask, "a"), 1'000);
    home.setDate(fileOf(kOther), 2'000);
    home.setDate(fileOf(kTask, "b"), 3'000);
    home.setDate(".codex/sessions/notes.jsonl", 500);
    auto latest = source.latestSnapshotWithError(&error);
    EXPECT_EQ(kTask, latest->threadID());
    EXPECT_EQ(2, latest->compactionCount());
    home.setDate(".codex/sessions/notes.jsonl", 4'000);
    latest = source.latestSnapshotWithError(&error);
    EXPECT_EQ("notes.jsonl", latest->threadID()) << "a name without an identifier";
    EXPECT_EQ(1, latest->compactionCount());
}

TEST_F(SessionSnapshotTest, ErrorsKeepTheirPlaceInTheSlot) {
    error = ORVError{"posix", EACCES, "from the focus source"};
    EXPECT_FALSE(source.snapshotForThreadID(kTask, &error));
    EXPECT_EQ(EACCES, error->code) << "a missing task yields to an earlier cause";
    EXPECT_FALSE(source.snapshotForThreadID("", &error));
    EXPECT_EQ(EACCES, error->code);
    home.append(fileOf(kTask), compacted("w1"));
    EXPECT_TRUE(source.snapshotForThreadID(kTask, &error));
    EXPECT_EQ(EACCES, error->code) << "success clears nothing";
    home.remove(".codex");
    EXPECT_FALSE(source.snapshotForThreadID(kTask, &error));
    EXPECT_EQ(1, error->code);
    EXPECT_FALSE(source.snapshotForThreadID(kTask, nullptr));
}

using TitleIndexTest = SessionSourceTest;
constexpr const char* kIndex = ".codex/session_index.jsonl";

TEST_F(TitleIndexTest, Lines) {
    using Titles = std::map<std::string, std::string>;
    EXPECT_EQ(Titles{}, source.threadTitles());
    home.write(kIndex, records::title("a", "old") +
                           R"({"id":"b","thread_name":"","title":"second"})"
                           "\r\n"
                           R"({"id":"c","thread_name":7,"title":"third"})"
                           "\r"
                           R"({"id":"d","thread_name":"name","title":"no"})"
                           "\u2028"
                           R"({"id":"","thread_name":"x"})"
                           "\u0085"
                           R"({"id":5,"thread_name":"x"})"
                           "\u2029"
                           R"([{"id":"e","thread_name":"x"}])"
                           "\n{\"id\":\"f\"\n\n"
                           R"({"id":"g","thread_name":"x"} {})"
                           "\n" +
                           records::title("a", "Überarbeitung 重构 \\u0007") +
                           R"({"id":"h","title":"unended"})");
    const Titles expected = {{"a", "Überarbeitung 重构 \a"},
                             {"b", "second"},
                             {"c", "third"},
                             {"d", "name"},
                             {"h", "unended"}};
    EXPECT_EQ(expected, source.threadTitles());
}

TEST_F(TitleIndexTest, IsReadAgainWhenItsDateChangesAndKeptWhileItCannotBe) {
    home.append(fileOf(kTask), "");
    EXPECT_EQ("Codex", snapshot()->title());
    home.write(kIndex, records::title(kTask, "first"));
    home.setDate(kIndex, 1'000);
    EXPECT_EQ("first", snapshot()->title());
    home.write(kIndex, records::title(kTask, "unseen"));
    home.setDate(kIndex, 1'000);
    EXPECT_EQ("first", snapshot()->title());
    home.write(kIndex, records::title(kTask, "\xFF"));
    home.setDate(kIndex, 2'000);
    EXPECT_EQ("first", snapshot()->title()) << "not UTF-8";
    home.remove(kIndex);
    EXPECT_EQ("first", snapshot()->title());
    home.makeFIFO(kIndex);
    EXPECT_EQ("first", snapshot()->title());
    home.remove(kIndex);
    home.write(kIndex, "");
    EXPECT_EQ("Codex", snapshot()->title());
    const std::string longTitle(1'000'000, 't');
    home.write(kIndex, records::title(kTask, longTitle));
    home.setDate(kIndex, 3'000);
    EXPECT_EQ(longTitle, snapshot()->title());
}

TEST_F(TitleIndexTest, IsAskedWithTheIdentifierAsTheFileWritesIt) {
    const std::string upperCase = "01A20E72-983B-7E83-81C7-E87B7B63D181";
    home.append(fileOf(kTask), "");
    home.write(kIndex, records::title(upperCase, "wrong") + records::title(kTask, "right"));
    const auto found = snapshot(upperCase);
    EXPECT_EQ("right", found->title());
    EXPECT_EQ(upperCase, found->threadID());
}

}  // namespace
