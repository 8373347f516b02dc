#pragma once

#include <functional>
#include <string_view>

#include "text/byte_buffer.h"
#include "text/marker_search.h"

namespace text {

/// Finds, in the next bytes of a file, each line that holds one of the markers and calls
/// `consumeLine` with it, without its line feed. Lines without a marker are passed over without
/// being cut out.
///
/// `pending` holds the beginning of a line whose line feed has not arrived, and after the call what
/// follows the chunk's last line feed. No byte is searched twice for a line feed.
///
/// ORVByteBuffer::kReadableBytesBeyond readable bytes must follow the chunk, because consumers may
/// read as far beyond a line's end. A line is valid during the call of `consumeLine` only.
void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const std::function<void(std::string_view line)>& consumeLine);

}  // namespace text
