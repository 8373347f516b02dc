// Asks `query` over a home with more and more small files, beside `find`, which walks the same
// folders and reads the same attributes:
//
//     scale PROGRAM FOLDER ROUNDS
//
// FOLDER becomes a home folder that grows: 1 250, 5 000, 20 000 tasks with a session file and a
// title each, and a tenth as many logs, in a folder for every day as the agent and its application
// make them. Everything is in the page cache. What is compared runs in turn, ROUNDS times; medians.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/Program.h"
#include "tests/support/records.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kSizes[] = {1'250, 5'000, 20'000};
constexpr std::size_t kSessionsPerLog = 10;
constexpr std::size_t kSessionsPerDay = 20;
constexpr std::size_t kMessageBytes = 1'500;
constexpr std::chrono::minutes kPatience(1);

/// A part of every file's name, and so a task that has them all.
constexpr const char* kEveryFile = "task rollout";

std::string threadID(std::size_t task) {
    return "01a20e72-983b-7e83-81c7-" + std::to_string(100'000'000'000 + task);
}

/// "2024/03/07": the day of a task, by the parts that the folders have.
std::string dayOf(std::size_t task) {
    constexpr std::time_t kBegin = 1'704'110'400;  // 2024-01-01, noon.
    const std::time_t second = kBegin + static_cast<std::time_t>(task / kSessionsPerDay * 86'400);
    std::tm parts{};
    gmtime_r(&second, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y/%m/%d", &parts);
    return text;
}

/// The home folder; files are only ever added.
class Home {
public:
    explicit Home(std::string root) : root_(std::move(root)) {
        std::filesystem::create_directories(root_ + "/.codex");
    }

    void growTo(std::size_t tasks) {
        std::ofstream titles(index(), std::ios::app);
        for (; tasks_ < tasks; ++tasks_) {
            writeSession();
            if (tasks_ % kSessionsPerLog == 0) {
                writeLog();
            }
            titles << records::title(threadID(tasks_),
                                     "Fix the tests of module " + std::to_string(tasks_));
        }
    }

    std::string sessions() const { return root_ + "/.codex/sessions"; }
    std::string logs() const { return root_ + "/Library/Logs/com.openai.codex"; }
    std::string index() const { return root_ + "/.codex/session_index.jsonl"; }
    std::string newestSession() const { return sessionPath(tasks_ - 1); }

private:
    std::string sessionPath(std::size_t task) const {
        std::string date = dayOf(task);
        const std::string folder = sessions() + '/' + date;
        std::replace(date.begin(), date.end(), '/', '-');
        return folder + "/rollout-" + date + "T16-45-20-" + threadID(task) + ".jsonl";
    }

    void writeSession() const {
        const std::filesystem::path path = sessionPath(tasks_);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << records::message(std::string(kMessageBytes, 'x'))
                            << records::compacted("w1") << records::tokenCount("128000");
    }

    /// A window and the task that it shows, and half a page of other lines.
    void writeLog() const {
        const std::filesystem::path path =
            logs() + '/' + dayOf(tasks_) + "/codex-desktop-" + std::to_string(tasks_) + ".log";
        std::filesystem::create_directories(path.parent_path());
        const std::string time = std::to_string(1'000'000 + tasks_);
        std::ofstream log(path);
        for (int i = 0; i < 15; ++i) {
            log << time << " info [electron-main] request_completed method=thread/list status=ok\n";
        }
        log << time
            << " info [window-state] renderer_state_changed rendererWebContentsId=7"
               " rendererWindowId=3 rendererWindowAppearance=primary rendererWindowFocused=true"
               " rendererWindowVisible=true\n"
            << time
            << " info [electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync"
               " originWebContentsId=7 windowId=3 ownerRoutePath=/local/"
            << threadID(tasks_) << '\n';
    }

    const std::string root_;
    std::size_t tasks_ = 0;
};

/// Times of one thing, in milliseconds.
class Times {
public:
    template <typename Thing>
    void add(const Thing& thing) {
        const auto start = Clock::now();
        thing();
        const std::chrono::duration<double, std::milli> time = Clock::now() - start;
        times_.push_back(time.count());
    }
    double median() const {
        std::vector<double> sorted = times_;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }

private:
    std::vector<double> times_;
};

/// One home's figures.
class Measurement {
public:
    Measurement(std::string program, const Home& home)
        : program_(std::move(program)), home_(home), query_(start()) {}

    void run(int rounds);
    void print() const;

    long anonymousKilobytesAfter(const std::string& name) const {
        return held_.at(name).anonymousKilobytes;
    }

private:
    std::unique_ptr<Program> start() const {
        return std::make_unique<Program>(std::vector<std::string>{program_, "query"}, "/dev/null");
    }

    void ask(Program& program, const std::string& question) {
        const auto answer = program.ask(question, kPatience);
        if (!answer || answer->find("\"error\":{") != std::string::npos) {
            std::fprintf(stderr, "%s: %s\n", question.c_str(),
                         answer.value_or("no answer").c_str());
            std::exit(1);
        }
    }

    void timeQuery(const std::string& name, const std::string& question) {
        times_[name].add([&] { ask(*query_, question); });
    }

    void timeFind(const std::string& name, const std::vector<std::string>& folders) {
        std::vector<std::string> command = {"find"};
        command.insert(command.end(), folders.begin(), folders.end());
        for (const char* word : {"-type", "f", "-printf", "%p %s %T@\\n"}) {
            command.emplace_back(word);
        }
        timeCommand(name, command);
    }

    /// From the start to the end of its output.
    void timeCommand(const std::string& name, const std::vector<std::string>& command) {
        std::unique_ptr<Program> program;
        times_[name].add([&] {
            program = std::make_unique<Program>(command, "/dev/null");
            program->drain();
        });
    }

    /// What a program that has just been started answers first, and holds then.
    void timeFirst(const std::string& name, const std::string& question) {
        std::unique_ptr<Program> fresh;
        times_[name].add([&] {
            fresh = start();
            ask(*fresh, question);
        });
        held_[name] = fresh->figures();
    }

    const std::string program_;
    const Home& home_;
    std::unique_ptr<Program> query_;
    std::map<std::string, Times> times_;
    std::map<std::string, ProcessFigures> held_;
};

/// Gives it another date, as a change of it would.
void touch(const std::string& path) {
    utimensat(AT_FDCWD, path.c_str(), nullptr, 0);
    usleep(10'000);  // Dates that the system gives are some milliseconds apart.
}

void Measurement::run(int rounds) {
    const std::string newest = home_.newestSession();
    ask(*query_, "refresh");
    ask(*query_, "latest");
    for (int round = 0; round < rounds; ++round) {
        timeFind("find logs", {home_.logs()});
        timeQuery("idle refresh", "refresh");
        timeFind("find sessions", {home_.sessions()});
        timeQuery("latest", "latest");
        timeFind("find both", {home_.sessions(), home_.logs()});
        timeFirst("first refresh", "refresh");
        touch(newest.substr(0, newest.rfind('/')));
        timeQuery("refresh with search", "refresh");
        timeQuery("titles", "titles");
        touch(home_.index());
        timeQuery("titles, index read", "titles");
        timeCommand("cat index", {"cat", home_.index()});
        timeFirst("first focus", "focus");
        timeFirst("first latest", "latest");
        timeFirst("first titles", "titles");
        timeFirst("every file, first", kEveryFile);
    }
    ask(*query_, kEveryFile);
    for (int round = 0; round < rounds; ++round) {
        timeFind("find sessions again", {home_.sessions()});
        timeQuery("every file, idle", kEveryFile);
    }
}

void Measurement::print() const {
    const std::pair<const char*, const char*> rows[] = {{"first refresh", "find both"},
                                                        {"first focus", "find logs"},
                                                        {"idle refresh", "find logs"},
                                                        {"refresh with search", "find both"},
                                                        {"first latest", "find sessions"},
                                                        {"latest", "find sessions"},
                                                        {"every file, first", "find sessions"},
                                                        {"every file, idle", "find sessions again"},
                                                        {"first titles", "cat index"},
                                                        {"titles, index read", "cat index"},
                                                        {"titles", "cat index"}};
    std::printf("| query | ms | beside | ms | ratio | resident KB | anonymous KB |\n");
    std::printf("|---|---|---|---|---|---|---|\n");
    for (const auto& [ours, theirs] : rows) {
        const double time = times_.at(ours).median();
        const double other = times_.at(theirs).median();
        std::printf("| %-19s | %8.2f | %-19s | %8.2f | %5.2f |", ours, time, theirs, other,
                    time / other);
        if (const auto held = held_.find(ours); held != held_.end()) {
            std::printf(" %6ld | %6ld |\n", held->second.residentKilobytes,
                        held->second.anonymousKilobytes);
        } else {
            std::printf("        |        |\n");
        }
    }
}

/// What each of the files takes that the largest home has beyond the smallest.
void printBytesEach(const char* what, const Measurement& smallest, const Measurement& largest,
                    const char* after, std::size_t tasksForEach) {
    const long kilobytes =
        largest.anonymousKilobytesAfter(after) - smallest.anonymousKilobytesAfter(after);
    const std::size_t more = (kSizes[std::size(kSizes) - 1] - kSizes[0]) / tasksForEach;
    std::printf("memory for each %s: %.0f bytes\n", what,
                static_cast<double>(kilobytes) * 1024 / static_cast<double>(more));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::fprintf(stderr, "usage: scale PROGRAM FOLDER ROUNDS\n");
        return 2;
    }
    setenv("HOME", arguments[2], 1);
    unsetenv("XDG_CONFIG_HOME");
    Home home(arguments[2]);
    std::vector<std::unique_ptr<Measurement>> all;
    for (const std::size_t tasks : kSizes) {
        home.growTo(tasks);
        all.push_back(std::make_unique<Measurement>(arguments[1], home));
        all.back()->run(std::atoi(arguments[3]));
        std::printf("%zu session files and titles, %zu logs\n\n", tasks, tasks / kSessionsPerLog);
        all.back()->print();
        std::printf("\n");
    }
    const Measurement& smallest = *all.front();
    const Measurement& largest = *all.back();
    printBytesEach("known log", smallest, largest, "first focus", kSessionsPerLog);
    printBytesEach("title", smallest, largest, "first latest", 1);
    printBytesEach("title and session file", smallest, largest, "every file, first", 1);
    printBytesEach("title, after an answer with all of them", smallest, largest, "first titles", 1);
    return 0;
}
