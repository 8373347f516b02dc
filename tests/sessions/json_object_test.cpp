#include "sessions/json_object.h"

#include <gtest/gtest.h>

#include <variant>

#include "text/byte_buffer.h"

namespace {

using Kind = ORVJSONValue::Kind;

const ORVJSONShape& shape() {
    static const ORVJSONShape kShape{
        "", false, {{"s", true}, {"n"}, {"o", false, {{"s", true}, {"o", false, {{"n"}}}}}}};
    return kShape;
}

std::string described(const ORVJSONValue& value) {
    std::string text = std::to_string(static_cast<int>(value.kind)) + "'" + value.text + "'" +
                       std::visit([](auto number) { return std::to_string(number); }, value.number);
    for (const char* key : {"s", "n", "o"}) {
        const ORVJSONValue& member = value[key];
        if (member.kind != Kind::absent) {
            text += std::string("{") + key + described(member) + "}";
        }
    }
    return text;
}

std::string read(const std::string& text) {
    ORVJSONReader reader;
    const std::string padded = text + std::string(ORVByteBuffer::kReadableBytesBeyond, 'x');
    const auto value = reader.readObject(std::string_view(padded).substr(0, text.size()), shape());
    return value ? described(*value) : "refused";
}

TEST(JSONObjectTest, OneWholeObjectOfStandardJSONAndNothingElse) {
    const auto nested = [](std::size_t depth, const std::string& innermost = "") {
        return "{\"x\":" + std::string(depth - 1, '[') + innermost + std::string(depth - 1, ']') +
               "}";
    };
    const std::string kAccepted[] = {"{}",
                                     " {\t\r\n} ",
                                     R"({"a":1})",
                                     R"({"":{"":[]}})",
                                     R"({"a":"\u00e9\ud83d\ude80\/\b"})",
                                     R"({"a":-0,"b":0.0e-0,"c":1E+2})",
                                     "{\"a\":" + std::string(400, '1') + "}",
                                     R"({"a":1e999})",
                                     R"({"a":1e-999,"b":-1e99999999999})",
                                     R"({"a":1.)" + std::string(500, '3') + "}",
                                     R"({"a":{"a":[true,false,null]}})",
                                     "{\"a\":\"\x7f\u2028\"}",
                                     nested(2),
                                     nested(512),
                                     nested(512, "1"),
                                     nested(512, "1e999,\"[[\""),
                                     nested(511, "{}")};
    for (const std::string& text : kAccepted) {
        EXPECT_NE("refused", read(text)) << text.substr(0, 60);
    }
    const std::string kRefused[] = {"",
                                    " ",
                                    "{",
                                    "}",
                                    "[]",
                                    "1",
                                    "null",
                                    "\"a\"",
                                    "{}{}",
                                    "{},",
                                    "{}x",
                                    R"({"a"})",
                                    R"({a:1})",
                                    R"({"a":1,})",
                                    R"({"a":01})",
                                    R"({"a":1.})",
                                    R"({"a":.1})",
                                    R"({"a":1e})",
                                    R"({"a":1e+})",
                                    R"({"a":+1})",
                                    R"({"a":-})",
                                    R"({"a":tru})",
                                    R"({"a":nul})",
                                    R"({"a":"\q"})",
                                    R"({"a":"\u12"})",
                                    "{\"a\":\"\n\"}",
                                    "{\"a\":\"\x01\"}",
                                    "{\"a\":\"\xC0\x80\"}",
                                    "{\"a\":\"\xED\xA0\x80\"}",
                                    "{\"a\":\"\xF4\x90\x80\x80\"}",
                                    "{\"a\":\"\xE2\x82\"}",
                                    std::string("{}\0", 3),
                                    "\xEF\xBB\xBF{}",
                                    "{/**/}",
                                    "{'a':1}",
                                    "{\"a\":1e99999999999,}",
                                    "{\"a\":" + std::string(400, '1') + "x}",
                                    R"({"a":"\ud83d"})",
                                    nested(513),
                                    nested(513, "1"),
                                    nested(512, "{}"),
                                    nested(1'025),
                                    "{\"a\":1 e5}",
                                    "{\"a\":1e999999999 9}"};
    for (const std::string& text : kRefused) {
        EXPECT_EQ("refused", read(text)) << text.substr(0, 60);
    }
}

TEST(JSONObjectTest, TheWantedFields) {
    EXPECT_EQ(read(R"({"s":"é"})"), read("{\"s\":\"\\u00e9\"}"));
    EXPECT_EQ(read(R"({"s":"new"})"), read(R"({"s":"old","s":"new"})"));
    EXPECT_EQ(read(R"({"o":{"s":"b"}})"), read(R"({"o":{"s":"a","o":{"n":1}},"o":{"s":"b"}})"));
    EXPECT_EQ(read(R"({"o":5})"), read(R"({"o":{"s":"a"},"\u006f":5})"));
    EXPECT_EQ(read(R"({"n":7})"), read(R"({"x":{"n":1},"y":[{"n":2}],"n":7,"z":"n"})"));
    EXPECT_EQ(read(R"({"n":1000.0})"), read(R"({"n":1e3})"));
    // Exact up to 2^64 - 1; what nothing can hold is a fraction.
    EXPECT_NE(read(R"({"n":18446744073709551614})"), read(R"({"n":18446744073709551615})"));
    for (const char* number :
         {"18446744073709551616", "1e309", "-1E+309", "-9223372036854775809"}) {
        EXPECT_EQ(read(R"({"n":0.5})"), read(std::string(R"({"n":)") + number + "}")) << number;
    }
    EXPECT_EQ(read(R"({"n":0})"), read(R"({"n":-0})"));
    // Beside such a number, in a string too, the wanted fields are what they were.
    const std::string huge = R"("x":)" + std::string(400, '9') + R"(,"y":"1e999",)";
    EXPECT_EQ(read(R"({"s":"a","n":3.0,"o":{"o":{"n":4.0}}})"),
              read("{" + huge + R"("s":"a","n":3.0,"o":{"o":{"n":0.4e1}}})"));
    EXPECT_EQ(read(R"({"s":"1e999\\\""})"), read(R"({"x":-1e999,"s":"1e999\\\""})"));
}

TEST(JSONObjectTest, LongLines) {
    const auto longLine = [](std::size_t size) {
        const std::string rest = R"({"s":"a","n":1e999,"x":""})";
        std::string line = rest;
        return line.insert(line.size() - 2, size - rest.size(), 'f');
    };
    EXPECT_EQ(read(R"({"s":"a","n":0.5})"), read(longLine(5 * 1024 * 1024)));
    EXPECT_EQ(read(R"({"s":"a","n":0.5})"), read(longLine(ORVJSONReader::kMaxBytes)));
    EXPECT_EQ("refused", read(longLine(ORVJSONReader::kMaxBytes + 1)));
}

}  // namespace
