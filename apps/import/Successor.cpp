#include <apps/import/Successor.h>

#include <apps/import/Messages.h>
#include <apps/import/TemporaryFolder.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <span>
#include <utility>

namespace vxr::importing {

Successor::Successor(std::string path)
    : mPath(std::move(path))
{
}

Successor::~Successor() { stop(); }

bool Successor::start()
{
    if (mSocket >= 0)
        return true;
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    char* const arguments[] { mPath.data(), nullptr };
    mProcess = ::fork();
    if (mProcess == 0) {
        if (ends[1] == programSocket)
            ::fcntl(programSocket, F_SETFD, 0);
        else
            ::dup2(ends[1], programSocket);
        ::syscall(SYS_close_range, unsigned(programSocket + 1), ~0u, 0u);
        ::signal(SIGPIPE, SIG_DFL);
        ::execve(mPath.c_str(), arguments, environ);
        ::_exit(127);
    }
    ::close(ends[1]);
    if (mProcess < 0) {
        ::close(ends[0]);
        return false;
    }
    mSocket = ends[0];
    return true;
}

/// It ends, and its jobs with it, when its socket closes; what it would leave when it has been killed goes.
void Successor::stop()
{
    if (mSocket < 0)
        return;
    ::close(std::exchange(mSocket, -1));
    while (::waitpid(mProcess, nullptr, 0) < 0 && errno == EINTR) { }
    mProcess = -1;
    TemporaryFolder::removeAbandoned();
}

/// False when the program has gone.
bool Successor::waitForReply(int hostSocket, bool& hostIsGone) const
{
    for (;;) {
        pollfd watched[] { { mSocket, POLLIN, 0 }, { hostSocket, POLLRDHUP, 0 } };
        const int count
            = ::poll(watched, 2, -1); // it heeds the limits of its jobs, and the host waits no longer
        if (count < 0 && errno == EINTR)
            continue;
        hostIsGone = watched[1].revents != 0;
        return count > 0 && !hostIsGone && (watched[0].revents & POLLIN) != 0;
    }
}

bool Successor::refuse(const Request& request, ImportOutcome outcome, int hostSocket) const
{
    Reply reply;
    reply.id = request.id;
    reply.outcome = outcome;
    return sendMessage(hostSocket, &reply, sizeof reply, {});
}

bool Successor::answer(const Request& request, int input, int hostSocket)
{
    const auto send = [&] {
        const std::span<const int> files(&input, input >= 0 ? 1 : 0);
        return start() && sendMessage(mSocket, &request, sizeof request, files);
    };
    if (!send()) {
        stop(); // it went away between two jobs
        if (!send())
            return refuse(request, ImportOutcome::Unavailable, hostSocket);
    }
    bool hostIsGone = false;
    Reply reply;
    int results[] { -1, -1 };
    const bool isAnswered
        = waitForReply(hostSocket, hostIsGone) && receiveMessage(mSocket, &reply, sizeof reply, results);
    if (hostIsGone)
        return false;
    if (!isAnswered) {
        stop();
        return refuse(request, ImportOutcome::Crashed, hostSocket);
    }
    const bool isSent = sendMessage(
        hostSocket, &reply, sizeof reply, std::span<const int>(results).first(results[1] >= 0 ? 2 : 0));
    for (const int file : results)
        if (file >= 0)
            ::close(file);
    return isSent;
}

} // namespace vxr::importing
