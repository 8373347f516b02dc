// Writes data of the shape that the agent and its desktop application write, the same for the same
// seed: one task's session files, or desktop logs.
//
//     generate sessions|logs FOLDER MEGABYTES SEED
//
// FOLDER becomes a home folder. Session data: turns of messages, tool calls and their outputs, a
// token count after each answer, and now and then a compaction, whose record repeats the
// conversation and is the longest line (up to 2 MB); nearly a fifth of all bytes. Some messages
// talk about compaction. Logs: 200-byte lines of which one in a hundred is about focus.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "bench/Random.h"

namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::string_view kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";

/// Sentences, code and tool output as they stand inside a JSON string.
class Prose {
public:
    explicit Prose(Random& random) : random_(random) {
        static constexpr std::string_view kWords[] = {"the",
                                                      "a",
                                                      "file",
                                                      "function",
                                                      "returns",
                                                      "when",
                                                      "test",
                                                      "build",
                                                      "module",
                                                      "and",
                                                      "of",
                                                      "to",
                                                      "in",
                                                      "is",
                                                      "that",
                                                      "value",
                                                      "error",
                                                      "summary",
                                                      "memory",
                                                      "machine",
                                                      "package",
                                                      "import",
                                                      "const",
                                                      "std::string",
                                                      "number_of_items",
                                                      "index",
                                                      "user_input",
                                                      "implement",
                                                      "component",
                                                      "example",
                                                      "template",
                                                      "command",
                                                      "document",
                                                      "environment",
                                                      "expected",
                                                      "function_call",
                                                      "response",
                                                      "token",
                                                      "context",
                                                      "window",
                                                      "message",
                                                      "main.cpp",
                                                      "src/parser/lexer.ts",
                                                      "return x;",
                                                      "if (a < b) {",
                                                      "}",
                                                      "->",
                                                      "0x7f3a",
                                                      "1284",
                                                      "line 42",
                                                      "\\\"quoted\\\"",
                                                      "path\\\\to",
                                                      "für",
                                                      "重构",
                                                      "–",
                                                      "…"};
        constexpr std::size_t kPieces = 8192;
        for (std::size_t i = 0; i < kPieces; ++i) {
            std::string piece;
            const std::uint64_t words = random_.between(6, 18);
            for (std::uint64_t w = 0; w < words; ++w) {
                piece += kWords[random_.below(std::size(kWords))];
                piece += ' ';
            }
            piece += random_.oneIn(3) ? "\\n" : ". ";
            pieces_.push_back(std::move(piece));
        }
    }

    void append(std::string& line, std::uint64_t bytes) {
        const std::size_t end = line.size() + bytes;
        while (line.size() < end) {
            line += pieces_[random_.below(pieces_.size())];
        }
    }

private:
    Random& random_;
    std::vector<std::string> pieces_;
};

std::string timestamp(std::uint64_t millisecond) {
    const std::uint64_t second = millisecond / 1000;
    const auto twoDigits = [](std::uint64_t n) {
        return std::string{static_cast<char>('0' + n / 10 % 10), static_cast<char>('0' + n % 10)};
    };
    return "2026-11-" + twoDigits(1 + second / 86400 % 28) + "T" + twoDigits(second / 3600 % 24) +
           ":" + twoDigits(second / 60 % 60) + ":" + twoDigits(second % 60) + "." +
           std::to_string(1000 + millisecond % 1000).substr(1) + "Z";
}

/// A stream of lines into files of a limited size.
class Lines {
public:
    Lines(std::filesystem::path folder, std::string prefix, std::string suffix)
        : folder_(std::move(folder)), prefix_(std::move(prefix)), suffix_(std::move(suffix)) {
        std::filesystem::create_directories(folder_);
    }
    void write(const std::string& line) {
        constexpr std::uint64_t kFileBytes = 128 * kMegabyte;
        if (!file_.is_open() || fileBytes_ > kFileBytes) {
            file_.close();
            file_.open(folder_ / (prefix_ + std::to_string(10 + files_++) + suffix_));
            fileBytes_ = 0;
        }
        file_ << line << '\n';
        fileBytes_ += line.size() + 1;
        bytes_ += line.size() + 1;
    }
    std::uint64_t bytes() const { return bytes_; }

private:
    std::filesystem::path folder_;
    std::string prefix_;
    std::string suffix_;
    std::ofstream file_;
    std::uint64_t files_ = 0;
    std::uint64_t fileBytes_ = 0;
    std::uint64_t bytes_ = 0;
};

class SessionWriter {
public:
    SessionWriter(const std::string& home, Random& random)
        : random_(random),
          prose_(random),
          lines_(home + "/.codex/sessions/2026/11/24", "rollout-2026-11-24T16-45-",
                 "-" + std::string(kTask) + ".jsonl") {}

    void write(std::uint64_t bytes) {
        while (lines_.bytes() < bytes) {
            turn();
            if (compactedBytes_ * 100 < lines_.bytes() * 18) {
                compaction();
            }
        }
    }

private:
    std::string begin(std::string_view type) {
        return R"({"timestamp":")" + timestamp(clock_ += random_.between(3, 900)) +
               R"(","ordinal":)" + std::to_string(ordinal_++) + R"(,"type":")" + std::string(type) +
               R"(","payload":{)";
    }

    void turn() {
        message("user", random_.between(80, 800));
        for (std::uint64_t call = random_.between(1, 8); call > 0; --call) {
            reasoning();
            lines_.write(begin("response_item") +
                         R"("type":"function_call","name":"exec_command","arguments":"{\"cmd\": )"
                         R"(\"rg -n token src\"}","call_id":"call_24"}})");
            output();
            tokenCount(random_.between(9'000, 250'000));
        }
        message("assistant", random_.between(200, 4'000));
    }

    void message(std::string_view role, std::uint64_t bytes) {
        std::string line = begin("response_item") + R"("type":"message","role":")" +
                           std::string(role) + R"(","content":[{"type":"input_text","text":")";
        prose_.append(line, bytes);
        if (random_.oneIn(12)) {
            line += "then compact the conversation, as \\\"context_compacted\\\" says";
        }
        lines_.write(line + R"("}]}})");
    }

    void reasoning() {
        static constexpr std::string_view kBase64 =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string line =
            begin("response_item") + R"("type":"reasoning","summary":[],"encrypted_content":")";
        for (std::uint64_t i = random_.between(100, 700); i > 0; --i) {
            for (std::uint64_t bits = random_.next(), n = 0; n < 8; ++n, bits >>= 6U) {
                line += kBase64[bits % 64];
            }
        }
        lines_.write(line + R"("}})");
    }

    void output() {
        std::string line = begin("response_item") +
                           R"("type":"function_call_output","call_id":"call_24","output":")"
                           R"(Wall time: 0.0 seconds\nOriginal token count: 2\nOutput:\n)";
        const bool isLong = random_.oneIn(20);
        prose_.append(line,
                      isLong ? random_.between(20'000, 120'000) : random_.between(200, 9'000));
        lines_.write(line + R"("}})");
    }

    void tokenCount(std::uint64_t inputTokens) {
        const std::string usage = R"({"input_tokens":)" + std::to_string(inputTokens) +
                                  R"(,"cached_input_tokens":0,"output_tokens":300,)"
                                  R"("reasoning_output_tokens":0,"total_tokens":)" +
                                  std::to_string(inputTokens + 300) + "}";
        lines_.write(begin("event_msg") + R"("type":"token_count","info":{"total_token_usage":)" +
                     usage + R"(,"last_token_usage":)" + usage +
                     R"(,"model_context_window":258400},"rate_limits":null}})");
    }

    void compaction() {
        const std::string number = std::to_string(++compactions_);
        std::string line = begin("compacted") + R"("message":"","window_number":)" + number +
                           R"(,"first_window_id":"w0","previous_window_id":"p","window_id":"w)" +
                           number + R"(","replacement_history":[)";
        const std::uint64_t bytes = random_.oneIn(8) ? random_.between(1'500'000, 2'000'000)
                                                     : random_.between(40'000, 400'000);
        const std::size_t end = line.size() + bytes;
        while (line.size() < end) {
            line += R"({"type":"message","role":"user","content":[{"type":"input_text","text":")";
            prose_.append(line, random_.between(300, 6'000));
            line += R"("}]},)";
        }
        line.back() = ']';
        line += "}}";
        compactedBytes_ += line.size();
        lines_.write(line);
        tokenCount(0);
    }

    Random& random_;
    Prose prose_;
    Lines lines_;
    std::uint64_t clock_ = 0;
    std::uint64_t ordinal_ = 0;
    std::uint64_t compactions_ = 0;
    std::uint64_t compactedBytes_ = 0;
};

void writeLogs(const std::string& home, std::uint64_t bytes, Random& random) {
    static constexpr std::string_view kSources[] = {
        "[electron-main]", "[AppServerConnection]",      "[window-manager]",
        "[git-origins]",   "[electron-message-handler]", "[updater]"};
    static constexpr std::string_view kEvents[] = {"request_completed method=thread/list",
                                                   "IPC_ROUTED channel=codex_desktop:message",
                                                   "stdio_transport_spawned",
                                                   "worktree_status_refreshed",
                                                   "heartbeat acknowledged",
                                                   "IAB_LIFECYCLE browser view hidden"};
    Lines lines(home + "/Library/Logs/com.openai.codex/2026/11/24", "codex-desktop-", ".log");
    std::uint64_t clock = 0;
    while (lines.bytes() < bytes) {
        std::string line = timestamp(clock += random.between(1, 400)) + " info ";
        const std::string window =
            " rendererWebContentsId=7 rendererWindowId=3"
            " rendererWindowAppearance=primary rendererWindowFocused=true"
            " rendererWindowVisible=true";
        if (random.oneIn(100)) {
            const std::uint64_t kind = random.below(3);
            if (kind == 0) {
                line +=
                    "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner"
                    " sync originWebContentsId=7 windowId=3 ownerRoutePath=/local/" +
                    std::string(kTask);
            } else {
                line += kind == 1 ? "[window-state] renderer_state_changed"
                                  : "[desktop] thread_stream_view_activity_changed active=true";
                line += window + " conversationId=" + std::string(kTask);
            }
        } else {
            line += kSources[random.below(std::size(kSources))];
            line += ' ';
            line += kEvents[random.below(std::size(kEvents))];
            line += " durationMs=" + std::to_string(random.below(900)) +
                    " originWebContentsId=" + std::to_string(random.below(9)) +
                    " conversationId=" + std::string(kTask) +
                    " requestId=" + std::to_string(random.next()) + " errorCode=null status=ok";
        }
        lines.write(line);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5) {
        std::cerr << "usage: generate sessions|logs FOLDER MEGABYTES SEED\n";
        return 2;
    }
    const std::string_view kind = arguments[1];
    const std::string home = arguments[2];
    const std::uint64_t bytes = std::strtoull(arguments[3], nullptr, 10) * kMegabyte;
    Random random(std::strtoull(arguments[4], nullptr, 10));
    if (kind == "sessions") {
        SessionWriter(home, random).write(bytes);
    } else {
        writeLogs(home, bytes, random);
    }
    return 0;
}
