#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/ORVFollowedFile.h"

/// What the first line of a session file says of its task. A text that is empty or longer than
/// ORVFirstLines::kLongestTextBytes counts as absent.
struct ORVFirstLine {
    /// Whether the line has ended, or is longer than any that is read. Until then nothing is known.
    bool isComplete = false;
    bool isHelper = false;                ///< Whether the task was started to work for another one.
    std::optional<std::string> folder;    ///< The working folder, an absolute path.
    std::optional<std::string> parentID;  ///< The task that a helper works for, as recorded.
    std::optional<std::string> helperName;  ///< The name that the agent gave a helper.
};

/// The first lines of session files, each read once: again only when another file takes the path,
/// and while it is not complete, when the file has changed. One thread at a time uses the object.
class ORVFirstLines {
public:
    /// A longer first line is complete and tells nothing.
    static constexpr std::size_t kLongestLineBytes = 1024 * 1024;
    static constexpr std::size_t kLongestTextBytes = 4096;

    /// `files` must outlive the object, and bear that several threads call it at once.
    explicit ORVFirstLines(ORVFiles& files) : files_(files) {}

    /// What is known of a file, and the attributes that it had when it was read.
    struct Known {
        ORVFirstLine line;
        int error = 0;  ///< The errno of a file that could not be read; the line is not complete.
        std::uint64_t fileIdentifier = 0;
        std::uint64_t size = 0;
        ORVFileDate modifiedAt;

        /// Whether these are the attributes of another file, or of one that was cut.
        bool isOfAnother(const ORVWalkedFile& file) const {
            return fileIdentifier != file.fileIdentifier || size > file.size;
        }
    };

    // A file is known by its address, which must not be another one's until it is forgotten.

    /// Returns what the file's first line says, and opens the file only if needed. The reference is
    /// valid until the file is forgotten.
    const Known& ofFile(const ORVWalkedFile& file);

    /// Does the same, and tries again to read what could not be read.
    const Known& tryAgain(const ORVWalkedFile& file);

    /// Reads what ofFile would of these files, on all processors, when they are many.
    void readAhead(std::span<const ORVWalkedFile* const> files);

    /// Reads the first line from the bytes that the file begins with, if it ends in them: whoever
    /// reads the whole file spares opening it twice. Returns null if it does not. Several threads
    /// may call this at once, when none calls anything else.
    const ORVFirstLine* takeFrom(std::string_view bytes, const ORVWalkedFile& file,
                                 ORVJSONReader& json);

    /// Returns what is known of the file; null when nothing is.
    const Known* knownOf(const ORVWalkedFile& file) const;

    /// Prepares for so many files.
    void reserve(std::size_t files) { known_.reserve(files); }

    void forget(const ORVWalkedFile& file) { known_.erase(&file); }
    void forgetAll() { known_.clear(); }

private:
    static bool mustRead(const Known& known, const ORVWalkedFile& file);

    ORVFiles& files_;
    ORVReadingMemory memory_;
    std::unordered_map<const ORVWalkedFile*, Known> known_;
    std::mutex taking_;
};
