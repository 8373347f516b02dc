#pragma once

#include <gtest/gtest.h>

#include <chrono>

#include "app/status_title.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

class ManualClock final : public ORVClock {
public:
    TimePoint now() const override { return now_; }
    void advance(std::chrono::milliseconds time) { now_ += time; }

private:
    TimePoint now_{std::chrono::hours(500'000)};
};

/// A session source over a home folder of its own.
class SessionSourceTest : public testing::Test {
protected:
    static constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
    static constexpr const char* kOther = "01a20e70-11aa-7c20-9d00-5b1f0c7a4e02";

    SessionSourceTest() { home.makeFolder(".codex/sessions"); }

    /// A session file of the task, in the folder of a day.
    static std::string fileOf(const std::string& task, const std::string& day = "2026/11/24",
                              const std::string& suffix = "") {
        return ".codex/sessions/" + day + "/rollout-2026-11-24T16-45-20-" + task + suffix +
               ".jsonl";
    }

    std::optional<ORVSessionSnapshot> snapshot(const std::string& task = kTask) {
        error.reset();
        return source.snapshotForThreadID(task, &error);
    }

    /// What the menu bar would show for the task; the error's domain and code where nothing.
    std::string title(const std::string& task = kTask) {
        const auto found = snapshot(task);
        return found   ? app::statusItemTitle(*found)
               : error ? error->domain + " " + std::to_string(error->code)
                       : "nothing";
    }

    TemporaryHome home;
    FaultyFiles files;
    ManualClock clock;
    ORVErrorSlot error;
    ORVCodexSessionSource source{files, clock, home.path(".codex")};
};
