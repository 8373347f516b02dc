#include "platform/property_list.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::optional<std::string> found(const std::string& content) {
    return platform::propertyListString(
        "<?xml version=\"1.0\"?><plist><dict>" + content + "</dict></plist>", "k");
}

TEST(PropertyListTest, TheStringOfAKeyInTheRootDictionary) {
    EXPECT_EQ("1.2", found("<key>n</key><string>7</string><key>k</key><string>1.2</string>"));
    EXPECT_EQ("1&2<", found("<key>k</key><string>1&amp;2<![CDATA[<]]></string>"));
    EXPECT_EQ("βx", found("<key>k</key><!-- a comment --><string>&#946;x</string>"));
    EXPECT_EQ("", found("<key>k</key><string></string>"));
    EXPECT_EQ(std::nullopt, found("<key>k</key><integer>7</integer>"));
    EXPECT_EQ(std::nullopt, found("<key>k</key>"));
    EXPECT_EQ(std::nullopt, found("<key>d</key><dict><key>k</key><string>1</string></dict>"));
    EXPECT_EQ(std::nullopt, found("<key>k</key><string>\xFF</string>"));
    EXPECT_EQ(std::nullopt, platform::propertyListString("", "k"));
    EXPECT_EQ(std::nullopt,
              platform::propertyListString(
                  "<plist><array><key>k</key><string>1</string></array></plist>", "k"));
}

TEST(PropertyListTest, DamagedAndHostileListsDoNoHarm) {
    std::string deep;
    for (int i = 0; i < 30'000; ++i) {
        deep += "<array>";
    }
    (void)found("<key>k</key><string>v</string><key>a</key>" + deep);
    (void)platform::propertyListString(
        "<!DOCTYPE p [<!ENTITY a \"&b;&b;\"><!ENTITY b \"&a;&a;\">]><plist><dict><key>k</key>"
        "<string>&a;</string></dict></plist>",
        "k");
    const std::string lists[] = {
        std::string("bplist00\xD1\x01\x02QkS1.2\x08\x0B\x0D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03"
                    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x11",
                    48),
        "<?xml version=\"1.0\"?><plist><dict><key>k</key><string>1&amp;2</string>"
        "<key>a</key><array><integer>7</integer></array></dict></plist>"};
    std::mt19937 random(3);
    for (int round = 0; round < 20'000; ++round) {
        std::string list = lists[round % 2];
        for (auto changes = random() % 4; changes > 0; --changes) {
            list[random() % list.size()] = static_cast<char>(random());
        }
        list.resize(random() % 3 == 0 ? random() % list.size() : list.size());
        (void)platform::propertyListString(list, "k");
    }
}

}  // namespace
