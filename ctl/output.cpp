// Writes with system calls rather than with a stream, to tell a reader that has closed its end from
// a full disk. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>

#include "platform/ORVError.h"
#include "platform/descriptors.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// Returns 0, or the errno of the failure.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            // Another process made it non-blocking.
            if (!platform::isWritable(descriptor, -1)) {
                return errno;
            }
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

/// A pipe that is ready takes so many bytes without waiting, on every system.
constexpr std::size_t kAtOnce = 512;

std::string noteLine(std::string_view beginning, std::string_view text) {
    std::string line = std::string(beginning) + text::forTerminal(text);
    if (line.size() >= kAtOnce) {
        constexpr std::string_view kEllipsis = "…";
        line.resize(kAtOnce - 1 - kEllipsis.size());
        line = std::string(text::wholeCharacters(line)) + std::string(kEllipsis);
    }
    return line + '\n';
}

void writeNote(std::string_view beginning, std::string_view text) {
    const auto write = [](std::string_view line) {
        [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, line.data(), line.size());
    };
    if (!platform::isWritable(STDERR_FILENO, 0)) {
        return;
    }
    try {
        write(noteLine(beginning, text));
    } catch (const std::bad_alloc&) {
        write("brimletctl: there is not enough memory\n");
    }
}

}  // namespace

void holdStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The system gives the lowest number that is free.
        if (fcntl(descriptor, F_GETFD) < 0) {
            [[maybe_unused]] const int held =
                open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

WriteResult writeOutput(std::string_view bytes) {
    const int failure = writeAll(STDOUT_FILENO, bytes);
    if (failure == 0) {
        return WriteResult::written;
    }
    if (failure == EPIPE) {
        return WriteResult::readerLeft;
    }
    complain("cannot write the output: " + platform::posixError(failure).description);
    return WriteResult::failed;
}

int finish(std::string_view answer, int status) {
    switch (writeOutput(answer)) {
        case WriteResult::written:
            return status;
        case WriteResult::readerLeft:
            return kAnswered;
        case WriteResult::failed:
            break;
    }
    return kNothingToShow;
}

void complain(std::string_view text) {
    writeNote("brimletctl: ", text);
}

void note(std::string_view text) {
    writeNote("", text);
}

void explainMistake(const Mistake& mistake) {
    complain(mistake.text);
    const bool isAboutCommand = !mistake.command.empty() && mistake.command != "help";
    writeAll(STDERR_FILENO,
             "Try: brimletctl help" + (isAboutCommand ? " " + mistake.command : "") + '\n');
}

}  // namespace ctl
