#include <apps/import/JobProcess.h>

#include <apps/import/Job.h>
#include <apps/import/JobRunner.h>
#include <apps/import/Messages.h>
#include <apps/import/TemporaryFolder.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <new>
#include <optional>
#include <utility>

namespace vxr::importing {

namespace {

constexpr int firstJobDescriptor = 40; ///< beyond what the program itself has open
constexpr std::size_t mostKept = 3; ///< documents
constexpr rlim_t mostDescriptors = 64; ///< that a job may open
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

/// What a job's process says when it has left its result.
enum class Word : char { Done, NotDone, ForOthers };

/// Runs the job and leaves its result, or why there is none.
Word runAndReport(JobRunner& runner, const Request& request, const JobInput& input, const JobFiles& files)
{
    JobOutput output(files.report, files.payload, request.limits.outputBytes);
    try {
        runner.run(request, input, output);
        output.finish(ImportOutcome::Done);
        return Word::Done;
    } catch (const JobForOthers&) {
        return Word::ForOthers;
    } catch (const OversizeError& error) {
        output.finish(ImportOutcome::TooLarge, error.what());
    } catch (const std::bad_alloc&) {
        output.finish(ImportOutcome::TooLarge, "The file takes more memory than a job may use.");
    } catch (const std::exception& error) {
        output.finish(ImportOutcome::Refused, error.what());
    }
    return Word::NotDone;
}

bool isKeptFor(const Request& request) { return request.job == Job::RenderPageArea; }

} // namespace

JobProcess::JobProcess(JobRunner& runner, const Sandbox& sandbox, int hostSocket)
    : mRunner(runner)
    , mSandbox(sandbox)
    , mHostSocket(hostSocket)
    , mOwnProcess(::getpid())
{
    noteBaseSize();
    mNext = startWorker();
}

JobProcess::~JobProcess()
{
    dismiss(mNext);
    for (const KeptWorker& kept : mKept)
        dismiss(kept.worker);
    reap(true);
}

/// What every job's process does first.
void JobProcess::prepare() const
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != mOwnProcess)
        ::_exit(9); // the program died before the line above
    silence();
    volunteerForOutOfMemory();
    ::signal(SIGPIPE, SIG_IGN);
    std::set_new_handler(nullptr); // one of the libraries sets a handler that throws what nobody catches
}

JobProcess::Worker JobProcess::startWorker()
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return {};
    const int process = ::fork();
    if (process == 0)
        work(ends[1]);
    ::close(ends[1]);
    if (process < 0) {
        ::close(ends[0]);
        return {};
    }
    return { process, int(::syscall(SYS_pidfd_open, process, 0)), ends[0] };
}

void JobProcess::work(int socket)
{
    prepare();
    socket = moved(socket);
    ::syscall(SYS_close_range, 3u, unsigned(firstJobDescriptor - 1), 0u);
    if (!mSandbox.enter(socket + 1))
        ::_exit(8);
    std::optional<JobInput> input;
    for (;;) {
        Request request;
        int files[3];
        if (!receiveMessage(socket, &request, sizeof request, files))
            ::_exit(0);
        const bool hasInput = request.job != Job::FileTypes && request.job != Job::Misbehave;
        const JobFiles job
            = hasInput ? JobFiles { files[2], files[0], files[1] } : JobFiles { -1, files[0], files[1] };
        if (!input)
            input.emplace(job.input); // that of each later job, too
        const Word word = runAndReport(mRunner, request, *input, job);
        for (const int file : files)
            ::close(file);
        if (::write(socket, &word, 1) != 1)
            ::_exit(7);
        if (word != Word::Done || !isKeptFor(request))
            ::_exit(0); // what the libraries would do at the end is of no use
    }
}

JobProcess::Worker JobProcess::startPostScript(
    const Request& request, const JobFiles& files, const std::string& folder)
{
    const int process = ::fork();
    if (process == 0)
        becomePostScript(request, files, folder);
    return process < 0 ? Worker {} : Worker { process, int(::syscall(SYS_pidfd_open, process, 0)), -1 };
}

void JobProcess::becomePostScript(const Request& request, JobFiles files, const std::string& folder)
{
    prepare();
    files = { moved(files.input), moved(files.report), moved(files.payload) };
    ::syscall(SYS_close_range, 3u, unsigned(firstJobDescriptor - 1), 0u);
    // Ghostscript may write below its temporary folder: this one is the job's own.
    ::clearenv();
    ::setenv("TMPDIR", folder.c_str(), 1);
    ::setenv("TEMP", folder.c_str(), 1);
    if (folder.empty()
        || !mSandbox.enterForPostScript(std::max({ files.input, files.report, files.payload }) + 1, folder))
        ::_exit(8);
    runAndReport(mRunner, request, JobInput(files.input), files);
    ::_exit(1); // it has not become Ghostscript
}

/// From here the kernel watches. The process has hardly used anything yet.
void JobProcess::limit(const Worker& worker, const Request& request, const JobFiles& files) const
{
    const std::uint64_t memory = std::max(request.limits.memoryBytes, leastMemory);
    const std::uint64_t mapped = sizeOf(files.input) + request.limits.outputBytes;
    const auto set = [&](__rlimit_resource resource, rlim_t most, rlim_t beyond = 0) {
        const rlimit limits { most, most + beyond };
        ::prlimit(worker.process, resource, &limits, nullptr);
    };
    set(RLIMIT_DATA, mBasePrivateBytes + memory);
    set(RLIMIT_AS, mBaseAddressBytes + memory + reservedBytes + mapped);
    set(RLIMIT_FSIZE, request.limits.outputBytes);
    if (!isKeptFor(request))
        set(RLIMIT_CPU, request.limits.processorSeconds, 1);
    else // only a process that may ask for more later is trusted to heed the signal; the wait ends the others
        limitSeconds(worker, request);
    set(RLIMIT_NOFILE, mostDescriptors);
    set(RLIMIT_CORE, 0);
}

/// From now on, beyond what the process has used already.
void JobProcess::limitSeconds(const Worker& worker, const Request& request) const
{
    clockid_t clock {};
    timespec used {};
    if (::clock_getcpuclockid(worker.process, &clock) == 0)
        ::clock_gettime(clock, &used);
    const rlimit limits { rlim_t(used.tv_sec) + request.limits.processorSeconds, RLIM_INFINITY };
    ::prlimit(worker.process, RLIMIT_CPU, &limits, nullptr);
}

JobProcess::End JobProcess::waitFor(Worker worker, const Request& request, int input)
{
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::milliseconds(request.limits.waitMilliseconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(limit - Clock::now()).count();
        pollfd watched[] { { worker.handle, POLLIN, 0 }, { mHostSocket, POLLRDHUP, 0 },
            { worker.socket, POLLIN, 0 } };
        const int count = ::poll(watched, 3, left > 0 ? int(left) : 0);
        if (count < 0 && errno == EINTR)
            continue;
        Word word {};
        if (count > 0 && watched[2].revents != 0 && ::read(worker.socket, &word, 1) == 1) {
            if (word == Word::Done && isKeptFor(request))
                keep(worker, input);
            else
                dismiss(worker);
            End end;
            end.isDone = word == Word::Done;
            end.isForOthers = word == Word::ForOthers;
            return end;
        }
        if (count > 0 && watched[0].revents == 0 && watched[1].revents == 0) {
            ::close(std::exchange(worker.socket, -1)); // it is about to end
            continue;
        }
        if (count > 0 && watched[1].revents == 0)
            return endOf(worker, request);
        dismiss(worker);
        End end { .outcome = ImportOutcome::TimedOut };
        end.hostIsGone = count > 0;
        return end;
    }
}

JobProcess::End JobProcess::endOf(Worker worker, const Request& request)
{
    int status = 0;
    rusage used {};
    while (::wait4(worker.process, &status, 0, &used) < 0 && errno == EINTR) { }
    ::close(worker.handle);
    if (worker.socket >= 0)
        ::close(worker.socket);
    End end;
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

void JobProcess::dismiss(Worker worker)
{
    if (worker.process < 0)
        return;
    ::kill(worker.process, SIGKILL);
    ::close(worker.handle);
    if (worker.socket >= 0)
        ::close(worker.socket);
    mEnding.push_back(worker.process);
}

void JobProcess::reap(bool all)
{
    std::erase_if(mEnding, [all](int process) {
        int ended = 0;
        do
            ended = ::waitpid(process, nullptr, all ? 0 : WNOHANG);
        while (ended < 0 && errno == EINTR);
        return ended != 0;
    });
}

void JobProcess::keep(Worker worker, int input)
{
    struct stat status { };
    ::fstat(input, &status);
    if (mKept.size() >= mostKept) {
        dismiss(mKept.back().worker);
        mKept.pop_back();
    }
    mKept.insert(mKept.begin(), { worker, status.st_dev, status.st_ino });
}

/// The process that has the file of the request open; it is no longer among those that are kept.
JobProcess::Worker JobProcess::keptFor(const Request& request, int input)
{
    struct stat status { };
    if (!isKeptFor(request) || ::fstat(input, &status) != 0)
        return {};
    // A kept process has the file mapped, so its number can't be another file's.
    const auto found = std::ranges::find_if(mKept,
        [&](const KeptWorker& kept) { return kept.device == status.st_dev && kept.file == status.st_ino; });
    if (found == mKept.end())
        return {};
    const Worker worker = found->worker;
    mKept.erase(found);
    return worker;
}

std::array<std::byte, 16> JobProcess::startOf(int input, std::size_t& count)
{
    std::array<std::byte, 16> start {};
    const ssize_t read = input < 0 ? 0 : ::pread(input, start.data(), start.size(), 0);
    count = std::size_t(std::max<ssize_t>(read, 0));
    return start;
}

bool JobProcess::takes(const Request& request, int input) const
{
    std::size_t count = 0;
    const auto start = startOf(input, count);
    return mRunner.takes(request, std::span(start).first(count));
}

/// Looks at the first bytes to know which libraries the job will need.
void JobProcess::loadWhatIsNeeded(const Request& request, int input)
{
    std::size_t count = 0;
    const auto start = startOf(input, count);
    if (!mRunner.load(request, std::span(start).first(count)))
        return;
    dismiss(std::exchange(mNext, {})); // it was made without them
    noteBaseSize();
}

void JobProcess::noteBaseSize()
{
    mBasePrivateBytes = statusNumber("VmData:") << 10;
    mBaseAddressBytes = statusNumber("VmSize:") << 10;
}

JobProcess::End JobProcess::runPostScript(const Request& request, const JobFiles& files)
{
    const TemporaryFolder folder;
    const Worker worker = startPostScript(request, files, folder.path());
    if (worker.process < 0)
        return { .outcome = ImportOutcome::TooLarge };
    limit(worker, request, files);
    const End end = waitFor(worker, request, files.input);
    reap(true); // nothing more comes into the folder
    return end;
}

bool JobProcess::tell(const Worker& worker, const Request& request, const JobFiles& files) const
{
    const int descriptors[] { files.report, files.payload, files.input };
    const std::size_t count = files.input < 0 ? 2 : 3;
    return sendMessage(worker.socket, &request, sizeof request, std::span(descriptors).first(count));
}

JobProcess::End JobProcess::run(const Request& request, const JobFiles& files)
{
    reap(false);
    if (request.job == Job::ConvertEPS)
        return runPostScript(request, files);
    if (const Worker kept = keptFor(request, files.input); kept.process >= 0) {
        limitSeconds(kept, request);
        tell(kept, request, files);
        const End end = waitFor(kept, request, files.input);
        // What it has gathered may have been too much: a fresh one may do what it can't.
        if (end.isDone || end.hostIsGone || end.outcome == ImportOutcome::TimedOut)
            return end;
    }
    loadWhatIsNeeded(request, files.input);
    const Worker worker = mNext.process >= 0 ? std::exchange(mNext, {}) : startWorker();
    if (worker.process < 0)
        return { .outcome = ImportOutcome::TooLarge };
    limit(worker, request, files);
    tell(worker, request, files);
    mNext = startWorker();
    return waitFor(worker, request, files.input);
}

} // namespace vxr::importing
