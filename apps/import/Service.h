#pragma once

#include <apps/import/JobProcess.h>

namespace vxr::importing {

/// Reads requests from the socket and answers each, until the host closes its end.
class Service {
public:
    Service(JobProcess& jobs, int socket)
        : mJobs(jobs)
        , mSocket(socket)
    {
    }

    void serve();

private:
    bool answer(const Request&, int input); ///< false when the host has gone

    JobProcess& mJobs;
    int mSocket;
};

} // namespace vxr::importing
