#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

/// What the kernel says of a process, all threads together.
struct ProcessFigures {
    long residentKilobytes = 0;
    long anonymousKilobytes = 0;  ///< Of the resident: memory that stands in no file.
    long largestResidentKilobytes = 0;
    long descriptors = 0;
    long threads = 0;
    double userSeconds = 0;
    double systemSeconds = 0;
    long voluntarySwitches = 0;  ///< How often a thread went to sleep, and so was woken.
    long involuntarySwitches = 0;
};

/// A program that runs beside this one, with its input and output in our hands and this process's
/// environment. Linux only. One thread may read while another sends.
class Program {
public:
    /// What it says on standard error goes into the file `complaints`. Ends this process when it
    /// cannot be started.
    Program(const std::vector<std::string>& command, const std::string& complaints);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// False when the program no longer reads.
    bool send(const std::string& line);

    /// The next line of its output, without the line feed; none when it has ended or says nothing
    /// for so long.
    std::optional<std::string> readLine(std::chrono::milliseconds patience);

    /// Whether a read has met the end of its output.
    bool hasEndedOutput() const { return outputEnded_; }

    /// One line in, one line out.
    std::optional<std::string> ask(const std::string& query, std::chrono::milliseconds patience);

    /// Throws away what it writes until its output ends.
    void drain();

    /// As they are at this moment; zeros for a program that has ended.
    ProcessFigures figures() const;

    /// Closes its input and output, waits for its end and returns its exit status; -1 for an end by
    /// a signal. After a minute it is killed.
    int end();

private:
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string unread_;
    bool outputEnded_ = false;
    std::optional<int> status_;
};
