#include <vxr/platform/imaging/ProgramLaunch.h>

#include <vxr/platform/imaging/ImportProtocol.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <new>

namespace vxr::importing {

namespace {

constexpr std::size_t stackSize = 64 << 10;

struct Launch {
    const char* path;
    char* const* arguments;
    int socket;
    void* innerStack;
    int process = -1;
    int error = 0;
};

/// Runs in the memory of the suspended host: system calls only, and nothing that watches its stack.
[[gnu::no_sanitize_address]] int becomeProgram(void* context)
{
    auto& launch = *static_cast<Launch*>(context);
    if (launch.socket == programSocket)
        ::fcntl(programSocket, F_SETFD, 0); // dup2 onto itself would leave it to be closed
    else
        ::dup2(launch.socket, programSocket);
    ::syscall(SYS_close_range, unsigned(programSocket + 1), ~0u, 0u);
    struct sigaction standard { };
    standard.sa_handler = SIG_DFL;
    // Signals that the host ignores would stay ignored.
    ::sigaction(SIGCHLD, &standard, nullptr);
    ::sigaction(SIGPIPE, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::execve(launch.path, launch.arguments, environ);
    launch.error = errno;
    ::_exit(127);
}

/// The process between host and program. It ends at once, so the program is nobody's child here.
[[gnu::no_sanitize_address]] int startInner(void* context)
{
    auto& launch = *static_cast<Launch*>(context);
    const int process = ::clone(becomeProgram, launch.innerStack,
        CLONE_VM | CLONE_VFORK | CLONE_PIDFD | SIGCHLD, context, &launch.process);
    if (process < 0)
        launch.error = errno;
    ::_exit(0);
}

/// No handler of the host may run while its memory is lent.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &mOld);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &mOld, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t mOld;
};

} // namespace

int launchProgram(const std::string& path, int socket)
{
    void* stacks = ::mmap(
        nullptr, 2 * stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (stacks == MAP_FAILED)
        return -errno;
    char* const middle = static_cast<char*>(stacks) + stackSize;
    char* const arguments[] { const_cast<char*>(path.c_str()), nullptr };
    Launch launch { path.c_str(), arguments, socket, middle + stackSize };
    {
        const SignalsBlocked blocked;
        // Without an exit signal the host's own waiting never sees this child. It shares the table of
        // descriptors, so that the one for the program arrives here.
        const int child = ::clone(startInner, middle, CLONE_VM | CLONE_VFORK | CLONE_FILES, &launch);
        if (child < 0)
            launch.error = errno;
        else
            while (::waitpid(child, nullptr, __WCLONE) < 0 && errno == EINTR) { }
    }
    ::munmap(stacks, 2 * stackSize);
    if (launch.error == 0)
        return launch.process;
    if (launch.process >= 0)
        ::close(launch.process);
    return -launch.error;
}

} // namespace vxr::importing
