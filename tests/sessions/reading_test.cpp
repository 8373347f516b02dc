#include <random>

#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionReaderTest = SessionSourceTest;

TEST_F(SessionReaderTest, ReadsOnlyCompleteLinesAndEachOnce) {
    const std::string file = fileOf(kTask);
    disk.append(file, compacted("w1") + "\n\r\n" + tokenCount("1000"));
    EXPECT_EQ("C1 · 0%", title());
    const std::string next = contextCompacted("") + tokenCount("136000");
    disk.append(file, next.substr(0, next.size() - 1));
    EXPECT_EQ("C2 · --%", title());
    EXPECT_EQ("C2 · --%", title());
    disk.append(file, "\n");
    EXPECT_EQ("C2 · 50%", title());

    const int opened = disk.opened;
    EXPECT_EQ("C2 · 50%", title());
    EXPECT_EQ(opened, disk.opened) << "a file without new bytes is not opened";
}

TEST_F(SessionReaderTest, ReplacedOrShortenedFileIsReadFromItsFirstByte) {
    const std::string file = fileOf(kTask);
    disk.append(file, compacted("w1") + compacted("w2") + tokenCount("136000"));
    EXPECT_EQ("C2 · 50%", title());
    disk.replace(file, message(std::string(5'000, 'x')) + compacted("w3"));
    EXPECT_EQ("C1 · --%", title());
    disk.write(file, tokenCount("27200"));
    EXPECT_EQ("C0 · 10%", title());
    disk.write(file, "");
    EXPECT_EQ("C0 · --%", title());
    disk.givesFileNumbers = false;
    disk.append(file, compacted("w1"));
    EXPECT_EQ("C1 · --%", title());
    disk.replace(file, compacted("w2") + compacted("w3"));
    EXPECT_EQ("C2 · --%", title()) << "a longer file without a number is taken for the same";
}

TEST_F(SessionReaderTest, EveryCutGivesTheSameFigures) {
    const std::string whole = message("one") + compacted("w1") + "\r\n" + tokenCount("50000") +
                              "{\"broken\ncompact\n" + compacted("w2") + tokenCount("136000") +
                              message("two");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        disk.bytesPerRead = cut % 5 == 0 ? 1 : whole.size();
        disk.replace(fileOf(kTask), whole.substr(0, cut));
        title();
        disk.append(fileOf(kTask), whole.substr(cut));
        ASSERT_EQ("C2 · 50%", title()) << "cut after byte " << cut;
    }
}

TEST_F(SessionReaderTest, LinesOfEveryLengthAroundAChunkAreWhole) {
    for (const std::size_t length : {100'000U, 131'000U, 262'144U, 1'048'576U, 5'000'000U}) {
        for (const std::size_t before : {0U, 1U, 131'071U}) {
            std::string record = tokenCount("136000");
            record.insert(1, "\"padding\":\"" + std::string(length, 'x') + "\",");
            disk.replace(fileOf(kTask), std::string(before, 'y') + "\n" + record + compacted("w1") +
                                            tokenCount("27200") + record);
            ASSERT_EQ("C1 · 50%", title()) << length << " after " << before;
        }
    }
}

/// Returns records and lines with NULs in them, as they stand in a file that was cut while its
/// writer went on at the old place.
std::string linesWithHoles(std::mt19937& random) {
    std::string text;
    for (std::size_t pieces = random() % 8; pieces > 0; --pieces) {
        const std::string kPieces[] = {compacted("w" + std::to_string(random() % 3)),
                                       tokenCount(std::to_string(random() % 3 * 27'200)), "\n",
                                       tokenCount("x"), std::string(1 + random() % 40, '\0')};
        const std::string& piece = kPieces[random() % std::size(kPieces)];
        text.insert(random() % 3 == 0 ? random() % (text.size() + 1) : text.size(), piece);
    }
    return text;
}

TEST_F(SessionReaderTest, HolesAreSkippedAsIfTheirNULsHadBeenRead) {
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        disk.bytesPerRead = 1 + random() % 30;
        disk.replace(fileOf(kTask), "");
        for (int growth = 0; growth < 3; ++growth) {
            disk.append(fileOf(kTask), linesWithHoles(random));
            disk.tellsHoles = true;
            const auto followed = snapshot();
            disk.tellsHoles = false;
            ORVCodexSessionSource fresh(disk, clock, "/codex");
            const auto read = fresh.snapshotForThreadID(kTask, nullptr);
            ASSERT_EQ(read->compactionCount(), followed->compactionCount()) << "round " << round;
            ASSERT_EQ(read->contextUsage(), followed->contextUsage()) << "round " << round;
            ASSERT_EQ(read->contextStatus(), followed->contextStatus()) << "round " << round;
        }
    }
    disk.bytesPerRead = 1'000;
    disk.tellsHoles = true;
    disk.replace(fileOf(kTask), std::string(1'000'000, '\0') + "\n" + compacted("w1"));
    const int calls = disk.calls;
    EXPECT_EQ("C1 · --%", title());
    EXPECT_GT(calls + 20, disk.calls);
}

TEST_F(SessionReaderTest, AFileThatDoesNotFitTheMemoryIsNotReadForAMinute) {
    const std::string file = fileOf(kTask);
    const auto fail = [&] {
        disk.lacksMemory = true;
        EXPECT_EQ("posix 12", title());
        disk.lacksMemory = false;
    };
    disk.append(file, compacted("w1"));
    fail();
    const int opened = disk.opened;
    clock.time += std::chrono::seconds(59);
    EXPECT_EQ("posix 12", title());
    EXPECT_EQ(opened, disk.opened);
    clock.time += std::chrono::seconds(1);
    EXPECT_EQ("C1 · --%", title());
    disk.append(file, compacted("w2"));
    fail();
    disk.append(file, compacted("w3"));
    EXPECT_EQ("C3 · --%", title()) << "another size, and read from its beginning";
    disk.append(file, compacted("w4"));
    fail();
    clock.time -= std::chrono::hours(1);
    EXPECT_EQ("C4 · --%", title()) << "the clock was set back";
}

}  // namespace
