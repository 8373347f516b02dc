#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/files.h"
#include "text/bytes.h"
#include "text/json.h"
#include "text/marked_lines.h"

/// Memory for reading files piece by piece. Whoever has files to read makes one, passes it to every
/// read and drops it at the end, since taking the memory costs more than reading a small file.
/// Nothing is taken before the first read.
class ORVReadingMemory {
public:
    /// The size that was fastest on a processor with a second-level cache of 1 MB, from which a
    /// chunk is searched; a quarter of it takes a tenth longer.
    static constexpr std::size_t kChunkBytes = 512 * 1024;

    /// Reads the next bytes of the file from `offset`: at most `limit`, at most one chunk, and none
    /// at the file's end. Returns nothing, with the system's error, when the file cannot be read.
    /// The bytes are valid until the next read, and text::kReadableBytesBeyond readable bytes
    /// follow them. Throws std::bad_alloc when memory runs out.
    std::optional<std::string_view> readChunk(ORVOpenFile& file, std::uint64_t offset,
                                              std::uint64_t limit, ORVErrorSlot* error);

    void release();

    ORVJSONReader json;
    std::string spareLine;  ///< Empty. A file's pending line borrows its memory while it is read.

private:
    /// Begins at a page, of which Apple's processors have the largest: a system call that copies to
    /// an address a few bytes after the start of a page, where an allocator puts every large block,
    /// runs at a quarter of the speed.
    struct alignas(16 * 1024) Chunk {
        char bytes[kChunkBytes + text::kReadableBytesBeyond];
    };
    std::unique_ptr<Chunk> chunk_;
};

/// How far a file has been read that others append lines to.
///
/// A replaced or shortened file gets a fresh one; fields are never reset one by one.
struct ORVFollowedFile {
    /// How many bytes of the file have been read. The last pendingData.size() of them have not been
    /// interpreted yet.
    std::uint64_t offset = 0;

    /// The line whose line feed has not arrived; at most ORVFileFollower::kLongestLineBytes.
    std::string pendingData;

    /// Whether nothing can come of the line that is being read: it is too long, or has a hole. Its
    /// bytes are dropped until its line feed arrives.
    bool isPassingOverLine = false;

    /// The inode of the file that the bytes came from. None when the file system has no numbers; a
    /// file that is replaced by a longer one then goes unnoticed.
    std::optional<std::uint64_t> fileIdentifier;

    /// Remembers when there was not enough memory to read the file, and its size at that moment.
    struct OutOfMemory {
        std::uint64_t fileSize;
        ORVClock::TimePoint at;
    };
    std::optional<OutOfMemory> outOfMemory;
};

/// Reads on in files that grow, and picks out the complete lines that hold one of some words.
class ORVFileFollower {
public:
    /// A longer line is passed over.
    static constexpr std::size_t kLongestLineBytes = ORVJSONReader::kMaxBytes;

    /// Whether a line with a NUL can mean something. Where it cannot, a line that crosses a hole of
    /// a sparse file is passed over, and so is the hole, since it reads as NULs. Otherwise only a
    /// hole that makes the line too long is.
    enum class NULs { mayMatter, spoilTheirLine };

    /// All must outlive the follower.
    ORVFileFollower(ORVFiles& files, const ORVClock& clock, const ORVMarkerSearch& markers,
                    NULs nuls)
        : files_(files), clock_(clock), markers_(markers), nuls_(nuls) {}

    /// Prepares a state for a file with these attributes, of which the size must be known: makes it
    /// anew when it belongs to another file, or when the file has become shorter.
    template <typename State>
    static void begin(State& state, const ORVFileAttributes& attributes) {
        if (isAnotherFile(state, attributes)) {
            state = State{};
        }
        state.fileIdentifier = attributes.fileIdentifier;
    }

    enum class Result {
        upToDate,
        endedEarly,  ///< The file was shortened while it was read. What it held was read.
        failed,      ///< With the system's error; what was read before is kept.
    };

    /// Is shown the bytes that a file begins with, before they are read; returns whether to go on.
    using Opening = std::function<bool(std::string_view bytes)>;

    /// Reads what the file holds between the state's offset and `fileSize`, which comes from the
    /// file's attributes of this moment, and passes on the complete lines in it. Does not open a
    /// file in which nothing is new. A file that is read from its beginning is first shown to
    /// `opening`, if that is not empty.
    ///
    /// When memory runs out, the error is ENOMEM: the state is made anew, and the file is not read
    /// for a minute unless its size changes.
    template <typename State>
    Result readOn(State& state, const std::string& path, std::uint64_t fileSize,
                  ORVReadingMemory& memory, const Opening& opening,
                  const text::LinesConsumer& consumeLines, ORVErrorSlot* error) const {
        if (state.offset == fileSize) {
            return Result::upToDate;
        }
        try {
            if (!isPausing(state, fileSize)) {
                return readFile(state, path, fileSize, memory, opening, consumeLines, error);
            }
        } catch (const std::bad_alloc&) {
            // Frees the file's memory. The next attempt reads the file from its beginning.
            state = State{};
            state.outOfMemory = {fileSize, clock_.now()};
            memory.release();
        }
        storeError(error, platform::posixError(ENOMEM));
        return Result::failed;
    }

private:
    static bool isAnotherFile(const ORVFollowedFile& state, const ORVFileAttributes& attributes);
    bool isPausing(const ORVFollowedFile& state, std::uint64_t fileSize) const;
    Result readFile(ORVFollowedFile& state, const std::string& path, std::uint64_t fileSize,
                    ORVReadingMemory& memory, const Opening& opening,
                    const text::LinesConsumer& consumeLines, ORVErrorSlot* error) const;
    void consumeChunk(ORVFollowedFile& state, std::string_view chunk,
                      const text::LinesConsumer& consumeLines) const;
    void skipHole(ORVFollowedFile& state, ORVOpenFile& file, std::uint64_t fileSize) const;

    ORVFiles& files_;
    const ORVClock& clock_;
    const ORVMarkerSearch& markers_;
    const NULs nuls_;
};
