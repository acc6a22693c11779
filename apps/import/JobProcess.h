#pragma once

#include <apps/import/Sandbox.h>
#include <vxr/platform/imaging/ImportProtocol.h>

namespace vxr::importing {

/// Runs each job in a process of its own, forked from this one with its libraries loaded and warm.
class JobProcess {
public:
    /// `hostSocket` is watched: when the host goes, the job goes.
    JobProcess(const Sandbox& sandbox, int hostSocket);

    struct End {
        ImportOutcome outcome = ImportOutcome::Done;
        std::uint32_t signal = 0;
        bool hostIsGone = false;
    };

    /// Waits for the job's end. `report` and `payload` are the files that it writes.
    End run(const Request&, int input, int report, int payload);

private:
    [[noreturn]] void become(const Request&, int input, int report, int payload, const std::string& folder);
    End waitFor(int process, const Request&);

    const Sandbox& mSandbox;
    int mHostSocket;
    int mOwnProcess;
    std::uint64_t mBasePrivateBytes, mBaseAddressBytes; ///< what a job inherits of either
};

/// Threads of this process; a fork is safe with one.
int countThreads();

} // namespace vxr::importing
