#include <apps/import/JobProcess.h>

#include <apps/import/Job.h>
#include <apps/import/TemporaryFolder.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <new>

namespace vxr::importing {

namespace {

constexpr int firstJobDescriptor = 100;
constexpr std::uint64_t leastMemory = std::uint64_t { 256 } << 20;
/// Address space for reservations (arenas, stacks of threads) that never become memory.
constexpr std::uint64_t reservedBytes = std::uint64_t { 1 } << 30;

std::uint64_t statusNumber(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key))
            return std::strtoull(line.c_str() + key.size(), nullptr, 10);
    return 0;
}

/// Standard streams lead nowhere: one hostile file can make a library write millions of complaints.
void silence()
{
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = 0; stream < 3; ++stream)
        ::dup2(nowhere, stream);
}

/// When memory runs out, the system ends the job rather than the host.
void volunteerForOutOfMemory()
{
    const int file = ::open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return;
    if (::write(file, "1000", 4) < 0) { } // a wish
    ::close(file);
}

int moved(int descriptor)
{
    return descriptor < 0 ? -1 : ::fcntl(descriptor, F_DUPFD_CLOEXEC, firstJobDescriptor);
}

std::uint64_t sizeOf(int descriptor)
{
    struct stat status { };
    return descriptor >= 0 && ::fstat(descriptor, &status) == 0 ? std::uint64_t(status.st_size) : 0;
}

ImportOutcome outcomeOf(int signal)
{
    if (signal == SIGXFSZ)
        return ImportOutcome::TooLarge;
    return signal == SIGXCPU ? ImportOutcome::TimedOut : ImportOutcome::Crashed;
}

} // namespace

int countThreads() { return int(statusNumber("Threads:")); }

JobProcess::JobProcess(const Sandbox& sandbox, int hostSocket)
    : mSandbox(sandbox)
    , mHostSocket(hostSocket)
    , mOwnProcess(::getpid())
    , mBasePrivateBytes(statusNumber("VmData:") << 10)
    , mBaseAddressBytes(statusNumber("VmSize:") << 10)
{
}

void JobProcess::become(const Request& request, int input, int report, int payload, const std::string& folder)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != mOwnProcess)
        ::_exit(9); // the program died before the line above
    silence();
    volunteerForOutOfMemory();
    input = moved(input);
    report = moved(report);
    payload = moved(payload);
    ::syscall(SYS_close_range, 3u, unsigned(firstJobDescriptor - 1), 0u);
    ::signal(SIGPIPE, SIG_IGN);
    std::set_new_handler(nullptr); // one of the libraries sets a handler that throws what nobody catches

    const bool isPostScript = request.job == Job::ConvertEPS;
    const auto memory = std::max(request.limits.memoryBytes, leastMemory);
    const auto address = mBaseAddressBytes + memory + reservedBytes + sizeOf(input)
        + (isPostScript ? 0 : request.limits.outputBytes); // mapped by the others
    setLimits(
        { mBasePrivateBytes + memory, address, request.limits.outputBytes, request.limits.processorSeconds });
    if (isPostScript) {
        // Ghostscript may write below its temporary folder: this one is the job's own.
        ::clearenv();
        ::setenv("TMPDIR", folder.c_str(), 1);
        ::setenv("TEMP", folder.c_str(), 1);
    }
    const int firstToClose = std::max({ input, report, payload }) + 1;
    const bool isConfined
        = isPostScript ? mSandbox.enterForPostScript(firstToClose, folder) : mSandbox.enter(firstToClose);
    if (!isConfined)
        ::_exit(8);

    JobOutput output(report, payload, request.limits.outputBytes);
    try {
        const JobInput file(input);
        runJob(request, file, output);
        output.finish(ImportOutcome::Done);
    } catch (const OversizeError& error) {
        output.finish(ImportOutcome::TooLarge, error.what());
    } catch (const std::bad_alloc&) {
        output.finish(ImportOutcome::TooLarge, "The file takes more memory than a job may use.");
    } catch (const std::exception& error) {
        output.finish(ImportOutcome::Refused, error.what());
    }
    ::_exit(0); // what the libraries would do at the end is of no use
}

JobProcess::End JobProcess::waitFor(int process, const Request& request)
{
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::milliseconds(request.limits.waitMilliseconds);
    const int handle = int(::syscall(SYS_pidfd_open, process, 0));
    End end;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(limit - Clock::now()).count();
        pollfd watched[] { { handle, POLLIN, 0 }, { mHostSocket, POLLRDHUP, 0 } };
        const int count = ::poll(watched, 2, left > 0 ? int(left) : 0);
        if (count < 0 && errno == EINTR)
            continue;
        end.hostIsGone = count > 0 && watched[1].revents != 0;
        if (count <= 0)
            end.outcome = ImportOutcome::TimedOut;
        if (count <= 0 || end.hostIsGone)
            ::kill(process, SIGKILL);
        break;
    }
    ::close(handle);
    int status = 0;
    rusage used {};
    while (::wait4(process, &status, 0, &used) < 0 && errno == EINTR) { }
    if (end.outcome != ImportOutcome::Done)
        return end;
    if (WIFSIGNALED(status)) {
        end.signal = std::uint32_t(WTERMSIG(status));
        end.outcome = outcomeOf(WTERMSIG(status));
        // The kernel's last word when a process ignores SIGXCPU.
        const auto seconds = used.ru_utime.tv_sec + used.ru_stime.tv_sec + 1;
        if (end.signal == SIGKILL && std::uint64_t(seconds) >= request.limits.processorSeconds)
            end.outcome = ImportOutcome::TimedOut;
    } else if (WEXITSTATUS(status) != 0) {
        end.outcome = request.job == Job::ConvertEPS ? ImportOutcome::Refused : ImportOutcome::Crashed;
    }
    return end;
}

JobProcess::End JobProcess::run(const Request& request, int input, int report, int payload)
{
    TemporaryFolder folder(request.job == Job::ConvertEPS);
    const int process = ::fork();
    if (process == 0)
        become(request, input, report, payload, folder.path());
    if (process < 0)
        return { ImportOutcome::TooLarge, 0, false };
    return waitFor(process, request);
}

} // namespace vxr::importing
