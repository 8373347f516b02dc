#include "app/ORVTemplate.h"

#include <gtest/gtest.h>

#include <limits>

#include "app/figures.h"

namespace {

ORVSessionSnapshot snapshotWith(std::int64_t tokens, ORVContextStatus contextStatus,
                                ORVCompactionStatus compactionStatus) {
    return ORVSessionSnapshot("a\tb", "id", "/f.jsonl", 3, ORVContextUsage(tokens, 200),
                              contextStatus, compactionStatus, ORVFileDate{1'000, 0});
}

std::string filled(const std::string& text, const ORVSessionSnapshot* snapshot) {
    setenv("TZ", "UTC", 1);
    ORVTaskView view;
    if (snapshot) {
        view.snapshot = *snapshot;
        view.changedAt = snapshot->lastUpdated();
        view.folder = "/w\x1b";
        view.shortID = "b7";
        view.agent = std::make_shared<ORVAgentFacts>(ORVAgentFacts{
            "gpt", std::nullopt, 55, 1'234, {{300, 42.5, 2'000}, {10'080, 7, 1'000}}});
    }
    ORVTemplateValues values;
    values.status = "C3 · 47%";
    values.view = &view;
    values.now = ORVClock::TimePoint(std::chrono::seconds(1'090));
    values.timeFormat = {"zh_CN", "%H:%M:%S"};
    std::string mistake;
    const auto parsed = ORVTemplate::parse(text, &mistake);
    return parsed ? parsed->filled(values) : "refused: " + mistake;
}

TEST(TemplateTest, NamesStandForValues) {
    const std::string all =
        "{status}|{title}|{percent}|{compactions}|{used}|{window}|{left}|{bar}|{updated}|{age}|{id}"
        "|"
        "{folder}|{file}|{shortid}|{model}|{effort}|{agentleft}|{total}|{limits}";
    const auto known = snapshotWith(93, ORVContextStatusAvailable, ORVCompactionStatusValid);
    EXPECT_EQ(
        "C3 · 47%|a b|46|3|93|200|107|█████░░░░░|00:16:40|1m|id|/w |/f.jsonl|b7|gpt|--|55|1234|5h "
        "42% · 7d 0%",
        filled(all, &known));
    const auto over = snapshotWith(500, ORVContextStatusAvailable, ORVCompactionStatusIncompatible);
    EXPECT_EQ("250 -- 0 ██████████", filled("{percent} {compactions} {left} {bar}", &over));
    const auto waiting = snapshotWith(93, ORVContextStatusWaiting, ORVCompactionStatusValid);
    EXPECT_EQ("-- -- -- -- -- 3",
              filled("{percent} {used} {window} {left} {bar} {compactions}", &waiting));
    EXPECT_EQ("C3 · 47%|--|--|--|--|--|--|--|--|--|--|--|--|--|--|--|--|--|--",
              filled(all, nullptr));
}

TEST(TemplateTest, BracesAndMistakes) {
    EXPECT_EQ("{}{status}\t\uFFFD", filled("{{}}{{status}}\t\xFF", nullptr));
    EXPECT_EQ("", filled("", nullptr));
    const std::pair<const char*, const char*> kMistakes[] = {
        {"{", "{ without }"},
        {"}", "} without {"},
        {"{}", "the name {}"},
        {"{nope}", "the name {nope}"},
        {"{status", "{ without }"},
        {"status}", "} without {"},
        {"{{status}", "} without {"},
        {"{ id}", "the name { id}"},
        {"{title:0}", "the width in {title:0}"},
        {"{title:x}", "the width in {title:x}"},
        {"{title:-1}", "the width in {title:-1}"},
        {"{title:}", "the width in {title:}"},
        {"{title:999999999999}", "the width in {title:999999999999}"}};
    for (const auto& [text, mistake] : kMistakes) {
        EXPECT_EQ(std::string("refused: ") + mistake, filled(text, nullptr)) << text;
    }
    const auto wants = [](const char* text) {
        std::string mistake;
        return ORVTemplate::parse(text, &mistake)->wants();
    };
    EXPECT_TRUE(wants("x{folder}").folder);
    EXPECT_FALSE(wants("{{folder}}{title}").folder);
    EXPECT_TRUE(wants("{limits}").agent);
    EXPECT_TRUE(wants("{shortid}").shortID);
}

TEST(TemplateTest, AWidthCutsTextsAndLeavesNoHalfFigure) {
    const auto task = snapshotWith(93, ORVContextStatusAvailable, ORVCompactionStatusValid);
    EXPECT_EQ("a b|a…|C3 · 4…|--|93|…",
              filled("{title:3}|{title:2}|{status:7}|{effort:2}|{used:2}|{used:1}", &task));
}

TEST(RateLimitsTest, WindowsAndResets) {
    const ORVClock::TimePoint now(std::chrono::seconds(86'400));
    const std::pair<std::optional<std::int64_t>, const char*> kWindows[] = {
        {300, "5h"}, {299, "299m"}, {1'440, "1d"}, {10'080, "7d"}, {0, "0m"}, {{}, "--"}};
    for (const auto& [minutes, text] : kWindows) {
        EXPECT_EQ(text, app::windowText({minutes, {}, {}}));
    }
    EXPECT_EQ(0, app::usedPercent({300, 42.5, 86'400}, now)) << "its reset has passed";
    EXPECT_EQ(42.5, app::usedPercent({300, 42.5, 86'401}, now));
    EXPECT_EQ("00:01", app::resetText({300, 1, 86'460}, now));
    EXPECT_EQ("01-04 00:00", app::resetText({300, 1, 3 * 86'400}, now));
    for (const std::int64_t odd : {std::numeric_limits<std::int64_t>::min(), std::int64_t{0}}) {
        EXPECT_EQ("", app::resetText({300, 1, odd}, now));
    }
    (void)app::resetText({300, 1, std::numeric_limits<std::int64_t>::max()}, now);
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
        EXPECT_EQ(age, app::ageText(app::age({seconds, 0}, now))) << seconds;
    }
    EXPECT_LT(std::chrono::hours(24), app::age({std::numeric_limits<std::int64_t>::min(), 0}, now));
}

}  // namespace
