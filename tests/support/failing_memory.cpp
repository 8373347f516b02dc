// Preloaded into the program, makes an allocation fail after main has begun: the one with the
// number $FAILS_AT, and every later one, too, if $FAILS_ON is not empty.

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

using Main = int (*)(int, char**, char**);
using Hook = void (*)();

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* bytes, std::size_t size);
}

namespace {

std::atomic<long> allocationsLeft = -1;
bool failsOn = false;
Main programsMain = nullptr;

bool mustFail() {
    const long left = allocationsLeft < 0 ? -1 : allocationsLeft--;
    if (left == 0) {
        allocationsLeft = failsOn ? 0 : -1;
        errno = ENOMEM;
    }
    return left == 0;
}

int failingMain(int count, char** values, char** environment) {
    failsOn = *std::getenv("FAILS_ON") != '\0';
    allocationsLeft = std::atol(std::getenv("FAILS_AT"));
    return programsMain(count, values, environment);
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) {
    return mustFail() ? nullptr : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return mustFail() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* bytes, std::size_t size) {
    return mustFail() ? nullptr : __libc_realloc(bytes, size);
}
int __libc_start_main(Main main, int count, char** values, Hook begin, Hook end, Hook loader,
                      void* stackEnd) {
    using Start = int (*)(Main, int, char**, Hook, Hook, Hook, void*);
    programsMain = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(failingMain, count, values, begin, end, loader, stackEnd);
}
}
