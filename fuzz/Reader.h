#pragma once

#include <cstdlib>

#include "app/ORVTaskViewer.h"
#include "shells/lines/answers.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

/// Both sources over one disk, and everything that they answer.
class Reader {
public:
    static inline const std::string kTasks[] = {records::kTask, records::kOther, "notes"};

    Reader(MemoryFiles& disk, const ManualClock& clock)
        : viewer_(withHome(disk), clock, "/codex", {}) {}

    std::string answers() {
        const ORVTaskView view = viewer_.view({});
        ORVCodexSessionSource& sessions = viewer_.sessions();
        std::string text = json::focus(*view.focusState) + json::error(view.error) +
                           json::titlesAnswer(sessions.threadTitles());
        ORVErrorSlot error;
        for (const std::string& task : kTasks) {
            text += '\n' + json::snapshotAnswer(sessions.snapshotForThreadID(task, &error), error);
        }
        return text + '\n' + json::snapshotAnswer(sessions.latestSnapshotWithError(&error), error);
    }

private:
    static MemoryFiles& withHome(MemoryFiles& disk) {
        setenv("HOME", "/h", 1);
        return disk;
    }

    ORVTaskViewer viewer_;
};
