// Many pieces of work on all processors. Tests: tests/sessions/task_list_test.cpp.

#include "platform/parallel.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace platform {
namespace {

/// Starts further threads, as many as can be had.
template <typename Work>
void startThreads(std::vector<std::thread>& threads, std::size_t count, const Work& work) {
    try {
        threads.reserve(count);
        while (threads.size() < count) {
            threads.emplace_back(work);
        }
    } catch (const std::system_error&) {
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace

void inParallel(std::size_t count, const std::function<Worker()>& makeWorker) {
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> isOutOfMemory = false;
    const auto work = [&] {
        try {
            const Worker worker = makeWorker();
            for (std::size_t i = next++; i < count && !isOutOfMemory; i = next++) {
                worker(i);
            }
        } catch (const std::bad_alloc&) {
            isOutOfMemory = true;
        }
    };
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::thread> threads;
    startThreads(threads, std::min(processors, count) - std::min<std::size_t>(count, 1), work);
    work();
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (isOutOfMemory) {
        throw std::bad_alloc();
    }
}

}  // namespace platform
