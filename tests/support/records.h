#pragma once

#include <string>
#include <string_view>

/// Lines as the agent and the desktop application write them, each with its line feed.
namespace records {

inline constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
inline constexpr const char* kOther = "01A20E70-11AA-7C20-9D00-5B1F0C7A4E02";

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

/// A line of conversation that talks about compaction.
inline std::string message(std::string_view text) {
    return R"({"timestamp":"2026-11-24T16:45:21Z","type":"response_item","payload":{"type":"message",)"
           R"("role":"user","content":[{"type":"input_text","text":"compact )" +
           std::string(text) + R"("}]}})" + "\n";
}

inline std::string title(std::string_view id, std::string_view name) {
    return R"({"id":")" + std::string(id) + R"(","thread_name":")" + std::string(name) + "\"}\n";
}

/// Returns log lines for a story. In a story "|" separates lines, and TASK and OTHER stand for the
/// identifiers above. A line is a time stamp and one of these:
///
///     1 window             a window, which is in view
///     2 route /local/TASK  the route that the window shows
///     3 activity OTHER     a conversation that became active
///     4 both OTHER         the same with a description of the window
///     5 anything else      is written unchanged
///
/// Further words change a line: "8/4" sets the window's two identifiers, "ocused=false" the value
/// of the field whose name ends so.
std::string log(std::string_view story);

}  // namespace records
