#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

/// A temporary home folder, which is removed with everything in it at the end. Names are relative
/// to it, and folders are made as needed.
class TemporaryHome {
public:
    TemporaryHome() {
        std::string pattern = std::filesystem::temp_directory_path() / "brimlet-test-XXXXXX";
        root_ = std::filesystem::canonical(mkdtemp(pattern.data())).string();
    }
    ~TemporaryHome() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::string& root() const { return root_; }
    std::string path(std::string_view name) const { return root_ + '/' + std::string(name); }
    bool holds(std::string_view name) const { return std::filesystem::exists(path(name)); }

    /// Returns "" for a folder, or for nothing.
    std::string content(std::string_view name) const {
        std::ostringstream content;
        content << std::ifstream(path(name)).rdbuf();
        return content.str();
    }

    /// Keeps the file's inode.
    void write(std::string_view name, std::string_view content) {
        put(name, content, std::ios::trunc);
    }
    void append(std::string_view name, std::string_view content) {
        put(name, content, std::ios::app);
    }
    /// Makes a new inode.
    void replace(std::string_view name, std::string_view content) {
        write(std::string(name) + ".new", content);
        std::filesystem::rename(path(name) + ".new", path(name));
    }
    void truncate(std::string_view name, std::size_t size) {
        std::filesystem::resize_file(path(name), size);
    }
    void remove(std::string_view name) { std::filesystem::remove_all(path(name)); }
    void makeFolder(std::string_view name) { std::filesystem::create_directories(path(name)); }
    void makeLink(std::string_view name, std::string_view target) {
        std::filesystem::create_symlink(target, path(name));
    }
    void makeFIFO(std::string_view name) { mkfifo(path(name).c_str(), 0600); }

    /// Sets the modification date, in seconds of Unix time.
    void setDate(std::string_view name, double seconds) {
        const double whole = std::floor(seconds);
        const timespec date{static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
        const timespec both[] = {date, date};
        utimensat(AT_FDCWD, path(name).c_str(), both, AT_SYMLINK_NOFOLLOW);
    }

private:
    void put(std::string_view name, std::string_view content, std::ios::openmode mode) {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream file(path(name), std::ios::binary | mode);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
    }

    std::string root_;
};
