#include <gtest/gtest.h>

#include "platform/program.h"

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
    for (const char* content :
         {"<key>k</key><integer>7</integer>", "<key>k</key>", "<key>k</key><string>\xFF</string>",
          "<key>d</key><dict><key>k</key><string>1</string></dict>"}) {
        EXPECT_EQ(std::nullopt, found(content)) << content;
    }
    for (const char* list : {"", "<plist><array><key>k</key><string>1</string></array></plist>"}) {
        EXPECT_EQ(std::nullopt, platform::propertyListString(list, "k")) << list;
    }
}

TEST(PropertyListTest, DeepAndRecursiveListsDoNoHarm) {
    std::string deep = "<key>k</key><string>v</string><key>a</key>";
    for (int i = 0; i < 30'000; ++i) {
        deep += "<array>";
    }
    (void)found(deep);
    (void)platform::propertyListString(
        "<!DOCTYPE p [<!ENTITY a \"&b;&b;\"><!ENTITY b \"&a;&a;\">]><plist><dict><key>k</key>"
        "<string>&a;</string></dict></plist>",
        "k");
}

}  // namespace
