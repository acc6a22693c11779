#pragma once

#include <apps/import/Sandbox.h>
#include <vxr/platform/imaging/ImportProtocol.h>

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace vxr::importing {

class JobRunner;

/// The files of a job: the input, or -1, and those that it writes.
struct JobFiles {
    int input = -1, report = -1, payload = -1;
};

/// Runs each job in a process of its own, forked from this one with its libraries loaded and warm. The
/// process of the next job is made while one works, and waits, confined already, for what to do. One that
/// has drawn an area of a page keeps its document open for further areas of it, and sees no other file.
class JobProcess {
public:
    /// `hostSocket` is watched: when the host goes, the job goes.
    JobProcess(JobRunner& runner, const Sandbox& sandbox, int hostSocket);
    ~JobProcess();
    JobProcess(const JobProcess&) = delete;
    JobProcess& operator=(const JobProcess&) = delete;

    struct End {
        ImportOutcome outcome = ImportOutcome::Done;
        std::uint32_t signal = 0;
        bool hostIsGone = false;
        bool isDone = false; ///< there is a result, not a reason
        bool isForOthers = false; ///< the file takes another program
    };

    /// Whether the job's file is for this program, as far as its first bytes tell.
    bool takes(const Request&, int input) const;

    /// Waits for the job's result or end. Afterwards it can still spoil its files, so seal them at once.
    End run(const Request&, const JobFiles&);

private:
    struct Worker {
        int process = -1;
        int handle = -1; ///< a descriptor that stands for the process
        int socket = -1; ///< to it; -1 for Ghostscript's, which is told everything at its start
    };

    /// A process that has a file open.
    struct KeptWorker {
        Worker worker;
        dev_t device;
        ino_t file;
    };

    static std::array<std::byte, 16> startOf(int input, std::size_t& count);
    void prepare() const;
    Worker startWorker();
    Worker startPostScript(const Request&, const JobFiles&, const std::string& folder);
    [[noreturn]] void work(int socket);
    [[noreturn]] void becomePostScript(const Request&, JobFiles, const std::string& folder);
    void loadWhatIsNeeded(const Request&, int input);
    void noteBaseSize();
    void limit(const Worker&, const Request&, const JobFiles&) const;
    void limitSeconds(const Worker&, const Request&) const;
    bool tell(const Worker&, const Request&, const JobFiles&) const;
    End runPostScript(const Request&, const JobFiles&);
    void keep(Worker, int input);
    Worker keptFor(const Request&, int input);
    End waitFor(Worker, const Request&, int input);
    End endOf(Worker, const Request&);
    void dismiss(Worker); ///< ends it without waiting
    void reap(bool all);

    JobRunner& mRunner;
    const Sandbox& mSandbox;
    int mHostSocket;
    int mOwnProcess;
    std::uint64_t mBasePrivateBytes = 0, mBaseAddressBytes = 0; ///< what a job inherits of either
    Worker mNext;
    std::vector<KeptWorker> mKept; ///< used last in front
    std::vector<int> mEnding; ///< processes that have been told to end
};

} // namespace vxr::importing
