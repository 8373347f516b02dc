#include "fuzz/lines.h"

#include <initializer_list>

namespace fuzz {
namespace {

/// Unlike the operands of a plus sign, the pieces are made from left to right: an input means the
/// same with every compiler.
std::string joined(std::initializer_list<std::string> pieces) {
    std::string text;
    for (const std::string& piece : pieces) {
        text += piece;
    }
    return text;
}

/// The value as JSON with its key; "" where it is not to be there.
std::string member(const std::string& key, const std::string& value) {
    return value.empty() ? "" : '"' + key + "\":" + value + ',';
}

/// An object of members, each with its comma.
std::string object(std::initializer_list<std::string> members) {
    std::string text = joined(members);
    if (text.ends_with(',')) {
        text.pop_back();
    }
    return '{' + text + '}';
}

std::string number(Input& input) {
    static constexpr const char* kNumbers[] = {"0",
                                               "1",
                                               "2",
                                               "200",
                                               "1000",
                                               "272000",
                                               "258400.0",
                                               "1e3",
                                               "2.5",
                                               "-1",
                                               "-0",
                                               "0.0",
                                               "1E+2",
                                               "1e-2",
                                               "9223372036854775807",
                                               "true",
                                               "null",
                                               "\"7\"",
                                               "",
                                               "[3]",
                                               "{}",
                                               "9223372036854775808",
                                               "1e99",
                                               "1e999",
                                               "0.1e1",
                                               "1e999999999999",
                                               "123456789012345678901234567890",
                                               "9223372036854775809",
                                               "4503599627370496.5",
                                               "9007199254740993.0"};
    return input.pick(kNumbers);
}

std::string smallNumber(Input& input) {
    static constexpr const char* kNumbers[] = {"1", "2", "100", "272000"};
    return input.oneIn(4) ? number(input) : input.pick(kNumbers);
}

std::string name(Input& input) {
    static constexpr const char* kNames[] = {"\"w1\"",
                                             "\"w2\"",
                                             "\"w3\"",
                                             "\"w1\"",
                                             "\"\"",
                                             "\"\\u0077\\u0031\"",
                                             "7",
                                             "null",
                                             "",
                                             "\"current:w1\"",
                                             "\"\\ud83d\\ude80\"",
                                             "\"\\udc00\"",
                                             "\"\\u0000\""};
    return input.pick(kNames);
}

std::string tokenCount(Input& input) {
    const std::string last = object({member("input_tokens", smallNumber(input))});
    std::string info = member("last_token_usage", input.oneIn(8) ? "null" : last);
    std::string payload = "\"type\":\"token_count\",";
    const std::size_t place = input.below(8);
    if (place < 6) {
        info += member("model_context_window", smallNumber(input));
    }
    if (place > 4) {
        payload += member("model_context_window", smallNumber(input));
    }
    payload += member("info", place == 6 ? "null" : object({info}));
    return object({member("type", "\"event_msg\""), member("payload", object({payload}))});
}

std::string compacted(Input& input) {
    const std::size_t broken = input.below(16);  // Which member is not as it should be, if any.
    const auto value = [&](std::size_t place, const char* usual) {
        return place == broken ? number(input) : std::string(usual);
    };
    const std::string payload =
        object({member("message", value(0, "\"\"")), member("window_number", value(1, "1")),
                member("first_window_id", value(2, "\"w0\"")),
                member("previous_window_id", value(3, "\"w0\"")), member("window_id", name(input)),
                member("replacement_history", value(4, "[{\"compact\":1}]"))});
    return object({member("ordinal", value(5, "35")), member("type", "\"compacted\""),
                   member("payload", broken == 6 ? "null" : payload)});
}

std::string contextCompacted(Input& input) {
    return object({member("timestamp", name(input)), member("type", "\"event_msg\""),
                   member("payload", R"({"type":"context_compacted"})")});
}

/// Something that speaks of compactions or token counts without being one that is known.
std::string talk(Input& input) {
    static constexpr const char* kTypes[] = {"\"event_msg\"",
                                             "\"response_item\"",
                                             "\"compacted\"",
                                             "\"Compacting\"",
                                             "\"\"",
                                             "\"COMPACT\"",
                                             "",
                                             "7",
                                             "\"event_\\u006dsg\"",
                                             "\"token_count\""};
    static constexpr const char* kEvents[] = {"\"context_compacted\"",
                                              "\"token_count\"",
                                              "\"compaction_started\"",
                                              "\"AutoCompact\"",
                                              "",
                                              "7",
                                              "\"message\"",
                                              "\"token_\\u0063ount\"",
                                              "\"context_comp\\u0061cted\""};
    const std::string payload = object({member("type", input.pick(kEvents))});
    return object({member("type", input.pick(kTypes)),
                   member("payload", input.oneIn(4) ? number(input) : payload),
                   member("text", input.oneIn(2) ? "\"compact token_count\"" : "\"\"")});
}

std::string record(Input& input) {
    switch (input.below(4)) {
        case 0:
            return tokenCount(input);
        case 1:
            return compacted(input);
        case 2:
            return contextCompacted(input);
        default:
            return talk(input);
    }
}

/// The line with some bytes of the input's in the place of one of its own.
std::string mangled(std::string line, Input& input) {
    const std::size_t position = input.byte() * line.size() / 256;
    return line.replace(position, 1, input.text(input.below(4)));
}

std::string field(Input& input, const char* name, const std::string& value) {
    return input.oneIn(16) ? "" : std::string(" ") + name + '=' + value;
}

std::string flag(Input& input) {
    static constexpr const char* kFlags[] = {"true",  "true",  "true", "true",   "false",
                                             "false", "False", "",     "true\r", "true\xC2\xA0x"};
    return input.pick(kFlags);
}

std::string appearance(Input& input) {
    static constexpr const char* kAppearances[] = {"primary", "primary", "primary",
                                                   "primary", "hud",     ""};
    return input.pick(kAppearances);
}

/// The fields of a window's two identifiers, mostly the same in all lines about it.
std::string window(Input& input, const char* webContentsField, const char* windowField) {
    static constexpr const char* kWebContents[] = {"1", "1", "1", "1", "1", "2", "2", ""};
    static constexpr const char* kWindows[] = {"1", "2", ""};
    const std::string webContents = input.pick(kWebContents);
    const std::string windowID = input.oneIn(8) ? input.pick(kWindows) : "1";
    return joined(
        {field(input, webContentsField, webContents), field(input, windowField, windowID)});
}

std::string threadID(Input& input) {
    return input.oneIn(8) ? "01a20e72-983b-7e83-81c7-e87b7b63d18" : input.pick(kThreadIDs);
}

std::string renderFields(Input& input) {
    return joined({window(input, "rendererWebContentsId", "rendererWindowId"),
                   field(input, "rendererWindowAppearance", appearance(input)),
                   field(input, "rendererWindowFocused", flag(input)),
                   field(input, "rendererWindowVisible", flag(input))});
}

std::string ownerSyncFields(Input& input) {
    static constexpr const char* kRoutes[] = {"/", "/settings", "/?a", "/local/x", ""};
    static constexpr const char* kEnds[] = {"", "?a=1#b", "#b?", "/x"};
    const std::string route = input.oneIn(3)
                                  ? input.pick(kRoutes)
                                  : joined({"/local/", threadID(input), input.pick(kEnds)});
    return joined({" [electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync ",
                   window(input, "originWebContentsId", "windowId"),
                   field(input, "ownerRoutePath", route)});
}

std::string activityFields(Input& input) {
    static constexpr const char* kConversations[] = {"client-new-thread:1", "x", ""};
    const std::string conversation = input.oneIn(3) ? input.pick(kConversations) : threadID(input);
    return joined({" thread_stream_view_activity_changed", field(input, "active", flag(input)),
                   field(input, "conversationId", conversation)});
}

}  // namespace

std::string sessionLine(Input& input) {
    switch (input.below(8)) {
        case 0:
            return input.text(input.below(64));
        case 1:
            return mangled(record(input), input);
        case 2:
            return "";
        default:
            return record(input);
    }
}

std::string logLine(Input& input) {
    static constexpr const char* kTimes[] = {"1", "2", "2", "3", "3", "10", "", "\xC3\xA4"};
    const std::string time = input.pick(kTimes);
    switch (input.below(8)) {
        case 0:
        case 1:
            return time + ownerSyncFields(input);
        case 2:
        case 3:
            return time + renderFields(input);
        case 4:
            return joined({time, activityFields(input), renderFields(input)});
        case 5:
            return joined({time, activityFields(input),
                           field(input, "rendererWindowAppearance", "primary"),
                           field(input, "rendererWindowFocused", "true")});
        case 6:
            return mangled(joined({time, activityFields(input), renderFields(input)}), input);
        default:
            return mangled(time + ownerSyncFields(input), input);
    }
}

std::string indexLine(Input& input) {
    static constexpr const char* kTitles[] = {
        "\"a\"", "\"b\"", "\"\"", "7", "", "\"\xE2\x80\xA8\"", "\"\\u2028\"", "\"\xFF\""};
    static constexpr const char* kEnds[] = {"\n", "\n", "\n", "\r", "\r\n", "\xC2\x85", ",", ""};
    const std::string id =
        input.oneIn(8) ? "\"notes.jsonl\"" : '"' + std::string(input.pick(kThreadIDs)) + '"';
    const std::string entry = object({member("id", id), member("thread_name", input.pick(kTitles)),
                                      member("title", input.pick(kTitles))});
    return entry + input.pick(kEnds);
}

PropertyList propertyList(Input& input) {
    const std::string start = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>";
    const std::string key = "CFBundleShortVersionString</key>";
    switch (input.below(5)) {
        case 0:
            return {start + key + "<string>26.1</string></dict></plist>", "26.1"};
        case 1:
            return {start + "A</key><true/><key>" + key + "<string>3</string></dict></plist>", "3"};
        case 2:
            return {start + key + "<integer>26</integer></dict></plist>", ""};
        case 3:
            return {start + "A</key><string>26</string></dict></plist>", ""};
        default:
            return {"", ""};
    }
}

}  // namespace fuzz
