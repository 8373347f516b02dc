// Makes the reading thread, which may read what the application shows and nothing else.
// Tests: tests/platform/confinement_test.cpp.

#include "shells/ORVPosixHost.h"

#include <cstdlib>

#include "app/ORVTaskViewer.h"

ORVPosixHost::ORVPosixHost(Settings settings, std::unique_ptr<ORVFiles> files,
                           std::unique_ptr<ORVUserDefaults> userDefaults,
                           std::function<void(std::string_view)> complain)
    : settings_(std::move(settings)),
      files_(std::move(files)),
      userDefaults_(std::move(userDefaults)),
      complain_(std::move(complain)) {}

std::unique_ptr<ORVSerialQueue> ORVPosixHost::makeSerialQueue(const std::string&) {
    auto queue = std::make_unique<platform::ReadingQueue>(
        runLoop_, ORVTaskViewer(*files_, clock_, settings_.codexHome, {}).placesToRead());
    if (!queue->hasThread()) {
        complain_("cannot start a thread");
        runLoop_.stop(EXIT_FAILURE);
    }
    queue_ = queue.get();
    return queue;
}

bool ORVPosixHost::readerIsIdle() {
    constexpr std::chrono::milliseconds kPatience(100);
    return !queue_ || queue_->waitUntilIdle(kPatience);
}
