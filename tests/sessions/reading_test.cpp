#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionReaderTest = SessionSourceTest;
using records::compacted;
using records::message;
using records::tokenCount;

TEST_F(SessionReaderTest, ReadsOnlyCompleteLinesAndEachOnce) {
    const std::string file = fileOf(kTask);
    home.append(file, compacted("w1") + "\n\r\n" + tokenCount("1000"));
    EXPECT_EQ("C1 · 0%", title());
    const std::string next = tokenCount("136000");
    home.append(file, next.substr(0, next.size() - 1));
    EXPECT_EQ("C1 · 0%", title());
    home.append(file, "\n");
    EXPECT_EQ("C1 · 50%", title());

    const int opened = files.opened;
    EXPECT_EQ("C1 · 50%", title());
    EXPECT_EQ(opened, files.opened) << "a file without new bytes is not opened";
}

TEST_F(SessionReaderTest, ReplacedOrShortenedFileIsReadFromItsFirstByte) {
    const std::string file = fileOf(kTask);
    home.append(file, compacted("w1") + compacted("w2") + tokenCount("136000"));
    EXPECT_EQ("C2 · 50%", title());
    home.replace(file, message(std::string(5'000, 'x')) + compacted("w3"));
    EXPECT_EQ("C1 · --%", title());
    home.write(file, tokenCount("27200"));
    EXPECT_EQ("C0 · 10%", title());
    home.truncate(file, 0);
    EXPECT_EQ("C0 · --%", title());
}

TEST_F(SessionReaderTest, WithoutFileNumbersALongerFileIsTakenForTheSame) {
    files.givesFileNumbers = false;
    const std::string file = fileOf(kTask);
    home.append(file, compacted("w1"));
    EXPECT_EQ("C1 · --%", title());
    home.replace(file, compacted("w2") + compacted("w3"));
    EXPECT_EQ("C2 · --%", title()) << "read on behind the old end";
}

TEST_F(SessionReaderTest, FileShorterThanItsAttributesSayIsReadAndTriedAgain) {
    const std::string file = fileOf(kTask);
    home.append(file, compacted("w1"));
    files.extraSize = 1'000'000;
    EXPECT_EQ("C1 · --%", title());
    EXPECT_FALSE(error);
    home.append(file, compacted("w2"));
    EXPECT_EQ("C2 · --%", title());
}

TEST_F(SessionReaderTest, ItemsThatAreNoFilesNeitherBlockNorCount) {
    home.makeFIFO(".codex/sessions/" + std::string(kTask) + ".jsonl");
    home.makeFolder(fileOf(kTask));
    EXPECT_EQ("Orvellan 2", title());
    // A folder takes the file's place while the search is still remembered.
    const std::string file = ".codex/sessions/a/" + std::string(kTask) + ".jsonl";
    home.append(file, compacted("w1"));
    EXPECT_EQ("C1 · --%", title());
    home.setDate(".codex/sessions/a", 1'000);
    snapshot();
    clock.advance(std::chrono::seconds(20));
    snapshot();
    home.remove(file);
    home.makeFolder(file);
    home.setDate(".codex/sessions/a", 1'000);
    EXPECT_EQ("posix " + std::to_string(EISDIR), title());
}

/// However the bytes arrive, the figures are those of one read of the whole.
TEST_F(SessionReaderTest, EveryCutGivesTheSameFigures) {
    const std::string whole = message("one") + compacted("w1") + "\r\n" + tokenCount("50000") +
                              "{\"broken\ncompact\n" + compacted("w2") + tokenCount("136000") +
                              message("two");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const std::string task =
            std::string(kTask).substr(0, 24) + std::to_string(100'000'000'000 + cut);
        const std::string file = fileOf(task);
        home.append(file, whole.substr(0, cut));
        title(task);
        home.append(file, whole.substr(cut));
        ASSERT_EQ("C2 · 50%", title(task)) << "cut after byte " << cut;
    }
}

TEST_F(SessionReaderTest, LinesOfEveryLengthAroundAChunkAreWhole) {
    for (const std::size_t length :
         {100'000U, 131'000U, 262'144U, 1'048'576U, 3'000'000U, 5'000'000U}) {
        for (const std::size_t before : {0U, 1U, 131'071U}) {
            const std::string file = fileOf(kTask);
            std::string record = tokenCount("136000");
            record.insert(1, "\"padding\":\"" + std::string(length, 'x') + "\",");
            home.replace(file, std::string(before, 'y') + "\n" + record + compacted("w1") +
                                   tokenCount("27200") + record);
            ASSERT_EQ("C1 · 50%", title()) << length << " after " << before;
        }
    }
}

TEST_F(SessionReaderTest, ShortReadsChangeNothing) {
    files.shortReads = true;
    home.append(fileOf(kTask), message("one") + compacted("w1") + tokenCount("136000"));
    EXPECT_EQ("C1 · 50%", title());
}

/// After any single failure one healthy refresh reaches the figures of a run without it.
TEST_F(SessionReaderTest, EveryFailingCallIsMadeUpForByTheNextRefresh) {
    const std::string padding = message(std::string(200'000, 'x'));
    bool wasUntouched = false;
    for (int call = 1; !wasUntouched; ++call) {
        const std::string task =
            std::string(kTask).substr(0, 24) + std::to_string(100'000'000'000 + call);
        home.append(fileOf(task, "a"), compacted("w1") + padding + compacted("w2"));
        home.append(fileOf(task, "b"), compacted("w2") + padding + tokenCount("136000"));
        home.setDate(fileOf(task, "a"), 1'000);
        home.write(".codex/session_index.jsonl",
                   records::title(task, "Name " + std::to_string(call)));
        files.calls = 0;
        files.failingCall = call;
        const std::string first = title(task);
        wasUntouched = files.calls < call;
        files.failingCall = 0;
        EXPECT_EQ("C2 · 50%", title(task)) << "after " << first << " of call " << call;
        EXPECT_EQ("Name " + std::to_string(call), snapshot(task)->title());
    }
}

}  // namespace
