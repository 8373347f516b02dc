#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <wchar.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// A terminal with a shell in it, whose screen a test can read. It understands the sequences of the
/// terminal type "mach", and text in UTF-8; the process's locale must be UTF-8 as well.
class PseudoTerminal {
public:
    PseudoTerminal(int columns, int rows, const std::string& command)
        : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(master_);
        unlockpt(master_);
        slave_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
        fcntl(master_, F_SETFD, FD_CLOEXEC);
        fcntl(slave_, F_SETFD, FD_CLOEXEC);
        modesAsFound_ = modes();
        resize(columns, rows);
        process = fork();
        if (process == 0) {
            setsid();
            ioctl(slave_, TIOCSCTTY, 0);
            for (const int descriptor : {0, 1, 2}) {
                dup2(slave_, descriptor);
            }
            execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            _exit(127);
        }
    }
    ~PseudoTerminal() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
        close(slave_);
        close(master_);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    void press(std::string_view keys) const {
        [[maybe_unused]] const ssize_t ignored = write(master_, keys.data(), keys.size());
    }

    /// Lets writes to the terminal wait, as a user does with Ctrl-S.
    void stopOutput() const { tcflow(slave_, TCOOFF); }

    /// Writes until the terminal takes nothing any more.
    void fill() const {
        const int end = open(ptsname(master_), O_WRONLY | O_NOCTTY | O_NONBLOCK);
        while (write(end, "x", 1) > 0) {
        }
        close(end);
    }

    void resize(int columns, int rows) {
        columns_ = columns;
        rows_ = rows;
        cells_.assign(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) + 1, {});
        last_ = cells_.begin();
        moveTo(0, 0);
        winsize size{};
        size.ws_col = static_cast<unsigned short>(columns);
        size.ws_row = static_cast<unsigned short>(rows);
        ioctl(master_, TIOCSWINSZ, &size);
    }

    /// Takes output until the condition holds. Returns false when no output comes for ten seconds,
    /// or when it does not hold after twenty.
    template <typename Condition>
    bool waitUntil(Condition condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (!takeOutput(10'000) || std::chrono::steady_clock::now() > end) {
                return false;
            }
        }
        return true;
    }
    bool waitFor(std::string_view text) {
        return waitUntil([&] { return screen().find(text) != std::string::npos; });
    }

    bool waitForBytes(std::string_view bytes) {
        return waitUntil([&] { return output.find(bytes) != std::string::npos; });
    }

    void waitUntilQuiet() {
        while (takeOutput(500)) {
        }
    }

    /// Takes all output until the process ends, and returns its status as waitpid() does.
    int waitForEnd() {
        int status = -1;
        for (int i = 0; process > 0 && i < 30'000; ++i) {
            process = waitpid(process, &status, WNOHANG) == process ? 0 : process;
            while (takeOutput(process > 0 ? 1 : 0)) {
            }
        }
        return status;
    }

    std::string row(int y) const {
        std::string text;
        for (int x = 0; x < columns_; ++x) {
            text += (cells_.begin() + y * columns_ + x)->text;
        }
        return text;
    }
    std::string screen() const {
        std::string text;
        for (int y = 0; y < rows_; ++y) {
            text += row(y) + '\n';
        }
        return text;
    }
    /// Returns the text of the reversed cells below the first row.
    std::string reversed() const {
        std::string text;
        for (auto cell = cells_.begin() + columns_; cell != cells_.end(); ++cell) {
            text += cell->isReversed ? cell->text : "";
        }
        return text;
    }
    /// Returns the last cell of every row but the first.
    std::string rightEdge() const {
        std::string text;
        for (int y = 1; y < rows_; ++y) {
            text += (cells_.begin() + (y + 1) * columns_ - 1)->text;
        }
        return text;
    }
    bool hasModesAsFound() const {
        const termios now = modes();
        return now.c_iflag == modesAsFound_.c_iflag && now.c_oflag == modesAsFound_.c_oflag &&
               now.c_lflag == modesAsFound_.c_lflag;
    }

    pid_t process = 0;
    std::string output;  ///< Every byte so far; the test may clear it.

private:
    struct Cell {
        std::string text = " ";  ///< "" in the second cell of a wide character.
        bool isReversed = false;
    };

    termios modes() const {
        termios result{};
        tcgetattr(slave_, &result);
        return result;
    }

    bool takeOutput(int milliseconds) {
        pollfd ready{master_, POLLIN, 0};
        char bytes[4'096];
        const bool isReady = poll(&ready, 1, milliseconds) == 1;
        const ssize_t count = isReady ? read(master_, bytes, sizeof bytes) : 0;
        if (count < 1) {
            return false;
        }
        output.append(bytes, static_cast<std::size_t>(count));
        pending_.append(bytes, static_cast<std::size_t>(count));
        std::string_view rest = pending_;
        while (const std::size_t used = interpret(rest)) {
            rest.remove_prefix(used);
        }
        pending_ = std::string(rest);
        return true;
    }

    /// Performs the first character or sequence and returns its length; 0 while a part is missing.
    std::size_t interpret(std::string_view text) {
        if (text.starts_with("\033")) {
            const bool isLong = text.starts_with("\033[");
            const std::size_t last = isLong ? text.find_first_not_of("0123456789;?", 2) : 1;
            if (last >= text.size()) {
                return 0;
            }
            perform(isLong ? text.substr(2, last - 2) : "", text[last]);
            return last + 1;
        }
        wchar_t wide = 0;
        mbstate_t state{};
        const std::size_t length = mbrtowc(&wide, text.data(), text.size(), &state);
        if (text.empty() || length > text.size()) {
            return 0;
        }
        put(text.substr(0, length), wide);
        return length;
    }

    void perform(std::string_view parameters, char sequence) {
        int first = 0, second = 0;
        std::sscanf(std::string(parameters).c_str(), "%d;%d", &first, &second);
        if (sequence == 'H' || sequence == 'c') {
            moveTo(second - 1, first - 1);
        }
        const int count = std::max(first, 1);
        moveTo(x_ + count * ((sequence == 'C') - (sequence == 'D')),
               y_ + count * ((sequence == 'B') - (sequence == 'A')));
        if (sequence == 'J' || sequence == 'c') {
            std::fill(at(x_, y_), cells_.end(), Cell{});
        } else if (sequence == 'K') {
            std::fill(at(x_, y_), at(0, y_ + 1), Cell{});
        } else if (sequence == 'm') {
            isReversed_ = first == 7 || (isReversed_ && first > 0);
        }
    }

    void put(std::string_view character, wchar_t wide) {
        const int width = wcwidth(wide);
        if (wide == '\r' || wide == '\n') {
            moveTo(wide == '\r' ? 0 : x_, wide == '\n' ? y_ + 1 : y_);
        } else if (wide == '\b' || wide == '\t') {
            moveTo(wide == '\b' ? x_ - 1 : x_ / 8 * 8 + 8, y_);
        } else if (width == 0) {
            last_->text += character;
        } else if (width > 0) {
            last_ = at(x_, y_);
            last_[0] = {std::string(character), isReversed_};
            if (width == 2) {
                last_[1] = {"", isReversed_};
            }
            const bool isAtEnd = x_ + width >= columns_;
            moveTo(isAtEnd ? 0 : x_ + width, isAtEnd ? y_ + 1 : y_);
        }
    }

    std::vector<Cell>::iterator at(int x, int y) { return cells_.begin() + y * columns_ + x; }

    void moveTo(int x, int y) {
        x_ = std::clamp(x, 0, columns_ - 1);
        y_ = std::clamp(y, 0, rows_ - 1);
    }

    int columns_ = 0, rows_ = 0;
    int x_ = 0, y_ = 0;
    bool isReversed_ = false;
    std::vector<Cell>::iterator last_;  ///< The cell that was written last.
    std::vector<Cell> cells_;
    std::string pending_;  ///< The beginning of a sequence or a character.
    int master_, slave_;
    termios modesAsFound_{};
};
