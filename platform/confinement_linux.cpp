// Limits what the program can ask of the kernel. This file holds first the list of allowed system
// calls, then the use of Landlock for the folders in which files may be changed, and last the code
// that turns the list into a filter. A call that is not on the list fails with an error, as any
// call can.
//
// The list holds what this program, glibc (2.28 to 2.42) and musl call after a program has started.
// Memory can no longer be made executable, so no library can be loaded later. Nothing needs one:
// the user is looked up before, and when the locale's encoding would need a module of glibc (that
// of GBK, for example), the menu is written in ASCII, which needs none. Tests:
// tests/platform/confinement_test.cpp.

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>

#include "platform/confinement.h"

namespace platform {
namespace {

#if defined(__x86_64__) && defined(__LP64__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__) && defined(__LP64__) && !defined(__AARCH64EB__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t kProcessor = 0;  // The numbers of its calls are not known here.
#endif

// Calls from 424 on have the same number on every processor; the headers may be too old to name
// them. Those that are not on the list fail as on a kernel that does not know them, so that a C
// library uses their predecessors: clone, whose flags a filter can see, instead of clone3.
constexpr std::uint32_t kFirstYoungCall = 424;
constexpr std::uint32_t kCloseRange = 436;
constexpr std::uint32_t kFaccessat2 = 439;
constexpr std::uint32_t kLandlockCreateRuleset = 444;
constexpr std::uint32_t kLandlockAddRule = 445;
constexpr std::uint32_t kLandlockRestrictSelf = 446;
constexpr std::uint32_t kFutexWaitv = 449;
constexpr std::uint32_t kFutexWake = 454;
constexpr std::uint32_t kFutexWait = 455;
constexpr std::uint32_t kFutexRequeue = 456;

/// Calls that every thread may make, with any arguments.
constexpr std::uint32_t kCalls[] = {
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
constexpr std::uint32_t kCallsForStoring[] = {
    // Opening files with all flags.
    SYS_openat, SYS_mkdirat, SYS_renameat, SYS_unlinkat, SYS_fsync,
#ifdef SYS_open
    SYS_open, SYS_mkdir, SYS_rename, SYS_unlink,
#endif
    // The reading thread begins with the same rights, and gives them up by these.
    kLandlockCreateRuleset, kLandlockRestrictSelf};

/// A condition on an argument (counted from 0): it must be one of the values or, when there are no
/// values, have none of the bits. A value is compared with the lower half of the register, which is
/// all that the kernel uses of an int.
struct Condition {
    unsigned argument;
    std::vector<std::uint32_t> values;
    std::uint64_t refusedBits;
};

Condition isOneOf(unsigned argument, std::vector<std::uint32_t> values) {
    return {argument, std::move(values), 0};
}

Condition hasNoneOf(unsigned argument, std::uint64_t bits) {
    return {argument, {}, bits};
}

/// A call that is allowed if all the conditions hold. One call may have several rules.
struct Rule {
    std::uint32_t call;
    std::vector<Condition> conditions;
};

std::vector<Rule> rulesForAll() {
    // Opening a file without any of these flags changes nothing. O_TMPFILE takes effect only with
    // an access mode for writing.
    constexpr std::uint64_t kToWrite = O_ACCMODE | O_CREAT | O_TRUNC;
    constexpr std::uint64_t kAllBits = ~std::uint64_t{0};
    constexpr std::uint32_t kThread = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND |
                                      CLONE_THREAD | CLONE_SYSVSEM | CLONE_SETTLS |
                                      CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;
    constexpr std::uint32_t kGuardInstall = 102;  // Advice younger than some headers.
    constexpr std::uint32_t kGuardRemove = 103;
    const auto ourselves = static_cast<std::uint32_t>(getpid());
    return {
        {SYS_openat, {hasNoneOf(2, kToWrite)}},
#ifdef SYS_open
        {SYS_open, {hasNoneOf(1, kToWrite)}},
#endif
        {SYS_mmap, {hasNoneOf(2, PROT_EXEC)}},
        {SYS_mprotect, {hasNoneOf(2, PROT_EXEC)}},
        // With other advice root could take pages of memory away from the whole machine.
        {SYS_madvise,
         {isOneOf(2, {MADV_DONTNEED, MADV_FREE, MADV_HUGEPAGE, kGuardInstall, kGuardRemove})}},
        // This makes threads, but neither processes nor namespaces. musl adds a flag without
        // effect.
        {SYS_clone, {isOneOf(0, {kThread, kThread | CLONE_DETACHED})}},
        // With F_SETOWN and O_ASYNC a terminal would send signals to other processes.
        {SYS_fcntl, {isOneOf(1, {F_GETFD, F_SETFD, F_GETFL})}},
        {SYS_fcntl, {isOneOf(1, {F_SETFL}), hasNoneOf(2, O_ASYNC)}},
        // These are about a terminal's modes and size; TIOCSTI and TIOCLINUX would type in it.
        {SYS_ioctl,
         {isOneOf(1, {TCGETS, TCSETS, TCSETSW, TCSETSF, TCGETS2, TCSETS2, TCSETSW2, TCSETSF2,
                      TCFLSH, TIOCGWINSZ, TIOCGPGRP})}},
        // abort, raise and a stop by Control-Z need these. tkill, which musl uses, names a thread;
        // the first thread has the process's number.
        {SYS_kill, {isOneOf(0, {ourselves})}},
        {SYS_tgkill, {isOneOf(0, {ourselves})}},
        {SYS_tkill, {isOneOf(0, {ourselves})}},
        // Reads our own limits. A pointer in the third argument would set them.
        {SYS_prlimit64, {isOneOf(0, {0, ourselves}), hasNoneOf(2, kAllBits)}},
    };
}

std::vector<Rule> rulesForStoring() {
    return {
        // Landlock does not cover this call. These bits would make a file run with its owner's
        // rights.
        {SYS_fchmod, {hasNoneOf(1, 07000)}},
        // The reading thread adds its own filter.
        {SYS_prctl, {isOneOf(0, {PR_SET_SECCOMP})}},
    };
}

// These are declarations of <linux/landlock.h>, which older headers lack.

/// The actions that are refused unless a rule allows them. An older kernel accepts the structure
/// when the fields that it does not know are 0.
struct Ruleset {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};
struct RuleForFolder {
    std::uint64_t allowed;
    std::int32_t folder;
};
constexpr int kForFolder = 1;
constexpr std::uint32_t kAskForVersion = 1;
constexpr std::uint64_t kWriteFile = 1U << 1U;
constexpr std::uint64_t kReadFile = 1U << 2U;
constexpr std::uint64_t kReadFolder = 1U << 3U;
constexpr std::uint64_t kRemoveFile = 1U << 5U;
constexpr std::uint64_t kMakeFolder = 1U << 7U;
constexpr std::uint64_t kMakeFile = 1U << 8U;

/// Returns everything that this version of Landlock can refuse, except reading.
Ruleset everything(long version) {
    // The second version added moving between folders, the third cutting files short, the fifth
    // requests to devices.
    const unsigned rights = version >= 5 ? 16 : version >= 3 ? 15 : version == 2 ? 14 : 13;
    Ruleset ruleset{};
    ruleset.files = ((1U << rights) - 1) & ~(kReadFile | kReadFolder);
    ruleset.network = version >= 4 ? 3 : 0;  // To offer a connection, and to make one.
    ruleset.scopes = version >= 6 ? 3 : 0;   // Abstract sockets, and signals to other processes.
    return ruleset;
}

/// Limits the calling thread's changes of files to these folders. Returns false when the kernel has
/// no Landlock or has it turned off. In a folder that cannot be opened nothing may be changed.
bool limitWriting(const std::vector<std::string>& folders) {
    const long version = syscall(kLandlockCreateRuleset, nullptr, 0, kAskForVersion);
    if (version < 1) {
        return false;
    }
    const Ruleset attributes = everything(version);
    const auto ruleset =
        static_cast<int>(syscall(kLandlockCreateRuleset, &attributes, sizeof attributes, 0));
    if (ruleset < 0) {
        return false;
    }
    for (const std::string& folder : folders) {
        RuleForFolder rule{};
        rule.allowed = kWriteFile | kRemoveFile | kMakeFolder | kMakeFile;
        rule.folder = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        syscall(kLandlockAddRule, ruleset, kForFolder, &rule, 0);
        close(rule.folder);
    }
    const bool isLimited = syscall(kLandlockRestrictSelf, ruleset, 0) == 0;
    close(ruleset);
    return isLimited;
}

/// The filter is a program that the kernel runs at every call. It can load the call's number and
/// arguments.
using Program = std::vector<sock_filter>;

sock_filter load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

sock_filter answer(std::uint32_t value) {
    return BPF_STMT(BPF_RET | BPF_K, value);
}

/// Compares what is loaded with the value, and skips one of these two numbers of statements.
sock_filter jump(int comparison, std::uint32_t value, std::size_t ifTrue, std::size_t ifFalse) {
    return BPF_JUMP(static_cast<std::uint16_t>(BPF_JMP | comparison | BPF_K), value,
                    static_cast<std::uint8_t>(ifTrue), static_cast<std::uint8_t>(ifFalse));
}

/// Adds statements that allow the call if the rule does. They expect the call's number to be
/// loaded, and leave it loaded for the next rule.
void addRule(Program& program, const Rule& rule) {
    constexpr std::uint8_t kOut = 255;  // Stands for the distance to the rule's end, still unknown.
    constexpr std::size_t kHalf = sizeof(std::uint32_t);
    const std::size_t begin = program.size();
    program.push_back(jump(BPF_JEQ, rule.call, 0, kOut));
    for (const Condition& condition : rule.conditions) {
        const std::size_t lowerHalf = offsetof(seccomp_data, args) + 2 * kHalf * condition.argument;
        program.push_back(load(lowerHalf));
        for (std::size_t left = condition.values.size(); left > 0; --left) {
            const std::uint32_t value = condition.values[condition.values.size() - left];
            program.push_back(jump(BPF_JEQ, value, left - 1, left == 1 ? kOut : 0));
        }
        if (condition.values.empty()) {
            const auto upperBits = static_cast<std::uint32_t>(condition.refusedBits >> 32U);
            const auto lowerBits = static_cast<std::uint32_t>(condition.refusedBits);
            program.push_back(jump(BPF_JSET, lowerBits, kOut, 0));
            program.push_back(load(lowerHalf + kHalf));
            program.push_back(jump(BPF_JSET, upperBits, kOut, 0));
        }
    }
    program.push_back(answer(SECCOMP_RET_ALLOW));
    for (std::size_t i = begin; i < program.size(); ++i) {
        const auto out = static_cast<std::uint8_t>(program.size() - i - 1);
        for (std::uint8_t* way : {&program[i].jt, &program[i].jf}) {
            *way = *way == kOut ? out : *way;
        }
    }
    if (!rule.conditions.empty()) {
        program.push_back(load(offsetof(seccomp_data, nr)));
    }
}

/// Begins statements for the calls below this number. beginOthers ends them and begins those for
/// all other calls; it needs the result of this function.
std::size_t beginBelow(Program& program, std::uint32_t number) {
    program.push_back(jump(BPF_JGE, number, 0, 1));
    program.push_back(BPF_STMT(BPF_JMP | BPF_JA, 0));
    return program.size();
}

void beginOthers(Program& program, std::size_t below) {
    program[below - 1].k = static_cast<std::uint32_t>(program.size() - below);
}

/// Adds a binary search among sorted rules. A linear one would do for the program itself, but when
/// a filter is installed, the kernel runs it once for every call number to find the calls that are
/// always allowed.
void addRules(Program& program, std::span<const Rule> rules, std::uint32_t refusal) {
    constexpr std::size_t kFew = 4;
    std::size_t half = rules.size() / 2;
    while (half > 0 && rules[half - 1].call == rules[half].call) {
        --half;
    }
    if (rules.size() > kFew && half > 0) {
        const std::size_t below = beginBelow(program, rules[half].call);
        addRules(program, rules.first(half), refusal);
        beginOthers(program, below);
        addRules(program, rules.subspan(half), refusal);
        return;
    }
    for (const Rule& rule : rules) {
        addRule(program, rule);
    }
    program.push_back(answer(refusal));
}

Program filter(bool mayStore) {
    std::vector<Rule> rules = rulesForAll();
    const auto addCall = [&rules](std::uint32_t call) { rules.push_back({call, {}}); };
    std::for_each(std::begin(kCalls), std::end(kCalls), addCall);
    if (mayStore) {
        const std::vector<Rule> more = rulesForStoring();
        rules.insert(rules.end(), more.begin(), more.end());
        std::for_each(std::begin(kCallsForStoring), std::end(kCallsForStoring), addCall);
    }
    std::sort(rules.begin(), rules.end(),
              [](const Rule& left, const Rule& right) { return left.call < right.call; });
    Program program = {
        load(offsetof(seccomp_data, arch)),
        jump(BPF_JEQ, kProcessor, 1, 0),
        // Neither this program nor a library calls the kernel in the way of another processor
        // (int 0x80). Only an attacker's code would, so the process ends.
        answer(SECCOMP_RET_KILL_PROCESS),
        load(offsetof(seccomp_data, nr)),
    };
    const auto young = std::find_if(rules.begin(), rules.end(),
                                    [](const Rule& rule) { return rule.call >= kFirstYoungCall; });
    const std::size_t below = beginBelow(program, kFirstYoungCall);
    addRules(program, {rules.begin(), young}, SECCOMP_RET_ERRNO | EPERM);
    beginOthers(program, below);
    addRules(program, {young, rules.end()}, SECCOMP_RET_ERRNO | ENOSYS);
    return program;
}

bool filterCalls(bool mayStore) {
    if (kProcessor == 0) {
        return false;
    }
    Program statements = filter(mayStore);
    const sock_fprog program{static_cast<unsigned short>(statements.size()), statements.data()};
    return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

ORVConfinement confineProcess(const std::vector<std::string>& foldersToWriteIn) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);  // The kernel demands this before the other two.
    ORVConfinement confinement;
    confinement.limitsWriting = limitWriting(foldersToWriteIn);
    confinement.filtersCalls = filterCalls(!foldersToWriteIn.empty());
    return confinement;
}

void confineThreadToReading() {
    limitWriting({});
    filterCalls(false);
}

}  // namespace platform
