#pragma once

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

/// A program that is killed, or meets a failing disk, in front of any of its calls to the system that change a file or
/// send something to a server.
namespace TestKit {

/// How an interrupted run ended.
struct InterruptedRun {
    bool reached = false;  ///< the call with the number was made
    int code = -1;         ///< the exit code; -1 if the program was killed
};

/// What happens to the call: the program is killed in front of it, or the call fails with EIO.
enum class Interruption { Kill, Fail };

namespace detail {

inline bool ChangesSomething(const user_regs_struct& call, bool failing) {
    switch (call.orig_rax) {
        case SYS_rename:
        case SYS_renameat:
        case SYS_renameat2:
        case SYS_mkdir:
        case SYS_mkdirat:
        case SYS_rmdir:
        case SYS_unlink:
        case SYS_unlinkat:
        case SYS_link:
        case SYS_linkat:
        case SYS_fsync:
        case SYS_fdatasync: return true;
        case SYS_openat: return (call.rdx & O_CREAT) != 0;
        case SYS_pwrite64:
        case SYS_sendto: return !failing;
        default: return false;
    }
}

inline int ExitCodeOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

}  // namespace detail

/// Runs `program` in a process of its own, whose output is dropped, and interrupts it at the call with this number,
/// from 1.
inline InterruptedRun RunInterrupted(const std::function<int()>& program, int number, Interruption interruption) {
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        _exit(program());
    }
    InterruptedRun run;
    int status = 0, calls = 0, deliver = 0;
    bool entering = true, failing = false;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    for (;;) {
        ptrace(PTRACE_SYSCALL, child, nullptr, deliver);
        deliver = 0;
        waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) break;
        if (WSTOPSIG(status) != (SIGTRAP | 0x80)) {
            deliver = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
            continue;
        }
        user_regs_struct call{};
        ptrace(PTRACE_GETREGS, child, nullptr, &call);
        if (failing) {
            call.rax = static_cast<unsigned long long>(-EIO);
            ptrace(PTRACE_SETREGS, child, nullptr, &call);
            failing = false;
        } else if (entering && detail::ChangesSomething(call, interruption == Interruption::Fail) &&
                   ++calls == number) {
            run.reached = true;
            if (interruption == Interruption::Kill) {
                kill(child, SIGKILL);
                waitpid(child, &status, 0);
                break;
            }
            call.orig_rax = static_cast<unsigned long long>(-1);  // no call at all
            ptrace(PTRACE_SETREGS, child, nullptr, &call);
            failing = true;
        }
        entering = !entering;
    }
    run.code = detail::ExitCodeOf(status);
    return run;
}

}  // namespace TestKit
