#include "sessions/ORVTaskList.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <sstream>

#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

namespace {

using namespace std::chrono_literals;
using Helpers = ORVTaskList::Wanted::Helpers;
using records::helperMeta;
using records::sessionMeta;

std::optional<ORVListedTask> headOfFamily(ORVTaskList& list, const ORVTask& task) {
    return list.headOfFamily(task.threadID, task.newestFile().path);
}

class TaskListTest : public testing::Test {
protected:
    TaskListTest() { disk.makeFolder("/s"); }

    /// Returns the identifier of the task with this one-letter name, a hexadecimal digit.
    static std::string idOf(const std::string& name) {
        return "0000000" + name + "-983b-7e83-81c7-e87b7b63d18" + name;
    }
    static std::string pathOf(const std::string& name) { return "/s/a-" + idOf(name) + ".jsonl"; }

    /// Makes a task of each word: its name, "<" and its parent's name for a helper, "?" for a first
    /// line that is not complete, "!" for a file that may not be read, then ":" and its date.
    void makeTasks(const std::string& words) {
        std::istringstream stream(words);
        for (std::string word; stream >> word;) {
            const std::string path = pathOf(word.substr(0, 1));
            const std::string parent = word[2] == ':' ? "" : idOf(word.substr(2, 1));
            disk.write(path,
                       word[1] == '<'   ? helperMeta(parent)
                       : word[1] == '?' ? "{"
                                        : sessionMeta(""),
                       std::stoll(word.substr(word.find(':') + 1)));
            if (word[1] == '!') {
                disk.locked.insert(path);
            }
        }
    }

    void refresh() {
        clock.time += 2s;
        EXPECT_TRUE(list.refresh(nullptr));
    }

    static std::string nameOf(const ORVTask& task) { return task.threadID.substr(7, 1); }

    static std::string described(const std::vector<ORVListedTask>& tasks) {
        std::string text;
        bool isAmongHelpers = false;
        for (const ORVListedTask& task : tasks) {
            text += task.followsHead && !isAmongHelpers   ? "("
                    : !task.followsHead && isAmongHelpers ? ") "
                    : text.empty()                        ? ""
                                                          : " ";
            isAmongHelpers = task.followsHead;
            text += nameOf(task.task) + '@' + std::to_string(task.changedAt.seconds) +
                    (task.helpers > 0 ? '+' + std::to_string(task.helpers) : "");
        }
        return text + (isAmongHelpers ? ")" : "");
    }

    static std::string described(const std::optional<ORVListedTask>& task) {
        return task ? described(std::vector{*task}) : "";
    }

    std::string heads(Helpers helpers = Helpers::none, std::size_t limit = 0) {
        return described(list.heads({.limit = limit, .helpers = helpers}));
    }

    std::string matching(const std::string& part) {
        std::string names;
        for (const ORVTask& task : list.matching(part)) {
            names += nameOf(task);
        }
        return names;
    }

    MemoryFiles disk;
    ManualClock clock;
    ORVTaskList list{disk, clock, "/s"};
};

TEST_F(TaskListTest, AFamilyIsShownByItsHead) {
    const std::pair<const char*, std::string> kCases[] = {
        {"", ""},
        {"1:10 2:30 3:20", "2@30 3@20 1@10"},
        {"2:10 1:10", "1@10 2@10"},  // Equal dates by path.
        {"1:10 2<1:30 3:20", "1@30+1(2@30) 3@20"},
        {"1:10 2<1:20 3<2:40 4<1:30", "1@40+3(3@40 4@30 2@20)"},
        {"1:90 2<1:20", "1@90+1(2@20)"},
        {"1:10 2<1:60 3:50 4<3:40 5<1:30", "1@60+2(2@60 5@30) 3@50+1(4@40)"},
        {"2<1:20 3<2:30", "2@30+1(3@30)"},  // The parent has no file.
        {"2<1:20 3<1:30", "3@30 2@20"},
        {"2<:20", "2@20"},
        {"1<1:10 2<1:20", "1@20+1(2@20)"},
        {"3<1:30 1<2:10 2<3:20", "1@30+2(3@30 2@20)"},
        {"4<3:40 3<1:30 1<2:10 2<3:20", "1@40+3(4@40 3@30 2@20)"},
        {"1:10 2?:20", "1@10"},
        {"1?:10 2?:20", "2@20 1@10"},  // Nothing is complete.
        {"1?:10 2<1:20", "2@20"},
        {"1:10 2!:20", "1@10"},
        {"1!:10 2!:20 3?:30", "3@30 2@20 1@10"},
    };
    for (const auto& [tasks, expected] : kCases) {
        SCOPED_TRACE(tasks);
        disk.remove("/s");
        disk.makeFolder("/s");
        disk.locked.clear();
        makeTasks(tasks);
        refresh();
        EXPECT_EQ(expected, heads(Helpers::listed));
        const std::string first = expected.substr(0, expected.find('+'));
        EXPECT_EQ(first.substr(0, first.find(' ')), described(list.newestHead()));
        for (const ORVTask& task : list.matching("")) {
            const auto head = headOfFamily(list, task);
            EXPECT_EQ(expected.npos == expected.find(nameOf(task)), !head);
            EXPECT_TRUE(!head || expected.find(described(head)) != expected.npos);
        }
    }
    ASSERT_EQ(2U, list.unreadable().size());
    EXPECT_EQ(pathOf("1"), list.unreadable().front().path);
    EXPECT_EQ(EACCES, list.unreadable().front().error.code);
}

TEST_F(TaskListTest, LimitsAndDatesAreAboutFamilies) {
    makeTasks("1:10 2<1:60 3<1:50 4:40 5:30 6:20");
    refresh();
    EXPECT_EQ("1@60 4@40", heads(Helpers::none, 2));
    EXPECT_EQ(heads(), heads(Helpers::none, 999'999'999'999)) << "no memory is taken for it";
    EXPECT_EQ("1@60+2 4@40", heads(Helpers::counted, 2));
    const std::pair<Helpers, const char*> kCases[] = {{Helpers::none, "1@60 4@40"},
                                                      {Helpers::counted, "1@60+2 4@40"},
                                                      {Helpers::listed, "1@60+2(2@60 3@50) 4@40"}};
    for (const auto& [helpers, expected] : kCases) {
        EXPECT_EQ(expected, described(list.heads({.changedSince = {{40, 0}}, .helpers = helpers})));
    }
    makeTasks("6:90");
    refresh();
    EXPECT_EQ("6@90", heads(Helpers::counted, 1)) << "helpers of a head that is not among them";
}

TEST_F(TaskListTest, AnAnswerOpensNoMoreFirstLinesThanItNeeds) {
    constexpr int kFamilies = 1'000;
    const auto path = [](int number) {
        const std::string digits = std::to_string(100'000 + number);
        return "/s/" + digits + "01-983b-7e83-81c7-e87b7b63d181.jsonl";
    };
    for (int i = 0; i < kFamilies; ++i) {
        disk.write(path(2 * i), sessionMeta(""));
        disk.write(path(2 * i + 1), helperMeta(path(2 * i).substr(3, 36)));
    }
    refresh();
    EXPECT_TRUE(list.newestHead());
    EXPECT_EQ(2, disk.opened);
    EXPECT_EQ(20U, list.heads({.limit = 20}).size());
    EXPECT_EQ(40, disk.opened);
    EXPECT_EQ(std::size_t{kFamilies}, list.heads({.helpers = Helpers::counted}).size());
    EXPECT_EQ(2 * kFamilies, disk.opened);
    EXPECT_EQ(2U * kFamilies, list.matching("-7E83-81").size());
    const auto revision = list.revision();
    refresh();
    EXPECT_EQ(revision, list.revision());
    disk.append(path(7), "more");
    for (int i = 0; i < 5; ++i) {
        refresh();
    }
    EXPECT_NE(revision, list.revision());
    EXPECT_EQ(path(6), list.newestHead()->task.newestFile().path);
    list.follow(list.newestHead()->task);
    clock.time += 2min;
    refresh();
    disk.append(path(7), "more");
    const auto before = list.revision();
    refresh();
    EXPECT_NE(before, list.revision()) << "a helper of the followed task";
    EXPECT_EQ(2 * kFamilies, disk.opened) << "each line is read once";
}

TEST_F(TaskListTest, AFirstLineThatIsNotCompleteIsLookedAtAgain) {
    /// Returns the newest head once these tasks were written, and "new" for one that is.
    const auto after = [&](const char* tasks) {
        makeTasks(tasks);
        refresh();
        const auto head = list.newestHead();
        return described(head) + (head->isNew ? " new" : "");
    };
    EXPECT_EQ("1@10", after("1:10 2?:20"));
    const int opened = disk.opened;
    EXPECT_EQ("1@10", after(""));
    EXPECT_EQ(opened, disk.opened);
    EXPECT_EQ("1@20", after("2<1:20")) << "of the same date";
    disk.write(pathOf("4"), "{");
    EXPECT_EQ("1@20", after("3?:30"));
    disk.write(pathOf("4"), "\n");
    EXPECT_EQ('4', after("")[0]) << "of the same size";
    disk.remove(pathOf("4"));
    disk.write("/s/b-" + idOf("1") + ".jsonl", sessionMeta(""), 30);
    EXPECT_EQ("1@30", after("")) << "a further file of a known task";
    EXPECT_EQ("1@30", after("3?:40 4!:50"));
    EXPECT_EQ(1U, list.unreadable().size());
    disk.locked.clear();
    EXPECT_EQ("3@60 new", after("3:60"));
    EXPECT_EQ("3@60 4@50 1@30", heads());
    EXPECT_EQ(0U, list.unreadable().size());
    EXPECT_EQ("3@60", after(""));
    disk.remove(pathOf("4"));
    EXPECT_EQ("1@70", after("4<2:70")) << "another file";
    disk.remove("/s");
    EXPECT_FALSE(list.refresh(nullptr));
    EXPECT_EQ("", heads());
    disk.givesFileNumbers = false;
    EXPECT_EQ("2@20", after("1:10 2:20"));
    disk.remove(pathOf("2"));
    refresh();
    EXPECT_EQ("1@20", after("2<1:20")) << "another file that looks like the former one";
}

TEST_F(TaskListTest, EqualDatesAreOrderedByTheNewestFilesPath) {
    for (const std::string& path :
         {"/s/a-" + idOf("1"), "/s/b-" + idOf("2"), "/s/c-" + idOf("1")}) {
        disk.write(path + ".jsonl", sessionMeta(""), 10);
    }
    refresh();
    EXPECT_EQ("2@10", described(list.newestHead()));
    EXPECT_EQ("2@10 1@10", heads());
    disk.write("/s/c-" + idOf("1") + ".jsonl", "{", 10);
    refresh();
    EXPECT_EQ("1@10 2@10", heads()) << "a task moves forward without its last file";
}

TEST_F(TaskListTest, WhatAFirstLineTells) {
    const std::string kLong(ORVFirstLines::kLongestTextBytes, 'x');
    struct Case {
        std::string line;
        std::string expected;  ///< Folder, parent and name; "-" for what is absent.
    };
    const Case kCases[] = {
        {"no JSON\n", "- head"},
        {"\n", "- head"},
        {sessionMeta(R"("cwd":7,"source":"exec","thread_source":"user")"), "- head"},
        {sessionMeta(R"("cwd":"relative","source":{"other":{}})"), "- head"},
        {sessionMeta(R"("cwd":"/a b\u0000","source":{"subagent":null})"),
         std::string("/a b") + '\0' + " head"},
        {sessionMeta(R"("cwd":"/","parent_thread_id":"p","agent_nickname":"n")"), "/ head"},
        {records::record("other", R"({"cwd":"/","thread_source":"subagent"})"), "- head"},
        {sessionMeta(R"("thread_source":"subagent")"), "- helper - -"},
        {sessionMeta(R"("source":{"subagent":"review"},"parent_thread_id":"p")"), "- helper p -"},
        {sessionMeta(R"("source":{"subagent":{"thread_spawn":{"parent_thread_id":"q",)"
                     R"("agent_nickname":"\u00e4\n"}}},"parent_thread_id":7)"),
         "- helper q \xC3\xA4\n"},
        {sessionMeta(R"("source":{"subagent":{"thread_spawn":{"parent_thread_id":"q"}}},)"
                     R"("parent_thread_id":"p","agent_nickname":"n","thread_source":"subagent")"),
         "- helper p n"},
        {sessionMeta(R"("thread_source":"subagent","agent_nickname":"x)" + kLong +
                     R"(","parent_thread_id":")" + kLong + '"'),
         "- helper " + kLong + " -"},
        {sessionMeta(R"("cwd":"/","x":")" + std::string(100'000, 'x') + '"'), "/ head"},
        {sessionMeta(R"("cwd":"/","x":")" + std::string(ORVFirstLines::kLongestLineBytes, 'x') +
                     '"'),
         "- head"},
        {std::string(ORVFirstLines::kLongestLineBytes + 1, 'x'), "- head"},
        {std::string(ORVFirstLines::kLongestLineBytes, 'x'), "not complete"},
    };
    for (const std::size_t bytesPerRead : {std::size_t{1} << 30, std::size_t{1'000}}) {
        disk.bytesPerRead = bytesPerRead;
        for (const Case& c : kCases) {
            ORVFirstLines lines(disk);
            disk.write("/s/a", c.line);
            const ORVFirstLine& line = lines.ofFile({"/s/a", {}, 1, c.line.size()}).line;
            const std::string rest = line.isHelper ? " helper " + line.parentID.value_or("-") +
                                                         ' ' + line.helperName.value_or("-")
                                                   : " head";
            EXPECT_EQ(c.expected,
                      line.isComplete ? line.folder.value_or("-") + rest : "not complete")
                << c.line.substr(0, 100);
        }
    }
}

TEST_F(TaskListTest, TheDeepestFolderWinsAmongEqualsTheNewestFamily) {
    disk.realPaths["/link/site"] = "/code/site";
    disk.makeFolder("/code/site/deep");
    const auto make = [&](const std::string& name, const std::string& payload, int date) {
        disk.write(pathOf(name), sessionMeta(payload), date);
    };
    make("1", R"("cwd":"/")", 90);
    make("2", R"("cwd":"/code")", 80);
    make("3", R"("cwd":"/code/site")", 10);
    make("4", R"("cwd":"/link/site/")", 20);
    make("5", R"("cwd":"/gone")", 99);
    make("6", R"("cwd":"/gone","thread_source":"subagent","parent_thread_id":")" + idOf("3") + '"',
         30);
    refresh();
    const std::pair<std::string, std::string> kCases[] = {
        {"/code/site/deep", "3@30"}, {"/code/site", "3@30"}, {"/code", "2@80"},
        {"/code/sitex", "2@80"},     {"/elsewhere", "1@90"}, {"/gone", "5@99"}};
    for (const auto& [folder, expected] : kCases) {
        EXPECT_EQ(expected, described(list.headForFolder(folder))) << folder;
    }
    EXPECT_EQ("1@90 2@80 3@30 4@20", described(list.heads({.folder = "/code"})));
    EXPECT_EQ("1@90 4@20", described(list.heads({.folder = "/link"}))) << "as it is written";
    EXPECT_EQ("1@90 2@80", described(list.heads({.limit = 2, .folder = "/code/site"})));
    disk.remove(pathOf("1"));
    refresh();
    EXPECT_EQ("", described(list.headForFolder("/elsewhere")));
}

TEST_F(TaskListTest, PartsOfIdentifiers) {
    makeTasks("1:10 2:30 3:20");
    disk.write("/s/b-" + idOf("4") + '_' + idOf("5") + ".jsonl", sessionMeta(""));
    disk.write("/s/c-AAAAAAAA-983b-7e83-81c7-E87B7B63D181.jsonl", sessionMeta(""));
    disk.write("/s/x/Notes-x-81.jsonl", sessionMeta(""));
    refresh();
    const std::pair<std::string, std::string> kCases[] = {
        {"82", "2"},       {"D182", "2"},  {"00000001", "1"}, {"d18", "A4231"},
        {"983B", "A4231"}, {"", "-A4231"}, {"5", ""},         {"181", "A1"},
        {"7", "A4231"},    {"notes", "-"}, {"81", "A1"}};
    for (const auto& [part, expected] : kCases) {
        EXPECT_EQ(expected, matching(part)) << part;
    }
    const auto shortOf = [&](const std::string& part) {
        return list.shortIdentifier(list.matching(part).front());
    };
    EXPECT_EQ("63d182", shortOf("82"));
    EXPECT_EQ("A-983b-7e83-81c7-E87B7B63D181", shortOf("aaa"));
    EXPECT_EQ("1-983b-7e83-81c7-e87b7b63d181", shortOf("00000001"));
    EXPECT_EQ("Notes-x-81.jsonl", shortOf("notes"));
    disk.remove(pathOf("1"));
    refresh();
    EXPECT_EQ("63D181", shortOf("aaa"));
}

TEST_F(TaskListTest, TheListIsThatOfOneMadeAnew) {
    std::mt19937 random(5);
    const auto any = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    const auto anyName = [&] { return std::string(1, "12345ab"[any(7)]); };
    const auto anyPath = [&] {
        return "/s/" + std::to_string(any(3)) + "/" +
               (any(8) == 0   ? "notes"
                : any(6) == 0 ? idOf(anyName()) + '_' + idOf(anyName())
                              : idOf(anyName())) +
               ".jsonl";
    };
    const auto anyContent = [&]() -> std::string {
        const std::string folder = R"("cwd":"/)" + anyName() + '"';
        const std::string kContents[] = {"", "{", sessionMeta(folder), helperMeta(idOf(anyName())),
                                         helperMeta(idOf(anyName()))};
        return kContents[any(5)];
    };
    const auto answers = [&](ORVTaskList& asked) {
        std::string text = described(asked.newestHead()) + '\n';
        for (const ORVTask& task : asked.matching("")) {
            text += task.threadID + ' ' + std::to_string(task.files.size()) + ' ' +
                    asked.shortIdentifier(task) + ' ' + described(headOfFamily(asked, task)) + '\n';
        }
        return text + described(asked.heads({.helpers = Helpers::listed})) + '\n' +
               described(asked.headForFolder("/1/x"));
    };
    for (int round = 0; round < 200; ++round) {
        for (unsigned count = any(4) + 1; count > 0; --count) {
            const std::string path = anyPath();
            const std::function<void()> kChanges[] = {
                [&] { disk.replace(path, anyContent()); }, [&] { disk.append(path, "\n"); },
                [&] { disk.rename(path, anyPath()); }, [&] { disk.setDate(path, any(3) + 1); },
                [&] { disk.remove(any(4) == 0 ? path.substr(0, 4) : path); }};
            kChanges[disk.items().contains(path) ? any(5) : 0]();
        }
        for (unsigned count = 6; count > 0; --count) {
            refresh();
            if (any(2) == 0) {
                answers(list);
            }
        }
        ORVTaskList fresh(disk, clock, "/s");
        EXPECT_TRUE(fresh.refresh(nullptr));
        ASSERT_EQ(answers(fresh), answers(list)) << "round " << round;
    }
}

}  // namespace
