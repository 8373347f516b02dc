#include "bench/SessionsWriter.h"

#include "tests/support/records.h"

namespace {

constexpr std::size_t kTasks = 6;
constexpr std::size_t kFilesPerTask = 5;
constexpr std::uint64_t kLargestFile = 20'000'000;
constexpr std::uint64_t kLongestMessage = 2'000'000;

/// Text of a JSON string that holds what readers look for.
std::string makeFiller() {
    std::string filler;
    while (filler.size() < kLongestMessage) {
        filler += R"(if (a < b) { token_count(); } // 重构 \"compacted\" … )";
    }
    return filler;
}

/// A part of the filler of about this size that breaks neither a character nor an escape.
std::string_view partOf(const std::string& filler, std::uint64_t bytes) {
    return std::string_view(filler).substr(0, filler.find(' ', bytes));
}

}  // namespace

SessionsWriter::SessionsWriter(WrittenFiles& files, Random& random, std::string codexHome)
    : files_(files), random_(random), filler_(makeFiller()) {
    for (std::size_t task = 0; task < kTasks; ++task) {
        tasks_.push_back("01a20e72-983b-7e83-81c7-e87b7b63d18" + std::to_string(task));
        for (std::size_t i = 0; i < kFilesPerTask; ++i) {
            const std::string day = std::to_string(20 + (task + i) % 4);
            WrittenFile file;
            file.path = codexHome + "/sessions/2026/11/" + day + "/rollout-2026-11-" + day +
                        "T16-45-0" + std::to_string(i) + '-' + tasks_.back() + ".jsonl";
            sessions_.push_back(std::move(file));
        }
    }
    titleIndex_.path = codexHome + "/session_index.jsonl";
}

void SessionsWriter::step(std::size_t taskInView) {
    const std::size_t task = random_.oneIn(2) ? taskInView : random_.below(kTasks);
    WrittenFile& file = sessions_[task * kFilesPerTask + random_.below(kFilesPerTask)];
    if (random_.oneIn(500)) {
        writeTitles();
    } else if (file.size > kLargestFile || random_.oneIn(800)) {
        changeFile(file);
    } else {
        appendRecord(file);
    }
}

void SessionsWriter::changeFile(WrittenFile& file) {
    switch (random_.below(4)) {
        case 0:
            files_.remove(file);
            break;
        case 1:
            files_.shorten(file, random_.below(file.size + 1));
            break;
        case 2:
            files_.rewrite(file, someRecords());
            break;
        default:
            files_.replace(file, someRecords());
    }
}

void SessionsWriter::appendRecord(WrittenFile& file) {
    files_.appendInPieces(file, file.rest.empty() ? record() : "", random_);
}

std::string SessionsWriter::record() {
    if (random_.oneIn(15)) {
        return compaction();
    }
    return random_.oneIn(5) ? records::tokenCount(std::to_string(random_.below(272'000)))
                            : message();
}

/// Short ones far more often than long ones.
std::string SessionsWriter::message() {
    const bool isLong = random_.oneIn(400);
    const std::uint64_t limit = isLong ? kLongestMessage : 40ULL << random_.below(10);
    return records::message(partOf(filler_, random_.below(limit)));
}

/// Now and then one that other files of the task hold as well, or one in a form that nobody knows.
std::string SessionsWriter::compaction() {
    const std::string number = std::to_string(++lastNumber_);
    if (random_.oneIn(50)) {
        return R"({"type":"compacted","payload":{"message":"other"}})" + std::string("\n");
    }
    if (random_.oneIn(5)) {
        return records::contextCompacted(number);
    }
    std::string line = records::compacted(
        random_.oneIn(2) ? "w" + number : "common" + std::to_string(random_.below(9)));
    const std::string_view history = R"("replacement_history":[)";
    const std::uint64_t limit = random_.oneIn(100) ? kLongestMessage : 10'000;
    const std::string_view text = partOf(filler_, random_.below(limit));
    line.insert(line.find(history) + history.size(),
                R"({"role":"user","content":")" + std::string(text) + R"("},)");
    return line;
}

std::string SessionsWriter::someRecords() {
    std::string content;
    for (std::uint64_t i = random_.below(20); i > 0; --i) {
        content += record();
    }
    return content;
}

void SessionsWriter::writeTitles() {
    switch (random_.below(3)) {
        case 0:
            files_.append(titleIndex_, records::title(tasks_[random_.below(kTasks)], "Renamed"));
            break;
        case 1:
            files_.rewrite(titleIndex_, titles());
            break;
        default:
            files_.replace(titleIndex_, titles());
    }
}

std::string SessionsWriter::titles() {
    std::string content;
    for (const std::string& task : tasks_) {
        content += records::title(task, "Task " + std::to_string(++lastNumber_));
    }
    return content;
}

void SessionsWriter::settle() {
    for (WrittenFile& file : sessions_) {
        if (file.isAmbiguous) {
            files_.replace(file, someRecords());
        }
        files_.finishLine(file);
        if (!random_.oneIn(4)) {
            files_.append(file, records::tokenCount(std::to_string(random_.below(272'000))));
        }
    }
    files_.replace(titleIndex_, titles());
}
