#pragma once

#include "app/refresh_step.h"
#include "ctl/answers.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/ManualClock.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

/// Both sources over one disk, and everything that they answer.
class Reader {
public:
    static constexpr const char* kTasks[] = {records::kTask, records::kOther, "notes"};

    Reader(MemoryFiles& disk, const ManualClock& clock)
        : sessions_(disk, clock, "/codex"), focus_(disk, clock, "/logs", "/Info.plist") {}

    std::string answers() {
        const ORVRefreshResults results = app::refreshOfTaskInView(focus_, sessions_);
        std::string text = ctl::focusJSON(results.focusState) + ctl::errorJSON(results.error) +
                           ctl::titlesJSON(sessions_.threadTitles());
        ORVErrorSlot error;
        for (const char* task : kTasks) {
            text += '\n' + ctl::snapshotAnswer(sessions_.snapshotForThreadID(task, &error), error);
        }
        return text + '\n' + ctl::snapshotAnswer(sessions_.latestSnapshotWithError(&error), error);
    }

private:
    ORVCodexSessionSource sessions_;
    ORVCodexFocusLogSource focus_;
};
