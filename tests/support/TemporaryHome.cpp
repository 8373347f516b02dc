#include "tests/support/TemporaryHome.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

void put(const std::string& path, std::string_view content, std::ios::openmode mode) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | mode);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

}  // namespace

TemporaryHome::TemporaryHome() {
    std::string pattern = (fs::temp_directory_path() / "brimlet-test-XXXXXX").string();
    root_ = fs::canonical(mkdtemp(pattern.data())).string();
}

TemporaryHome::~TemporaryHome() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

bool TemporaryHome::holds(std::string_view name) const {
    return fs::exists(path(name));
}

std::string TemporaryHome::content(std::string_view name) const {
    std::ostringstream content;
    content << std::ifstream(path(name)).rdbuf();
    return content.str();
}

void TemporaryHome::write(std::string_view name, std::string_view content) {
    put(path(name), content, std::ios::trunc);
}

void TemporaryHome::append(std::string_view name, std::string_view content) {
    put(path(name), content, std::ios::app);
}

void TemporaryHome::replace(std::string_view name, std::string_view content) {
    write(std::string(name) + ".new", content);
    fs::rename(path(std::string(name) + ".new"), path(name));
}

void TemporaryHome::truncate(std::string_view name, std::size_t size) {
    fs::resize_file(path(name), size);
}

void TemporaryHome::remove(std::string_view name) {
    fs::remove_all(path(name));
}

void TemporaryHome::makeFolder(std::string_view name) {
    fs::create_directories(path(name));
}

void TemporaryHome::makeLink(std::string_view name, std::string_view target) {
    fs::create_symlink(target, path(name));
}

void TemporaryHome::makeFIFO(std::string_view name) {
    mkfifo(path(name).c_str(), 0600);
}

void TemporaryHome::setDate(std::string_view name, double seconds) {
    const double whole = std::floor(seconds);
    const timespec date{static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
    const timespec both[] = {date, date};
    utimensat(AT_FDCWD, path(name).c_str(), both, AT_SYMLINK_NOFOLLOW);
}
