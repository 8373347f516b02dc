#pragma once

#include <string>
#include <string_view>

/// Lines as the agent and the desktop application write them, each with its line feed.
namespace records {

inline const std::string kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
inline const std::string kOther = "01A20E70-11AA-7C20-9D00-5B1F0C7A4E02";

/// Takes the payload as JSON.
inline std::string record(const std::string& type, const std::string& payload,
                          const std::string& timestamp = "2026-11-24T16:45:21Z") {
    return R"({"timestamp":")" + timestamp + R"(","type":")" + type + R"(","payload":)" + payload +
           "}\n";
}

/// The first line of a session file, with these members in its payload.
inline std::string sessionMeta(const std::string& members) {
    return record("session_meta", '{' + members + '}');
}
inline std::string helperMeta(const std::string& parent) {
    return sessionMeta(R"("thread_source":"subagent","parent_thread_id":")" + parent + '"');
}

inline std::string tokenCount(const std::string& inputTokens,
                              const std::string& window = "272000") {
    return record("event_msg",
                  R"({"type":"token_count","info":{"total_token_usage":{"input_tokens":999999},)"
                  R"("last_token_usage":{"input_tokens":)" +
                      inputTokens + R"(,"output_tokens":300},"model_context_window":)" + window +
                      "}}",
                  "2026-11-24T16:45:21.002Z");
}

inline std::string compacted(const std::string& windowID) {
    return R"({"timestamp":"2026-11-24T16:45:21.399Z","ordinal":35,"type":"compacted","payload":)"
           R"({"message":"","window_number":1,"first_window_id":"w0","previous_window_id":"w1",)"
           R"("window_id":")" +
           windowID + R"(","replacement_history":[{"role":"user"}]}})" + "\n";
}

inline std::string contextCompacted(const std::string& timestamp) {
    return record("event_msg", R"({"type":"context_compacted"})", timestamp);
}

/// A line of conversation that talks about compaction.
inline std::string message(const std::string& text) {
    return record("response_item", R"({"type":"message","role":"user","content":[{)"
                                   R"("type":"input_text","text":"compact )" +
                                       text + R"("}]})");
}

inline std::string title(const std::string& id, const std::string& name) {
    return R"({"id":")" + id + R"(","thread_name":")" + name + "\"}\n";
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
