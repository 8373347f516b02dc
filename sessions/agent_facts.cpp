// What the agent says of a task beside the figures: its model, what is left of the window by its
// own count, and the account's rate limits. Each is told by the newest record that has it, whether
// or not that record sets the usage. Tests: tests/sessions/agent_facts_test.cpp.

#include <algorithm>
#include <cmath>

#include "sessions/ORVSessionReader.h"

namespace {

using Kind = ORVJSONValue::Kind;

const ORVJSONShape& factsShape() {
    using Fields = std::vector<ORVJSONShape>;
    constexpr bool kText = true;
    static const Fields kUsage = {{"total_tokens"}};
    static const Fields kLimit = {{"window_minutes"}, {"used_percent"}, {"resets_at"}};
    static const Fields kInfo = {
        {"model_context_window"}, {"last_token_usage", kUsage}, {"total_token_usage", kUsage}};
    static const Fields kPayload = {
        {"type", kText},   {"model", kText},
        {"effort", kText}, {"model_context_window"},
        {"info", kInfo},   {"rate_limits", {{"primary", kLimit}, {"secondary", kLimit}}}};
    static const ORVJSONShape kShape(
        "", {{"type", kText}, {"timestamp", kText}, {"payload", kPayload}});
    return kShape;
}

std::optional<std::string> textOf(const ORVJSONValue& value) {
    const bool isText =
        value.kind == Kind::string && value.text.size() <= ORVAgentFacts::kLongestTextBytes;
    return isText ? std::optional(value.text) : std::nullopt;
}

/// The quotient of two numbers below 2^46, which no window reaches, is exact where it is halfway
/// between two whole numbers.
std::int64_t leftPercent(std::int64_t tokens, std::int64_t window) {
    constexpr std::int64_t kTokensAtTheBeginning = 12'000;
    const std::int64_t left = window - std::max(tokens, kTokensAtTheBeginning);
    if (left <= 0) {
        return 0;
    }
    const auto room = static_cast<double>(window - kTokensAtTheBeginning);
    return static_cast<std::int64_t>(std::floor(100.0 * static_cast<double>(left) / room + 0.5));
}

std::optional<double> numberOf(const ORVJSONValue& value) {
    if (value.kind != Kind::number) {
        return std::nullopt;
    }
    const double number =
        std::visit([](auto literal) { return static_cast<double>(literal); }, value.number);
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::vector<ORVRateLimit> rateLimitsIn(const ORVJSONValue& limits) {
    std::vector<ORVRateLimit> list;
    for (const char* key : {"primary", "secondary"}) {
        if (const ORVJSONValue& limit = limits[key]; limit.kind == Kind::object) {
            list.push_back({ORVSessionReader::wholeNumber(limit["window_minutes"]),
                            numberOf(limit["used_percent"]),
                            ORVSessionReader::wholeNumber(limit["resets_at"])});
        }
    }
    std::stable_sort(list.begin(), list.end(), [](const ORVRateLimit& a, const ORVRateLimit& b) {
        return a.minutes && (!b.minutes || *a.minutes < *b.minutes);
    });
    return list;
}

ORVRecordedFacts factsOfTurn(const ORVJSONValue& payload) {
    ORVRecordedFacts told;
    told.hasTurnContext = true;
    told.facts.model = textOf(payload["model"]);
    told.facts.effort = textOf(payload["effort"]);
    return told;
}

ORVRecordedFacts factsOfTokenCount(const ORVJSONValue& record) {
    const ORVJSONValue& payload = record["payload"];
    const ORVJSONValue& info = payload["info"];
    ORVRecordedFacts told;
    if (const auto tokens =
            ORVSessionReader::wholeNumber(info["last_token_usage"]["total_tokens"])) {
        told.hasTokens = true;
        told.facts.totalTokens =
            ORVSessionReader::wholeNumber(info["total_token_usage"]["total_tokens"]);
        if (const auto window =
                ORVSessionReader::wholeNumber(ORVSessionReader::windowIn(payload))) {
            told.facts.leftPercent = leftPercent(*tokens, *window);
        }
    }
    told.facts.rateLimits = rateLimitsIn(payload["rate_limits"]);
    if (!told.facts.rateLimits.empty()) {
        told.rateLimitsAt = textOf(record["timestamp"]).value_or("");
    }
    return told;
}

}  // namespace

void ORVRecordedFacts::fillFrom(const ORVRecordedFacts& older) {
    if (!hasTurnContext) {
        hasTurnContext = older.hasTurnContext;
        facts.model = older.facts.model;
        facts.effort = older.facts.effort;
    }
    if (!hasTokens) {
        hasTokens = older.hasTokens;
        facts.leftPercent = older.facts.leftPercent;
        facts.totalTokens = older.facts.totalTokens;
    }
    if (facts.rateLimits.empty()) {
        facts.rateLimits = older.facts.rateLimits;
        rateLimitsAt = older.rateLimitsAt;
    }
}

/// Begins with the newest line and parses none that can tell only what a newer one has told.
void ORVSessionReader::takeFacts(std::span<const std::string_view> lines, ORVRecordedFacts& facts,
                                 ORVJSONReader& json) {
    ORVRecordedFacts newer;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        const bool mayBeTurn =
            !newer.hasTurnContext && dataContainsUTF8(*line, sessions::kTurnContext);
        const bool mayBeTokenCount = (!newer.hasTokens || newer.facts.rateLimits.empty()) &&
                                     dataContainsUTF8(*line, sessions::kTokenCount);
        const auto record =
            mayBeTurn || mayBeTokenCount ? json.readObject(*line, factsShape()) : std::nullopt;
        if (!record) {
            continue;
        }
        const std::string_view type = (*record)["type"].text;
        if (mayBeTurn && type == sessions::kTurnContext) {
            newer.fillFrom(factsOfTurn((*record)["payload"]));
        } else if (mayBeTokenCount && type == "event_msg" &&
                   (*record)["payload"]["type"].text == sessions::kTokenCount) {
            newer.fillFrom(factsOfTokenCount(*record));
        }
    }
    newer.fillFrom(facts);
    facts = std::move(newer);
}

ORVAgentFacts ORVSessionReader::agentFactsOf(std::span<const ORVSessionParseState* const> files) {
    ORVRecordedFacts told;
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        if ((*file)->facts) {
            told.fillFrom(*(*file)->facts);
        }
    }
    return std::move(told.facts);
}
