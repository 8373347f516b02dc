#pragma once

#include <cstdint>

/// Whether the context figure can be shown.
enum ORVContextStatus : std::int64_t {
    ORVContextStatusAvailable = 0,     ///< The latest token count gave a usable figure.
    ORVContextStatusWaiting = 1,       ///< No figure yet, or a compaction dropped it.
    ORVContextStatusIncompatible = 2,  ///< The latest token count had an unexpected shape.
};

/// Whether the compaction count can be trusted. There is no 1: "incompatible" has the same number
/// as that of the context.
enum ORVCompactionStatus : std::int64_t {
    ORVCompactionStatusValid = 0,
    ORVCompactionStatusIncompatible = 2,  ///< A record about compaction was not understood.
};
