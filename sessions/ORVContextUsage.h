#pragma once

#include <cstdint>

/// How much of the model's context window the latest turn of a task took.
class ORVContextUsage {
public:
    ORVContextUsage(std::int64_t inputTokens, std::int64_t contextWindow)
        : inputTokens_(inputTokens), contextWindow_(contextWindow) {}

    /// Tokens, from the token count's "input_tokens"; 1 or more.
    std::int64_t inputTokens() const { return inputTokens_; }

    /// Tokens, from the token count's "model_context_window"; 1 or more.
    std::int64_t contextWindow() const { return contextWindow_; }

    /// Percent. Above 100 where a turn exceeded the window; 0 without a window.
    double percentage() const {
        if (contextWindow_ < 1) {
            return 0.0;
        }
        return static_cast<double>(inputTokens_) / static_cast<double>(contextWindow_) * 100.0;
    }

    bool operator==(const ORVContextUsage&) const = default;

private:
    std::int64_t inputTokens_;
    std::int64_t contextWindow_;
};
