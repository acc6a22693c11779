#include <vxr/platform/imaging/ImportConnection.h>

#include <vxr/platform/imaging/ProgramLaunch.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <utility>

namespace vxr::importing {

namespace {

/// How much longer than the program itself the library waits for a job.
constexpr int graceMilliseconds = 5000;

void closeIfOpen(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

ImportConnection::ImportConnection(std::string programPath)
    : mPath(std::move(programPath))
{
}

ImportConnection::~ImportConnection() { stop(); }

bool ImportConnection::start(std::string& message)
{
    if (mSocket >= 0)
        return true;
    std::array<int, 2> ends {};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        message = std::string("Can't make a socket: ") + std::strerror(errno);
        return false;
    }
    mProcess = launchProgram(mPath, ends[1]);
    ::close(ends[1]);
    if (mProcess < 0) {
        message = "Can't start " + mPath + ": " + std::strerror(-mProcess);
        mProcess = -1;
        ::close(ends[0]);
        return false;
    }
    mSocket = ends[0];
    return true;
}

void ImportConnection::stop()
{
    closeIfOpen(mSocket); // the program ends, and its job with it
    if (mProcess >= 0) {
        siginfo_t info {};
        // Of use only where this process adopts what its children leave.
        ::waitid(P_PIDFD, id_t(mProcess), &info, WEXITED | WNOHANG);
    }
    closeIfOpen(mProcess);
}

bool ImportConnection::send(const Request& request, int input)
{
    iovec content { const_cast<Request*>(&request), sizeof request };
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control {};
    msghdr message {};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    if (input >= 0) {
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof input);
        std::memcpy(CMSG_DATA(header), &input, sizeof input);
    }
    ssize_t sent = 0;
    do
        sent = ::sendmsg(mSocket, &message, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    return sent == ssize_t(sizeof request);
}

bool ImportConnection::receive(Answer& answer)
{
    iovec content { &answer.reply, sizeof answer.reply };
    alignas(cmsghdr) std::array<char, CMSG_SPACE(2 * sizeof(int))> control {};
    msghdr message {};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t received = 0;
    do
        received = ::recvmsg(mSocket, &message, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);
    if (received > 0)
        for (cmsghdr* header = CMSG_FIRSTHDR(&message); header; header = CMSG_NXTHDR(&message, header)) {
            if (header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS)
                continue;
            // The room that was given holds two at most; the kernel closes what is beyond.
            const std::size_t count = (header->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            if (count > 0)
                std::memcpy(&answer.report, CMSG_DATA(header), sizeof(int));
            if (count > 1)
                std::memcpy(&answer.payload, CMSG_DATA(header) + sizeof(int), sizeof(int));
        }
    return received == ssize_t(sizeof answer.reply) && (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
}

bool ImportConnection::waitForAnswer(int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd socket { mSocket, POLLIN, 0 };
        const int count = ::poll(&socket, 1, left > 0 ? int(left) : 0);
        if (count >= 0 || errno != EINTR)
            return count > 0;
    }
}

std::optional<ImportConnection::Answer> ImportConnection::ask(
    Request request, int input, std::string& message)
{
    request.id = ++mLastId;
    const bool wasRunning = mSocket >= 0;
    if (!start(message))
        return std::nullopt;
    if (!send(request, input)) {
        stop();
        // It went away between two jobs, or does so at once whenever it is started.
        if (!wasRunning || !start(message) || !send(request, input)) {
            stop();
            message = "The import program does not run.";
            return std::nullopt;
        }
    }
    Answer answer;
    if (!waitForAnswer(int(request.limits.waitMilliseconds) + graceMilliseconds)) {
        ::syscall(SYS_pidfd_send_signal, mProcess, SIGKILL, nullptr, 0);
        stop();
        message = "The import program does not answer.";
        return std::nullopt;
    }
    if (receive(answer) && answer.reply.magic == protocolMagic && answer.reply.id == request.id)
        return answer;
    closeIfOpen(answer.report);
    closeIfOpen(answer.payload);
    stop();
    message = "The import program went away.";
    return std::nullopt;
}

} // namespace vxr::importing
