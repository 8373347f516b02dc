#pragma once

#include <cstdint>

/// How much of the model's context window the latest turn of a task took.
class ORVContextUsage {
public:
    ORVContextUsage(std::int64_t inputTokens, std::int64_t contextWindow)
        : inputTokens_(inputTokens), contextWindow_(contextWindow) {}

    /// Returns the tokens of the turn, "input_tokens" of the token count; 1 or more.
    std::int64_t inputTokens() const { return inputTokens_; }

    /// Returns the tokens that the window holds, "model_context_window"; 1 or more in a session.
    std::int64_t contextWindow() const { return contextWindow_; }

    /// Returns the tokens of the turn in percent of the window. A turn that exceeded the window
    /// gives more than 100; a window of less than one token gives 0.
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
