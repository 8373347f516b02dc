// Every line of the input as a record of a session file.

#include <simdjson.h>

#include <set>

#include "fuzz/fuzz.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/ManualClock.h"
#include "tests/support/MemoryFiles.h"
#include "text/json_text.h"

namespace {

/// What a session file of this one line, so many times, amounts to.
std::string meaning(std::string line, int times) {
    static MemoryFiles disk;
    static const ManualClock clock;
    static ORVCodexSessionSource source(disk, clock, "/codex");
    const std::size_t length = line.size();
    line.append(ORVByteBuffer::kReadableBytesBeyond, '"');
    ORVSessionParseState state;
    for (int i = 0; i < times; ++i) {
        source.consumeLine(std::string_view(line).substr(0, length), state);
    }
    const auto named = static_cast<std::int64_t>(state.compactionIdentifiers.size());
    fuzz::expect("the count is that of both kinds",
                 state.compactionCount == named + state.anonymousCompactionCount);
    fuzz::expect("one line is one compaction", named <= 1 && state.compactionCount <= times);
    fuzz::expect("what is available is there",
                 state.contextStatus != ORVContextStatusAvailable || state.contextUsage);
    const auto usage = state.contextUsage.value_or(ORVContextUsage(1, 1));
    fuzz::expect("figures are in range", usage.inputTokens() > 0 && usage.contextWindow() > 0);
    return std::to_string(named) + (state.anonymousCompactionCount > 0 ? " nameless" : "") +
           (state.sawCompactionSignal ? " signal " : " ") + std::to_string(state.compactionStatus) +
           std::to_string(state.contextStatus) + ' ' + std::to_string(usage.inputTokens()) + '/' +
           std::to_string(usage.contextWindow());
}

/// The object with its members as they stand and the other way round; "" for what is no object of
/// different members.
std::pair<std::string, std::string> turned(const std::string& line) {
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    std::string forward;
    std::string backward;
    std::set<std::string_view> keys;
    if (parser.parse(line).get(object) == simdjson::SUCCESS) {
        for (const simdjson::dom::key_value_pair field : object) {
            if (!keys.insert(field.key).second) {
                return {};
            }
            const std::string member =
                text::quotedJSON(field.key) + ':' + simdjson::to_string(field.value);
            forward += (forward.empty() ? "" : ",") + member;
            backward = member + (backward.empty() ? "" : ",") + backward;
        }
    }
    return {'{' + forward + '}', '{' + backward + '}'};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = fuzz::text(data, size);
    for (std::size_t start = 0, end = 0; start < input.size(); start = end + 1) {
        end = std::min(input.find('\n', start), input.size());
        std::string line = input.substr(start, end - start);
        const std::string expected = meaning(line, 1);
        fuzz::expectEqual("a line twice counts once", expected, meaning(line, 2));
        const auto [forward, backward] = turned(line);
        fuzz::expectEqual("members have no order", meaning(forward, 1), meaning(backward, 1));
        if (line.starts_with("{\"")) {
            fuzz::expectEqual("others do not matter", expected,
                              meaning(line.insert(1, "\"unknown\":{\"type\":[null]},"), 1));
        }
    }
    return 0;
}
