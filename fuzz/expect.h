#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// What a fuzz target demands. A demand that is not met ends the program, which tells whoever runs
/// it that the input is a finding; under a debugger and in NDEBUG builds alike.
namespace fuzz {

inline void expect(bool holds, const char* demand) {
    if (!holds) {
        std::fprintf(stderr, "not so: %s\n", demand);
        std::abort();
    }
}

inline void expectEqual(const std::string& expected, const std::string& found,
                        const std::string& what) {
    if (expected != found) {
        std::fprintf(stderr, "%s\nexpected %s\nfound    %s\n", what.c_str(), expected.c_str(),
                     found.c_str());
        std::abort();
    }
}

}  // namespace fuzz
