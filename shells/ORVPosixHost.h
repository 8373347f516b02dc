#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/ORVAppHost.h"
#include "platform/posix_run_loop.h"
#include "platform/thread_queue.h"

/// The application's host in a process without a desktop: a loop over descriptors and a thread.
class ORVPosixHost final : public ORVAppHost {
public:
    /// What the user has asked for on the command line.
    struct Settings {
        std::string codexHome;
        ORVRefreshRequest request;
    };

    /// `complain` gets what the user should know, each thing once at most. Without a thread for the
    /// queue the loop ends at once.
    ORVPosixHost(Settings settings, std::unique_ptr<ORVFiles> files,
                 std::unique_ptr<ORVUserDefaults> userDefaults,
                 std::function<void(const std::string&)> complain);

    ORVUserDefaults& standardUserDefaults() override { return *userDefaults_; }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) override;
    ORVPosixRunLoop& runLoop() override { return runLoop_; }
    ORVFiles& files() override { return *files_; }
    const ORVClock& clock() override { return clock_; }
    std::string codexHome() override { return settings_.codexHome; }
    ORVRefreshRequest refreshRequest() override { return settings_.request; }
    void terminate() override { runLoop_.stop(0); }

    /// Waits a moment for a read under way; false while it hangs. The process must then be left
    /// without destroying anything that it uses.
    bool readerIsIdle();

private:
    const Settings settings_;
    ORVPosixRunLoop runLoop_;
    ORVSystemClock clock_;
    std::unique_ptr<ORVFiles> files_;
    std::unique_ptr<ORVUserDefaults> userDefaults_;
    const std::function<void(const std::string&)> complain_;
    platform::ThreadQueue* queue_ = nullptr;  ///< Owned by the delegate.
};
