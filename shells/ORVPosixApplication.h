#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "app/ORVAppDelegate.h"
#include "shells/ORVPosixHost.h"
#include "shells/ORVSurface.h"

/// Runs the whole application with one surface in a process without a desktop, until the user, a
/// signal or the end of its output stops it.
///
/// To add a surface, implement ORVSurface: it shows the delegate's status item and passes what the
/// user does to the delegate. A process has one application, because signals reach the one that was
/// made last. Used on the UI thread only.
class ORVPosixApplication {
public:
    /// `complain` is called with each sentence that the user should read.
    ORVPosixApplication(ORVPosixHost::Settings settings,
                        const std::function<void(std::string_view)>& complain);

    ORVAppDelegate& delegate() { return *delegate_; }
    ORVPosixRunLoop& runLoop() { return host_.runLoop(); }

    /// Runs until the application is stopped and returns the exit status. When a read of a file
    /// hangs at that moment, the process is ended by _exit instead.
    int run(ORVSurface& surface);

    /// Makes this signal redraw the surface.
    static void redrawOn(int signalNumber);

    /// Names a condition under which a signal that ends the application ends the process at once,
    /// because the UI thread would not come to it. It is called by signal handlers.
    static void endAtOnceIf(bool (*condition)());

private:
    const std::function<void(std::string_view)> complain_;
    ORVPosixHost host_;
    std::shared_ptr<ORVAppDelegate> delegate_;
};
