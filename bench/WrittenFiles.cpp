#include "bench/WrittenFiles.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr std::size_t kGraves = 20'000;

void check(bool isDone, const std::string& path) {
    if (!isDone) {
        std::perror(path.c_str());
        std::_Exit(1);
    }
}

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

}  // namespace

WrittenFiles::WrittenFiles(std::string graves) : graves_(std::move(graves)) {
    std::filesystem::create_directories(graves_);
}

void WrittenFiles::append(WrittenFile& file, std::string_view bytes) {
    write(file.path, O_APPEND, bytes);
    file.size += bytes.size();
}

void WrittenFiles::appendInPieces(WrittenFile& file, std::string_view line, Random& random) {
    const bool isBegun = !file.rest.empty();
    const std::string content = isBegun ? std::move(file.rest) : std::string(line);
    const bool isCut = random.oneIn(isBegun ? 2 : 5);
    const std::size_t cut = isCut ? random.between(1, content.size()) : content.size();
    file.rest = content.substr(cut);
    append(file, std::string_view(content).substr(0, cut));
}

void WrittenFiles::finishLine(WrittenFile& file) {
    append(file, file.rest);
    file.rest.clear();
}

void WrittenFiles::shorten(WrittenFile& file, std::uint64_t size) {
    if (size >= file.size) {
        return;
    }
    check(::truncate(file.path.c_str(), static_cast<off_t>(size)) == 0, file.path);
    file.size = size;
    file.rest.clear();
    file.isAmbiguous = true;
}

void WrittenFiles::rewrite(WrittenFile& file, std::string_view content) {
    write(file.path, O_TRUNC, content);
    file.size = content.size();
    file.rest.clear();
    file.isAmbiguous = true;
}

void WrittenFiles::replace(WrittenFile& file, std::string_view content) {
    const std::string fresh = graves_ + "/fresh";
    write(fresh, O_TRUNC, content);
    std::filesystem::create_directories(folderOf(file.path));
    const std::string grave = nextGrave();
    const bool isBuried = link(file.path.c_str(), grave.c_str()) == 0;
    check(std::rename(fresh.c_str(), file.path.c_str()) == 0, file.path);
    if (isBuried) {
        empty(grave);
    }
    file.size = content.size();
    file.rest.clear();
    file.isAmbiguous = false;
}

void WrittenFiles::remove(WrittenFile& file) {
    const std::string grave = nextGrave();
    if (std::rename(file.path.c_str(), grave.c_str()) == 0) {
        empty(grave);
        rmdir(folderOf(file.path).c_str());
    }
    file.size = 0;
    file.rest.clear();
    file.isAmbiguous = false;
}

void WrittenFiles::rename(WrittenFile& file, const std::string& path) {
    std::filesystem::create_directories(folderOf(path));
    check(std::rename(file.path.c_str(), path.c_str()) == 0, path);
    file.path = path;
}

std::string WrittenFiles::nextGrave() {
    return graves_ + '/' + std::to_string(graveNumber_++);
}

void WrittenFiles::empty(const std::string& grave) {
    check(::truncate(grave.c_str(), 0) == 0, grave);
    filledGraves_.push_back(grave);
    if (filledGraves_.size() > kGraves) {
        unlink(filledGraves_.front().c_str());
        filledGraves_.pop_front();
    }
}

void WrittenFiles::write(const std::string& path, int flags, std::string_view bytes) {
    flags |= O_WRONLY | O_CREAT | O_CLOEXEC;
    int descriptor = open(path.c_str(), flags, 0600);
    if (descriptor < 0) {
        std::filesystem::create_directories(folderOf(path));
        descriptor = open(path.c_str(), flags, 0600);
    }
    check(descriptor >= 0, path);
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        check(count >= 0, path);
        bytes.remove_prefix(static_cast<std::size_t>(count));
        bytesWritten_ += static_cast<std::uint64_t>(count);
    }
    close(descriptor);
}
