#include <gtest/gtest.h>

#include <sstream>
#include <variant>

#include "text/bytes.h"
#include "text/json.h"

namespace {

using Kind = ORVJSONValue::Kind;

const ORVJSONShape& shape() {
    using Fields = std::vector<ORVJSONShape>;
    static const ORVJSONShape kShape(
        "", {{"s", true}, {"n"}, {"o", {{"s", true}, {"o", Fields{{"n"}}}}}});
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

/// Reads the text, which `next` follows again and again in memory.
std::string read(const std::string& text, char next = 'x') {
    ORVJSONReader reader;
    const std::string padded = text + std::string(text::kReadableBytesBeyond, next);
    const auto value = reader.readObject(std::string_view(padded).substr(0, text.size()), shape());
    return value ? described(*value) : "refused";
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// Texts that are accepted; those that are refused follow. "~" stands between them.
const char* const kAccepted =
    "{}~ {\t} ~{\"\":{\"\":[]},\"a\":\"\\u00e9\\ud83d\\ude80\\/\\b\",\"b\":[true,false,null]}~"
    R"({"a":-0,"b":0.0e-0,"c":1E+2,"d":1e-999,"e":-1e99999999999}~)"
    R"({"a":1e999,"b":"1e999\"","c":[1e999,2]}~{"a":"1e999","b":0.5e999,"c":0e999})";
const char* const kRefused =
    R"(~{~[]~1~"a"~{}{}~{},~{}x~{"a":1,}~{"a":01}~{"a":1.}~{"a":1e+}~{"a":+1}~{"a":-}~{"a":tru}~)"
    R"({"a":truex}~{"a":nul}~{"a":"\q"}~{"a":"\v"}~{"a":"\u00g0"}~{"a":"b":"c"}~{"a":{]}~)"
    R"({"a":"\ud83d"}~{"a":"	"}~{'a':1}~{/**/}~{"a":1e99999999999,}~{"a":1e99999999999x}~)"
    R"({"a":-01e99999999999}~{"a":1.e99999999999}~{"a":1e999e99}~{"a":1 e5}~{"a":1e999999999 9})";

void expect(bool isAccepted, const std::string& texts) {
    std::istringstream all(texts);
    for (std::string text; std::getline(all, text, '~');) {
        EXPECT_EQ(isAccepted, read(text) != "refused") << text;
    }
}

TEST(JSONObjectTest, OneWholeObjectOfStandardJSONAndNothingElse) {
    const auto nested = [](std::size_t depth, const std::string& innermost = "") {
        return "{\"x\":" + std::string(depth - 1, '[') + innermost + std::string(depth - 1, ']') +
               "}";
    };
    expect(true, kAccepted);
    expect(false, kRefused);
    for (const std::string& text :
         {"{\"a\":" + std::string(400, '1') + "}", "{\"a\":1." + std::string(500, '3') + "}",
          std::string("{\"a\":[1\t,2\r\n ,\"\"\n]\n}\r"),
          "{\"a\":[" + repeated("[],{},", 600) + "0]}", nested(512), nested(512, "1"),
          nested(512, "1e999,\"[[\\\"\""), nested(511, "{}")}) {
        EXPECT_NE("refused", read(text)) << text.substr(0, 60);
    }
    // Nothing that follows the text completes it.
    for (const char next : std::string_view("]},:\"{[0 ")) {
        for (const char* text : {"{\"a\":[{}", "{\"a\":{}", "{\"a\":[[[{}", "{\"a\":[0,{}"}) {
            EXPECT_EQ("refused", read(text, next)) << text << next;
        }
    }
    for (const std::string& text :
         {std::string("{}\0", 3), std::string("\xEF\xBB\xBF{}"), std::string("{\"a\":\"\xFF\"}"),
          "{\"a\":" + std::string(400, '1') + "x}", nested(513), nested(513, "1"),
          nested(512, "{}"), nested(1'025)}) {
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
    EXPECT_NE(read(R"({"n":true})"), read(R"({"n":null})"));
    EXPECT_EQ(read(R"({"n":"x"})"), read(R"({"n":"y","a":"\u0061"})")) << "its text is not kept";
    // Numbers are exact up to 2^64 - 1. A number beyond every double reads as infinity.
    EXPECT_NE(read(R"({"n":18446744073709551614})"), read(R"({"n":18446744073709551615})"));
    for (const char* zero : {"1e-400", "0e99999999999999999999999999999999"}) {
        EXPECT_EQ(read(R"({"n":0.0})"), read(std::string(R"({"n":)") + zero + "}")) << zero;
    }
    EXPECT_EQ(read(R"({"n":5e9})"), read(R"({"n":5E000000000000000000000000000009 })"));
    EXPECT_EQ(read(R"({"n":0.25})"), read("{\"n\":0.25" + std::string(2'000, '0') + "}"));
    EXPECT_EQ(read(R"({"n":0.0918446744073709551})"), read(R"({"n":0.091844674407370955161569})"));
    for (const char* number : {"18446744073709551616", "-9223372036854775809", "1e309", "-1E+309",
                               "1e99999999999999999999999999999999"}) {
        const std::string found = read(std::string(R"({"n":)") + number + "}");
        EXPECT_NE(std::string::npos, found.find("'inf")) << number << " reads as " << found;
    }
    // Such a number, also in a string, leaves the wanted fields beside it as they are.
    const std::string huge = R"("x":)" + std::string(400, '9') + R"(,"y":"1e999",)";
    EXPECT_EQ(read(R"({"s":"a","n":3.0,"o":{"o":{"n":4.0}}})"),
              read("{" + huge + R"("s":"a","n":3.0,"o":{"o":{"n":0.4e1}}})"));
    EXPECT_EQ(read(R"({"s":"1e999\\\""})"), read(R"({"x":-1e999,"s":"1e999\\\""})"));
}

TEST(JSONObjectTest, LongLines) {
    const auto longLine = [](std::size_t size, const std::string& number) {
        std::string line = R"({"s":"a","n":)" + number + R"(,"x":""})";
        return line.insert(line.size() - 2, size - line.size(), 'f');
    };
    EXPECT_EQ(read(R"({"s":"a","n":1e999})"), read(longLine(5 * 1024 * 1024, "1e999")));
    EXPECT_EQ(read(R"({"s":"a","n":1})"), read(longLine(ORVJSONReader::kMaxBytes, "1")));
    EXPECT_EQ("refused", read(longLine(ORVJSONReader::kMaxBytes + 1, "1")));
}

TEST(JSONObjectTest, AnArrayLeavesOutWhatIsNotWritten) {
    const std::string items[] = {"", "1", "", "2", ""};
    EXPECT_EQ("[1,2]", text::arrayJSON(items, [](const auto& item) { return item; }));
}

}  // namespace
