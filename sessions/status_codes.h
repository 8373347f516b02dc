#pragma once

#include <cstdint>

/// Whether the context figure can be shown.
enum ORVContextStatus : std::int64_t {
    ORVContextStatusAvailable = 0,     ///< The latest token count gave a usable figure.
    ORVContextStatusWaiting = 1,       ///< There is no figure yet, or a compaction removed it.
    ORVContextStatusIncompatible = 2,  ///< The latest token count had an unexpected shape.
};

/// Whether the compaction count can be trusted. The number 1 is left out so that "incompatible" has
/// the same number in both.
enum ORVCompactionStatus : std::int64_t {
    ORVCompactionStatusValid = 0,
    ORVCompactionStatusIncompatible = 2,  ///< A record about compaction was not understood.
};
