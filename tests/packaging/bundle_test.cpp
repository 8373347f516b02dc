// Checks the parts of the menu-bar program's bundle that exist before it is built.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "app/version.h"
#include "platform/property_list.h"

namespace {

std::string contents(const std::filesystem::path& path) {
    std::stringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

/// Returns the number in four bytes, the highest first, and 0 when the text is too short.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset) {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(std::min(offset, bytes.size()), 4)) {
        number = number << 8U | static_cast<unsigned char>(byte);
    }
    return number;
}

}  // namespace

TEST(BundleTest, SaysWhoItIs) {
    const std::string list = contents(BRIMLET_INFO_PLIST);
    const auto value = [&list](const char* key) { return platform::propertyListString(list, key); };
    EXPECT_EQ("com.orvellan.brimlet", value("CFBundleIdentifier"));
    EXPECT_EQ("13.0", value("LSMinimumSystemVersion"));
    EXPECT_EQ("Brimlet", value("CFBundleExecutable"));
    EXPECT_EQ(std::filesystem::path(BRIMLET_ICON).stem().string(), value("CFBundleIconFile"));
    EXPECT_EQ("APPL", value("CFBundlePackageType"));
    for (const char* key : {"CFBundleShortVersionString", "CFBundleVersion"}) {
        EXPECT_EQ(BRIMLET_VERSION, value(key));
    }
    EXPECT_NE(std::string::npos, list.find("<key>LSUIElement</key>\n\t<true/>"));
}

// An icon file holds pictures, each with a type, which stands for its size, and its length in
// bytes.
TEST(BundleTest, IconHasEverySize) {
    const std::string icon = contents(BRIMLET_ICON);
    ASSERT_EQ("icns", icon.substr(0, 4));
    ASSERT_EQ(icon.size(), numberAt(icon, 4));
    std::map<std::string, std::string> pictures;
    for (std::size_t offset = 8; offset < icon.size();) {
        const std::size_t length = numberAt(icon, offset + 4);
        ASSERT_TRUE(length > 8 && length <= icon.size() - offset) << offset;
        pictures[icon.substr(offset, 4)] = icon.substr(offset + 8, length - 8);
        offset += length;
    }
    for (const auto& [type, pixels] : std::map<std::string, std::uint32_t>{{"ic11", 32},
                                                                           {"ic12", 64},
                                                                           {"ic07", 128},
                                                                           {"ic08", 256},
                                                                           {"ic09", 512},
                                                                           {"ic10", 1024}}) {
        SCOPED_TRACE(type);
        EXPECT_EQ("\x89PNG", pictures[type].substr(0, 4));
        EXPECT_EQ(pixels, numberAt(pictures[type], 16));
        EXPECT_EQ(pixels, numberAt(pictures[type], 20));
    }
    // The small pictures have a compression of their own; their masks are not compressed.
    EXPECT_FALSE(pictures["is32"].empty());
    EXPECT_FALSE(pictures["il32"].empty());
    EXPECT_EQ(16U * 16, pictures["s8mk"].size());
    EXPECT_EQ(32U * 32, pictures["l8mk"].size());
}
