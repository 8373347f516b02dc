#pragma once

#include <gtest/gtest.h>

#include "app/figures.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

using records::compacted;
using records::contextCompacted;
using records::kOther;
using records::kTask;
using records::message;
using records::tokenCount;

/// A session source over a disk of its own.
class SessionSourceTest : public testing::Test {
protected:
    SessionSourceTest() { disk.makeFolder("/codex/sessions"); }

    /// Returns the path of a session file of the task, in the folder of a day.
    static std::string fileOf(const std::string& task, const std::string& day = "24") {
        return "/codex/sessions/" + day + "/rollout-2026-11-24T16-45-20-" + task + ".jsonl";
    }

    static std::string taskOf(std::size_t number) {
        return kTask.substr(0, 24) + std::to_string(100'000'000'000 + number);
    }

    std::optional<ORVSessionSnapshot> snapshot(const std::string& task = kTask) {
        error.reset();
        return source.snapshotForThreadID(task, &error);
    }

    /// Returns what the menu bar would show for the task, or the error's domain and code.
    std::string title(const std::string& task = kTask) {
        const auto found = snapshot(task);
        return found   ? app::statusTitle(*found).text()
               : error ? error->domain + " " + std::to_string(error->code)
                       : "nothing";
    }

    MemoryFiles disk;
    ManualClock clock;
    ORVErrorSlot error;
    ORVCodexSessionSource source{disk, clock, "/codex"};
};
