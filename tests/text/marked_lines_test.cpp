#include "text/marked_lines.h"

#include "text/marker_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr ORVMarker kOne[] = {{"compact", 2, 5}};
constexpr ORVMarker kTwo[] = {{"compact", 2, 5}, {"token_count", 2, 5}};
constexpr ORVMarker kSharedByte[] = {{"xw_a", 1, 2}, {"owner sync ", 1, 7}, {"wA=", 0, 1}};
constexpr ORVMarker kFour[] = {
    {"compact", 2, 5}, {"token_count", 2, 5}, {"wA=", 0, 1}, {"_k", 0, 1}};

using Markers = std::span<const ORVMarker>;

/// Bytes in which pieces of the markers are common.
std::string randomBytes(std::mt19937& random, Markers markers, std::size_t length) {
    std::string bytes;
    while (bytes.size() < length) {
        const std::string_view marker = markers[random() % markers.size()].text;
        switch (random() % 5) {
            case 0:
                bytes += marker;
                break;
            case 1:
                bytes += marker.substr(0, random() % marker.size());
                break;
            case 2:
                bytes += '\n';
                break;
            default:
                bytes += std::string(random() % 90, "amckow_A"[random() % 8]);
        }
    }
    return bytes;
}

TEST(MarkerSearchTest, FindsWhatAPlainSearchFinds) {
    std::mt19937 random(1);
    for (int round = 0; round < 3'000; ++round) {
        const std::pair<Markers, ORVMarkerSearch> kSearches[] = {
            {kOne, ORVMarkerSearch(kOne)},
            {kTwo, ORVMarkerSearch(kTwo)},
            {kSharedByte, ORVMarkerSearch(kSharedByte)},
            {kFour, ORVMarkerSearch(kFour)}};
        const auto& [markers, search] = kSearches[round % 4];
        const std::string bytes = randomBytes(random, markers, random() % 700);
        std::size_t plain = std::string::npos;
        std::size_t plainRareByte = std::string::npos;
        for (const ORVMarker& marker : markers) {
            const std::size_t position = bytes.find(marker.text);
            if (position != std::string::npos && position + marker.rareByte < plainRareByte) {
                plainRareByte = position + marker.rareByte;
                plain = position;
            }
        }
        // An exact copy on the heap: a byte read outside of it is found by the sanitizer.
        const std::vector<char> exact(bytes.begin(), bytes.end());
        const char* end = exact.data() + exact.size();
        const char* found = search.find(exact.data(), end);
        EXPECT_EQ(std::min(plain, bytes.size()), static_cast<std::size_t>(found - exact.data()));
        std::vector<text::ScannedMarker> scanned;
        scanned.reserve(markers.size());
        for (const ORVMarker& m : markers) {
            scanned.push_back({m.text.data(), m.text.size(), m.rareByte, m.otherRareByte});
        }
        const text::MarkerScan<16> narrow(scanned.data(), scanned.size(), exact.data(), end);
        EXPECT_EQ(found, narrow.run()) << "whatever width this processor has";
    }
}

TEST(MarkedLinesTest, AnyChunksGiveTheLinesOfTheWhole) {
    std::mt19937 random(2);
    const ORVMarkerSearch search(kTwo);
    for (int round = 0; round < 2'000; ++round) {
        const std::string bytes = randomBytes(random, kTwo, random() % 2'000);
        std::vector<std::string> expected;
        std::size_t lineStart = 0;
        for (std::size_t end = bytes.find('\n'); end != std::string::npos;
             end = bytes.find('\n', lineStart)) {
            const std::string line = bytes.substr(lineStart, end - lineStart);
            if (line.find("compact") != std::string::npos ||
                line.find("token_count") != std::string::npos) {
                expected.push_back(line);
            }
            lineStart = end + 1;
        }
        std::vector<std::string> lines;
        ORVByteBuffer pending;
        for (std::size_t position = 0; position < bytes.size();) {
            const std::size_t length = 1 + random() % (round % 7 == 0 ? 3 : 600);
            std::string chunk = bytes.substr(position, length);
            position += chunk.size();
            const std::size_t size = chunk.size();
            chunk.append(ORVByteBuffer::kReadableBytesBeyond, '\0');
            text::consumeChunk(pending, std::string_view(chunk).substr(0, size), search,
                               [&](std::string_view line) { lines.emplace_back(line); });
        }
        ASSERT_EQ(expected, lines) << "round " << round;
        ASSERT_EQ(bytes.substr(lineStart), pending.bytes());
    }
}

}  // namespace
