#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionReaderTest = SessionSourceTest;
using records::compacted;
using records::message;
using records::tokenCount;

TEST_F(SessionReaderTest, ReadsOnlyCompleteLinesAndEachOnce) {
    const std::string file = fileOf(kTask);
    disk.append(file, compacted("w1") + "\n\r\n" + tokenCount("1000"));
    EXPECT_EQ("C1 · 0%", title());
    const std::string next = records::contextCompacted("") + tokenCount("136000");
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
}

TEST_F(SessionReaderTest, WithoutFileNumbersALongerFileIsTakenForTheSame) {
    disk.givesFileNumbers = false;
    disk.append(fileOf(kTask), compacted("w1"));
    EXPECT_EQ("C1 · --%", title());
    disk.replace(fileOf(kTask), compacted("w2") + compacted("w3"));
    EXPECT_EQ("C2 · --%", title()) << "read on behind the old end";
}

/// Writes the bytes piece by piece. The figures must be those of one read of the whole.
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

}  // namespace
