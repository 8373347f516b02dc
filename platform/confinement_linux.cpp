// A filter of system calls for what no call may do, and Landlock for where files may be written.

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "platform/confinement.h"

namespace platform {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t kProcessor = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t kProcessor = 0;  // Its calls are not known here.
#endif

constexpr std::uint32_t kRefusedCalls[] = {
    // The network, and every other socket.
    SYS_socket, SYS_socketpair, SYS_connect, SYS_bind, SYS_listen, SYS_accept, SYS_accept4,
    SYS_sendto, SYS_sendmsg, SYS_sendmmsg,
    // Programs and processes.
    SYS_execve, SYS_execveat,
#ifdef SYS_fork
    SYS_fork, SYS_vfork,
#endif
    // Those of others.
    SYS_ptrace, SYS_process_vm_readv, SYS_process_vm_writev,
    // A way around all of it.
    SYS_io_uring_setup};

sock_filter load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset));
}

sock_filter answer(std::uint32_t value) {
    return BPF_STMT(BPF_RET | BPF_K, value);
}

/// Goes on with the next statement where the loaded value is this one, else leaves some out.
sock_filter unlessEqual(std::uint32_t value, std::uint8_t leftOut) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, leftOut);
}

std::vector<sock_filter> filter() {
    constexpr std::uint32_t kRefusal = SECCOMP_RET_ERRNO | EPERM;
    constexpr std::size_t kFirstArgument = offsetof(seccomp_data, args);  // Its lower half.
    std::vector<sock_filter> program = {
        // Calls in the manner of another processor have other numbers.
        load(offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kProcessor, 1, 0),
        answer(kRefusal),
        load(offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, 0x40000000, 0, 1),  // Those of x32.
        answer(kRefusal),
        // A thread is started with clone where its successor, whose flags no filter sees, is
        // missing.
        unlessEqual(SYS_clone3, 1),
        answer(SECCOMP_RET_ERRNO | ENOSYS),
        unlessEqual(SYS_clone, 4),
        load(kFirstArgument),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, CLONE_THREAD, 0, 1),
        answer(SECCOMP_RET_ALLOW),
        answer(kRefusal),
    };
    for (const std::uint32_t call : kRefusedCalls) {
        program.push_back(unlessEqual(call, 1));
        program.push_back(answer(kRefusal));
    }
    program.push_back(answer(SECCOMP_RET_ALLOW));
    return program;
}

void refuseCalls() {
    if (kProcessor == 0) {
        return;
    }
    std::vector<sock_filter> statements = filter();
    const sock_fprog program{static_cast<unsigned short>(statements.size()), statements.data()};
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

/// Everything that this version of Landlock knows to change files, or to run one.
std::uint64_t changes(long version) {
    constexpr std::uint64_t kTruncate = 1U << 14;  // Newer than the oldest headers.
    constexpr std::uint64_t kFirst =
        LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
        LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
        LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK |
        LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
    return kFirst | (version >= 2 ? LANDLOCK_ACCESS_FS_REFER : 0) | (version >= 3 ? kTruncate : 0);
}

void refuseWritingOutside(const std::vector<std::string>& folders) {
    const long version =
        syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return;
    }
    landlock_ruleset_attr rules{};
    rules.handled_access_fs = changes(version);
    const auto ruleset = static_cast<int>(
        syscall(SYS_landlock_create_ruleset, &rules, sizeof rules.handled_access_fs, 0));
    if (ruleset < 0) {
        return;
    }
    for (const std::string& folder : folders) {
        landlock_path_beneath_attr rule{};
        rule.allowed_access = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_FILE |
                              LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG;
        rule.parent_fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        close(rule.parent_fd);
    }
    syscall(SYS_landlock_restrict_self, ruleset, 0);
    close(ruleset);
}

}  // namespace

void confineProcess(const std::vector<std::string>& foldersToWriteIn) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);  // Without it the others are not to be had.
    refuseWritingOutside(foldersToWriteIn);
    refuseCalls();
}

void confineThreadToReading() {
    refuseWritingOutside({});
}

}  // namespace platform
