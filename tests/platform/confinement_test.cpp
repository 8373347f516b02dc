// Tries in child processes what a confined process can still do. tests/shells/terminal_test.cpp
// shows that the menu works in one.

#ifdef BRIMLET_IS_CONFINED

#include "platform/confinement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <functional>
#include <thread>

#include "platform/reading_queue.h"
#include "shells/ORVPosixApplication.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/TemporaryHome.h"

namespace {

/// Calls that are refused whatever their arguments. The arguments used here would do no harm.
constexpr long kRefusedCalls[] = {
    // Calls that reach others: sockets, programs, processes, signals, queues, shared memory, keys.
    SYS_socket, SYS_socketpair, SYS_connect, SYS_bind, SYS_listen, SYS_accept, SYS_accept4,
    SYS_sendto, SYS_sendmsg, SYS_sendmmsg, SYS_recvfrom, SYS_recvmsg, SYS_execve, SYS_execveat,
    SYS_wait4, SYS_ptrace, SYS_process_vm_readv, SYS_process_vm_writev, SYS_kcmp, SYS_kill,
    SYS_tkill, SYS_tgkill, SYS_rt_sigqueueinfo, SYS_setpgid, SYS_setsid, SYS_setpriority,
    SYS_sched_setaffinity, SYS_msgget, SYS_msgsnd, SYS_semget, SYS_shmget, SYS_shmat, SYS_mq_open,
    SYS_add_key, SYS_keyctl, SYS_request_key,
    // Files and their attributes.
    SYS_truncate, SYS_ftruncate, SYS_fallocate, SYS_fchmodat, SYS_fchown, SYS_fchownat,
    SYS_utimensat, SYS_setxattr, SYS_lsetxattr, SYS_fsetxattr, SYS_removexattr, SYS_linkat,
    SYS_symlinkat, SYS_mknodat, SYS_open_by_handle_at, SYS_copy_file_range, SYS_sendfile,
    SYS_splice, SYS_flock, SYS_fanotify_init,
    // Rights, namespaces and the machine.
    SYS_unshare, SYS_setns, SYS_mount, SYS_umount2, SYS_pivot_root, SYS_chroot, SYS_setuid,
    SYS_setresuid, SYS_setgroups, SYS_capset, SYS_setrlimit, SYS_umask, SYS_personality, SYS_bpf,
    SYS_perf_event_open, SYS_userfaultfd, SYS_memfd_create, SYS_seccomp, SYS_reboot,
    SYS_init_module, SYS_delete_module, SYS_swapon, SYS_settimeofday, SYS_clock_settime, SYS_acct,
    SYS_quotactl,
#ifdef SYS_open
    SYS_fork, SYS_creat, SYS_chmod, SYS_chown, SYS_lchown, SYS_utime, SYS_utimes, SYS_link,
    SYS_symlink, SYS_mknod, SYS_rmdir, SYS_modify_ldt, SYS_iopl, SYS_ioperm, SYS_arch_prctl,
#endif
    // pidfd_send_signal, io_uring_setup, fsopen, pidfd_open, clone3, openat2, pidfd_getfd,
    // process_madvise, mount_setattr, fchmodat2, and one that no kernel has yet.
    424, 425, 430, 434, 435, 437, 438, 440, 442, 452, 1000};

struct Attempt {
    const char* what;
    long call;
    long arguments[4];
};

bool isRefused(const Attempt& attempt) {
    const long(&a)[4] = attempt.arguments;
    errno = 0;
    return syscall(attempt.call, a[0], a[1], a[2], a[3], 0, 0) == -1 && errno == ENOSYS;
}

class ConfinementTest : public testing::Test {
protected:
    ConfinementTest() { home.write("open/old", "old"); }

    /// Runs the attempts in a child with these rights. Returns "" when all ended as expected.
    std::string confined(const ORVFileRights& rights, const std::function<void()>& attempts) {
        int ends[2];
        EXPECT_EQ(0, pipe(ends));
        const pid_t child = fork();
        if (child == 0) {
            complaints_ = ends[1];
            confinement = platform::confineProcess(rights);
            attempts();
            _exit(0);
        }
        close(ends[1]);
        std::string complaints;
        for (char c; read(ends[0], &c, 1) == 1;) {
            complaints += c;
        }
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        return status == 0 ? complaints : complaints + "status " + std::to_string(status);
    }

    void expect(bool isAsExpected, const std::string& what) const {
        if (!isAsExpected) {
            const std::string complaint = what + " (" + strerror(errno) + ")\n";
            EXPECT_GT(write(complaints_, complaint.data(), complaint.size()), 0);
        }
    }

    void expectRefusals(const std::vector<Attempt>& attempts) const {
        for (const Attempt& attempt : attempts) {
            expect(isRefused(attempt), attempt.what);
        }
    }

    bool canRead(const std::string& name) { return open(home.path(name).c_str(), O_RDONLY) >= 0; }

    bool canWrite(const std::string& name) {
        return open(home.path(name).c_str(), O_WRONLY | O_CREAT, 0600) >= 0;
    }

    /// Ways to change files, all of which are open to a thread that stores settings.
    void expectNoWayToWrite() {
        const std::string oldPath = home.path("open/old");
        const std::string newPath = home.path("open/new");
        const auto from = reinterpret_cast<long>(oldPath.c_str());
        const auto to = reinterpret_cast<long>(newPath.c_str());
        const long file = open(oldPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        expect(file >= 0, "reading a file");
        constexpr long kUpperHalf = 1L << 32;
        for (const long flags : {long{O_WRONLY}, long{O_RDWR}, long{O_ACCMODE}, long{O_CREAT},
                                 long{O_TRUNC}, O_WRONLY | kUpperHalf, long{O_TMPFILE | O_RDWR}}) {
            expectRefusals({
                {"openat", SYS_openat, {AT_FDCWD, from, flags, 0600}},
#ifdef SYS_open
                {"open", SYS_open, {from, flags, 0600, 0}},
#endif
            });
        }
        expectRefusals({
            {"mkdirat", SYS_mkdirat, {AT_FDCWD, to, 0700, 0}},
            {"renameat", SYS_renameat, {AT_FDCWD, from, AT_FDCWD, to}},
            {"renameat2", SYS_renameat2, {AT_FDCWD, from, AT_FDCWD, to}},
            {"unlinkat", SYS_unlinkat, {AT_FDCWD, from, 0, 0}},
            {"fchmod", SYS_fchmod, {file, 0600, 0, 0}},
            {"fsync", SYS_fsync, {file, 0, 0, 0}},
            {"seccomp", SYS_seccomp, {1, 0, 0, 0}},
#ifdef SYS_open
            {"mkdir", SYS_mkdir, {to, 0700, 0, 0}},
            {"rename", SYS_rename, {from, to, 0, 0}},
            {"unlink", SYS_unlink, {from, 0, 0, 0}},
#endif
        });
    }

    TemporaryHome home;
    const ORVFileRights storing{{home.path("open")}, {}};
    const ORVFileRights reading{{}, std::vector{home.path("open")}};
    ORVConfinement confinement;

private:
    int complaints_ = -1;
};

TEST_F(ConfinementTest, CallsThatAreNotOnTheListAreRefused) {
    EXPECT_EQ("", confined(storing, [&] {
                  expect(confinement.filtersCalls, "a filter");
                  for (const long call : kRefusedCalls) {
                      expectRefusals({{std::to_string(call).c_str(), call, {-1, 0, 0, 0}}});
                  }
              }));
}

TEST_F(ConfinementTest, ArgumentsThatReachFurtherAreRefused) {
    const long page = sysconf(_SC_PAGESIZE);
    const auto memory = reinterpret_cast<long>(mmap(nullptr, static_cast<std::size_t>(page),
                                                    PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    const rlimit limit{16, 16};
    const long parent = getpid();
    EXPECT_EQ(
        "", confined(storing, [&] {
            const long self = getpid();
            expectRefusals({
                {"code that is mapped", SYS_mmap, {0, page, PROT_READ | PROT_EXEC, MAP_PRIVATE}},
                {"memory made code", SYS_mprotect, {memory, page, PROT_EXEC, 0}},
                {"other advice", SYS_madvise, {memory, page, MADV_DONTFORK, 0}},
                {"a process", SYS_clone, {SIGCHLD, 0, 0, 0}},
                {"a namespace", SYS_clone, {CLONE_NEWUSER | SIGCHLD, 0, 0, 0}},
                {"a thread with its own mounts",
                 SYS_clone,
                 {CLONE_VM | CLONE_SIGHAND | CLONE_THREAD | CLONE_NEWNS, 0, 0, 0}},
                {"typing", SYS_ioctl, {STDIN_FILENO, TIOCSTI, 0, 0}},
                {"pasting", SYS_ioctl, {STDIN_FILENO, TIOCLINUX, 0, 0}},
                {"another foreground", SYS_ioctl, {STDIN_FILENO, TIOCSPGRP, 0, 0}},
                {"signals by ioctl", SYS_ioctl, {STDIN_FILENO, FIOASYNC, 0, 0}},
                {"signals by fcntl", SYS_fcntl, {STDIN_FILENO, F_SETFL, O_ASYNC, 0}},
                {"an owner", SYS_fcntl, {STDIN_FILENO, F_SETOWN, parent, 0}},
                {"a lease", SYS_fcntl, {STDIN_FILENO, F_SETLEASE, F_RDLCK, 0}},
                {"a signal to another", SYS_kill, {parent, 0, 0, 0}},
                {"a signal to the group", SYS_kill, {0, 0, 0, 0}},
                {"a signal to another's thread", SYS_tgkill, {parent, parent, 0, 0}},
                {"a limit", SYS_prlimit64, {0, RLIMIT_NOFILE, reinterpret_cast<long>(&limit), 0}},
                {"a limit, by an upper half", SYS_prlimit64, {0, RLIMIT_NOFILE, 1L << 32, 0}},
                {"another's limit", SYS_prlimit64, {parent, RLIMIT_NOFILE, 0, 0}},
                {"tracing oneself", SYS_prctl, {PR_SET_DUMPABLE, 1, 0, 0}},
                {"another's rights", SYS_fchmod, {-1, 04755, 0, 0}},
            });
            expect(kill(static_cast<pid_t>(self), 0) == 0, "a signal to oneself");
        }));
}

#ifdef __x86_64__

TEST_F(ConfinementTest, ACallInTheMannerOfAnotherProcessorEndsTheProcess) {
    const auto callOf32Bits = [] {
        constexpr long kGetpid = 20;
        long result = kGetpid;
        __asm__ volatile("int $0x80" : "+a"(result) : : "memory");
    };
    const auto callOfX32 = [] { syscall(0x40000000 + SYS_getpid); };
    for (const std::function<void()>& call : {std::function<void()>(callOf32Bits), {callOfX32}}) {
        EXPECT_EQ("status " + std::to_string(SIGSYS), confined(storing, [&] {
                      call();
                      expect(false, "it went on");
                  }));
    }
}

#endif

// As on kernels before 3.17, and under emulators of system calls.
TEST_F(ConfinementTest, WithoutTheCallForFiltersTheProgramStillRuns) {
    sock_filter code[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_seccomp, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter{4, code};
    const auto confine = [&] {
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
        platform::confineProcess(storing);
        _exit(home.content("open/old") == "old" ? 0 : 1);
    };
    EXPECT_EXIT(confine(), testing::ExitedWithCode(0), "");
}

TEST_F(ConfinementTest, WritingIsRefusedButInTheFolderGiven) {
    if (!confined(storing, [&] { expect(confinement.limitsFiles, "Landlock"); }).empty()) {
        GTEST_SKIP() << "this kernel does not limit writing to folders";
    }
    EXPECT_EQ("", confined(storing, [&] {
                  const std::string old = home.path("open/old");
                  expect(!canWrite("elsewhere") && errno == EACCES, "a file elsewhere");
                  expect(mkdir(home.path("folder").c_str(), 0700) != 0, "a folder elsewhere");
                  expect(rename(old.c_str(), home.path("old").c_str()) != 0, "moving elsewhere");
                  expect(canWrite("open/other"), "a file");
                  expect(mkdir(home.path("open/folder").c_str(), 0700) == 0, "a folder");
                  expect(rename(home.path("open/other").c_str(), old.c_str()) == 0, "renaming");
              }));
}

TEST_F(ConfinementTest, ReadingIsRefusedButInThePlacesGiven) {
    if (!confined(reading, [&] { expect(confinement.limitsFiles, "Landlock"); }).empty()) {
        GTEST_SKIP() << "this kernel does not limit reading to places";
    }
    home.write("secret", "x");
    home.write("file", "x");
    home.makeLink("link", "open");
    const auto expectPlacesAlone = [&] {
        expect(canRead("open/old") && canRead("open") && canRead("file"), "the places");
        expect(!canRead("secret") && errno == EACCES, "a file elsewhere");
        expect(!canRead("") && errno == EACCES, "a folder elsewhere");
        expect(access(home.path("secret").c_str(), F_OK) == 0, "whether there is one");
    };
    const std::vector<std::string> places = {home.path("nowhere"), home.path("link"),
                                             home.path("file")};
    EXPECT_EQ("", confined({{}, places}, [&] {
                  expectPlacesAlone();
                  std::thread(expectPlacesAlone).join();
              }));
    EXPECT_EQ("", confined({}, [&] {
                  std::thread([&] {
                      platform::confineThreadToReading(places);
                      expectPlacesAlone();
                  }).join();
                  expect(canRead("secret"), "reading in the other thread");
              }));
}

TEST_F(ConfinementTest, APlaceIsReadWhateverStandsThereLater) {
    EXPECT_EQ("", confined(storing, [&] {
                  ORVPosixRunLoop loop;
                  platform::ReadingQueue queue(loop, {home.path("open/place")});
                  std::vector<std::string> contents = {"second", "first", ""};
                  const std::function<void()> next = [&] {
                      const std::string content = contents.back();
                      contents.pop_back();
                      if (!content.empty()) {
                          home.replace("open/place", content);
                      }
                      queue.dispatch([&, content] {
                          expect(home.content("open/place") == content, "reads: " + content);
                          expect(!confinement.limitsFiles || !canRead("open/old"), "no others");
                          loop.post(contents.empty() ? [&] { loop.stop(7); } : next);
                      });
                  };
                  loop.post(next);
                  expect(loop.run() == 7, "an end");
              }));
}

TEST_F(ConfinementTest, TheFilterAloneLetsReadersWriteNothing) {
    EXPECT_EQ("", confined(reading, [&] {
                  expectNoWayToWrite();
                  expect(!canWrite("open/new") && errno == ENOSYS, "an answer by the filter");
                  std::thread([&] { expectNoWayToWrite(); }).join();
              }));
    EXPECT_EQ("", confined(storing, [&] {
                  std::thread([&] {
                      platform::confineThreadToReading({home.path("open")});
                      expectNoWayToWrite();
                      std::thread([&] { expectNoWayToWrite(); }).join();
                  }).join();
                  expect(canWrite("open/new"), "writing in the thread that stores");
              }));
    EXPECT_EQ("", confined(storing, [&] {
                  ORVPosixHost host({home.path("open"), {}}, platform::makeFiles(),
                                    std::make_unique<MemoryDefaults>(), [](std::string_view) {});
                  const auto queue = host.makeSerialQueue("");
                  queue->dispatch([&] { expectNoWayToWrite(); });
                  while (!host.readerIsIdle()) {
                  }
              }));
}

TEST_F(ConfinementTest, SignalsToOneselfArriveAndNoCoreIsDumped) {
    EXPECT_EQ("status " + std::to_string(SIGABRT), confined(reading, [&] {
                  rlimit core{1, 1};
                  expect(getrlimit(RLIMIT_CORE, &core) == 0 && core.rlim_max == 0, "no core dump");
                  static volatile sig_atomic_t received = 0;
                  signal(SIGUSR1, [](int) { received = 1; });
                  expect(raise(SIGUSR1) == 0 && received == 1, "a signal");
                  std::abort();
              }));
}

}  // namespace

#endif
