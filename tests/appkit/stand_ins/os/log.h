#pragma once

// Stands in for the system's log, and keeps what is written into it.

#include <string>

enum os_log_type_t { OS_LOG_TYPE_DEFAULT, OS_LOG_TYPE_ERROR };
using os_log_t = std::string;

inline os_log_t os_log_create(const char* subsystem, const char*) {
    return subsystem;
}

inline void os_log_with_type(const os_log_t& log, os_log_type_t type, const std::string& format,
                             const char* text) {
    ORVStandIn.log.push_back(log + (type == OS_LOG_TYPE_ERROR ? " error: " : ": ") +
                             (format == "%{public}s" ? text : "<private>"));
}
