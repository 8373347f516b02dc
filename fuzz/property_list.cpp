// Takes any bytes for a property list, XML or binary. An answer must be text, and the same every
// time.

#include "fuzz/fuzz.h"
#include "platform/program.h"
#include "text/unicode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string list = fuzz::text(data, size);
    for (const char* key : {"k", "CFBundleShortVersionString"}) {
        const auto found = platform::propertyListString(list, key);
        fuzz::expect("what is found is text", !found || text::isValidUTF8(*found));
        fuzz::expect("and no longer than the list", !found || found->size() <= 3 * list.size());
        fuzz::expect("found again", found == platform::propertyListString(list, key));
    }
    return 0;
}
