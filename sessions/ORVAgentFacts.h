#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"

/// How much of one of the account's rate limits is used, as a token count tells it.
struct ORVRateLimit {
    std::optional<std::int64_t> minutes;    ///< The length of its window.
    std::optional<double> usedPercent;
    std::optional<std::int64_t> resetsAt;   ///< Unix time in seconds.
};

/// What the agent says of a task beside the usage. Each fact is that of its own newest record.
struct ORVAgentFacts {
    std::optional<std::string> model;
    std::optional<std::string> effort;
    std::optional<std::int64_t> leftPercent;
    std::optional<std::int64_t> totalTokens;
    std::vector<ORVRateLimit> rateLimits;
};

/// How much of the account's rate limits is used, as the newest session files tell it.
struct ORVAccountLimits {
    std::vector<ORVRateLimit> rateLimits;
    std::string at;    ///< The record's time stamp; "" for none.
    ORVFileDate date;  ///< Of the record, else of its file.
};
