#include <gtest/gtest.h>

#include "text/bytes.h"
#include "text/json.h"
#include "text/unicode.h"

namespace {

TEST(UnicodeTest, InvalidBytesBecomeAsManyReplacementsAsADecoderShows) {
    const std::pair<std::string, std::string> kCases[] = {
        {"plain", "plain"},
        {"é重🚀", "é重🚀"},
        {"a\xFF\xFEz", "a\uFFFD\uFFFDz"},
        {"\xE2\x82", "\uFFFD"},
        {"\xE2\x82z", "\uFFFDz"},
        {"\xE2\xE2\x82\xAC", "\uFFFD€"},
        {"\xC0\x80", "\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x9F\x9A", "\uFFFD"},
        {"\xF0\x9F\x9A\xC0", "\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}};
    for (const auto& [bytes, text] : kCases) {
        EXPECT_EQ(text, text::withInvalidBytesReplaced(bytes));
        EXPECT_EQ(bytes == text, text::isValidUTF8(bytes)) << text;
        EXPECT_EQ(bytes == text, text::isValidUTF8("long enough " + bytes));
    }
    EXPECT_EQ("a b [31m c d", text::forTerminal("a\tb\x1b[31m\u009bc\x7f"
                                                "d"));
    EXPECT_EQ(" ~  \u00A0", text::forTerminal("\x1f~\u0080\u009f\u00A0"));
}

TEST(UnicodeTest, Characters) {
    const std::pair<std::string, char32_t> kCases[] = {
        {"a", U'a'},        {"\u0080", 0x80},   {"\u07FF", 0x7FF},       {"\u0800", 0x800},
        {"\uD7FF", 0xD7FF}, {"\uFFFF", 0xFFFF}, {"\U00010000", 0x10000}, {"\U0010FFFF", 0x10FFFF}};
    for (const auto& [bytes, code] : kCases) {
        const text::Character character = text::nextCharacter(bytes + "\x80");
        EXPECT_EQ(code, character.code);
        EXPECT_EQ(bytes.size(), character.bytes) << bytes;
    }
    for (const char* whole : {"", "é", "aé", "a🚀"}) {
        for (const char* cut : {"", "\xC3", "\xE2\x82", "\xF0\x9F\x9A"}) {
            EXPECT_EQ(whole, text::wholeCharacters(std::string(whole) + cut));
        }
    }
    EXPECT_EQ("a&lt;&gt;&amp;amp;&quot;&#39;é", text::escapedForMarkup("a<>&amp;\"'é"));
}

TEST(UnicodeTest, JSON) {
    EXPECT_EQ("\"\\u0001\\n\\\"\\\\~\\u007f\\u0080\\u009f\u00a0é\uFFFD\"",
              text::quotedJSON("\x01\n\"\\~\x7f\u0080\u009f\u00a0é\xFF"));
    const std::pair<double, std::string> kNumbers[] = {{0, "0"},
                                                       {50, "50"},
                                                       {-0.0, "-0"},
                                                       {-42.5, "-42.5"},
                                                       {1e21, '1' + std::string(21, '0')},
                                                       {1e-7, "0.0000001"},
                                                       {0.1 + 0.2, "0.30000000000000004"}};
    for (const auto& [number, text] : kNumbers) {
        EXPECT_EQ(text, text::numberJSON(number));
    }
}

TEST(UnicodeTest, Lines) {
    std::string lines;
    text::forEachLine("a\nb\rc\r\nd\u0085e\u2028f\u2029\n\r\xFFg",
                      [&](std::string_view line) { lines += '<' + std::string(line) + '>'; });
    EXPECT_EQ("<a><b><c><d><e><f><><><\xFFg>", lines);
}

TEST(UnicodeTest, WhiteSpace) {
    for (const std::string space : {" ", "\t", "\u00a0", "\u1680", "\u2009", "\u202f", "\u3000"}) {
        EXPECT_EQ(2U, text::findWhiteSpace("é" + space + "b"));
    }
    for (const std::string other : {"\r", "\v", "\x7f", "\u200b", "\u2028", "\u0085", "\xA0"}) {
        EXPECT_EQ(2U + other.size(), text::findWhiteSpace("a" + other + "b"));
    }
}

TEST(PathsTest, PartsOfPaths) {
    for (const char* name : {"x.log", "x.y.LOG", ".log", "x..Log"}) {
        EXPECT_TRUE(text::hasExtension(name, "log")) << name;
    }
    for (const char* name : {"log", "x.log.1", "xlog", "x.log ", "x.lo", "x.logs", ""}) {
        EXPECT_FALSE(text::hasExtension(name, "log")) << name;
    }
    EXPECT_EQ("c", text::lastPathComponent("/a/b/c"));
    EXPECT_EQ("c", text::lastPathComponent("c"));
    EXPECT_EQ("/a/b", text::folderOf("/a/b/c"));
    EXPECT_EQ("/", text::folderOf("/c"));
}

TEST(UnicodeTest, LongTextsEndBetweenCharacters) {
    std::string marks = "e";
    for (int i = 0; i < 1000; ++i) {
        marks += "\u0301";
    }
    const struct {
        std::string text;
        const char* shortened;
    } kCases[] = {{"", ""},
                  {"abcd", "abcd"},
                  {"abcde", "abc…"},
                  {"ab👩‍👩‍👧‍👦d", "ab👩‍👩‍👧‍👦d"},
                  {"ab👩‍👩‍👧‍👦de", "ab👩‍👩‍👧‍👦…"},
                  {"e\u0301e\u0301e\u0301🇩🇪", "e\u0301e\u0301e\u0301🇩🇪"},
                  {"🇩🇪🇫🇷🇨🇳🇺🇸🇬🇧", "🇩🇪🇫🇷🇨🇳…"},
                  {"\xFF\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF…"},
                  {"a" + marks, "a…"},
                  {marks, "…"}};
    for (const auto& c : kCases) {
        EXPECT_EQ(c.shortened, text::shortened(c.text, 4)) << c.text;
    }
}

}  // namespace
