// Limits which system calls the program can make, by a list of which it makes a filter. A call that
// is not on the list fails as on a kernel that does not know it, so that a C library uses its
// predecessor: clone, whose flags a filter can see, instead of clone3.
//
// The list holds what this program, glibc (2.28 to 2.42) and musl call after a program has started.
// Memory can no longer be made executable, so no library can be loaded later. Nothing needs one:
// the user is looked up before, and when the locale's encoding would need a module of glibc (that
// of GBK, for example), the menu is written in ASCII, which needs none. Tests:
// tests/platform/confinement_test.cpp.

#include "platform/confinement_linux.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace platform {
namespace {

#if defined(__x86_64__) && defined(__LP64__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__) && defined(__LP64__) && defined(__AARCH64EL__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t kProcessor = 0;  // C libraries use other calls on other processors.
#endif

// Calls that the headers may be too old to name. They have the same number on every processor.
constexpr int kCloseRange = 436;
constexpr int kFaccessat2 = 439;
constexpr int kFutexWaitv = 449;
constexpr int kFutexWake = 454;
constexpr int kFutexWait = 455;
constexpr int kFutexRequeue = 456;

/// Calls that every thread may make, with any arguments.
constexpr int kCalls[] = {
    // Reading files.
    SYS_read, SYS_readv, SYS_pread64, SYS_lseek, SYS_getdents64, SYS_fstat, SYS_newfstatat,
    SYS_statx, SYS_faccessat, kFaccessat2, SYS_readlinkat, SYS_getcwd,
    // Being told of changes in folders of local file systems.
    SYS_statfs, SYS_inotify_init1, SYS_inotify_add_watch, SYS_inotify_rm_watch,
    // Using descriptors: the output, and the pipe that wakes the run loop.
    SYS_write, SYS_writev, SYS_close, kCloseRange, SYS_pipe2, SYS_ppoll, SYS_pselect6,
#ifdef SYS_open
    // Older calls for the purposes of this list, which aarch64 does not have.
    SYS_stat, SYS_lstat, SYS_access, SYS_readlink, SYS_pipe, SYS_poll, SYS_select, SYS_time,
    SYS_getpgrp,
#endif
    // Memory and threads.
    SYS_brk, SYS_munmap, SYS_mremap, SYS_futex, kFutexWaitv, kFutexWake, kFutexWait, kFutexRequeue,
    SYS_set_robust_list, SYS_set_tid_address, SYS_rseq, SYS_membarrier, SYS_sched_yield,
    SYS_sched_getaffinity, SYS_exit, SYS_exit_group,
    // Receiving signals.
    SYS_rt_sigaction, SYS_rt_sigprocmask, SYS_rt_sigreturn, SYS_sigaltstack, SYS_restart_syscall,
    // Time, and what the process and the machine are.
    SYS_clock_gettime, SYS_clock_getres, SYS_clock_nanosleep, SYS_nanosleep, SYS_gettimeofday,
    SYS_getrandom, SYS_getpid, SYS_gettid, SYS_getpgid, SYS_getuid, SYS_geteuid, SYS_getgid,
    SYS_getegid, SYS_getrlimit, SYS_getcpu, SYS_sysinfo};

/// Further calls, for a thread that stores settings. Landlock limits them to the settings' folders.
constexpr int kCallsForStoring[] = {
    // Opening files with all flags.
    SYS_openat, SYS_mkdirat, SYS_renameat, SYS_unlinkat, SYS_fsync,
#ifdef SYS_open
    SYS_open,   SYS_mkdir,   SYS_rename,   SYS_unlink,
#endif
};

/// Further calls, for a thread that has rights to give up.
constexpr int kCallsForConfining[] = {kLandlockCreateRuleset, kLandlockAddRule,
                                      kLandlockRestrictSelf};

/// A condition on an argument, counted from 0: these bits of it have this value.
struct Condition {
    unsigned argument;
    std::uint64_t bits;
    std::uint64_t value;
};
/// The lower half of the register is all that the kernel uses of an int.
Condition isValue(unsigned argument, std::uint32_t value) {
    return {argument, 0xFFFFFFFF, value};
}
Condition hasNoneOf(unsigned argument, std::uint64_t bits) {
    return {argument, bits, 0};
}

/// A filter that refuses every call for which no rule was added, as a program for the kernel.
///
/// When it is installed the kernel tries it with every number of a call, which takes most of the
/// time. Therefore a rule begins with the number loaded, and costs other calls one instruction.
class CallFilter {
public:
    CallFilter() {
        // Neither this program nor a library calls the kernel in the way of another processor, by
        // int 0x80 or with the numbers of x32. Only an attacker's code would, so the process ends.
        constexpr std::uint32_t kFirstOfX32 = 0x40000000;
        load(offsetof(seccomp_data, arch));
        skipUnless(BPF_JEQ, kProcessor, 2);
        load(offsetof(seccomp_data, nr));
        skipUnless(BPF_JGE, kFirstOfX32, 1);
        answer(SECCOMP_RET_KILL_PROCESS);
    }

    /// Allows the call if all conditions hold. One call may have several rules.
    void allow(int call, std::initializer_list<Condition> conditions) {
        constexpr std::size_t kPerHalf = 3;  // Instructions.
        std::size_t rest = conditions.size() * 2 * kPerHalf + 1;
        skipUnless(BPF_JEQ, static_cast<std::uint32_t>(call), rest + 1);
        for (const auto& [argument, bits, value] : conditions) {
            for (const unsigned half : {0U, 32U}) {
                rest -= kPerHalf;
                load(offsetof(seccomp_data, args) + argument * sizeof value + half / 8);
                program_.push_back(
                    BPF_STMT(BPF_ALU | BPF_AND | BPF_K, static_cast<std::uint32_t>(bits >> half)));
                skipUnless(BPF_JEQ, static_cast<std::uint32_t>(value >> half), rest);
            }
        }
        answer(SECCOMP_RET_ALLOW);
        load(offsetof(seccomp_data, nr));
    }

    void allowOneOf(int call, unsigned argument, std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values) {
            allow(call, {isValue(argument, value)});
        }
    }

    template <std::size_t kCount>
    void allowAll(const int (&calls)[kCount]) {
        std::size_t rest = kCount;
        for (const int call : calls) {
            --rest;
            jump(BPF_JEQ, static_cast<std::uint32_t>(call), rest, rest == 0 ? 1 : 0);
        }
        answer(SECCOMP_RET_ALLOW);
    }

    /// Returns whether the kernel has filters, and so uses this one.
    bool install() {
        answer(SECCOMP_RET_ERRNO | ENOSYS);
        sock_fprog program{static_cast<unsigned short>(program_.size()), program_.data()};
        return syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
    }

private:
    void load(std::size_t offset) {
        program_.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)));
    }
    void skipUnless(unsigned comparison, std::uint32_t value, std::size_t instructions) {
        jump(comparison, value, 0, instructions);
    }
    void jump(unsigned comparison, std::uint32_t value, std::size_t ifTrue, std::size_t ifFalse) {
        program_.push_back(BPF_JUMP(static_cast<std::uint16_t>(BPF_JMP | BPF_K | comparison), value,
                                    static_cast<std::uint8_t>(ifTrue),
                                    static_cast<std::uint8_t>(ifFalse)));
    }
    void answer(std::uint32_t action) { program_.push_back(BPF_STMT(BPF_RET | BPF_K, action)); }

    std::vector<sock_filter> program_;
};

/// Opening a file without any of these flags changes nothing. O_TMPFILE takes effect only with an
/// access mode for writing. O_ACCMODE would hold O_PATH, too, with musl.
constexpr std::uint64_t kToWrite = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC;

void addRulesForReading(CallFilter& filter) {
    filter.allow(SYS_openat, {hasNoneOf(2, kToWrite)});
#ifdef SYS_open
    filter.allow(SYS_open, {hasNoneOf(1, kToWrite)});
#endif
}

void addRulesForStoring(CallFilter& filter) {
    filter.allowAll(kCallsForStoring);
    // Landlock does not cover this call. These bits would make a file run with its owner's rights.
    filter.allow(SYS_fchmod, {hasNoneOf(1, 07000)});
}

void addRulesForConfining(CallFilter& filter) {
    filter.allowAll(kCallsForConfining);
    filter.allow(SYS_seccomp, {isValue(0, SECCOMP_SET_MODE_FILTER)});
}

void addRulesForAll(CallFilter& filter) {
    constexpr std::uint64_t kAllBits = ~std::uint64_t{0};
    constexpr std::uint32_t kThread = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND |
                                      CLONE_THREAD | CLONE_SYSVSEM | CLONE_SETTLS |
                                      CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;
    constexpr std::uint32_t kGuardInstall = 102;  // Advice younger than some headers.
    constexpr std::uint32_t kGuardRemove = 103;
    const auto ourselves = static_cast<std::uint32_t>(getpid());
    filter.allow(SYS_mmap, {hasNoneOf(2, PROT_EXEC)});
    filter.allow(SYS_mprotect, {hasNoneOf(2, PROT_EXEC)});
    // With other advice root could take pages of memory away from the whole machine.
    filter.allowOneOf(SYS_madvise, 2,
                      {MADV_DONTNEED, MADV_FREE, MADV_HUGEPAGE, kGuardInstall, kGuardRemove});
    // This makes threads, but neither processes nor namespaces. musl adds a flag without effect.
    filter.allowOneOf(SYS_clone, 0, {kThread, kThread | CLONE_DETACHED});
    // With F_SETOWN and O_ASYNC a terminal would send signals to other processes.
    filter.allowOneOf(SYS_fcntl, 1, {F_GETFD, F_SETFD, F_GETFL});
    filter.allow(SYS_fcntl, {isValue(1, F_SETFL), hasNoneOf(2, O_ASYNC)});
    // These are about a terminal's modes, flow and size; TIOCSTI and TIOCLINUX would type in it.
    filter.allowOneOf(SYS_ioctl, 1,
                      {TCGETS, TCSETS, TCSETSW, TCSETSF, TCGETS2, TCSETS2, TCSETSW2, TCSETSF2,
                       TCFLSH, TCXONC, TIOCGWINSZ, TIOCGPGRP});
    // abort, raise and a stop by Control-Z need these. tkill, which musl uses, names a thread; the
    // first thread has the process's number.
    for (const int call : {SYS_kill, SYS_tgkill, SYS_tkill}) {
        filter.allow(call, {isValue(0, ourselves)});
    }
    // Reads our own limits. A pointer in the third argument would set them.
    for (const std::uint32_t process : {0U, ourselves}) {
        filter.allow(SYS_prlimit64, {isValue(0, process), hasNoneOf(2, kAllBits)});
    }
    filter.allowAll(kCalls);
}

}  // namespace

bool filterCalls(const ORVFileRights& rights) {
    if (kProcessor == 0) {
        return false;
    }
    CallFilter filter;
    rights.foldersToWriteIn.empty() ? addRulesForReading(filter) : addRulesForStoring(filter);
    if (!rights.placesToRead) {
        addRulesForConfining(filter);
    }
    addRulesForAll(filter);
    return filter.install();
}

}  // namespace platform
