// Writes session files or desktop logs of the shape that the agent and its desktop application
// write. The same seed gives the same files.
//
//     generate sessions FOLDER MEGABYTES SEED [TASKS]
//     generate logs FOLDER MEGABYTES SEED
//
// FOLDER becomes a home folder. The session files belong to one task unless a number of tasks is
// given. A file has a first line of up to 25 KB, which names the task's working folder; turns of
// messages, tool calls and their outputs; a token count after each answer; and now and then a
// compaction, whose record repeats the conversation and is the longest line (up to 2 MB). These
// records are nearly a fifth of all bytes, and a quarter where files are small. Some messages talk
// about compaction. When MEGABYTES is too small, files have their first line only.
//
// The logs have lines of 200 bytes, of which one in a hundred is about focus.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// SplitMix64, since the standard distributions differ between libraries.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }
    std::uint64_t below(std::uint64_t limit) { return next() % limit; }
    std::uint64_t between(std::uint64_t low, std::uint64_t high) {
        return low + below(high - low + 1);
    }
    bool oneIn(std::uint64_t n) { return below(n) == 0; }

private:
    std::uint64_t state_;
};

/// Writes sentences, code and tool output, escaped for a JSON string.
class Prose {
public:
    explicit Prose(Random& random) : random_(random) {
        // clang-format off
        static constexpr std::string_view kWords[] = {
            "the", "a", "file", "function", "returns", "when", "test", "build", "module",
            "and", "of", "to", "in", "is", "that", "value", "error", "summary", "memory",
            "machine", "package", "import", "const", "std::string", "number_of_items", "index",
            "user_input", "implement", "component", "example", "template", "command",
            "document", "environment", "expected", "function_call", "response", "token",
            "context", "window", "message", "main.cpp", "src/parser/lexer.ts", "return x;",
            "if (a < b) {", "}", "->", "0x7f3a", "1284", "line 42", "\\\"quoted\\\"",
            "path\\\\to", "für", "重构", "–", "…"};
        // clang-format on
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
    const auto digits = [](std::uint64_t n, std::uint64_t beyond) {
        return std::to_string(beyond + n % beyond).substr(1);
    };
    const std::uint64_t second = millisecond / 1000;
    return "2026-11-" + digits(1 + second / 86400 % 28, 100) + 'T' +
           digits(second / 3600 % 24, 100) + ':' + digits(second / 60 % 60, 100) + ':' +
           digits(second % 60, 100) + '.' + digits(millisecond, 1000) + 'Z';
}

std::string threadID(std::uint64_t task) {
    return "01a20e72-983b-7e83-81c7-" + std::to_string(100'000'000'000 + task);
}

/// Writes lines into files of a limited size.
class Lines {
public:
    explicit Lines(std::string path) : path_(std::move(path)) {}

    void write(const std::string& line) {
        constexpr std::uint64_t kFileBytes = 128'000'000;
        if (!file_.is_open() || bytes_ > kFileBytes * files_) {
            const std::string path = path_ + std::to_string(10 + files_++) + suffix;
            std::filesystem::create_directories(std::filesystem::path(path).parent_path());
            file_.close();
            file_.open(path);
        }
        file_ << line << '\n';
        bytes_ += line.size() + 1;
    }
    std::uint64_t bytes() const { return bytes_; }

    std::string suffix = ".log";

private:
    const std::string path_;
    std::ofstream file_;
    std::uint64_t files_ = 0;
    std::uint64_t bytes_ = 0;
};

/// Writes the session files of one task.
class SessionWriter {
public:
    SessionWriter(const std::string& home, std::uint64_t task, Random& random, Prose& prose)
        : home_(home),
          task_(task),
          random_(random),
          prose_(prose),
          lines_(home + "/.codex/sessions/2026/" + day() + "/rollout-2026-11-24T16-45-") {
        lines_.suffix = '-' + threadID(task) + ".jsonl";
    }

    void write(std::uint64_t bytes) {
        firstLine();
        while (lines_.bytes() < bytes) {
            turn();
            if (compactedBytes_ * 100 < lines_.bytes() * 18) {
                compaction(bytes / 4);
            }
        }
    }

private:
    /// Returns a day such as "11/24"; each day has twenty tasks.
    std::string day() const {
        const std::uint64_t day = task_ / 20;
        return std::to_string(10 + day / 28) + '/' + std::to_string(10 + day % 28);
    }

    std::string begin(std::string_view type) {
        return R"({"timestamp":")" + timestamp(clock_ += random_.between(3, 900)) +
               R"(","ordinal":)" + std::to_string(ordinal_++) + R"(,"type":")" + std::string(type) +
               R"(","payload":{)";
    }

    /// The working folder stands before the instructions or after them.
    void firstLine() {
        const std::string folder =
            R"("cwd":")" + home_ + "/code/project-" + std::to_string(task_ % 50) + "\",";
        std::string instructions = R"("instructions":")";
        prose_.append(instructions, random_.between(0, 24'000));
        instructions += "\",";
        const std::string both = task_ % 3 == 0 ? folder + instructions : instructions + folder;
        lines_.write(begin("session_meta") + R"("id":")" + threadID(task_) + "\"," + both +
                     R"("cli_version":"0.50.0"}})");
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

    void compaction(std::uint64_t limit) {
        const std::string number = std::to_string(++compactions_);
        std::string line = begin("compacted") + R"("message":"","window_number":)" + number +
                           R"(,"first_window_id":"w0","previous_window_id":"p","window_id":"w)" +
                           number + R"(","replacement_history":[)";
        const std::uint64_t bytes = random_.oneIn(8) ? random_.between(1'500'000, 2'000'000)
                                                     : random_.between(40'000, 400'000);
        const std::size_t end = line.size() + std::min(bytes, limit);
        do {
            line += R"({"type":"message","role":"user","content":[{"type":"input_text","text":")";
            prose_.append(line, random_.between(300, 6'000));
            line += R"("}]},)";
        } while (line.size() < end);
        line.back() = ']';
        line += "}}";
        compactedBytes_ += line.size();
        lines_.write(line);
        tokenCount(0);
    }

    const std::string home_;
    const std::uint64_t task_;
    Random& random_;
    Prose& prose_;
    Lines lines_;
    std::uint64_t clock_ = 0;
    std::uint64_t ordinal_ = 0;
    std::uint64_t compactions_ = 0;
    std::uint64_t compactedBytes_ = 0;
};

void writeSessions(const std::string& home, std::uint64_t bytes, std::uint64_t tasks,
                   Random& random) {
    Prose prose(random);
    std::filesystem::create_directories(home + "/.codex");
    std::ofstream titles(home + "/.codex/session_index.jsonl");
    for (std::uint64_t task = 0; task < tasks; ++task) {
        SessionWriter(home, task, random, prose).write(bytes / tasks);
        titles << R"({"id":")" << threadID(task) << R"(","thread_name":"Fix the tests of module )"
               << task << "\"}\n";
    }
}

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
    Lines lines(home + "/Library/Logs/com.openai.codex/2026/11/24/codex-desktop-");
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
                    threadID(0);
            } else {
                line += kind == 1 ? "[window-state] renderer_state_changed"
                                  : "[desktop] thread_stream_view_activity_changed active=true";
                line += window + " conversationId=" + threadID(0);
            }
        } else {
            line += kSources[random.below(std::size(kSources))];
            line += ' ';
            line += kEvents[random.below(std::size(kEvents))];
            line += " durationMs=" + std::to_string(random.below(900)) +
                    " originWebContentsId=" + std::to_string(random.below(9)) +
                    " conversationId=" + threadID(0) +
                    " requestId=" + std::to_string(random.next()) + " errorCode=null status=ok";
        }
        lines.write(line);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 5) {
        std::cerr << "usage: generate sessions|logs FOLDER MEGABYTES SEED [TASKS]\n";
        return 2;
    }
    const auto number = [&](int i, const char* usual) {
        return std::strtoull(i < argumentCount ? arguments[i] : usual, nullptr, 10);
    };
    const std::string home = arguments[2];
    const std::uint64_t bytes = number(3, "") * 1'000'000;
    Random random(number(4, ""));
    if (arguments[1] == std::string_view("sessions")) {
        writeSessions(home, bytes, number(5, "1"), random);
    } else {
        writeLogs(home, bytes, random);
    }
    return 0;
}
