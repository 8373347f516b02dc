// The functions that a first read spends its time in, each beside something public that does a
// comparable job on the same bytes. Prints bytes per second.

#include <benchmark/benchmark.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "sessions/json_object.h"
#include "text/marker_search.h"
#include "text/unicode.h"

namespace {

constexpr std::size_t kChunkBytes = 256 * 1024;

/// Log lines without a marker.
std::string makeChunk() {
    const std::string line =
        "2026-11-24T16:45:20.863Z info [AppServerConnection] request_completed method=thread/list "
        "durationMs=123 originWebContentsId=4 conversationId=01a20e72-983b-7e83-81c7-e87b7b63d181 "
        "requestId=11400714819323198485 errorCode=null status=ok\n";
    std::string chunk;
    while (chunk.size() < kChunkBytes) {
        chunk += line;
    }
    return chunk;
}

/// A compaction's record of half a megabyte.
std::string makeRecord() {
    std::string record = R"({"type":"compacted","payload":{"message":"","replacement_history":[)";
    while (record.size() < 2 * kChunkBytes) {
        record += R"({"role":"user","content":[{"type":"input_text","text":")" +
                  std::string(2'000, 'a') + R"(\nand \"so\" on"}]},)";
    }
    record.back() = ']';
    return record + "}}";
}

void setBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void findMarkers(benchmark::State& state) {
    const std::string chunk = makeChunk();
    const ORVMarkerSearch search({{"thread_stream_view_activity_changed", 17, 18},
                                  {"browser sidebar owner sync ", 17, 23},
                                  {"rendererWindowAppearance=", 13, 14}});
    for (auto _ : state) {
        benchmark::DoNotOptimize(search.find(chunk.data(), chunk.data() + chunk.size()));
    }
    setBytes(state, chunk.size());
}
BENCHMARK(findMarkers);

void findOneMarkerWithMemmem(benchmark::State& state) {
    const std::string chunk = makeChunk();
    const std::string marker = "rendererWindowAppearance=";
    for (auto _ : state) {
        benchmark::DoNotOptimize(memmem(chunk.data(), chunk.size(), marker.data(), marker.size()));
    }
    setBytes(state, chunk.size());
}
BENCHMARK(findOneMarkerWithMemmem);

void countLineFeeds(benchmark::State& state) {
    const std::string chunk = makeChunk();
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::count(chunk.begin(), chunk.end(), '\n'));
    }
    setBytes(state, chunk.size());
}
BENCHMARK(countLineFeeds);

const ORVJSONShape& shape() {
    static const ORVJSONShape kShape{
        "", false, {{"type", true}, {"payload", false, {{"message"}, {"replacement_history"}}}}};
    return kShape;
}

void readRecord(benchmark::State& state) {
    const std::string record = makeRecord();
    const std::string padded = record + std::string(64, ' ');
    ORVJSONReader reader;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            reader.readObject(std::string_view(padded).substr(0, record.size()), shape()));
    }
    setBytes(state, record.size());
}
BENCHMARK(readRecord);

void readRecordThoroughly(benchmark::State& state) {
    const std::string record = makeRecord();
    for (auto _ : state) {
        benchmark::DoNotOptimize(sessions::readObjectThoroughly(record, shape()));
    }
    setBytes(state, record.size());
}
BENCHMARK(readRecordThoroughly);

void checkUTF8(benchmark::State& state) {
    const std::string chunk = makeChunk();
    for (auto _ : state) {
        benchmark::DoNotOptimize(text::isValidUTF8(chunk));
    }
    setBytes(state, chunk.size());
}
BENCHMARK(checkUTF8);

}  // namespace

BENCHMARK_MAIN();
