#include <apps/import/Service.h>

#include <apps/import/Messages.h>
#include <apps/import/Successor.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <span>

namespace vxr::importing {

namespace {

class MemoryOutput {
public:
    explicit MemoryOutput(const char* name)
        : mDescriptor(::memfd_create(name, MFD_CLOEXEC | MFD_ALLOW_SEALING))
    {
    }
    ~MemoryOutput()
    {
        if (mDescriptor >= 0)
            ::close(mDescriptor);
    }
    MemoryOutput(const MemoryOutput&) = delete;
    MemoryOutput& operator=(const MemoryOutput&) = delete;

    int descriptor() const { return mDescriptor; }
    /// False while somebody could still write to it.
    bool seal() const
    {
        return ::fcntl(mDescriptor, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL)
            == 0;
    }

private:
    int mDescriptor;
};

} // namespace

bool Service::answer(const Request& request, int input)
{
    if (!mJobs.takes(request, input))
        return forward(request, input);
    Reply reply;
    reply.id = request.id;
    const MemoryOutput report("report"), payload("payload");
    const int results[] { report.descriptor(), payload.descriptor() };
    if (results[0] < 0 || results[1] < 0) {
        reply.outcome = ImportOutcome::TooLarge;
        return sendMessage(mSocket, &reply, sizeof reply, {});
    }
    const JobProcess::End end = mJobs.run(request, { input, results[0], results[1] });
    if (end.hostIsGone)
        return false;
    if (end.isForOthers)
        return forward(request, input);
    reply.outcome = end.outcome;
    reply.signal = end.signal;
    if (end.outcome != ImportOutcome::Done)
        return sendMessage(mSocket, &reply, sizeof reply, {});
    if (report.seal() && payload.seal())
        return sendMessage(mSocket, &reply, sizeof reply, results);
    reply.outcome = ImportOutcome::Crashed; // it has kept its files mapped
    return sendMessage(mSocket, &reply, sizeof reply, {});
}

bool Service::forward(const Request& request, int input)
{
    if (mSuccessor)
        return mSuccessor->answer(request, input, mSocket);
    Reply reply;
    reply.id = request.id;
    reply.outcome = ImportOutcome::Refused;
    return sendMessage(mSocket, &reply, sizeof reply, {});
}

void Service::serve()
{
    Request request;
    for (int input = -1; receiveMessage(mSocket, &request, sizeof request, std::span(&input, 1));) {
        const bool goesOn = request.magic == protocolMagic && answer(request, input);
        if (input >= 0)
            ::close(input);
        if (!goesOn)
            return;
    }
}

} // namespace vxr::importing
