#pragma once

#include <cstddef>
#include <functional>

namespace platform {

/// Does one of many equal pieces of work: that with this number.
using Worker = std::function<void(std::size_t number)>;

/// Does as many pieces of work as `count` says, numbered from 0, on all processors, and returns
/// when all are done. Each thread, the calling one among them, makes a worker of its own, so that
/// workers may hold what cannot be shared. Where no further thread can be had, fewer do the work.
///
/// Throws std::bad_alloc, after all threads have ended, when memory ran out in one of them; some
/// work is not done then.
void inParallel(std::size_t count, const std::function<Worker()>& makeWorker);

}  // namespace platform
