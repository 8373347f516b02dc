// Tests the sources that use a Mac's frameworks. On Linux they run under GNUstep.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>

#import "platform/foundation_apple.h"
#include "platform/locale.h"
#include "platform/program.h"

namespace {

TEST(FoundationTest, PropertyLists) {
    const auto found = [](const std::string& content) {
        return platform::propertyListString(
            "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + content + "</dict></plist>",
            "k");
    };
    EXPECT_EQ("1.2 — β",
              found("<key>a</key><integer>7</integer><key>k</key><string>1.2 — β</string>"));
    EXPECT_EQ(std::nullopt, found("<key>k</key><integer>7</integer>"));
    EXPECT_EQ(std::nullopt, found("<key>a</key><string>1.2</string>"));
    EXPECT_EQ(std::nullopt, platform::propertyListString("<plist><array/></plist>", "k"));
    EXPECT_EQ(std::nullopt, platform::propertyListString("<plist><dict><key>k", "k"));
    EXPECT_EQ(std::nullopt, platform::propertyListString("{ k = v; }", "k")) << "an old form";
    std::string arrays = "<key>k</key><string>v</string><key>a</key><array/>";
    for (const int levels : {100, 600}) {
        for (int level = 0; level < levels; ++level) {
            arrays.replace(arrays.find("<array/>"), 8, "<array><array/></array>");
        }
        EXPECT_EQ(levels == 100, found(arrays) == "v") << "Foundation's reader calls itself";
    }
}

TEST(FoundationTest, Times) {
    setenv("TZ", "UTC", 1);
    [NSTimeZone resetSystemTimeZone];
    EXPECT_EQ("15:04:05", platform::mediumTimeOfDay({54'245, 999'999'999}, {"zh_CN", ""}));
    EXPECT_EQ(0U, platform::mediumTimeOfDay({54'245, 0}, {"en_US", ""}).find("3:04:05"));
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneWithName:@"Asia/Tokyo"]];
    EXPECT_EQ("00:04:05", platform::mediumTimeOfDay({54'245, 0}, {"zh_CN", ""})) << "no old zone";
    const ORVFileDate farAway{std::numeric_limits<std::int64_t>::max(), 0};
    (void)platform::mediumTimeOfDay(farAway, {"en_US", ""});  // Any text will do.
}

// The domain is the test's own, since a home folder of its own would not keep the user's from it.
TEST(FoundationTest, SettingsInADomain) {
    constexpr const char* kDomain = "com.orvellan.brimlet.apple-test";
    NSString* const kKey = @"TestOfBrimlet";
    NSUserDefaults* store = [[NSUserDefaults alloc] initWithSuiteName:@(kDomain)];
    [store removeObjectForKey:kKey];
    const auto defaults = platform::userDefaultsInDomain(kDomain);
    EXPECT_EQ(std::nullopt, defaults->integerForKey("TestOfBrimlet"));
    [store setObject:@"2" forKey:kKey];
    EXPECT_EQ(2, defaults->integerForKey("TestOfBrimlet"));
    [store setObject:[NSArray array] forKey:kKey];
    EXPECT_EQ(0, defaults->integerForKey("TestOfBrimlet"));
    defaults->setInteger(1, "TestOfBrimlet");
    EXPECT_EQ(1, [store integerForKey:kKey]);
    [store removeObjectForKey:kKey];
    [store release];
}

}  // namespace
