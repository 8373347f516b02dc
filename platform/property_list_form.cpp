#include "platform/property_list_form.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace platform {
namespace {

constexpr std::string_view kBinaryMagic = "bplist00";

/// An application's Info.plist has a few kilobytes.
constexpr std::size_t kLimitBytes = 256 * 1024;
constexpr std::size_t kDepth = 64;
constexpr std::size_t kTrailerBytes = 32;

/// The objects of the list, found through the trailer at its end: the widths of an offset and of a
/// reference, the number of objects, and where the table of their offsets begins.
class ObjectTable {
public:
    static std::optional<ObjectTable> read(std::string_view bytes) {
        if (!bytes.starts_with(kBinaryMagic) ||
            bytes.size() < kBinaryMagic.size() + kTrailerBytes) {
            return std::nullopt;
        }
        const std::size_t trailer = bytes.size() - kTrailerBytes;
        ObjectTable table(bytes.substr(0, trailer));
        table.offsetWidth_ = static_cast<unsigned char>(bytes[trailer + 6]);
        table.referenceWidth_ = static_cast<unsigned char>(bytes[trailer + 7]);
        const auto count = bigEndian(bytes, trailer + 8, 8);
        const auto top = bigEndian(bytes, trailer + 16, 8);
        const auto tableStart = bigEndian(bytes, trailer + 24, 8);
        const bool fits = table.offsetWidth_ >= 1 && table.offsetWidth_ <= 8 &&
                          table.referenceWidth_ >= 1 && table.referenceWidth_ <= 8 &&
                          *tableStart <= trailer &&
                          *count <= (trailer - *tableStart) / table.offsetWidth_ && *top < *count;
        if (!fits) {
            return std::nullopt;
        }
        table.count_ = static_cast<std::size_t>(*count);
        table.top_ = static_cast<std::size_t>(*top);
        table.start_ = static_cast<std::size_t>(*tableStart);
        return table;
    }

    std::size_t count() const { return count_; }
    std::size_t top() const { return top_; }

    /// Calls `refer` with each object that the container refers to; false when they do not fit.
    template <typename Refer>
    bool forEachReference(std::size_t object, Refer refer) const {
        const auto offset = bigEndian(bytes_, start_ + object * offsetWidth_, offsetWidth_);
        if (!offset || *offset >= bytes_.size()) {
            return false;
        }
        std::size_t position = static_cast<std::size_t>(*offset);
        const auto marker = static_cast<unsigned char>(bytes_[position]);
        if (!isContainer(marker)) {
            return true;
        }
        ++position;
        std::optional<std::uint64_t> length = marker & 0x0FU;
        if (*length == 0x0F) {  // A longer count follows as an integer object.
            const auto width = bigEndian(bytes_, position, 1);
            if (!width || (*width & 0xF0U) != 0x10 || (*width & 0x0FU) > 3) {
                return false;
            }
            const std::size_t countBytes = std::size_t{1} << (*width & 0x0FU);
            length = bigEndian(bytes_, position + 1, countBytes);
            position += 1 + countBytes;
        }
        const std::uint64_t room = bytes_.size() / referenceWidth_;
        if (!length || *length > room) {
            return false;
        }
        const std::uint64_t references = isDictionary(marker) ? *length * 2 : *length;
        for (std::uint64_t i = 0; i < references; ++i) {
            const auto reference = bigEndian(bytes_, position, referenceWidth_);
            if (!reference || *reference >= count_) {
                return false;
            }
            refer(static_cast<std::size_t>(*reference));
            position += referenceWidth_;
        }
        return true;
    }

    bool isContainer(std::size_t object) const {
        const auto offset = bigEndian(bytes_, start_ + object * offsetWidth_, offsetWidth_);
        return offset && *offset < bytes_.size() &&
               isContainer(static_cast<unsigned char>(bytes_[static_cast<std::size_t>(*offset)]));
    }

private:
    explicit ObjectTable(std::string_view bytes) : bytes_(bytes) {}

    static bool isContainer(unsigned char marker) { return marker >= 0xA0 && marker <= 0xDF; }
    static bool isDictionary(unsigned char marker) { return marker >= 0xD0; }

    static std::optional<std::uint64_t> bigEndian(std::string_view bytes, std::size_t position,
                                                  std::size_t width) {
        if (position > bytes.size() || bytes.size() - position < width) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (const char byte : bytes.substr(position, width)) {
            value = value << 8U | static_cast<unsigned char>(byte);
        }
        return value;
    }

    std::string_view bytes_;  ///< Without the trailer.
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::size_t count_ = 0;
    std::size_t top_ = 0;
    std::size_t start_ = 0;
};

bool isTree(std::string_view bytes) {
    const auto table = ObjectTable::read(bytes);
    if (!table) {
        return false;
    }
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> parents(table->count(), kNone);
    parents[table->top()] = table->top();
    std::size_t references = 0;
    bool isTreeSoFar = true;
    for (std::size_t object = 0; isTreeSoFar && object < table->count(); ++object) {
        const bool fits = table->forEachReference(object, [&](std::size_t reference) {
            ++references;
            if (table->isContainer(reference)) {
                isTreeSoFar = isTreeSoFar && parents[reference] == kNone;
                parents[reference] = object;
            }
        });
        // Containers that lie over one another hold more references than there are bytes.
        isTreeSoFar = isTreeSoFar && fits && references <= bytes.size();
    }
    for (std::size_t object = 0; isTreeSoFar && object < table->count(); ++object) {
        std::size_t depth = 0;
        for (std::size_t o = object; o != table->top() && parents[o] != kNone; o = parents[o]) {
            if (++depth > kDepth) {
                return false;
            }
        }
    }
    return isTreeSoFar;
}

/// Where the markup that begins here ends. What a comment or a literal text holds is no markup.
std::size_t endOfMarkup(std::string_view text, std::size_t start) {
    constexpr std::pair<std::string_view, std::string_view> kSections[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (const auto& [opening, closing] : kSections) {
        if (text.substr(start).starts_with(opening)) {
            const std::size_t end = text.find(closing, start + opening.size());
            return end == std::string_view::npos ? end : end + closing.size();
        }
    }
    const std::size_t end = text.find('>', start);
    return end == std::string_view::npos ? end : end + 1;
}

/// Also false for what is no XML in UTF-8: a system may know other forms.
bool isShallowXML(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || text[first] != '<' ||
        text.find('\0') != std::string_view::npos) {
        return false;
    }
    std::size_t depth = 0;
    for (std::size_t start = first; start != std::string_view::npos;) {
        const std::size_t end = endOfMarkup(text, start);
        if (end == std::string_view::npos) {
            break;
        }
        const std::string_view tag = text.substr(start + 1, end - start - 1);
        const bool isOpened = tag.starts_with("dict") || tag.starts_with("array");
        if (isOpened && !tag.ends_with("/>") && ++depth > kDepth) {
            return false;
        }
        if ((tag.starts_with("/dict") || tag.starts_with("/array")) && depth > 0) {
            --depth;
        }
        start = text.find('<', end);
    }
    return true;
}

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with(kBinaryMagic);
}

bool isHarmlessPropertyList(std::string_view bytes) {
    if (bytes.size() > kLimitBytes) {
        return false;
    }
    return isBinaryPropertyList(bytes) ? isTree(bytes) : isShallowXML(bytes);
}

}  // namespace platform
