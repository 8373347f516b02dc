#include "tests/sessions/SessionSourceTest.h"

namespace {

using SessionRecordTest = SessionSourceTest;
using records::compacted;
using records::contextCompacted;
using records::tokenCount;

struct RecordCase {
    const char* name;
    std::string lines;
    const char* title;  ///< What the menu bar shows after them.
    std::int64_t contextStatus = 0;
};

/// A valid compaction record with one piece of text replaced.
std::string compactedBut(const std::string& piece, const std::string& replacement) {
    std::string record = compacted("w1");
    const std::size_t position = record.find(piece);
    EXPECT_NE(std::string::npos, position) << piece;
    return record.replace(position, piece.size(), replacement);
}

std::string event(const std::string& payload) {
    return R"({"type":"event_msg","payload":)" + payload + "}\n";
}

const std::string kUsage = R"({"last_token_usage":{"input_tokens":136000}})";

const RecordCase kRecordCases[] = {
    {"nothing", "", "C0 · --%", 1},
    {"usage", tokenCount("128000"), "C0 · 47%"},
    {"usage over the window", tokenCount("150000", "100000"), "C0 · 150%"},
    {"same window identifier", compacted("w1") + compacted("w1") + compacted("w2"), "C2 · --%", 1},
    {"same and other time stamps",
     contextCompacted("t1") + contextCompacted("t1") + contextCompacted("t2"), "C2 · --%", 1},
    {"anonymous",
     contextCompacted("") + contextCompacted("") + event(R"({"type":"context_compacted"})"),
     "C3 · --%", 1},
    {"one in each form", compacted("t1") + contextCompacted("t1"), "C2 · --%", 1},
    {"compaction drops the usage", tokenCount("128000") + compacted("w1"), "C1 · --%", 1},
    {"duplicate keeps the usage", compacted("w1") + tokenCount("128000") + compacted("w1"),
     "C1 · 47%"},
    {"no tokens after a compaction", compacted("w1") + tokenCount("0"), "C1 · --%", 1},
    {"no tokens after a figure", tokenCount("128000") + tokenCount("0"), "C0 · 47%"},
    {"no tokens after an incompatible figure",
     tokenCount("128000") + tokenCount("null") + tokenCount("0"), "C0 · --%", 2},
    {"no info", tokenCount("128000") + event(R"({"type":"token_count","info":null})"), "C0 · --%",
     2},
    {"figure after no info", event(R"({"type":"token_count","info":null})") + tokenCount("128000"),
     "C0 · 47%"},
    {"window in the payload",
     event(R"({"type":"token_count","model_context_window":272000,"info":)" + kUsage + "}"),
     "C0 · 50%"},
    {"window in both",
     event(
         R"({"type":"token_count","model_context_window":1,"info":{"model_context_window":272000,)"
         R"("last_token_usage":{"input_tokens":136000}}})"),
     "C0 · 50%"},
    {"null window hides the payload's",
     event(R"({"type":"token_count","model_context_window":1,"info":{"model_context_window":null,)"
           R"("last_token_usage":{"input_tokens":136000}}})"),
     "C0 · --%", 2},
    {"not understood", compacted("w1") + compactedBut("window_number\":1", "window_number\":0"),
     "C– · --%", 1},
    {"understood again", compactedBut("\"ordinal\":35,", "") + compacted("w1"), "C1 · --%", 1},
    {"understood again by a duplicate",
     compacted("w1") + compactedBut("\"ordinal\":35,", "") + compacted("w1"), "C1 · --%", 1},
    {"no history", compactedBut("[{\"role\":\"user\"}]", "{}"), "C– · --%", 1},
    {"ordinal -1", compactedBut("35", "-1"), "C– · --%", 1},
    {"ordinal 0", compactedBut("35", "0"), "C1 · --%", 1},
    {"message a number", compactedBut("\"message\":\"\"", "\"message\":1"), "C– · --%", 1},
    {"empty window", compactedBut("\"w1\",\"window_id\":\"w1\"", "\"w1\",\"window_id\":\"\""),
     "C– · --%", 1},
    {"no first window", compactedBut("\"first_window_id\":\"w0\",", ""), "C– · --%", 1},
    {"payload is no object",
     R"({"type":"compacted","ordinal":1,"payload":"compacted"})"
     "\n",
     "C– · --%", 1},
    {"new kind of event", event(R"({"type":"auto_compaction_started"})"), "C– · --%", 1},
    {"new kind of record",
     R"({"type":"Compaction_summary_compact"})"
     "\n",
     "C– · --%", 1},
    {"upper case beside the bytes", event(R"({"type":"COMPACTING","x":"compact"})"), "C– · --%", 1},
    {"upper case alone", event(R"({"type":"COMPACTING"})"), "C0 · --%", 1},
    {"event without a type", event(R"({"x":"compact"})"), "C– · --%", 1},
    {"event with an empty type", event(R"({"type":"","x":"compact"})"), "C0 · --%", 1},
    {"conversation", records::message("context_compacted token_count"), "C0 · --%", 1},
    {"record quoted in a string",
     R"({"type":"response_item","payload":{"type":"message","text":"{\"type\":\"compacted\"}"}})"
     "\n",
     "C0 · --%", 1},
    {"upper case beside the other bytes", event(R"({"type":"COMPACTING","x":"token_count"})"),
     "C0 · --%", 1},
    {"escaped beside the other bytes",
     event(R"({"type":"token\u005fcount","x":"compact","info":null})"), "C0 · --%", 1},
    {"escaped keywords", event(R"({"type":"token\u005fcount","info":null})"), "C0 · --%", 1},
    {"both on one line",
     event(R"({"type":"token_count","compact":1,"info":{"model_context_window":272000,)"
           R"("last_token_usage":{"input_tokens":136000}}})"),
     "C0 · 50%"},
    {"not JSON",
     R"({"type":"compacted","payload":{)"
     "\n"
     R"([{"type":"compacted"}])"
     "\n",
     "C0 · --%", 1},
    {"not UTF-8", "{\"type\":\"compacted\",\"x\":\"\xFF\"}\n", "C0 · --%", 1},
    {"NUL byte", std::string("{\"type\":\"compacted\"}\0\n", 22), "C0 · --%", 1},
    {"last of equal keys wins",
     R"({"payload":{"type":"agent_message"},"type":"response_item","type":"event_msg",)"
     R"("payload":{"type":"context_compacted"}})"
     "\n",
     "C1 · --%", 1},
};

TEST_F(SessionRecordTest, Records) {
    for (const RecordCase& c : kRecordCases) {
        SCOPED_TRACE(c.name);
        home.replace(fileOf(kTask), c.lines);
        EXPECT_EQ(c.title, title());
        EXPECT_EQ(c.contextStatus, snapshot()->contextStatus());
    }
}

TEST_F(SessionRecordTest, Numbers) {
    struct NumberCase {
        const char* literal;
        std::optional<std::int64_t> value;
    };
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    const NumberCase kCases[] = {
        {"1", 1},
        {"1.0", 1},
        {"1e3", 1000},
        {"12.5e1", 125},
        {"1e0000000000003", 1000},
        {"9223372036854775807", kLargest},
        {"9223372036854775808", kLargest},
        {"9223372036854775809", std::nullopt},
        {"9.223372036854775808e18", kLargest},
        {"18446744073709551616", std::nullopt},
        {"1e19", std::nullopt},
        {"1e999", std::nullopt},
        {"1e99999999999", std::nullopt},
        {"1.5", std::nullopt},
        {"-1", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"\"1\"", std::nullopt},
        {"true", std::nullopt},
        {"null", std::nullopt},
        {"[1]", std::nullopt},
    };
    for (const NumberCase& c : kCases) {
        SCOPED_TRACE(c.literal);
        home.replace(fileOf(kTask), tokenCount(c.literal, c.literal));
        const auto found = snapshot();
        ASSERT_TRUE(found);
        EXPECT_EQ(c.value ? 0 : 2, found->contextStatus());
        ASSERT_EQ(c.value.has_value(), found->contextUsage().has_value());
        if (c.value) {
            EXPECT_EQ(*c.value, found->contextUsage()->inputTokens());
            EXPECT_EQ(*c.value, found->contextUsage()->contextWindow());
        }
    }
    for (const char* zero : {"0", "-0", "0.0", "-0.0", "0e5", "0e99999999999", "1e-400"}) {
        SCOPED_TRACE(zero);
        home.replace(fileOf(kTask), tokenCount(zero));
        EXPECT_EQ(1, snapshot()->contextStatus());
        home.replace(fileOf(kTask), tokenCount("1", zero));
        EXPECT_EQ(2, snapshot()->contextStatus()) << "a window of nothing";
    }
}

TEST_F(SessionRecordTest, StrangeValuesElsewhereLeaveAGoodRecordGood) {
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    // The value stands in the record's object, one level down.
    const std::string kGood[] = {"1e999",
                                 std::string(400, '9'),
                                 "1e99999999999",
                                 "-1e-99999999999",
                                 nested(ORVJSONReader::kMaxDepth - 1),
                                 "0.1E+0000000001",
                                 "\"1e999999999999 \\\" 1e99999999999\""};
    for (const std::string& value : kGood) {
        std::string record = tokenCount("136000");
        record.insert(1, "\"strange\":" + value + ",");
        home.replace(fileOf(kTask), record);
        EXPECT_EQ("C0 · 50%", title()) << value.substr(0, 40);
    }
    const std::string kBad[] = {nested(ORVJSONReader::kMaxDepth),
                                nested(100'000),
                                "01",
                                "1e",
                                "+1",
                                "NaN",
                                "truе",
                                "1e99999999999x",
                                ".5",
                                "'a'",
                                "\"\\x\"",
                                "\"\t\""};
    for (const std::string& value : kBad) {
        std::string record = tokenCount("136000");
        record.insert(1, "\"strange\":" + value + ",");
        home.replace(fileOf(kTask), record);
        EXPECT_EQ("C0 · --%", title()) << value.substr(0, 40);
    }
}

}  // namespace
