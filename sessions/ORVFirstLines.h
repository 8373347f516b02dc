#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/files.h"

/// What the first line of a session file says of its task. Texts are as recorded; one that is empty
/// or of more than ORVFirstLines::kLongestTextBytes counts as absent.
struct ORVFirstLine {
    /// Whether the line has ended, or is longer than any that is read. Until then nothing else is
    /// known.
    bool isComplete = false;
    bool isHelper = false;  ///< Whether the agent started the task to work for another one.
    std::optional<std::string> folder;      ///< The working folder, an absolute path.
    std::optional<std::string> parentID;    ///< The task that a helper works for.
    std::optional<std::string> helperName;  ///< The name that the agent gave a helper.
};

/// The first lines of session files. Each is read once: again only while it is not complete or
/// cannot be read, and when another file takes the path. Opens no file for what it knows. One
/// thread at a time uses it.
class ORVFirstLines {
public:
    /// A longer first line is complete and tells nothing.
    static constexpr std::size_t kLongestLineBytes = 1024 * 1024;
    static constexpr std::size_t kLongestTextBytes = 4096;

    /// `files` must outlive the object, and its calls must bear several threads at once.
    explicit ORVFirstLines(ORVFiles& files) : files_(files) {}

    /// What is known of a file.
    struct Known {
        ORVFirstLine line;
        ORVErrorSlot error;  ///< Why the file could not be read; the line is not complete then.
        std::uint64_t fileIdentifier = 0;  ///< Of the file that was read.
        ORVFileDate modifiedAt;
        std::uint64_t size = 0;
    };

    /// Returns what the file's first line says, and reads it if needed. The reference is valid
    /// until the file is forgotten.
    const Known& ofFile(const ORVWalkedFile& file);

    /// Reads the first lines of these files on all processors, unless they are known.
    void readAhead(std::span<const ORVWalkedFile* const> files);

    /// Returns what is known of the path without opening anything; null when it was never read.
    const Known* knownOf(const std::string& path) const;

    void forget(const std::string& path) { known_.erase(path); }
    void forgetAll() { known_.clear(); }

private:
    bool mustBeRead(const ORVWalkedFile& file) const;

    ORVFiles& files_;
    std::unordered_map<std::string, Known> known_;  ///< By path.
};
