#include "platform/property_list.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::string bytes(std::initializer_list<int> values) {
    std::string result;
    for (const int value : values) {
        result += static_cast<char>(value);
    }
    return result;
}

/// A binary list of these objects, one byte for each offset and reference.
std::string binaryList(const std::vector<std::string>& objects, int top = 0) {
    std::string list = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += static_cast<char>(list.size());
        list += object;
    }
    const int table = static_cast<int>(list.size());
    list += offsets;
    list += bytes({0, 0, 0, 0, 0, 0, 1, 1});
    list += bytes({0, 0, 0, 0, 0, 0, 0, static_cast<int>(objects.size())});
    list += bytes({0, 0, 0, 0, 0, 0, 0, top});
    return list + bytes({0, 0, 0, 0, 0, 0, 0, table});
}

std::string string(const std::string& text) {
    return static_cast<char>(0x50 + text.size()) + text;
}

const std::string kUTF16 = bytes({0x62, 0x03, 0xB2, 0xD8 - 0xD8, 'x'});

TEST(PropertyListTest, BinaryLists) {
    const auto found = [](const std::string& list) {
        return platform::propertyListString(list, "k");
    };
    EXPECT_EQ("1.2", found(binaryList({bytes({0xD1, 1, 2}), string("k"), string("1.2")})));
    EXPECT_EQ("βx", found(binaryList({bytes({0xD1, 1, 2}), string("k"), kUTF16})));
    EXPECT_EQ("1.2", found(binaryList({bytes({0xD2, 1, 3, 2, 4}), string("k"), string("1.2"),
                                       string("n"), bytes({0xA1, 2})})))
        << "a string may be shared";
    EXPECT_EQ(std::nullopt,
              found(binaryList({bytes({0xD1, 1, 2}), string("k"), bytes({0x10, 7})})));
    EXPECT_EQ(std::nullopt, found(binaryList({bytes({0xA1, 1}), string("k")})));
    EXPECT_EQ(std::nullopt, found(binaryList({bytes({0xD1, 1, 9}), string("k")})));
}

TEST(PropertyListTest, ZeroCharacters) {
    const std::string utf16 = bytes({0x62, 0, '1', 0, 0});
    const std::string binary = binaryList({bytes({0xD1, 1, 2}), string("k"), utf16});
    EXPECT_EQ(std::string("1\0", 2), platform::propertyListString(binary, "k"));
    const std::string xml = "<plist><dict><key>k</key><string>1</string></dict></plist>";
    std::string xmlWithZero = xml;
    xmlWithZero.insert(xmlWithZero.find("1<"), 1, '\0');
    EXPECT_EQ("1", platform::propertyListString(xml, "k"));
    EXPECT_EQ(std::nullopt, platform::propertyListString(xmlWithZero, "k"));
}

TEST(PropertyListTest, ListsThatUnfoldWithoutBoundsAreRefused) {
    std::vector<std::string> doubling = {bytes({0xD1, 1, 3}), string("k"), string("v")};
    for (int i = 3; i < 40; ++i) {
        doubling.push_back(bytes({0xA2, i + 1, i + 1}));
    }
    doubling.push_back(string("end"));
    const std::string key = "k";
    EXPECT_EQ(std::nullopt, platform::propertyListString(binaryList(doubling), key));
    const std::string ring = binaryList({bytes({0xD1, 1, 0}), string("k")});
    EXPECT_EQ(std::nullopt, platform::propertyListString(ring, key));
    const auto deepXML = [](int depth) {
        std::string list = "<plist><dict><key>k</key><string>v</string><key>a</key>";
        for (int i = 0; i < depth; ++i) {
            list += "<array>";
        }
        for (int i = 0; i < depth; ++i) {
            list += "</array>";
        }
        return list + "</dict></plist>";
    };
    EXPECT_EQ("v", platform::propertyListString(deepXML(60), key));
    EXPECT_EQ(std::nullopt, platform::propertyListString(deepXML(15'000), key));
    const auto deepBinary = [](int depth) {
        std::vector<std::string> objects = {bytes({0xD2, 1, 3, 2, 4}), string("k"), string("v"),
                                            string("a")};
        for (int i = 1; i <= depth; ++i) {
            objects.push_back(bytes({0xA1, i < depth ? i + 4 : 2}));
        }
        return binaryList(objects);
    };
    EXPECT_EQ("v", platform::propertyListString(deepBinary(50), key));
    EXPECT_EQ(std::nullopt, platform::propertyListString(deepBinary(80), key));
}

TEST(PropertyListTest, DamagedListsDoNoHarm) {
    const std::string lists[] = {
        binaryList({bytes({0xD2, 1, 3, 2, 4}), string("k"), string("1.2"), string("n"),
                    bytes({0xAF, 0x10, 1, 2})}),
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
