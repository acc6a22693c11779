#pragma once

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vxr::testing {

/// Runs a piece of work in a process of its own and watches its system calls that change files: writing,
/// syncing, naming, closing. One of them may be where the process is killed, or where the disk is full.
class TracedCalls {
public:
    enum Action { None, KillBefore, KillAfter, Fail };
    struct Fault {
        std::size_t call = 0; ///< counted from 0
        Action action = None;
    };

    TracedCalls(const std::function<void()>& work, const Fault&);

    bool canTrace() const { return mCanTrace; }
    const std::vector<std::string>& calls() const { return mCalls; } ///< by name
    /// "saved", "killed", or what the exception said.
    const std::string& outcome() const { return mOutcome; }

private:
    void watch(int process, const Fault&);

    bool mCanTrace = false;
    std::vector<std::string> mCalls;
    std::string mOutcome;
};

#if defined(__x86_64__)

inline const std::map<long, const char*> watchedCalls { { SYS_write, "write" }, { SYS_writev, "writev" },
    { SYS_pwrite64, "pwrite" }, { SYS_fsync, "fsync" }, { SYS_fdatasync, "fdatasync" },
    { SYS_rename, "rename" }, { SYS_renameat, "renameat" }, { SYS_renameat2, "renameat2" },
    { SYS_link, "link" }, { SYS_linkat, "linkat" }, { SYS_unlink, "unlink" }, { SYS_unlinkat, "unlinkat" },
    { SYS_ftruncate, "ftruncate" }, { SYS_fchmod, "fchmod" }, { SYS_close, "close" } };

/// In the child. Its own words to the parent go by another call, so that they don't count.
[[noreturn]] inline void runTraced(const std::function<void()>& work, int report)
{
    std::string outcome = "saved";
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        _exit(1);
    raise(SIGSTOP);
    try {
        work();
    } catch (const std::exception& error) {
        outcome = error.what();
    }
    raise(SIGSTOP);
    static_cast<void>(!::write(report, outcome.data(), outcome.size()));
    _exit(0);
}

#endif

inline TracedCalls::TracedCalls(const std::function<void()>& work, const Fault& fault)
{
#if defined(__x86_64__)
    int report[2];
    if (pipe(report) != 0)
        return;
    const pid_t child = fork();
    if (child == 0)
        runTraced(work, report[1]);
    close(report[1]);
    int status = 0;
    waitpid(child, &status, 0);
    mCanTrace = WIFSTOPPED(status);
    if (mCanTrace)
        watch(child, fault);
    char text[200];
    for (ssize_t count; (count = read(report[0], text, sizeof text)) > 0;)
        mOutcome.append(text, static_cast<std::size_t>(count));
    close(report[0]);
#else
    static_cast<void>(work);
    static_cast<void>(fault);
#endif
}

inline void TracedCalls::watch(int process, const Fault& fault)
{
#if defined(__x86_64__)
    ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    bool isEntry = true, isFaulty = false;
    for (int status = 0;;) {
        ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        if (waitpid(process, &status, 0) < 0 || !WIFSTOPPED(status))
            return;
        if (WSTOPSIG(status) == SIGSTOP) { // the work is done
            ptrace(PTRACE_DETACH, process, nullptr, nullptr);
            waitpid(process, &status, 0);
            return;
        }
        if (WSTOPSIG(status) != (SIGTRAP | 0x80))
            continue;
        user_regs_struct registers {};
        ptrace(PTRACE_GETREGS, process, nullptr, &registers);
        const auto found = watchedCalls.find(static_cast<long>(registers.orig_rax));
        if (isEntry && found != watchedCalls.end()) {
            isFaulty = fault.action != None && mCalls.size() == fault.call;
            mCalls.emplace_back(found->second);
            if (isFaulty && fault.action == Fail) {
                registers.orig_rax = static_cast<unsigned long long>(-1); // no call at all
                ptrace(PTRACE_SETREGS, process, nullptr, &registers);
            }
        }
        if (isFaulty && fault.action == (isEntry ? KillBefore : KillAfter)) {
            mOutcome = "killed";
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            return;
        }
        if (isFaulty && !isEntry) {
            registers.rax = static_cast<unsigned long long>(-ENOSPC);
            ptrace(PTRACE_SETREGS, process, nullptr, &registers);
            isFaulty = false;
        }
        isEntry = !isEntry;
    }
#else
    static_cast<void>(process);
    static_cast<void>(fault);
#endif
}

} // namespace vxr::testing
