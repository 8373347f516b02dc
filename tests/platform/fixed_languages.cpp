// Replaces the languages of this system, which decides on a Mac and which no test can set there.
// Linked with BRIMLET_FIXED_LANGUAGE.

#include <string>
#include <vector>

extern "C" std::vector<std::string> __wrap__ZN8platform18preferredLanguagesB5cxx11Ev() {
    return {BRIMLET_FIXED_LANGUAGE};
}
