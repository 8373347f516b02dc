#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/ORVTaskView.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/locale.h"
#include "platform/run_loop.h"
#include "platform/user_defaults.h"
#include "sessions/ORVCodexSessionSource.h"

/// Everything that the application needs from its surroundings. The Mac's shell and the command
/// line implement it, and so do the tests.
class ORVAppHost {
public:
    virtual ~ORVAppHost() = default;

    virtual ORVUserDefaults& standardUserDefaults() = 0;

    /// Returns the languages that the user prefers in every program, the most preferred first.
    virtual std::vector<std::string> preferredLanguages() { return platform::preferredLanguages(); }

    virtual std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) = 0;

    /// Returns the loop of the UI thread.
    virtual ORVRunLoop& runLoop() = 0;

    // The sources use these two on the refresh queue.
    virtual ORVFiles& files() = 0;
    virtual const ORVClock& clock() = 0;

    /// Returns the folder that holds the sessions and their titles.
    virtual std::string codexHome() { return ORVCodexSessionSource::defaultCodexHome(); }

    /// Returns which task is shown first and what the surface shows. The application asks once, at
    /// its launch.
    virtual ORVRefreshRequest refreshRequest() { return {}; }

    /// Ends the application's event loop. Called on the UI thread.
    virtual void terminate() = 0;
};
