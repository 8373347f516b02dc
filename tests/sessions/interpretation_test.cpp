#include <algorithm>
#include <random>
#include <span>
#include <sstream>
#include <tuple>

#include "tests/sessions/SessionSourceTest.h"
#include "text/unicode.h"

namespace {

using SessionRecordTest = SessionSourceTest;

/// Returns the record with one piece of its text replaced.
std::string but(std::string record, const std::string& piece, const std::string& replacement) {
    const std::size_t position = record.find(piece);
    EXPECT_NE(std::string::npos, position) << piece;
    return record.replace(position, piece.size(), replacement);
}

std::string event(const std::string& payload) {
    return records::record("event_msg", payload);
}

/// Returns a token count with these members beside its type.
std::string usage(const std::string& members) {
    return event(R"({"type":"token_count",)" + members + "}");
}

const std::string kW1 = compacted("w1");
const std::string kUsed = tokenCount("128000");
const std::string kInput = R"("last_token_usage":{"input_tokens":136000})";

struct RecordCase {
    const char* name;
    std::string lines;
    const char* title;  ///< What the menu bar shows after them.
    std::int64_t contextStatus = 1;
};

const RecordCase kRecordCases[] = {
    {"nothing", "", "C0 · --%"},
    {"usage", kUsed, "C0 · 47%", 0},
    {"usage over the window", tokenCount("150000", "100000"), "C0 · 150%", 0},
    {"same window identifier", kW1 + kW1 + compacted("w2"), "C2 · --%"},
    {"same time stamp", contextCompacted("t1") + contextCompacted("t1"), "C1 · --%"},
    {"another one", contextCompacted("t1") + contextCompacted("t2"), "C2 · --%"},
    {"no time stamp", contextCompacted("") + contextCompacted(""), "C2 · --%"},
    {"one in each form", kW1 + contextCompacted("w1"), "C2 · --%"},
    {"compaction drops the usage", kUsed + kW1, "C1 · --%"},
    {"duplicate keeps the usage", kW1 + kUsed + kW1, "C1 · 47%", 0},
    {"no tokens after a compaction", kW1 + tokenCount("0"), "C1 · --%"},
    {"no tokens after a figure", kUsed + tokenCount("0"), "C0 · 47%", 0},
    {"after an incompatible one", kUsed + tokenCount("null") + tokenCount("0"), "C0 · --%", 2},
    {"after nothing else", tokenCount("null") + tokenCount("0"), "C0 · --%", 1},
    {"no info", kUsed + usage(R"("info":null)"), "C0 · --%", 2},
    {"figure after no info", usage(R"("info":null)") + kUsed, "C0 · 47%", 0},
    {"window in the payload", usage(R"("model_context_window":272000,"info":{)" + kInput + "}"),
     "C0 · 50%", 0},
    {"window in both",
     usage(R"("model_context_window":1,"info":{"model_context_window":272000,)" + kInput + "}"),
     "C0 · 50%", 0},
    {"null window hides the payload's",
     usage(R"("model_context_window":1,"info":{"model_context_window":null,)" + kInput + "}"),
     "C0 · --%", 2},
    {"not understood", kW1 + but(kW1, "number\":1", "number\":0"), "C– · --%"},
    {"understood again", but(kW1, "\"ordinal\":35,", "") + kW1, "C1 · --%"},
    {"again by a duplicate", kW1 + but(kW1, "\"ordinal\":35,", "") + kW1, "C1 · --%"},
    {"no history", but(kW1, "[{\"role\":\"user\"}]", "{}"), "C– · --%"},
    {"ordinal -1", but(kW1, "35", "-1"), "C– · --%"},
    {"ordinal 0", but(kW1, "35", "0"), "C1 · --%"},
    {"message a number", but(kW1, "\"message\":\"\"", "\"message\":1"), "C– · --%"},
    {"no window", but(kW1, "\"window_id\":\"w1\"", "\"window_id\":\"\""), "C– · --%"},
    {"no first window", but(kW1, "\"first_window_id\":\"w0\",", ""), "C– · --%"},
    {"no previous window", but(kW1, "\"w1\"", "null"), "C– · --%"},
    {"payload is no object", "{\"type\":\"compacted\",\"payload\":\"compacted\"}\n", "C– · --%"},
    {"new kind of event", event(R"({"type":"auto_compaction_started"})"), "C– · --%"},
    {"new kind of record", "{\"type\":\"Compaction_summary_compact\"}\n", "C– · --%"},
    {"upper case beside it", event(R"({"type":"COMPACTING","x":"compact"})"), "C– · --%"},
    {"upper case alone", event(R"({"type":"COMPACTING"})"), "C0 · --%"},
    {"event without a type", event(R"({"x":"compact"})"), "C– · --%"},
    {"event with an empty type", event(R"({"type":"","x":"compact"})"), "C0 · --%"},
    {"conversation", records::message("context_compacted token_count"), "C0 · --%"},
    {"quoted", "{\"type\":\"message\",\"x\":\"{\\\"type\\\":\\\"compacted\\\"}\"}\n", "C0 · --%"},
    {"usage in another record", but(kUsed, "event_msg", "x"), "C0 · --%"},
    {"compaction in another record", but(contextCompacted("t"), "event_msg", "x"), "C0 · --%"},
    {"other bytes", event(R"({"type":"COMPACTING","x":"token_count"})"), "C0 · --%"},
    {"escaped", event(R"({"type":"token\u005fcount","x":"compact","info":null})"), "C0 · --%"},
    {"both on one line",
     usage(R"("compact":1,"info":{"model_context_window":272000,)" + kInput + "}"), "C0 · 50%", 0},
    {"not JSON", "{\"type\":\"compacted\",\"payload\":{\n[{\"type\":\"compacted\"}]\n", "C0 · --%"},
    {"last of equal keys wins",
     R"({"type":"x","type":"event_msg","payload":{},"payload":{"type":"context_compacted"}})"
     "\n",
     "C1 · --%"},
};

TEST_F(SessionRecordTest, Records) {
    for (const RecordCase& c : kRecordCases) {
        SCOPED_TRACE(c.name);
        disk.replace(fileOf(kTask), c.lines);
        EXPECT_EQ(c.title, title());
        EXPECT_EQ(c.contextStatus, snapshot()->contextStatus());
    }
}

TEST_F(SessionRecordTest, LinesAtOnceTellWhatTheyTellOneByOne) {
    std::string text;
    for (const RecordCase& c : kRecordCases) {
        text += c.lines;
    }
    const std::size_t size = text.size();
    text.append(text::kReadableBytesBeyond, ' ');
    std::vector<std::string_view> pool;
    text::forEachLine(std::string_view(text).substr(0, size),
                      [&](std::string_view line) { pool.push_back(line); });
    const auto figures = [](const ORVSessionParseState& state) {
        return std::tuple(state.contextUsage, state.contextStatus, state.sawCompactionSignal,
                          state.compactionStatus, state.compactionCount);
    };
    const ORVSessionReader reader(disk, clock, {});
    ORVJSONReader json;
    std::mt19937 random(3);
    for (int round = 0; round < 5'000; ++round) {
        std::vector<std::string_view> lines(random() % 9);
        std::generate(lines.begin(), lines.end(), [&] { return pool[random() % pool.size()]; });
        ORVSessionParseState one;
        ORVSessionParseState all;
        for (const std::string_view line : lines) {
            reader.consumeLine(line, one, json);
        }
        reader.consumeLines(std::span(lines).first(lines.size() / 3), all, json);
        reader.consumeLines(std::span(lines).subspan(lines.size() / 3), all, json);
        ASSERT_EQ(figures(one), figures(all)) << "round " << round;
    }
}

/// Literals for the tokens and for the window, and the figure that each gives; -1 for none.
TEST_F(SessionRecordTest, Numbers) {
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    const std::pair<std::int64_t, const char*> kCases[] = {
        {1, "1 1.0"},
        {125, "12.5e1"},
        {1000, "1e0000000000003"},
        {kLargest, "9223372036854775807 9223372036854775808 9.223372036854775808e18"},
        {-1,
         "9223372036854775809 18446744073709551616 1e19 1e99999999999 1.5 -1 \"1\" true null [1]"}};
    for (const auto& [figure, literals] : kCases) {
        std::istringstream all(literals);
        for (std::string literal; all >> literal;) {
            disk.replace(fileOf(kTask), tokenCount(literal, literal));
            const auto found = snapshot();
            EXPECT_EQ(figure < 0 ? 2 : 0, found->contextStatus()) << literal;
            const ORVContextUsage none(-1, -1);
            EXPECT_EQ(ORVContextUsage(figure, figure), found->contextUsage().value_or(none));
        }
    }
    for (const char* zero : {"0", "-0", "0.0", "-0.0", "0e99999999999", "1e-400"}) {
        disk.replace(fileOf(kTask), tokenCount(zero));
        EXPECT_EQ(1, snapshot()->contextStatus()) << zero;
        disk.replace(fileOf(kTask), tokenCount("1", zero));
        EXPECT_EQ(2, snapshot()->contextStatus()) << "a window of " << zero;
    }
}

}  // namespace
