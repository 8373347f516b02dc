#include <gtest/gtest.h>

#include "text/paths.h"
#include "text/unicode.h"

namespace {

TEST(UnicodeTest, InvalidBytesBecomeAsManyReplacementsAsADecoderShows) {
    struct Case {
        std::string bytes;
        std::string text;
    };
    const Case kCases[] = {
        {"plain", "plain"},
        {"é重🚀", "é重🚀"},
        {"a\xFF\xFEz", "a\uFFFD\uFFFDz"},
        {"\xE2\x82", "\uFFFD"},
        {"\xE2\x82z", "\uFFFDz"},
        {"\xE2\xE2\x82\xAC", "\uFFFD€"},
        {"\xC0\x80", "\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x9F\x9A", "\uFFFD"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(c.text, text::withInvalidBytesReplaced(c.bytes));
        EXPECT_EQ(c.bytes == c.text, text::isValidUTF8(c.bytes)) << c.text;
        EXPECT_EQ(c.bytes == c.text, text::isValidUTF8("long enough " + c.bytes));
    }
    EXPECT_EQ("a b [31m c d", text::forTerminal("a\tb\x1b[31m\u009bc\x7f"
                                                "d"));
}

TEST(UnicodeTest, Lines) {
    std::string lines;
    text::forEachLine("a\nb\rc\r\nd\u0085e\u2028f\u2029\n\r\xFFg",
                      [&](std::string_view line) { lines += '<' + std::string(line) + '>'; });
    EXPECT_EQ("<a><b><c><d><e><f><><><\xFFg>", lines);
}

TEST(UnicodeTest, WhiteSpace) {
    for (const char* space : {" ", "\t", "\u00a0", "\u1680", "\u2009", "\u202f", "\u3000"}) {
        EXPECT_EQ(3U, text::findWhiteSpace("é"
                                           "a" +
                                           std::string(space) + "b"));
    }
    for (const char* other : {"\r", "\v", "\u200b", "\u2028", "\u0085", "\xA0"}) {
        const std::string text = "a" + std::string(other) + "b";
        EXPECT_EQ(text.size(), text::findWhiteSpace(text));
    }
}

TEST(PathsTest, Extensions) {
    for (const char* name : {"x.log", "x.y.LOG", ".log", "x..Log"}) {
        EXPECT_TRUE(text::hasExtension(name, "log")) << name;
    }
    for (const char* name : {"log", "x.log.1", "xlog", "x.log ", "x.lo", "x.logs", ""}) {
        EXPECT_FALSE(text::hasExtension(name, "log")) << name;
    }
}

}  // namespace
