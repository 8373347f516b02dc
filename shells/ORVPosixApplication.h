#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "app/ORVAppDelegate.h"
#include "app/ORVAppHost.h"
#include "platform/posix_run_loop.h"
#include "platform/reading_queue.h"

/// The place where the status item and its menu appear. ORVPosixApplication runs the program with
/// one surface and calls it on the UI thread.
class ORVSurface {
public:
    virtual ~ORVSurface() = default;

    /// Shows what has changed. Called at the end of every turn of the loop.
    virtual void show() = 0;

    /// Shows everything anew. Called when the terminal was resized, and when the process goes on
    /// after it was stopped.
    virtual void redraw() {}

    /// Puts everything back into the state in which it was found. Called once, when the program
    /// ends.
    virtual void close() = 0;
};

/// The application's host in a process without a desktop: a loop over descriptors, and one thread
/// that reads files.
class ORVPosixHost final : public ORVAppHost {
public:
    /// What the user asks for on the command line.
    struct Settings {
        std::string codexHome;
        ORVRefreshRequest request;
    };

    /// `complain` is called with each sentence that the user should read. When the system gives no
    /// thread for the queue, the loop ends at once.
    ORVPosixHost(Settings settings, std::unique_ptr<ORVFiles> files,
                 std::unique_ptr<ORVUserDefaults> userDefaults,
                 std::function<void(std::string_view)> complain);

    ORVUserDefaults& standardUserDefaults() override { return *userDefaults_; }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) override;
    ORVPosixRunLoop& runLoop() override { return runLoop_; }
    ORVFiles& files() override { return *files_; }
    const ORVClock& clock() override { return clock_; }
    std::string codexHome() override { return settings_.codexHome; }
    ORVRefreshRequest refreshRequest() override { return settings_.request; }
    void terminate() override { runLoop_.stop(0); }

    /// Waits a moment for the reading thread to finish and returns whether it did. When it did not,
    /// nothing that it uses may be destroyed.
    bool readerIsIdle();

private:
    const Settings settings_;
    ORVPosixRunLoop runLoop_;
    ORVSystemClock clock_;
    std::unique_ptr<ORVFiles> files_;
    std::unique_ptr<ORVUserDefaults> userDefaults_;
    const std::function<void(std::string_view)> complain_;
    platform::ReadingQueue* queue_ = nullptr;  ///< Owned by the delegate.
};

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
