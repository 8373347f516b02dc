// Lets a writer that never rests write session files, titles and logs while `watch --json` and
// `query` follow, and compares what they say in the end with what a program says that has just been
// started:
//
//     soak PROGRAM FOLDER MINUTES [MEGABYTES-PER-SECOND]
//
// FOLDER is empty, becomes the parent of a home folder, and holds a gigabyte at most. Every few
// minutes the writer settles for a comparison. Halfway and at the end it rests, and what the
// readers do meanwhile is counted. Ends with a table, and with status 1 when an answer differed, a
// reader ended, complained or woke up for nothing, or holds more at the end than halfway.

#include <signal.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/LogsWriter.h"
#include "bench/Program.h"
#include "bench/Random.h"
#include "bench/SessionsWriter.h"
#include "bench/WrittenFiles.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kPatience(60);      // With an answer, on a busy machine.
constexpr seconds kTaskInViewFor(3);  // Longer than a refresh interval.
constexpr seconds kSettled(14);       // A search for files is kept for ten seconds; and a refresh.
constexpr seconds kSampleInterval(30);
constexpr seconds kRefreshInterval(2);  // The timer of `watch`.

// What a refresh with nothing to do may cost, in going to sleep: the loop for the timer and for the
// result, the refresh queue for its work, each with a lock that the other may hold.
constexpr long kSwitchesPerRefresh = 5;

// What may be held at the end beyond what was held halfway.
constexpr long kMoreResidentKilobytes = 1024;
constexpr long kMoreAnonymousKilobytes = 512;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// A line of `watch --json` without the items that are hidden: their titles are left over from
/// what was shown before.
std::string visibleIn(std::string line) {
    const std::string_view mark = R"("hidden":true})";
    for (auto end = line.find(mark); end != std::string::npos; end = line.find(mark)) {
        const auto begin = line.rfind(R"({"item":)", end);
        line.erase(begin, end + mark.size() - begin);
    }
    return line;
}

/// The writer, on a thread of its own between start and stop.
class Writer {
public:
    Writer(const std::string& folder, double bytesPerSecond)
        : bytesPerSecond_(bytesPerSecond),
          files_(folder + "/graves"),
          sessions_(files_, random_, folder + "/home/.codex"),
          logs_(files_, random_, folder + "/home/Library/Logs/com.openai.codex") {}

    void start() {
        isStopped_ = false;
        thread_ = std::thread([this] { run(); });
    }

    /// Then lets every reader come to the same answers, with a task in view; returns the task.
    std::string settle() {
        isStopped_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        sessions_.settle();
        const std::string& task = tasks()[random_.below(tasks().size())];
        logs_.setRouteInView("/local/" + task);
        logs_.settle();
        return task;
    }

    const std::vector<std::string>& tasks() const { return sessions_.tasks(); }
    std::uint64_t steps() const { return steps_; }
    std::uint64_t bytesWritten() const { return files_.bytesWritten(); }

private:
    void run() {
        const auto start = Clock::now();
        const double before = static_cast<double>(files_.bytesWritten());
        while (!isStopped_) {
            switchTask();
            for (int i = 0; i < 20; ++i, ++steps_) {
                if (random_.oneIn(3)) {
                    logs_.step();
                } else {
                    sessions_.step(inView_ % tasks().size());
                }
            }
            const double written = static_cast<double>(files_.bytesWritten()) - before;
            const double ahead = written / bytesPerSecond_ - secondsSince(start);
            std::this_thread::sleep_for(std::chrono::duration<double>(std::max(0.0, ahead)));
        }
    }

    /// Every task comes in view in turn, then a task that is yet to begin, then another page.
    void switchTask() {
        if (Clock::now() - switchedAt_ < kTaskInViewFor) {
            return;
        }
        switchedAt_ = Clock::now();
        inView_ = (inView_ + 1) % (tasks().size() + 2);
        const std::size_t others = tasks().size();
        logs_.setRouteInView(inView_ < others    ? "/local/" + tasks()[inView_]
                             : inView_ == others ? "/"
                                                 : "/settings");
    }

    const double bytesPerSecond_;
    Random random_{1};
    WrittenFiles files_;
    SessionsWriter sessions_;
    LogsWriter logs_;
    std::size_t inView_ = 0;
    Clock::time_point switchedAt_;
    std::uint64_t steps_ = 0;
    std::atomic<bool> isStopped_ = true;
    std::thread thread_;
};

/// Keeps the last line of a program that writes on its own.
class LastLine {
public:
    explicit LastLine(Program& program) : program_(program), thread_([this] { run(); }) {}
    ~LastLine() {
        isStopped_ = true;
        thread_.join();
    }
    std::string line() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return line_;
    }
    std::uint64_t count() const { return count_; }
    bool hasEnded() const { return hasEnded_; }

private:
    void run() {
        while (!isStopped_ && !hasEnded_) {
            if (auto line = program_.readLine(milliseconds(100))) {
                const std::lock_guard<std::mutex> lock(mutex_);
                line_ = std::move(*line);
                ++count_;
            }
            hasEnded_ = program_.hasEndedOutput();
        }
    }

    Program& program_;
    std::mutex mutex_;
    std::string line_;
    std::atomic<std::uint64_t> count_ = 0;
    std::atomic<bool> hasEnded_ = false;
    std::atomic<bool> isStopped_ = false;
    std::thread thread_;  // Last: it uses the others.
};

class Soak {
public:
    Soak(std::string program, const std::string& folder, double minutes, double bytesPerSecond)
        : program_(std::move(program)),
          folder_(folder),
          minutes_(minutes),
          writer_(folder, bytesPerSecond) {}

    bool run();

private:
    struct Readers {
        ProcessFigures watch;
        ProcessFigures query;
    };

    void follow(double forSeconds);
    void ask(const std::string& query);
    void compare();
    void expectEqual(const std::string& what, const std::string& followed,
                     const std::string& fresh);
    void rest(double forSeconds);
    void judge();
    void fail(const std::string& what);
    Readers figures() const { return {watch_->figures(), query_->figures()}; }
    void printSample() const;
    void printTable() const;
    std::unique_ptr<Program> start(const std::vector<std::string>& arguments,
                                   const std::string& name) const;

    const std::string program_;
    const std::string folder_;
    const double minutes_;
    const Clock::time_point start_ = Clock::now();
    Writer writer_;
    std::unique_ptr<Program> watch_;
    std::unique_ptr<Program> query_;
    std::unique_ptr<LastLine> lastLine_;
    Random random_{2};
    Readers atStart_;
    Readers halfway_;
    Readers atEnd_;
    std::vector<std::string> restReports_;
    std::uint64_t answers_ = 0;
    double slowestAnswer_ = 0;
    int comparisons_ = 0;
    bool hasFailed_ = false;
};

bool Soak::run() {
    writer_.settle();
    watch_ = start({"watch", "--json"}, "watch");
    query_ = start({"query"}, "query");
    lastLine_ = std::make_unique<LastLine>(*watch_);
    ask("refresh");
    std::this_thread::sleep_for(kRefreshInterval);
    atStart_ = figures();

    const int rounds = 2 * std::max(1, static_cast<int>(minutes_ / 10));
    const double restSeconds = std::clamp(minutes_ * 6, 10.0, 60.0);
    const double roundSeconds = (minutes_ * 60 - 2 * restSeconds) / rounds;
    for (int round = 1; round <= rounds && !hasFailed_; ++round) {
        writer_.start();
        follow(std::max(5.0, roundSeconds - 17));
        compare();
        if (round == rounds / 2) {
            rest(restSeconds);
            halfway_ = figures();
        }
    }
    if (!hasFailed_) {
        rest(restSeconds);
    }
    atEnd_ = figures();
    judge();
    printTable();
    return !hasFailed_;
}

/// Asks and samples while the writer writes.
void Soak::follow(double forSeconds) {
    const auto start = Clock::now();
    auto sampledAt = start;
    auto pressedAt = start;
    while (secondsSince(start) < forSeconds && !hasFailed_) {
        for (const char* query : {"refresh", "latest", "titles"}) {
            ask(query);
        }
        if (random_.oneIn(4)) {
            ask("task " + writer_.tasks()[random_.below(writer_.tasks().size())]);
        }
        if (Clock::now() - sampledAt >= kSampleInterval) {
            sampledAt = Clock::now();
            printSample();
        }
        if (Clock::now() - pressedAt >= 3 * kRefreshInterval) {
            pressedAt = Clock::now();
            watch_->send("key r");
        }
        if (lastLine_->hasEnded()) {
            fail("watch ended");
        }
        std::this_thread::sleep_for(milliseconds(random_.below(300)));
    }
}

void Soak::ask(const std::string& query) {
    const auto start = Clock::now();
    const auto answer = query_->ask(query, kPatience);
    ++answers_;
    slowestAnswer_ = std::max(slowestAnswer_, secondsSince(start));
    if (!answer || !answer->starts_with("{\"") || !answer->ends_with('}')) {
        fail("query answered " + query + " with " + answer.value_or("nothing"));
    }
}

/// Both readers with ones that have just been started, once the writer has settled.
void Soak::compare() {
    const std::string task = writer_.settle();
    std::this_thread::sleep_for(kSettled);
    const auto freshWatch = start({"watch", "--json"}, "fresh-watch");
    LastLine freshLine(*freshWatch);
    const auto freshQuery = start({"query"}, "fresh-query");
    std::vector<std::string> queries = {"refresh", "focus", "latest", "titles"};
    for (const std::string& each : writer_.tasks()) {
        queries.push_back("task " + each);
    }
    for (const std::string& query : queries) {
        const std::string followed = query_->ask(query, kPatience).value_or("nothing");
        expectEqual(query, followed, freshQuery->ask(query, kPatience).value_or("nothing"));
        if (query == "refresh" &&
            !followed.starts_with(R"({"focus":{"status":0,"threadID":")" + task)) {
            fail("the task in view is " + task + ", and the answer " + followed);
        }
    }
    const auto asked = Clock::now();
    while (freshLine.count() < 2 &&
           Clock::now() - asked < kPatience) {  // The first says "reading".
        std::this_thread::sleep_for(milliseconds(10));
    }
    expectEqual("watch", visibleIn(lastLine_->line()), visibleIn(freshLine.line()));
    ++comparisons_;
}

void Soak::expectEqual(const std::string& what, const std::string& followed,
                       const std::string& fresh) {
    if (followed != fresh) {
        fail(what + " differs.\nfollowed: " + followed + "\nfresh:    " + fresh);
    }
}

/// Nothing happens: `watch` wakes up for its timer and `query` for nothing.
void Soak::rest(double forSeconds) {
    const Readers before = figures();
    const std::uint64_t lines = lastLine_->count();
    std::this_thread::sleep_for(std::chrono::duration<double>(forSeconds));
    const Readers after = figures();
    const long watch = after.watch.voluntarySwitches - before.watch.voluntarySwitches;
    const long query = after.query.voluntarySwitches - before.query.voluntarySwitches;
    const long firings = static_cast<long>(forSeconds) / kRefreshInterval.count() + 1;
    const double processor = after.watch.userSeconds + after.watch.systemSeconds -
                             before.watch.userSeconds - before.watch.systemSeconds;
    std::array<char, 200> report{};
    std::snprintf(report.data(), report.size(),
                  "at rest for %.0f s: watch woke up %ld times for %ld refreshes, used %.2f s; "
                  "query woke up %ld times",
                  forSeconds, watch, firings, processor, query);
    restReports_.emplace_back(report.data());
    if (watch > kSwitchesPerRefresh * firings || query > 0 || lastLine_->count() != lines) {
        fail(restReports_.back() + "; new lines: " + std::to_string(lastLine_->count() - lines));
    }
}

void Soak::judge() {
    const auto judgeReader = [&](const char* name, const ProcessFigures& middle,
                                 const ProcessFigures& end) {
        if (end.residentKilobytes > middle.residentKilobytes + kMoreResidentKilobytes ||
            end.anonymousKilobytes > middle.anonymousKilobytes + kMoreAnonymousKilobytes ||
            end.descriptors > middle.descriptors || end.threads > middle.threads) {
            fail(name + std::string(" holds more at the end than halfway"));
        }
    };
    if (!hasFailed_) {  // Else there may have been no halfway.
        judgeReader("watch", halfway_.watch, atEnd_.watch);
        judgeReader("query", halfway_.query, atEnd_.query);
    }
    lastLine_.reset();
    if (watch_->end() != 0 || query_->end() != 0) {
        fail("a reader's exit status is not 0");
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        if (entry.path().extension() == ".complaints" && entry.file_size() > 0) {
            fail(entry.path().filename().string() + " holds something");
        }
    }
}

void Soak::fail(const std::string& what) {
    hasFailed_ = true;
    std::printf("FAILED after %.0f s: %s\n", secondsSince(start_), what.c_str());
    std::fflush(stdout);
}

std::unique_ptr<Program> Soak::start(const std::vector<std::string>& arguments,
                                     const std::string& name) const {
    std::vector<std::string> command = {program_};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Program>(command, folder_ + '/' + name + ".complaints");
}

void Soak::printSample() const {
    const Readers now = figures();
    std::printf("%6.0f s", secondsSince(start_));
    for (const ProcessFigures& each : {now.watch, now.query}) {
        std::printf(" | %6ld KB %3ld fd %2ld threads %7.2f + %.2f s %7ld + %ld switches",
                    each.residentKilobytes, each.descriptors, each.threads, each.userSeconds,
                    each.systemSeconds, each.voluntarySwitches, each.involuntarySwitches);
    }
    std::printf("\n");
    std::fflush(stdout);
}

void Soak::printTable() const {
    const auto row = [&](const char* name, const std::function<double(const ProcessFigures&)>& of,
                         int digits) {
        std::printf("| %-24s |", name);
        for (const ProcessFigures& each : {atStart_.watch, halfway_.watch, atEnd_.watch,
                                           atStart_.query, halfway_.query, atEnd_.query}) {
            std::printf(" %9.*f |", digits, of(each));
        }
        std::printf("\n");
    };
    std::printf("\n| %-24s | watch start | halfway | end | query start | halfway | end |\n", "");
    std::printf("|---|---|---|---|---|---|---|\n");
    row(
        "resident KB", [](const auto& f) { return f.residentKilobytes; }, 0);
    row(
        "of it anonymous KB", [](const auto& f) { return f.anonymousKilobytes; }, 0);
    row(
        "largest resident KB", [](const auto& f) { return f.largestResidentKilobytes; }, 0);
    row(
        "open descriptors", [](const auto& f) { return f.descriptors; }, 0);
    row(
        "threads", [](const auto& f) { return f.threads; }, 0);
    row(
        "user seconds", [](const auto& f) { return f.userSeconds; }, 2);
    row(
        "system seconds", [](const auto& f) { return f.systemSeconds; }, 2);
    row(
        "voluntary switches", [](const auto& f) { return f.voluntarySwitches; }, 0);
    row(
        "involuntary switches", [](const auto& f) { return f.involuntarySwitches; }, 0);
    for (const std::string& report : restReports_) {
        std::printf("%s\n", report.c_str());
    }
    std::printf(
        "writer: %.0f MB in %llu steps; query: %llu answers, the slowest after %.0f ms; "
        "comparisons: %d; %s\n",
        static_cast<double>(writer_.bytesWritten()) / 1e6,
        static_cast<unsigned long long>(writer_.steps()), static_cast<unsigned long long>(answers_),
        slowestAnswer_ * 1000, comparisons_, hasFailed_ ? "FAILED" : "passed");
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 4) {
        std::fprintf(stderr, "usage: soak PROGRAM FOLDER MINUTES [MEGABYTES-PER-SECOND]\n");
        return 2;
    }
    const std::string folder = arguments[2];
    const double megabytesPerSecond = argumentCount > 4 ? std::atof(arguments[4]) : 25;
    setenv("HOME", (folder + "/home").c_str(), 1);
    setenv("LANGUAGE", "en", 1);
    unsetenv("XDG_CONFIG_HOME");
    signal(SIGPIPE, SIG_IGN);
    return Soak(arguments[1], folder, std::atof(arguments[3]), megabytesPerSecond * 1e6).run() ? 0
                                                                                               : 1;
}
