// Tests what the sources keep: little of what nobody asks for, and nothing wrong when memory runs
// out.

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

#include "focus/ORVCodexFocusLogSource.h"
#include "sessions/ORVFadingTable.h"
#include "sessions/ORVTaskList.h"
#include "tests/sessions/SessionSourceTest.h"

namespace {

/// Counts down to the allocation that fails, and to all after it if wanted; negative: none fails.
std::atomic<long> allocationsLeft = -1;
std::atomic<bool> allLaterOnesFail = false;

bool mustFail() {
    if (allocationsLeft < 0) {
        return false;
    }
    const long left = allocationsLeft--;
    if (left == 0 && allLaterOnesFail) {
        allocationsLeft = 0;
    }
    return left == 0;
}

}  // namespace

// Not inlined, because the compiler would find fault with malloc() beside the library's own
// `operator delete`, which frees the same memory.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const bytes = mustFail() ? nullptr : std::malloc(size > 0 ? size : 1);
    return bytes ? bytes : throw std::bad_alloc();
}
// The JSON library allocates this way.
[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return mustFail() ? nullptr : std::malloc(size > 0 ? size : 1);
}

namespace {

using SessionMemoryTest = SessionSourceTest;

TEST_F(SessionMemoryTest, AWeekOfChurnLeavesNothing) {
    ORVFadingTable<int> table;
    std::size_t largest = 0;
    for (int i = 0; i < 100'000; ++i) {
        clock.time += std::chrono::seconds(6);
        table.age(clock.time);
        ++table["kept"];
        ++table[std::to_string(i)];
        largest = std::max(largest, table.size());
    }
    EXPECT_EQ(100'000, table["kept"]);
    EXPECT_EQ(nullptr, table.find("99000"));
    EXPECT_NE(nullptr, table.find("99999"));
    EXPECT_GE(202U, largest) << "twenty minutes";
}

TEST_F(SessionMemoryTest, OnlyFilesThatNobodyAsksForAreReadAgain) {
    disk.append(fileOf(kTask), tokenCount("136000"));
    disk.append(fileOf(kOther), tokenCount("27200"));
    title(kOther);
    for (int minute = 0; minute < 25; ++minute) {
        EXPECT_EQ("C0 · 50%", title());
        clock.time += std::chrono::minutes(1);
    }
    const int opened = disk.opened;
    EXPECT_EQ("C0 · 50%", title());
    EXPECT_EQ(opened, disk.opened);
    EXPECT_EQ("C0 · 10%", title(kOther));
    EXPECT_EQ(opened + 1, disk.opened);
}

TEST_F(SessionMemoryTest, WhateverAllocationFailsTheNextAnswerIsRight) {
    disk.append(fileOf(kTask, "a"), compacted("w1") + tokenCount("1000"));
    disk.append(fileOf(kTask, "b"), compacted("w1") + tokenCount("136000"));
    disk.append(fileOf(kOther, "a"), records::helperMeta(kTask));
    disk.append("/codex/session_index.jsonl", records::title(kTask, "a title of some length"));
    disk.append("/logs/main.log", records::log("1 window | 2 route /local/TASK"));
    const auto ask = [](ORVCodexSessionSource& sessions, ORVCodexFocusLogSource& focus,
                        ORVTaskList& list) {
        ORVErrorSlot slot;
        list.refresh(&slot);
        const auto heads = list.heads({.helpers = ORVTaskList::Wanted::Helpers::listed});
        const auto state = focus.currentFocusStateWithError(&slot);
        const auto latest = sessions.latestSnapshotWithError(&slot);
        const auto found = sessions.snapshotForThreadID(kTask, &slot);
        const ORVWalkedFile walked{fileOf(kTask, "b"), {}, 0, 100};
        const ORVWalkedFile* const file = &walked;
        std::vector<ORVUnreadable> unreadable;
        const ORVTask task{kTask, {file}};
        sessions.readAhead({&file, 1}, {});
        (void)sessions.snapshotForTask(task, &slot);
        (void)sessions.accountLimits({file}, &unreadable);
        const auto facts = sessions.agentFactsForThreadID(kTask);
        const bool isWhole = latest && found && facts && sessions.historyForThreadID(kTask);
        return isWhole && state.threadID() == kTask && heads.size() == 2 && heads[0].helpers == 1 &&
                       list.newestHead()->task.threadID == kTask
                   ? std::to_string(found->compactionCount()) + found->title()
                   : "nothing";
    };
    for (const bool all : {false, true}) {
        bool wasReached = true;
        for (long n = 0; wasReached; ++n) {
            ORVCodexSessionSource sessions(disk, clock, "/codex", {10, true});
            ORVCodexFocusLogSource focus(disk, clock, "/logs", "/Info.plist");
            ORVTaskList list(disk, clock, "/codex/sessions");
            allLaterOnesFail = all;
            allocationsLeft = n;
            try {
                (void)ask(sessions, focus, list);
            } catch (const std::bad_alloc&) {
            }
            wasReached = allocationsLeft < (all ? 1 : 0);
            allocationsLeft = -1;
            clock.time += std::chrono::minutes(2);  // A file's pause is over.
            ASSERT_EQ("1a title of some length", ask(sessions, focus, list)) << n;
            ASSERT_LT(n, 100'000);
        }
    }
}

}  // namespace
