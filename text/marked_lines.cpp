// Searches a whole chunk and cuts out only the lines in which a marker was found, so that most
// lines of a session file are never handled one by one. Tests: tests/text/marked_lines_test.cpp.

#include "text/marked_lines.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace text {
namespace {

constexpr std::size_t kStepBytes = 256;

const char* findLineFeed(const char* begin, const char* end) {
    const void* found = std::memchr(begin, '\n', static_cast<std::size_t>(end - begin));
    return found ? static_cast<const char*>(found) : end;
}

/// Returns the byte after the last line feed of [begin, end), else `begin`. The search steps back
/// block by block and looks forward in each, since only memchr is fast on every system.
const char* lineStartBefore(const char* begin, const char* end) {
    while (end != begin) {
        const char* block = end - std::min(static_cast<std::size_t>(end - begin), kStepBytes);
        const char* lineStart = block;
        for (const char* lineFeed = findLineFeed(block, end); lineFeed != end;
             lineFeed = findLineFeed(lineStart, end)) {
            lineStart = lineFeed + 1;
        }
        if (lineStart != block) {
            return lineStart;
        }
        end = block;
    }
    return begin;
}

}  // namespace

void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const LinesConsumer& consumeLines) {
    const char* position = chunk.data();
    const char* const end = position + chunk.size();
    if (!pending.empty()) {
        const char* lineFeed = findLineFeed(position, end);
        pending.append({position, lineFeed});
        if (lineFeed == end) {
            return;
        }
        const std::string_view line = pending.bytes();
        if (markers.find(line.data(), line.data() + line.size()) != line.data() + line.size()) {
            consumeLines({&line, 1});
        }
        pending.clear();
        position = lineFeed + 1;
    }
    std::vector<std::string_view> lines;
    const char* const restStart = lineStartBefore(position, end);
    while (position != restStart) {
        // The range ends after a line feed, so the line of every marker in it is complete.
        const char* marker = markers.find(position, restStart);
        if (marker == restStart) {
            break;
        }
        const char* lineStart = lineStartBefore(position, marker);
        const char* lineEnd = findLineFeed(marker, restStart);
        lines.emplace_back(lineStart, lineEnd);
        position = lineEnd + 1;
    }
    consumeLines(lines);
    pending.append({restStart, end});
}

}  // namespace text
