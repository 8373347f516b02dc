#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "text/byte_buffer.h"
#include "text/marker_search.h"

namespace text {

/// Takes lines in file order, without their line feeds. They are valid during the call only.
using LinesConsumer = std::function<void(std::span<const std::string_view> lines)>;

/// Finds, in the next bytes of a file, the lines that hold one of the markers. `consumeLines` is
/// called with the line that `pending` began, if it is one of them, and then with the others. Lines
/// without a marker are passed over without being cut out.
///
/// `pending` holds the beginning of a line whose line feed has not arrived. The call completes that
/// line and leaves in `pending` the line that the chunk does not end. The bytes in `pending` are
/// never searched for a line feed again.
///
/// ORVByteBuffer::kReadableBytesBeyond readable bytes must follow the chunk, because consumers may
/// read as far beyond a line's end.
void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const LinesConsumer& consumeLines);

}  // namespace text
