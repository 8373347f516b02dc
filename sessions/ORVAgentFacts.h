#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"

/// One of the account's rate limits as a token count tells it. What is absent, or is no number of
/// the right kind, is none.
struct ORVRateLimit {
    std::optional<std::int64_t> minutes;   ///< The length of its window: "window_minutes".
    std::optional<double> usedPercent;     ///< "used_percent", any number as recorded.
    std::optional<std::int64_t> resetsAt;  ///< "resets_at", Unix time in seconds.
    bool operator==(const ORVRateLimit&) const = default;
};

/// What the agent says of a task beside the usage. Texts are as recorded; one of more than
/// kLongestTextBytes counts as absent.
struct ORVAgentFacts {
    static constexpr std::size_t kLongestTextBytes = 4096;

    // Of the newest "turn_context" record. It may tell only one of them.
    std::optional<std::string> model;
    std::optional<std::string> effort;

    // Of the newest token count with a whole number in last_token_usage.total_tokens.

    /// The "context left" of the agent's own interface, 0 to 100: the share of the window that is
    /// left for the conversation. The agent takes off the 12,000 tokens that each conversation
    /// begins with, and counts the answer as well. None without a window.
    std::optional<std::int64_t> leftPercent;
    std::optional<std::int64_t> totalTokens;  ///< Of the whole conversation so far.

    /// Of the newest token count with at least one: the shorter window first, one without a length
    /// last.
    std::vector<ORVRateLimit> rateLimits;

    bool operator==(const ORVAgentFacts&) const = default;
};

/// What the agent has said in one file, or in several.
struct ORVRecordedFacts {
    ORVAgentFacts facts;
    bool hasTurnContext = false;  ///< Whether model and effort are told, even if as absent.
    bool hasTokens = false;       ///< Whether leftPercent and totalTokens are.
    std::string rateLimitsAt;  ///< The time stamp of the record with the rate limits; "" for none.

    /// Takes from older records what is not told yet.
    void fillFrom(const ORVRecordedFacts& older);
};

/// The account's rate limits as one token count tells them.
struct ORVAccountLimits {
    std::vector<ORVRateLimit> rateLimits;  ///< Never empty; ordered as in ORVAgentFacts.
    std::string at;    ///< The record's time stamp, unchanged; "" when it has none.
    ORVFileDate date;  ///< The time in `at`, else the date of the file.
};
