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
/// `pending` holds the beginning of a line whose line feed has not arrived. The call completes that
/// line and leaves in `pending` the line that the chunk does not end. The bytes in `pending` are
/// never searched for a line feed again.
///
/// ORVByteBuffer::kReadableBytesBeyond readable bytes must follow the chunk, because consumers may
/// read as far beyond a line's end. A line is valid during the call of `consumeLine` only.
void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const std::function<void(std::string_view line)>& consumeLine);

}  // namespace text
