#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "bench/Random.h"

/// A file as its writer knows it.
struct WrittenFile {
    std::string path;
    std::uint64_t size = 0;
    std::string rest;  ///< Of a line whose first part stands in the file already.

    /// It was changed elsewhere than at its end and kept its inode. A reader that did not look
    /// while it was short reads on from its old place, and cannot know better.
    bool isAmbiguous = false;
};

/// What a writer does to files. A failure ends the process: without a writer nothing is measured.
///
/// A file system gives the number of a deleted inode to the next file, and a reader that slept
/// meanwhile would take it for the file that it knows. So a file that is taken out of the tree
/// keeps its inode for a long time, emptied and under another name.
class WrittenFiles {
public:
    /// `graves` is a folder in the same file system, outside what is read.
    explicit WrittenFiles(std::string graves);

    /// Makes the file and its folders where they are missing.
    void append(WrittenFile& file, std::string_view bytes);

    /// Writes the line, or now and then only a part of it; the parts that follow are written by the
    /// next calls, each in place of its own line.
    void appendInPieces(WrittenFile& file, std::string_view line, Random& random);
    void finishLine(WrittenFile& file);

    void shorten(WrittenFile& file, std::uint64_t size);        ///< In the same file.
    void rewrite(WrittenFile& file, std::string_view content);  ///< In the same file.
    void replace(WrittenFile& file, std::string_view content);  ///< By another file.
    void remove(WrittenFile& file);                             ///< With its empty folder.
    void rename(WrittenFile& file, const std::string& path);

    std::uint64_t bytesWritten() const { return bytesWritten_; }

private:
    std::string nextGrave();
    void empty(const std::string& grave);
    void write(const std::string& path, int flags, std::string_view bytes);

    const std::string graves_;
    std::uint64_t graveNumber_ = 0;
    std::deque<std::string> filledGraves_;
    std::uint64_t bytesWritten_ = 0;
};
