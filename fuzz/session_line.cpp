// Every line of the input through the interpreter of session records, beside the model.

#include <algorithm>

#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/answers.h"
#include "fuzz/expect.h"
#include "fuzz/model/SessionModel.h"
#include "fuzz/model/text.h"
#include "sessions/ORVCodexSessionSource.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 8192;
    static MemoryFiles files;
    static const ManualClock clock;
    static ORVCodexSessionSource source(files, clock, "/codex");
    ORVSessionParseState state;
    model::Figures figures;
    const std::string input(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    for (const std::string& line : model::completeLines(input + '\n')) {
        const std::string padded = line + std::string(ORVByteBuffer::kReadableBytesBeyond, '"');
        const auto bytes = std::string_view(padded).substr(0, line.size());
        const std::int64_t before = state.compactionCount;
        source.consumeLine(bytes, state);
        figures.read(line);
        fuzz::expect(state.compactionCount >= before, "a count never falls");
        fuzz::expectEqual(model::described(figures), fuzz::described(state), line);
        fuzz::expect(state.sawCompactionSignal == figures.toldOfCompaction, "the signal is seen");
    }
    return 0;
}
