// What the records of a session file mean. reading.cpp passes complete lines in file order; each
// compaction is counted once, and the usage of the latest turn is kept. Some of the lines are
// conversation that merely mentions compaction; they change nothing.
// Tests: tests/sessions/interpretation_test.cpp.

#include <algorithm>
#include <iterator>
#include <vector>

#include "sessions/ORVSessionReader.h"
#include "text/unicode.h"

namespace {

using sessions::kCompact;
using sessions::kTokenCount;

const ORVJSONShape& recordShape() {
    using Fields = std::vector<ORVJSONShape>;
    constexpr bool kText = true;
    static const Fields kInfo = {{"model_context_window"},
                                 {"last_token_usage", Fields{{"input_tokens"}}}};
    static const Fields kPayload = {{"type", kText},
                                    {"window_number"},
                                    {"first_window_id", kText},
                                    {"previous_window_id", kText},
                                    {"window_id", kText},
                                    {"message"},
                                    {"replacement_history"},
                                    {"model_context_window"},
                                    {"info", kInfo}};
    static const ORVJSONShape kShape(
        "", {{"type", kText}, {"timestamp", kText}, {"ordinal"}, {"payload", kPayload}});
    return kShape;
}

using Kind = ORVJSONValue::Kind;

bool mentionsCompaction(std::string_view type) {
    return text::containsIgnoringCase(type, kCompact);
}

}  // namespace

void ORVSessionReader::consumeLine(std::string_view line, ORVSessionParseState& state,
                                   ORVJSONReader& json) const {
    const auto object = json.readObject(line, recordShape());
    if (!object) {
        return;
    }
    const ORVJSONValue& payload = (*object)["payload"];
    const std::string_view type = (*object)["type"].text;
    const ORVJSONValue& payloadType = payload["type"];
    const bool isEvent = type == "event_msg";
    const bool isTokenCount = isEvent && payloadType.text == kTokenCount;
    const bool isLegacy = isEvent && payloadType.text == "context_compacted";
    const bool isCurrent = type == "compacted" && isValidCurrentCompactionObject(*object, payload);
    // An event without a type counts as one about compaction.
    const bool isAboutCompaction =
        !isTokenCount &&
        (isEvent ? payloadType.kind != Kind::string || mentionsCompaction(payloadType.text)
                 : mentionsCompaction(type));
    // The word must stand in the line's bytes: one that is written with JSON escapes does not
    // count. This is checked last, because few lines get here and most of them are long.
    if (isAboutCompaction && dataContainsUTF8(line, kCompact)) {
        if (isLegacy || isCurrent) {
            const auto identifier = compactionIdentifierForObject(*object, payload, isCurrent);
            if (consumeCompaction(identifier, state)) {
                record(*object, std::nullopt, identifier.value_or(""), state);
            }
        } else {
            state.sawCompactionSignal = true;
            state.compactionStatus = ORVCompactionStatusIncompatible;
        }
    }
    if (isTokenCount && dataContainsUTF8(line, kTokenCount)) {
        if (consumeTokenCount(payload, state)) {
            record(*object, state.contextUsage, "", state);
        }
    }
}

void ORVSessionReader::consumeLines(std::span<const std::string_view> lines,
                                    ORVSessionParseState& state, ORVJSONReader& json) const {
    if (!wants_.agentFacts) {
        return consumeFigures(lines, state, json);
    }
    if (!state.facts) {
        state.facts = std::make_unique<ORVRecordedFacts>();
    }
    takeFacts(lines, *state.facts, json);
    std::vector<std::string_view> telling;  // The others are about turns alone.
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(telling), [](auto line) {
        return dataContainsUTF8(line, kCompact) || dataContainsUTF8(line, kTokenCount);
    });
    consumeFigures(telling, state, json);
}

void ORVSessionReader::consumeFigures(std::span<const std::string_view> lines,
                                      ORVSessionParseState& state, ORVJSONReader& json) const {
    const std::size_t lastUsage = wants_.eventsPerFile > 0 ? 0 : indexOfLastUsage(lines, json);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i >= lastUsage || dataContainsUTF8(lines[i], kCompact)) {
            consumeLine(lines[i], state, json);
        }
    }
}

/// Returns where the last usage is told, and 0 when it is not among the last lines. Only a few are
/// tried, since each is parsed again. Those that mention compaction are the longest and left out.
std::size_t ORVSessionReader::indexOfLastUsage(std::span<const std::string_view> lines,
                                               ORVJSONReader& json) const {
    constexpr std::size_t kMostLinesTried = 8;
    for (std::size_t i = lines.size(); i > 1 && lines.size() - i < kMostLinesTried; --i) {
        const std::string_view line = lines[i - 1];
        ORVSessionParseState stateOfThisLine;
        if (!dataContainsUTF8(line, kCompact)) {
            consumeLine(line, stateOfThisLine, json);
        }
        if (stateOfThisLine.contextUsage) {
            return i - 1;
        }
    }
    return 0;
}

/// Counts a compaction and returns whether it was a new one: each identifier counts once.
bool ORVSessionReader::consumeCompaction(const std::optional<std::string>& identifier,
                                         ORVSessionParseState& state) {
    state.sawCompactionSignal = true;
    state.compactionStatus = ORVCompactionStatusValid;
    if (!identifier) {
        ++state.anonymousCompactionCount;
    } else if (!state.compactionIdentifiers.insert(*identifier).second) {
        return false;
    }
    ++state.compactionCount;
    // The usage of the turns before no longer describes the conversation.
    state.contextUsage.reset();
    state.contextStatus = ORVContextStatusWaiting;
    return true;
}

/// Takes the usage of a turn and returns whether there was one.
bool ORVSessionReader::consumeTokenCount(const ORVJSONValue& payload, ORVSessionParseState& state) {
    const auto inputTokens = wholeNumber(payload["info"]["last_token_usage"]["input_tokens"]);
    const auto window = wholeNumber(windowIn(payload));
    if (!inputTokens || window.value_or(0) == 0) {
        state.contextStatus = ORVContextStatusIncompatible;
        return false;
    }
    if (*inputTokens == 0) {
        // The agent writes this after a compaction, before the next answer. It is not a usage.
        if (!state.contextUsage) {
            state.contextStatus = ORVContextStatusWaiting;
        }
        return false;
    }
    state.contextUsage.emplace(*inputTokens, *window);
    state.contextStatus = ORVContextStatusAvailable;
    return true;
}

bool ORVSessionReader::isValidCurrentCompactionObject(const ORVJSONValue& object,
                                                      const ORVJSONValue& payload) {
    return payload.kind == Kind::object && isNonnegativeIntegerNumber(object["ordinal"]) &&
           isPositiveIntegerNumber(payload["window_number"]) &&
           !payload["first_window_id"].text.empty() &&
           !payload["previous_window_id"].text.empty() && !payload["window_id"].text.empty() &&
           payload["message"].kind == Kind::string &&
           payload["replacement_history"].kind == Kind::array;
}

std::optional<std::string> ORVSessionReader::compactionIdentifierForObject(
    const ORVJSONValue& object, const ORVJSONValue& payload, bool isCurrent) {
    const std::string& value = isCurrent ? payload["window_id"].text : object["timestamp"].text;
    if (value.empty()) {
        return std::nullopt;
    }
    return (isCurrent ? "current:" : "legacy:") + value;
}

bool ORVSessionReader::isNonnegativeIntegerNumber(const ORVJSONValue& value) {
    return wholeNumber(value).has_value();
}

bool ORVSessionReader::isPositiveIntegerNumber(const ORVJSONValue& value) {
    return wholeNumber(value).value_or(0) > 0;
}

/// A literal with a fraction or an exponent counts as the nearest double, so 3.0 and 1e3 are whole.
std::optional<std::int64_t> ORVSessionReader::wholeNumber(const ORVJSONValue& value) {
    constexpr std::uint64_t kLargest = std::uint64_t{1} << 63U;
    std::uint64_t natural = 0;
    if (value.kind != Kind::number) {
        return std::nullopt;
    }
    if (const auto* real = std::get_if<double>(&value.number)) {
        if (!(*real >= 0 && *real <= static_cast<double>(kLargest))) {
            return std::nullopt;
        }
        natural = static_cast<std::uint64_t>(*real);
        // Doubles beyond 2^53 have no fraction, so converting there and back is exact.
        if (static_cast<double>(natural) != *real) {
            return std::nullopt;
        }
    } else {
        natural = std::get<std::uint64_t>(value.number);
    }
    return natural <= kLargest
               ? std::optional(static_cast<std::int64_t>(std::min(natural, kLargest - 1)))
               : std::nullopt;
}

const ORVJSONValue& ORVSessionReader::windowIn(const ORVJSONValue& payload) {
    const ORVJSONValue& window = payload["info"]["model_context_window"];
    return window.kind == Kind::absent ? payload["model_context_window"] : window;
}
