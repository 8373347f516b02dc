#pragma once

#include <string>
#include <string_view>

/// Lines as the agent writes them, each with its line feed.
namespace records {

inline std::string tokenCount(std::string_view inputTokens, std::string_view window = "272000") {
    return R"({"timestamp":"2026-11-24T16:45:21.002Z","ordinal":13,"type":"event_msg","payload":)"
           R"({"type":"token_count","info":{"total_token_usage":{"input_tokens":999999},)"
           R"("last_token_usage":{"input_tokens":)" +
           std::string(inputTokens) + R"(,"output_tokens":300},"model_context_window":)" +
           std::string(window) + "}}}\n";
}

inline std::string compacted(std::string_view windowID) {
    return R"({"timestamp":"2026-11-24T16:45:21.399Z","ordinal":35,"type":"compacted","payload":)"
           R"({"message":"","window_number":1,"first_window_id":"w0","previous_window_id":"w1",)"
           R"("window_id":")" +
           std::string(windowID) + R"(","replacement_history":[{"role":"user"}]}})" + "\n";
}

inline std::string contextCompacted(std::string_view timestamp) {
    return R"({"timestamp":")" + std::string(timestamp) +
           R"(","type":"event_msg","payload":{"type":"context_compacted"}})" + "\n";
}

/// Conversation; talks about compaction.
inline std::string message(std::string_view text) {
    return R"({"timestamp":"2026-11-24T16:45:21Z","type":"response_item","payload":{"type":"message",)"
           R"("role":"user","content":[{"type":"input_text","text":"compact )" +
           std::string(text) + R"("}]}})" + "\n";
}

inline std::string title(std::string_view id, std::string_view name) {
    return R"({"id":")" + std::string(id) + R"(","thread_name":")" + std::string(name) + "\"}\n";
}

/// Of the desktop application's log: a task comes into view.
inline std::string taskInView(std::string_view id) {
    return "1 thread_stream_view_activity_changed active=true rendererWindowAppearance=primary "
           "rendererWindowFocused=true conversationId=" +
           std::string(id) + "\n";
}

}  // namespace records
