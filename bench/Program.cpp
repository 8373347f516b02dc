#include "bench/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace {

constexpr std::chrono::minutes kPatienceAtEnd(1);

[[noreturn]] void giveUp(const char* what) {
    std::perror(what);
    std::exit(1);
}

/// The number after "name:" in a file of /proc; 0 where there is none.
long fieldOf(const std::string& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ':')) {
            return std::strtol(line.c_str() + name.size() + 1, nullptr, 10);
        }
    }
    return 0;
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failure;
    std::filesystem::directory_iterator entry(folder, failure);
    while (!failure && entry != std::filesystem::directory_iterator()) {
        names.push_back(entry->path().string());
        entry.increment(failure);
    }
    return names;
}

}  // namespace

Program::Program(const std::vector<std::string>& command, const std::string& complaints) {
    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) {
        giveUp("pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, complaints.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    // SIGPIPE may be ignored here; it starts with what a shell would give it.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::vector<char*> arguments;
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    errno = posix_spawnp(&process_, arguments[0], &actions, &attributes, arguments.data(), environ);
    if (errno != 0) {
        giveUp(arguments[0]);
    }
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(in[0]);
    close(out[1]);
    input_ = in[1];
    output_ = out[0];
}

Program::~Program() {
    end();
}

bool Program::send(const std::string& line) {
    std::string rest = line + '\n';
    while (!rest.empty()) {
        const ssize_t count = write(input_, rest.data(), rest.size());
        if (count < 0) {
            return false;
        }
        rest.erase(0, static_cast<std::size_t>(count));
    }
    return true;
}

std::optional<std::string> Program::readLine(std::chrono::milliseconds patience) {
    std::size_t searched = 0;
    std::size_t end = std::string::npos;
    while ((end = unread_.find('\n', searched)) == std::string::npos) {
        searched = unread_.size();
        pollfd polled{output_, POLLIN, 0};
        std::array<char, 64 * 1024> bytes{};
        if (poll(&polled, 1, static_cast<int>(patience.count())) <= 0) {
            return std::nullopt;
        }
        const ssize_t count = read(output_, bytes.data(), bytes.size());
        if (count <= 0) {
            outputEnded_ = true;
            return std::nullopt;
        }
        unread_.append(bytes.data(), static_cast<std::size_t>(count));
    }
    std::string line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return line;
}

std::optional<std::string> Program::ask(const std::string& query,
                                        std::chrono::milliseconds patience) {
    return send(query) ? readLine(patience) : std::nullopt;
}

void Program::drain() {
    std::array<char, 64 * 1024> bytes{};
    while (read(output_, bytes.data(), bytes.size()) > 0) {
    }
}

ProcessFigures Program::figures() const {
    const std::string folder = "/proc/" + std::to_string(process_);
    ProcessFigures figures;
    figures.residentKilobytes = fieldOf(folder + "/status", "VmRSS");
    figures.anonymousKilobytes = fieldOf(folder + "/status", "RssAnon");
    figures.largestResidentKilobytes = fieldOf(folder + "/status", "VmHWM");
    figures.threads = fieldOf(folder + "/status", "Threads");
    figures.descriptors = static_cast<long>(namesIn(folder + "/fd").size());
    for (const std::string& thread : namesIn(folder + "/task")) {
        figures.voluntarySwitches += fieldOf(thread + "/status", "voluntary_ctxt_switches");
        figures.involuntarySwitches += fieldOf(thread + "/status", "nonvoluntary_ctxt_switches");
    }
    std::string stat;
    std::ifstream statFile(folder + "/stat");
    std::getline(statFile, stat);
    std::istringstream words(stat.substr(std::min(stat.size(), stat.rfind(')') + 1)));
    const std::vector<std::string> fields{std::istream_iterator<std::string>(words), {}};
    constexpr std::size_t kUserTime = 11;  // After the name: "utime", and "stime" behind it.
    if (fields.size() > kUserTime + 1) {
        const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
        figures.userSeconds = std::strtod(fields[kUserTime].c_str(), nullptr) / ticks;
        figures.systemSeconds = std::strtod(fields[kUserTime + 1].c_str(), nullptr) / ticks;
    }
    return figures;
}

int Program::end() {
    if (status_) {
        return *status_;
    }
    close(input_);
    close(output_);
    int status = 0;
    const auto patienceEnds = std::chrono::steady_clock::now() + kPatienceAtEnd;
    while (waitpid(process_, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > patienceEnds) {
            kill(process_, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return *status_;
}
