#pragma once

#include <functional>
#include <string_view>

#include "text/byte_buffer.h"
#include "text/marker_search.h"

namespace text {

/// Cuts the next bytes of a file into lines and hands over, whole and in order, each line that
/// holds one of the markers; the line feed is cut off, nothing else. Lines without a marker are
/// passed over without being cut.
///
/// `pending` is the beginning of a line whose line feed has not arrived; it never holds one, and
/// each byte is searched for one once. Afterwards it holds what follows the last line feed.
///
/// The memory for 64 bytes past a line's end may be read by whoever consumes it, so the chunk must
/// be followed by ORVByteBuffer::kReadableBytesBeyond readable bytes. The line is valid during the
/// call only.
void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const std::function<void(std::string_view line)>& consumeLine);

}  // namespace text
