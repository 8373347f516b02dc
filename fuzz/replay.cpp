// Runs a fuzz target over every file of the folders given, so that whatever was found once is
// tried in every test run.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::string> filesIn(const char* folder) {
    std::vector<std::string> paths;
    std::error_code failure;
    for (const auto& entry : std::filesystem::directory_iterator(folder, failure)) {
        paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        const std::vector<std::string> paths = filesIn(arguments[i]);
        if (paths.empty()) {
            std::fprintf(stderr, "no inputs in %s\n", arguments[i]);
            return 1;
        }
        for (const std::string& path : paths) {
            std::fprintf(stderr, "%s\n", path.c_str());
            std::ifstream file(path, std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
        }
    }
    return 0;
}
