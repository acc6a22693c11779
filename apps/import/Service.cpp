#include <apps/import/Service.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

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

bool Service::receive(Request& request, int& input)
{
    iovec content { &request, sizeof request };
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control {};
    msghdr message {};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t received = 0;
    do
        received = ::recvmsg(mSocket, &message, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);
    input = -1;
    if (received > 0)
        for (cmsghdr* header = CMSG_FIRSTHDR(&message); header; header = CMSG_NXTHDR(&message, header))
            if (header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS)
                std::memcpy(&input, CMSG_DATA(header), sizeof input);
    return received == ssize_t(sizeof request) && request.magic == protocolMagic;
}

void Service::send(const Reply& reply, int report, int payload)
{
    iovec content { const_cast<Reply*>(&reply), sizeof reply };
    const std::array<int, 2> files { report, payload };
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof files)> control {};
    msghdr message {};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    if (report >= 0) {
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof files);
        std::memcpy(CMSG_DATA(header), files.data(), sizeof files);
    }
    while (::sendmsg(mSocket, &message, MSG_NOSIGNAL) < 0 && errno == EINTR) { }
}

bool Service::answer(const Request& request, int input)
{
    Reply reply;
    reply.id = request.id;
    const MemoryOutput report("report"), payload("payload");
    if (report.descriptor() < 0 || payload.descriptor() < 0) {
        reply.outcome = ImportOutcome::TooLarge;
        send(reply, -1, -1);
        return true;
    }
    const JobProcess::End end = mJobs.run(request, input, report.descriptor(), payload.descriptor());
    if (end.hostIsGone)
        return false;
    reply.outcome = end.outcome;
    reply.signal = end.signal;
    const bool isDone = end.outcome == ImportOutcome::Done;
    // The job has ended, so nobody can hold the files open for writing.
    if (isDone && report.seal() && payload.seal()) {
        send(reply, report.descriptor(), payload.descriptor());
        return true;
    }
    if (isDone)
        reply.outcome = ImportOutcome::Unavailable;
    send(reply, -1, -1);
    return true;
}

void Service::serve()
{
    Request request;
    for (int input = -1; receive(request, input);) {
        const bool goesOn = answer(request, input);
        if (input >= 0)
            ::close(input);
        if (!goesOn)
            return;
    }
}

} // namespace vxr::importing
