// Any bytes as a property list, XML or binary: an answer is text, and the same every time.

#include "platform/property_list.h"

#include <algorithm>
#include <cstdint>

#include "fuzz/expect.h"
#include "fuzz/model/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 8192;
    const std::string list(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    for (const char* key : {"k", "CFBundleShortVersionString"}) {
        const auto found = platform::propertyListString(list, key);
        fuzz::expect(!found || model::isUTF8(*found), "what is found is text");
        fuzz::expect(!found || found->size() <= 3 * list.size(), "and no longer than the list");
        fuzz::expect(found == platform::propertyListString(list, key), "found again");
    }
    return 0;
}
