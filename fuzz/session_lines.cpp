// Takes every line of the input for a record of a session file.

#include <simdjson.h>

#include <set>

#include "fuzz/fuzz.h"
#include "sessions/ORVSessionReader.h"
#include "tests/support/MemoryFiles.h"
#include "text/json.h"

namespace {

/// Returns the figures of a session file that holds this line so many times.
std::string meaning(const std::string& line, int times) {
    static MemoryFiles disk;
    static const ManualClock clock;
    static const ORVSessionReader reader(disk, clock, {});
    static ORVJSONReader json;
    const std::string padded = line + std::string(text::kReadableBytesBeyond, '"');
    ORVSessionParseState state;
    for (int i = 0; i < times; ++i) {
        reader.consumeLine(std::string_view(padded).substr(0, line.size()), state, json);
    }
    const auto named = static_cast<std::int64_t>(state.compactionIdentifiers.size());
    const std::int64_t nameless = state.anonymousCompactionCount;
    const bool isAvailable = state.contextStatus == ORVContextStatusAvailable;
    const auto usage = state.contextUsage.value_or(ORVContextUsage(1, 1));
    fuzz::expect("the count is that of both kinds", state.compactionCount == named + nameless);
    fuzz::expect("a line is one compaction", named <= 1 && state.compactionCount <= times);
    fuzz::expect("what is available is there", !isAvailable || state.contextUsage);
    fuzz::expect("figures are in range", usage.inputTokens() > 0 && usage.contextWindow() > 0);
    return std::to_string(named) + (nameless > 0 ? " nameless " : " ") +
           (state.sawCompactionSignal ? "signal " : "") + std::to_string(state.compactionStatus) +
           std::to_string(state.contextStatus) + ' ' + std::to_string(usage.percentage());
}

/// Returns the object with its members in their order and in the reverse order; nothing for a text
/// that is not an object or has a member twice.
std::pair<std::string, std::string> turned(const std::string& line) {
    simdjson::dom::parser parser;
    std::pair<std::string, std::string> both;
    std::set<std::string_view> keys;
    simdjson::dom::object object;
    if (parser.parse(line).get(object) != simdjson::SUCCESS) {
        return both;
    }
    for (const auto field : object) {
        const std::string member =
            text::quotedJSON(field.key) + ':' + simdjson::to_string(field.value);
        const std::string comma = keys.empty() ? "" : ",";
        if (!keys.insert(field.key).second) {
            return {};
        }
        both = {both.first + comma + member, member + comma + both.second};
    }
    return {'{' + both.first + '}', '{' + both.second + '}'};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (std::string line : fuzz::lines(fuzz::text(data, size))) {
        const std::string once = meaning(line, 1);
        fuzz::expectEqual("a line twice counts once", once, meaning(line, 2));
        const auto [forward, backward] = turned(line);
        fuzz::expectEqual("members have no order", meaning(forward, 1), meaning(backward, 1));
        if (line.starts_with("{\"")) {
            line.insert(1, "\"unknown\":{\"type\":[null]},");
            fuzz::expectEqual("others do not matter", once, meaning(line, 1));
        }
    }
    return 0;
}
