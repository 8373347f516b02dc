#include "app/ORVTemplate.h"

#include <gtest/gtest.h>

#include <limits>

#include "app/age.h"

namespace {

ORVSessionSnapshot snapshotWith(std::int64_t tokens, ORVContextStatus contextStatus,
                                ORVCompactionStatus compactionStatus) {
    return {"a\tb",
            "id",
            "/f.jsonl",
            3,
            ORVContextUsage(tokens, 200),
            contextStatus,
            compactionStatus,
            ORVFileDate{1'000, 0}};
}

std::string filled(const std::string& text, const ORVSessionSnapshot* snapshot) {
    setenv("TZ", "UTC", 1);
    ORVTemplateValues values;
    values.status = "C3 · 47%";
    values.snapshot = snapshot;
    values.folder = snapshot ? std::optional<std::string>("/w\x1b") : std::nullopt;
    values.now = ORVClock::TimePoint(std::chrono::seconds(1'090));
    values.timeFormat = {"zh_CN", "%H:%M:%S"};
    const auto parsed = ORVTemplate::parse(text);
    return parsed ? parsed->filled(values) : "refused";
}

TEST(TemplateTest, NamesStandForValues) {
    const std::string all =
        "{status}|{title}|{percent}|{compactions}|{used}|{window}|{left}|{bar}|{updated}|{age}|{id}"
        "|"
        "{folder}|{file}";
    const auto known = snapshotWith(93, ORVContextStatusAvailable, ORVCompactionStatusValid);
    EXPECT_EQ("C3 · 47%|a b|46|3|93|200|107|█████░░░░░|00:16:40|1m|id|/w |/f.jsonl",
              filled(all, &known));
    const auto over = snapshotWith(500, ORVContextStatusAvailable, ORVCompactionStatusIncompatible);
    EXPECT_EQ("250 -- 0 ██████████", filled("{percent} {compactions} {left} {bar}", &over));
    const auto waiting = snapshotWith(93, ORVContextStatusWaiting, ORVCompactionStatusValid);
    EXPECT_EQ("-- -- -- -- -- 3",
              filled("{percent} {used} {window} {left} {bar} {compactions}", &waiting));
    EXPECT_EQ("C3 · 47%|--|--|--|--|--|--|--|--|--|--|--|--", filled(all, nullptr));
}

TEST(TemplateTest, BracesAndMistakes) {
    EXPECT_EQ("{}{status}\t\xFF", filled("{{}}{{status}}\t\xFF", nullptr));
    EXPECT_EQ("", filled("", nullptr));
    for (const char* text :
         {"{", "}", "{}", "{nope}", "{status", "status}", "{{status}", "{ id}", "{id}}"}) {
        EXPECT_EQ("refused", filled(text, nullptr)) << text;
    }
    EXPECT_TRUE(ORVTemplate::parse("x{folder}")->wants("folder"));
    EXPECT_FALSE(ORVTemplate::parse("{{folder}}")->wants("folder"));
}

TEST(AgeTest, InTheLargestUnit) {
    const ORVClock::TimePoint now(std::chrono::seconds(1'000'000));
    const std::pair<std::int64_t, const char*> kCases[] = {
        {1'000'000, "0s"}, {999'941, "59s"},
        {999'940, "1m"},   {996'401, "59m"},
        {996'400, "1h"},   {913'601, "23h"},
        {913'600, "1d"},   {0, "11d"},
        {2'000'000, "0s"}, {std::numeric_limits<std::int64_t>::max(), "0s"}};
    for (const auto& [seconds, age] : kCases) {
        EXPECT_EQ(age, app::ageText({seconds, 0}, now)) << seconds;
    }
    EXPECT_LT(std::chrono::hours(24), app::age({std::numeric_limits<std::int64_t>::min(), 0}, now));
}

}  // namespace
