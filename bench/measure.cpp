// Runs two commands in turn and compares them. A machine's speed changes from minute to minute, so
// only alternating runs can be compared.
//
//     measure ROUNDS COMMAND... --- COMMAND...
//
// Prints the median wall time and the largest resident memory of each, and how many times as fast
// the first is as the second. The output of both is read from a pipe and dropped.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

struct Runs {
    std::vector<char*> command;
    std::vector<double> milliseconds;
    long largestResidentKilobytes = 0;

    double median() {
        std::sort(milliseconds.begin(), milliseconds.end());
        return milliseconds[milliseconds.size() / 2];
    }
};

void runOnce(Runs& runs) {
    const auto start = std::chrono::steady_clock::now();
    int ends[2];
    if (pipe(ends) != 0) {
        std::exit(1);
    }
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        execvp(runs.command[0], runs.command.data());
        _exit(127);
    }
    close(ends[1]);
    std::array<char, 4096> drain{};
    while (read(ends[0], drain.data(), drain.size()) > 0) {
    }
    close(ends[0]);
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "%s failed\n", runs.command[0]);
        std::exit(1);
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    runs.milliseconds.push_back(time.count());
    runs.largestResidentKilobytes = std::max(runs.largestResidentKilobytes, usage.ru_maxrss);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::array<Runs, 2> both;
    std::size_t side = 0;
    for (int i = 2; i < argumentCount; ++i) {
        if (std::strcmp(arguments[i], "---") == 0) {
            side = 1;
        } else {
            both[side].command.push_back(arguments[i]);
        }
    }
    const int rounds = argumentCount > 1 ? std::atoi(arguments[1]) : 0;
    if (rounds < 1 || both[0].command.empty() || both[1].command.empty()) {
        std::fprintf(stderr, "usage: measure ROUNDS COMMAND... --- COMMAND...\n");
        return 2;
    }
    for (Runs& runs : both) {
        runs.command.push_back(nullptr);
        runOnce(runs);  // Not counted: it brings files and program into memory.
        runs.milliseconds.clear();
    }
    for (int round = 0; round < rounds; ++round) {
        runOnce(both[0]);
        runOnce(both[1]);
    }
    for (Runs& runs : both) {
        std::printf("%-28.28s %9.2f ms  %7ld KB resident\n", runs.command[0], runs.median(),
                    runs.largestResidentKilobytes);
    }
    std::printf("times as fast: %.2f\n", both[1].median() / both[0].median());
    return 0;
}
