// The bundle of the menu-bar program, as far as it is decided before it is built.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "app/version.h"
#include "platform/property_list.h"

TEST(BundleTest, SaysWhoItIs) {
    std::ifstream file(BRIMLET_INFO_PLIST);
    std::stringstream list;
    list << file.rdbuf();
    const auto value = [&list](const char* key) {
        return platform::propertyListString(list.str(), key);
    };
    EXPECT_EQ("com.orvellan.brimlet", value("CFBundleIdentifier"));
    EXPECT_EQ("13.0", value("LSMinimumSystemVersion"));
    EXPECT_EQ("Brimlet", value("CFBundleExecutable"));
    EXPECT_EQ("Brimlet", value("CFBundleIconFile"));
    EXPECT_EQ("APPL", value("CFBundlePackageType"));
    for (const char* key : {"CFBundleShortVersionString", "CFBundleVersion"}) {
        EXPECT_EQ(BRIMLET_VERSION, value(key));
    }
    EXPECT_NE(std::string::npos, list.str().find("<key>LSUIElement</key>\n\t<true/>"));
}
