#pragma once

#include <memory>
#include <string>

#include "app/refresh_step.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/run_loop.h"
#include "platform/user_defaults.h"

/// What the application needs from outside: one for every surface, and one for tests.
class ORVAppHost {
public:
    virtual ~ORVAppHost() = default;

    virtual ORVUserDefaults& standardUserDefaults() = 0;
    virtual std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) = 0;

    /// The UI thread.
    virtual ORVRunLoop& runLoop() = 0;

    /// Used by the sources, on the refresh queue only.
    virtual ORVFiles& files() = 0;
    virtual const ORVClock& clock() = 0;

    /// The folder that holds the sessions and their titles.
    virtual std::string codexHome() { return ORVCodexSessionSource::defaultCodexHome(); }

    /// Which task is shown, and what else the surface shows of it. Asked once, when the application
    /// begins.
    virtual ORVRefreshRequest refreshRequest() { return {}; }

    /// Ends the application's event loop. UI thread.
    virtual void terminate() = 0;
};
