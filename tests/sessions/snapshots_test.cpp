#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionSnapshotTest = SessionSourceTest;

TEST_F(SessionSnapshotTest, ATaskIsTheSumOfItsFilesAndShowsTheNewestOnesUsage) {
    const std::string first = compacted("w1") + contextCompacted("") + tokenCount("1000");
    const std::string broken = "{\"type\":\"compacted\"}\n";
    struct Case {
        const char* name;
        std::string contents[3];  ///< Oldest file first.
        const char* title;
    };
    const Case kCases[] = {
        {"one identifier in two files", {first, compacted("w1"), tokenCount("136000")}, "C2 · 50%"},
        {"an anonymous one is always another", {first, first, compacted("w2")}, "C4 · --%"},
        {"usage is the newest file's", {first, tokenCount("136000"), ""}, "C2 · --%"},
        {"the newest that speaks of compactions",
         {first, broken, tokenCount("136000")},
         "C– · 50%"},
        {"no longer broken", {broken, first, tokenCount("136000")}, "C2 · 50%"},
        {"none speaks of them", {"", tokenCount("1000"), tokenCount("136000")}, "C0 · 50%"}};
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        SCOPED_TRACE(kCases[i].name);
        const std::string task = taskOf(i);
        for (const std::string day : {"c", "b", "a"}) {  // Dates decide, not paths.
            const auto age = static_cast<std::size_t>('c' - day[0]);
            disk.append(fileOf(task, day), kCases[i].contents[age]);
            disk.setDate(fileOf(task, day), 1'000 + static_cast<std::int64_t>(age), 500);
        }
        EXPECT_EQ(kCases[i].title, title(task));
        EXPECT_EQ(title(task).ends_with("50%"), snapshot(task)->contextUsage().has_value());
        EXPECT_EQ(fileOf(task, "a"), snapshot(task)->fileURL());
        EXPECT_EQ((ORVFileDate{1'002, 500}), snapshot(task)->lastUpdated());
    }
}

TEST_F(SessionSnapshotTest, TheLatestFileStandsForItsWholeTask) {
    const std::string notes = "/codex/sessions/0/notes.jsonl";
    const auto latest = [&] { return source.latestSnapshotWithError(&error); };
    disk.append(fileOf(kTask, "a"), compacted("w1"));
    disk.append(notes, compacted("w4"));
    disk.append(fileOf(kTask, "b"), compacted("w2"));
    disk.append(fileOf(kOther, "c"), compacted("w3"));
    disk.setDate(fileOf(kTask, "b"), 3'000'000'000);
    EXPECT_EQ(kTask, latest()->threadID());
    EXPECT_EQ(2, latest()->compactionCount());
    disk.setDate(notes, 3'000'000'000);
    EXPECT_EQ(kTask, latest()->threadID()) << "of equal dates the first of the walk";
    disk.setDate(notes, 3'000'000'000, 1);
    EXPECT_EQ("notes.jsonl", latest()->threadID()) << "a name without an identifier";
    EXPECT_EQ(1, latest()->compactionCount());
    EXPECT_FALSE(error);
}

TEST_F(SessionSnapshotTest, ErrorsKeepTheirPlaceInTheSlot) {
    EXPECT_FALSE(source.latestSnapshotWithError(&error));
    EXPECT_FALSE(error) << "an empty folder is no error";
    EXPECT_EQ("Orvellan 2", title());
    error = ORVError{"posix", EACCES, "from the focus source"};
    for (const std::string& task : {kTask, std::string()}) {
        EXPECT_FALSE(source.snapshotForThreadID(task, &error));
        EXPECT_EQ(EACCES, error->code) << "a missing task yields to an earlier cause";
    }
    disk.append(fileOf(kTask), compacted("w1"));
    EXPECT_TRUE(source.snapshotForThreadID(kTask, &error));
    EXPECT_EQ(EACCES, error->code) << "success clears nothing";
    disk.remove("/codex");
    EXPECT_FALSE(source.snapshotForThreadID(kTask, nullptr));
    EXPECT_FALSE(source.snapshotForThreadID(kTask, &error));
    EXPECT_EQ(1, error->code) << "a missing folder does not";
    error.reset();
    EXPECT_FALSE(source.latestSnapshotWithError(&error));
    EXPECT_EQ(1, error->code);
    disk.write("/codex/sessions", "a file");
    EXPECT_EQ("Orvellan 1", title());
}

using TitleIndexTest = SessionSourceTest;
constexpr const char* kIndex = "/codex/session_index.jsonl";

TEST_F(TitleIndexTest, Lines) {
    using Titles = std::map<std::string, std::string>;
    EXPECT_EQ(Titles{}, source.threadTitles());
    disk.write(kIndex, records::title("a", "old") +
                           "{\"id\":\"b\",\"thread_name\":\"\",\"title\":\"second\"}\r\n"
                           "{\"id\":\"c\",\"thread_name\":7,\"title\":\"third\"}\r"
                           "{\"id\":\"d\",\"thread_name\":\"name\",\"title\":\"no\"}\u2028"
                           "{\"id\":\"\",\"thread_name\":\"x\"}\u0085"
                           "{\"id\":5,\"thread_name\":\"x\"}\u2029"
                           "[{\"id\":\"e\",\"thread_name\":\"x\"}]\n{\"id\":\"f\"\n\n"
                           "{\"id\":\"g\",\"thread_name\":\"x\"} {}\n" +
                           records::title("a", "Überarbeitung 重构 \\u0007") +
                           "{\"id\":\"h\",\"title\":\"unended\"}");
    const Titles expected = {{"a", "Überarbeitung 重构 \a"},
                             {"b", "second"},
                             {"c", "third"},
                             {"d", "name"},
                             {"h", "unended"}};
    EXPECT_EQ(expected, source.threadTitles());
}

TEST_F(TitleIndexTest, IsReadAgainWhenItsDateChangesAndKeptWhileItCannotBe) {
    disk.append(fileOf(kTask), "");
    EXPECT_EQ("Codex", snapshot()->title());
    const auto titleAfter = [&](const std::string& content, std::int64_t date) {
        disk.replace(kIndex, content);
        disk.setDate(kIndex, date);
        return snapshot()->title();
    };
    EXPECT_EQ("first", titleAfter(records::title(kTask, "first"), 2'000));
    EXPECT_EQ("first", titleAfter(records::title(kTask, "unseen"), 2'000));
    EXPECT_EQ("first", titleAfter(records::title(kTask, "\xFF"), 3'000)) << "not UTF-8";
    EXPECT_EQ("first", titleAfter(std::string(64 * 1024 * 1024 + 1, '\n'), 4'000)) << "too large";
    disk.remove(kIndex);
    EXPECT_EQ("first", snapshot()->title());
    disk.makeFolder(kIndex);
    EXPECT_EQ("first", snapshot()->title());
    disk.remove(kIndex);
    EXPECT_EQ("older", titleAfter(records::title(kTask, "older"), 1'000));
    EXPECT_EQ("Codex", titleAfter("", 5'000));
    const std::string longTitle(1'000'000, 't');
    EXPECT_EQ(longTitle, titleAfter(records::title(kTask, longTitle), 6'000));
}

TEST_F(TitleIndexTest, IsAskedWithTheIdentifierAsTheFileWritesIt) {
    const std::string upperCase = "01A20E72-983B-7E83-81C7-E87B7B63D181";
    disk.append(fileOf(kTask), "");
    disk.write(kIndex, records::title(upperCase, "wrong") + records::title(kTask, "right"));
    const auto found = snapshot(upperCase);
    EXPECT_EQ("right", found->title());
    EXPECT_EQ(upperCase, found->threadID());
}

}  // namespace
