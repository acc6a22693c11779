#pragma once

#include <apps/import/JobProcess.h>

namespace vxr::importing {

class Successor;

/// Reads requests from the socket and answers each, until the host closes its end.
class Service {
public:
    /// `successor` gets the jobs that are for others; null when there are none.
    Service(JobProcess& jobs, int socket, Successor* successor)
        : mJobs(jobs)
        , mSuccessor(successor)
        , mSocket(socket)
    {
    }

    void serve();

private:
    bool answer(const Request&, int input); ///< false when the host has gone
    bool forward(const Request&, int input);

    JobProcess& mJobs;
    Successor* mSuccessor;
    int mSocket;
};

} // namespace vxr::importing
