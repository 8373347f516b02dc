#include <gtest/gtest.h>

#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "text/bytes.h"
#include "text/marked_lines.h"

namespace {

constexpr ORVMarker kOne[] = {{"compact", 2, 5}};
constexpr ORVMarker kTwo[] = {{"compact", 2, 5}, {"token_count", 2, 5}};
constexpr ORVMarker kThree[] = {{"compact", 2, 5}, {"token_count", 2, 5}, {"wA=", 0, 1}};
constexpr ORVMarker kSharedByte[] = {{"xw_a", 1, 2}, {"owner sync ", 1, 7}, {"wA=", 0, 1}};
constexpr ORVMarker kFour[] = {
    {"compact", 2, 5}, {"token_count", 2, 5}, {"wA=", 0, 1}, {"_k", 0, 1}};

using Markers = std::span<const ORVMarker>;

/// Returns bytes in which parts of the markers are frequent.
std::string randomBytes(std::mt19937& random, Markers markers, std::size_t length) {
    std::string bytes;
    while (bytes.size() < length) {
        const std::string marker(markers[random() % markers.size()].text);
        const std::string pieces[] = {marker, marker.substr(0, random() % marker.size()), "\n",
                                      std::string(random() % 90, "amckow_A"[random() % 8])};
        bytes += pieces[random() % 4];
    }
    return bytes;
}

TEST(MarkerSearchTest, FindsWhatAPlainSearchFinds) {
    std::mt19937 random(1);
    for (int round = 0; round < 3'000; ++round) {
        const std::pair<Markers, ORVMarkerSearch> kSearches[] = {
            {kOne, ORVMarkerSearch(kOne)},
            {kTwo, ORVMarkerSearch(kTwo)},
            {kThree, ORVMarkerSearch(kThree)},
            {kSharedByte, ORVMarkerSearch(kSharedByte)},
            {kFour, ORVMarkerSearch(kFour)}};
        const auto& [markers, search] = kSearches[round % 5];
        const std::string bytes = randomBytes(random, markers, random() % 700);
        std::size_t plain = bytes.size();
        std::size_t plainRareByte = std::string::npos;
        for (const ORVMarker& marker : markers) {
            const std::size_t position = bytes.find(marker.text);
            if (position != std::string::npos && position + marker.rareByte < plainRareByte) {
                plainRareByte = position + marker.rareByte;
                plain = position;
            }
        }
        // An exact copy on the heap, so that the sanitizer notices a read outside of it.
        const std::vector<char> exact(bytes.begin(), bytes.end());
        const char* end = exact.data() + exact.size();
        const char* found = search.find(exact.data(), end);
        EXPECT_EQ(plain, static_cast<std::size_t>(found - exact.data()));
        EXPECT_EQ(found, search.findNarrow(exact.data(), end));
    }
}

TEST(MarkedLinesTest, AnyChunksGiveTheLinesOfTheWhole) {
    std::mt19937 random(2);
    const ORVMarkerSearch search(kTwo);
    for (int round = 0; round < 2'000; ++round) {
        const std::string bytes = randomBytes(random, kTwo, random() % 2'000);
        const std::size_t end = bytes.rfind('\n') + 1;
        std::istringstream whole(bytes.substr(0, end));
        std::string expected;
        for (std::string line; std::getline(whole, line);) {
            const bool isMarked = line.find("compact") != std::string::npos ||
                                  line.find("token_count") != std::string::npos;
            expected += isMarked ? line + '\n' : "";
        }
        std::string lines;
        std::string pending;
        for (std::size_t position = 0; position < bytes.size();) {
            std::string chunk = bytes.substr(position, 1 + random() % (round % 7 == 0 ? 3 : 600));
            const std::size_t size = chunk.size();
            position += size;
            chunk.append(text::kReadableBytesBeyond, '\0');
            text::consumeChunk(pending, std::string_view(chunk).substr(0, size), search,
                               [&](std::span<const std::string_view> found) {
                                   for (const std::string_view line : found) {
                                       lines.append(line) += '\n';
                                   }
                               });
        }
        ASSERT_EQ(expected, lines) << "round " << round;
        ASSERT_EQ(bytes.substr(end), pending);
    }
}

}  // namespace
