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
/// each byte is searched for one once. It is given back holding what follows the last line feed.
///
/// A line may be read up to ORVByteBuffer::kReadableBytesBeyond bytes past its end. The chunk must
/// therefore be followed by as many readable bytes. The line is valid during the call only.
void consumeChunk(ORVByteBuffer& pending, std::string_view chunk, const ORVMarkerSearch& markers,
                  const std::function<void(std::string_view line)>& consumeLine);

}  // namespace text
