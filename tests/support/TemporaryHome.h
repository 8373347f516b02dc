#pragma once

#include <string>
#include <string_view>

/// A temporary home folder, which is removed with everything in it at the end. Names are relative
/// to it, and folders are made as needed.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::string& root() const { return root_; }
    std::string path(std::string_view name) const { return root_ + '/' + std::string(name); }

    bool holds(std::string_view name) const;
    std::string content(std::string_view name) const;  ///< "" for a folder, or for nothing.

    void write(std::string_view name, std::string_view content);  ///< Keeps the file's inode.
    void append(std::string_view name, std::string_view content);
    void replace(std::string_view name, std::string_view content);  ///< Makes a new inode.
    void truncate(std::string_view name, std::size_t size);
    void remove(std::string_view name);
    void makeFolder(std::string_view name);
    void makeLink(std::string_view name, std::string_view target);
    void makeFIFO(std::string_view name);

    /// Sets the modification date, in seconds of Unix time.
    void setDate(std::string_view name, double seconds);

private:
    std::string root_;
};
