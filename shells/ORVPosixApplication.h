#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/ORVAppDelegate.h"
#include "shells/ORVPosixHost.h"
#include "shells/ORVSurface.h"

/// Runs the whole application with a surface in a process without a desktop, until the user, a
/// signal or a reader that left ends it. A new surface begins here: it implements ORVSurface, reads
/// the delegate's status item, and hands what the user does to the delegate. One per process, since
/// signals reach the one that was made last. UI thread only.
class ORVPosixApplication {
public:
    /// `complain` gets what the user should know, a sentence at a time.
    ORVPosixApplication(ORVPosixHost::Settings settings,
                        const std::function<void(const std::string&)>& complain);

    ORVAppDelegate& delegate() { return *delegate_; }
    ORVPosixRunLoop& runLoop() { return host_.runLoop(); }

    /// Runs until the end and returns the exit status. Leaves by _exit while a read of a file
    /// hangs.
    int run(ORVSurface& surface);

    /// Handles the signal by waking the loop, which then has the surface redrawn.
    static void redrawOn(int signalNumber);

private:
    const std::function<void(const std::string&)> complain_;
    ORVPosixHost host_;
    std::shared_ptr<ORVAppDelegate> delegate_;
};
