#include <sstream>

#include "tests/sessions/SessionSourceTest.h"

namespace {

/// Returns a text or a number, and "-" for none.
template <typename Value>
std::string shown(const std::optional<Value>& value) {
    std::ostringstream text;
    text.precision(20);
    value ? text << *value : text << '-';
    return text.str();
}

/// Limits as "minutes:percent@reset".
std::string shown(const std::vector<ORVRateLimit>& limits) {
    std::string text;
    for (const ORVRateLimit& limit : limits) {
        text += ' ' + shown(limit.minutes) + ':' + shown(limit.usedPercent) + '@' +
                shown(limit.resetsAt);
    }
    return text;
}

std::string turn(const std::string& payload) {
    return records::record("turn_context", payload);
}

std::string count(const std::string& members, const std::string& at = "t") {
    return records::record("event_msg", R"({"type":"token_count",)" + members + '}', at);
}

std::string tokens(const std::string& last, const std::string& window, const std::string& total) {
    return count(R"("info":{"last_token_usage":{"total_tokens":)" + last +
                 R"(},"total_token_usage":{"total_tokens":)" + total +
                 R"(},"model_context_window":)" + window + "}");
}

std::string limit(const std::string& minutes, const std::string& percent,
                  const std::string& reset) {
    return R"({"window_minutes":)" + minutes + R"(,"used_percent":)" + percent +
           R"(,"resets_at":)" + reset + "}";
}

std::string limits(const std::string& primary, const std::string& secondary,
                   const std::string& at = "t") {
    return count(R"("rate_limits":{"primary":)" + primary + R"(,"secondary":)" + secondary + "}",
                 at);
}

class AgentFactsTest : public SessionSourceTest {
protected:
    std::string factsOf(ORVCodexSessionSource& from) {
        EXPECT_TRUE(from.snapshotForThreadID(kTask, nullptr));
        const ORVAgentFacts facts = *from.agentFactsForThreadID(kTask);
        return shown(facts.model) + '/' + shown(facts.effort) + ' ' + shown(facts.leftPercent) +
               '%' + shown(facts.totalTokens) + shown(facts.rateLimits);
    }

    ORVCodexSessionSource asking{disk, clock, "/codex", {.agentFacts = true}};
};

const std::string kTurn = turn(R"({"model":"m1","effort":"high"})");
const std::string kTokens = tokens("142000", "272000", "999");
const std::string kShort = limit("300", "42.5", "1767330000");
const std::string kLong = limit("10080", "7", "1767930000");

struct FactsCase {
    const char* name;
    std::string contents[2];  ///< Oldest file first.
    const char* facts;
};

const FactsCase kFactsCases[] = {
    {"nothing", {"", ""}, "-/- -%-"},
    {"everything",
     {"", kTurn + kTokens + limits(kLong, kShort)},
     "m1/high 50%999 300:42.5@1767330000 10080:7@1767930000"},
    {"each from its own newest record",
     {kTurn + kTokens, limits(kShort, "null") + compacted("w") + tokens("1", "2", "3")},
     "m1/high 0%3 300:42.5@1767330000"},
    {"a later turn tells both", {kTurn, turn(R"({"model":"m2"})")}, "m2/- -%-"},
    {"even where it tells nothing", {kTurn, turn("7")}, "-/- -%-"},
    {"of another kind", {"", turn(R"({"model":7,"effort":null})")}, "-/- -%-"},
    {"too long",
     {"", turn(R"({"effort":"","model":")" + std::string(4'097, 'm') + "\"}")},
     "-/ -%-"},
    {"not a turn", {kTurn, records::record("x", R"({"model":"turn_context"})")}, "m1/high -%-"},
    {"usage without tokens does not count", {kTokens, records::tokenCount("5")}, "-/- 50%999"},
    {"nor does one of another kind", {kTokens, tokens("\"1\"", "272000", "1")}, "-/- 50%999"},
    {"no window", {kTokens, tokens("1", "null", "7")}, "-/- -%7"},
    {"no total", {kTokens, tokens("142000", "272000", "-1")}, "-/- 50%-"},
    {"window in the payload",
     {"", count(R"("model_context_window":36000,"info":{"last_token_usage":{"total_tokens":1}})")},
     "-/- 100%-"},
    {"halves up", {"", tokens("13000", "212000", "1")}, "-/- 100%1"},
    {"less than half", {"", tokens("13001", "212000", "1")}, "-/- 99%1"},
    {"below the beginning", {"", tokens("0", "12001", "1")}, "-/- 100%1"},
    {"a window of the beginning", {"", tokens("0", "12000", "1")}, "-/- 0%1"},
    {"more than the window", {"", tokens("9223372036854775808", "272000", "1")}, "-/- 0%1"},
    {"the largest",
     {"", tokens("0", "9223372036854775807", "9223372036854775808")},
     "-/- 100%9223372036854775807"},
    {"no limit is an object",
     {limits(kShort, "[]"), limits("null", "\"\"")},
     "-/- -%- 300:42.5@1767330000"},
    {"an object without members", {limits(kShort, kLong), limits("{}", "null")}, "-/- -%- -:-@-"},
    {"without a length last",
     {"", limits(limit("-5", "true", "1e3"), kLong)},
     "-/- -%- 10080:7@1767930000 -:-@1000"},
    {"equal lengths",
     {"", limits(limit("60", "-1", "0.5"), limit("60", "2e0", "\"1\""))},
     "-/- -%- 60:-1@- 60:2@-"},
    {"beyond every number", {"", limits(limit("60", "1e999", "null"), "null")}, "-/- -%- 60:-@-"},
    {"not a token count",
     {"", records::record("token_count", R"({"rate_limits":{"primary":{}}})")},
     "-/- -%-"},
    {"half a line", {"", kTurn.substr(0, kTurn.size() - 1)}, "-/- -%-"},
};

TEST_F(AgentFactsTest, Records) {
    for (const FactsCase& c : kFactsCases) {
        for (const int file : {0, 1}) {
            disk.remove(fileOf(kTask, file == 0 ? "a" : "b"));
            disk.write(fileOf(kTask, file == 0 ? "a" : "b"), c.contents[file], 1'000 + file);
        }
        EXPECT_EQ(c.facts, factsOf(asking)) << c.name;
    }
}

TEST_F(AgentFactsTest, HoweverAFileIsReadItTellsTheSame) {
    std::string all;
    for (const FactsCase& c : kFactsCases) {
        all += c.contents[0] + c.contents[1] + '\n' + message("turn_context") + compacted("w");
    }
    all += kTurn + kTokens + message("turn_context token_count");
    const std::string path = fileOf(kTask);
    disk.write(path, all);
    const std::string whole = factsOf(asking);
    EXPECT_TRUE(whole.starts_with("m1/high 50%999 60:")) << whole;
    const std::string figures = title();
    for (const std::size_t step : {1'000U, 1'777U, 20'000U}) {
        disk.replace(path, "");
        for (std::size_t end = step; end < all.size() + step; end += step) {
            disk.write(path, all.substr(0, end));
            (void)factsOf(asking);
        }
        EXPECT_EQ(whole, factsOf(asking)) << step;
        EXPECT_EQ(figures, app::statusTitle(*asking.snapshotForThreadID(kTask, nullptr)).text());
    }
    EXPECT_EQ(nullptr, source.agentFactsForThreadID(kTask)) << "where nobody asks";
    asking.forgetFiles();
    EXPECT_EQ(nullptr, asking.agentFactsForThreadID(kTask));
}

class AccountLimitsTest : public SessionSourceTest {
protected:
    std::int64_t now() const { return std::chrono::system_clock::to_time_t(clock.time); }

    void add(const std::string& content, std::int64_t secondsAgo = 0) {
        const std::string path = fileOf(taskOf(files.size()));
        disk.write(path, content, now() - secondsAgo);
        files.push_back({path, {now() - secondsAgo, 0}, 0, content.size()});
    }

    std::optional<ORVAccountLimits> limitsOfFiles() {
        std::vector<const ORVWalkedFile*> pointers;
        for (const ORVWalkedFile& file : files) {
            pointers.push_back(&file);
        }
        return source.accountLimits(std::move(pointers), &unreadable);
    }

    /// Returns the limits of the files that were added, and forgets those.
    std::string answer() {
        unreadable.clear();
        const auto found = limitsOfFiles();
        files.clear();
        return found ? found->at + shown(found->rateLimits) : "none";
    }

    std::vector<ORVWalkedFile> files;
    std::vector<ORVUnreadable> unreadable;
};

const std::string kHour = limit("60", "1", "2");
const std::string kNone = limits("null", "null");

TEST_F(AccountLimitsTest, TheNewestTimeStampOfAFileThatIsNotTooOldCounts) {
    constexpr const char* kDay = "2026-01-02T03:04:05";
    const auto at = [&](const std::string& rest) { return limits(kHour, "null", kDay + rest); };
    EXPECT_EQ("none", answer()) << "no files";
    add(kNone);
    add("");
    EXPECT_EQ("none", answer());
    add(at("Z") + kNone, 5);
    EXPECT_EQ("2026-01-02T03:04:05Z 60:1@2", answer());
    add(at(".5Z"), 1);
    add(at(".05Z"), 2);
    add(at(".499999999Z"), 3);
    add(at(".51Z") + at("Z"), 4);
    EXPECT_EQ("2026-01-02T03:04:05.5Z 60:1@2", answer()) << "each file's last";
    add(at("+00:00"), 1);
    add(at("-00:01"), 2);
    EXPECT_EQ("2026-01-02T03:04:05-00:01 60:1@2", answer());
    add(at("Z"), 1);
    add(at(".000Z"), 2);
    EXPECT_EQ("2026-01-02T03:04:05Z 60:1@2", answer()) << "of equal ones the newer file's";
    add(limits(kHour, "{}", "never"), 3'600);
    EXPECT_EQ("never 60:1@2 -:-@-", answer()) << "just not too old";
    add(limits(kHour, "{}"), 3'601);
    EXPECT_EQ("none", answer());
    add(limits(kHour, limit("10080", "1", "2")), 3'601);
    EXPECT_EQ("t 60:1@2 10080:1@2", answer()) << "the longest window decides";
    add(limits("{}", "null"), 9'000'000'000);
    EXPECT_EQ("t -:-@-", answer()) << "a window without a length has no age";
    add(limits(kHour, "null", ""), -100);
    EXPECT_EQ(" 60:1@2", answer()) << "a date in the future";
    add(limits(limit("9223372036854775807", "1", "2"), "null"), now() + (std::int64_t{1} << 62U));
    EXPECT_EQ("t 9223372036854775807:1@2", answer());
}

TEST_F(AccountLimitsTest, TheFilesDateStandsInForATimeStamp) {
    add(limits(kHour, "null", "2001-01-01T00:00:00Z"), 1);
    add(limits("{}", "null", "0000-99-99T99:99:99Z"), 2);
    EXPECT_EQ("0000-99-99T99:99:99Z -:-@-", answer());
    add(limits("{}", "null", "2001-01-01T00:00:00Z"), 1);
    const auto found = limitsOfFiles();
    EXPECT_EQ((ORVFileDate{978'307'200, 0}), found->date);
}

TEST_F(AccountLimitsTest, OnlyTwentyFilesAreLookedAt) {
    add(limits(kHour, "null"), 1);
    for (int i = 0; i < 20; ++i) {
        add(kNone);
    }
    EXPECT_EQ("none", answer()) << "the newest ones";
    add(limits(kHour, "null"));
    add("");
    disk.remove(files.back().path);
    files.back().size = 1;
    EXPECT_EQ("t 60:1@2", answer());
    EXPECT_TRUE(unreadable.empty()) << "one that is gone";
    add(limits(kHour, "null"));
    disk.failingCall = disk.calls + 1;
    const std::string path = files.back().path;
    EXPECT_EQ("none", answer());
    ASSERT_EQ(1U, unreadable.size());
    EXPECT_EQ(path, unreadable[0].path);
    EXPECT_EQ(EIO, unreadable[0].error.code);
}

TEST_F(AccountLimitsTest, AFileIsReadFromItsEnd) {
    const std::string record = limits(kHour, "null");
    const std::string line = message(std::string(9'000, 'x'));
    std::string after;
    while (after.size() < 5'000'000) {
        after += after.size() % 3 == 0 ? kNone : line;
    }
    for (const std::size_t step : {262'144U, 2'097'152U}) {
        for (std::size_t offset = 0; offset <= record.size() + 1; offset += step / 200'000) {
            const std::string rest = "\n" + after.substr(after.size() - step + offset);
            add(limits("{}", "null") + "\n" + line + record + rest);
            ASSERT_EQ("t 60:1@2", answer()) << step << " - " << offset;
        }
    }
    add(record + after);
    EXPECT_EQ("t 60:1@2", answer());
    add(record + std::string(1'000'000, 'x'));
    EXPECT_EQ("t 60:1@2", answer()) << "before a long line";
    add(after + record + kHour);
    const int calls = disk.calls;
    EXPECT_EQ("t 60:1@2", answer());
    EXPECT_EQ(calls + 2, disk.calls) << "one look is enough";
}

}  // namespace
