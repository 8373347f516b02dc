// Checks the parts of the menu-bar program's bundle that exist before it is built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/version.h"
#include "platform/program.h"

namespace {

std::string contents(const std::filesystem::path& path) {
    std::stringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
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

TEST(BundleTest, IconHasEverySize) {
    const std::string icon = contents(BRIMLET_ICON);
    EXPECT_EQ("icns", icon.substr(0, 4));
    for (const char* type :
         {"is32", "s8mk", "il32", "l8mk", "ic11", "ic12", "ic07", "ic08", "ic09", "ic10"}) {
        EXPECT_NE(std::string::npos, icon.find(type)) << type;
    }
}
