#include <apps/import/Messages.h>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace vxr::importing {

namespace {

constexpr std::size_t mostDescriptors = 3;

/// Room for descriptors beside a message.
struct Control {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptors * sizeof(int))> bytes {};
};

} // namespace

bool sendMessage(int socket, const void* message, std::size_t size, std::span<const int> descriptors)
{
    iovec content { const_cast<void*>(message), size };
    Control control;
    msghdr header {};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    if (!descriptors.empty()) {
        header.msg_control = control.bytes.data();
        header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
        cmsghdr* rights = CMSG_FIRSTHDR(&header);
        rights->cmsg_level = SOL_SOCKET;
        rights->cmsg_type = SCM_RIGHTS;
        rights->cmsg_len = CMSG_LEN(descriptors.size_bytes());
        std::memcpy(CMSG_DATA(rights), descriptors.data(), descriptors.size_bytes());
    }
    ssize_t sent = 0;
    do
        sent = ::sendmsg(socket, &header, MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    return sent == ssize_t(size);
}

bool receiveMessage(int socket, void* message, std::size_t size, std::span<int> descriptors)
{
    std::ranges::fill(descriptors, -1);
    iovec content { message, size };
    Control control;
    msghdr header {};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    header.msg_control = control.bytes.data();
    header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    ssize_t received = 0;
    do
        received = ::recvmsg(socket, &header, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);
    for (cmsghdr* rights = received > 0 ? CMSG_FIRSTHDR(&header) : nullptr; rights;
         rights = CMSG_NXTHDR(&header, rights)) {
        // The kernel closes what there was no room for.
        const std::size_t bytes = rights->cmsg_len - CMSG_LEN(0);
        if (rights->cmsg_level == SOL_SOCKET && rights->cmsg_type == SCM_RIGHTS)
            std::memcpy(descriptors.data(), CMSG_DATA(rights), std::min(bytes, descriptors.size_bytes()));
    }
    if (received == ssize_t(size) && (header.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0)
        return true;
    for (int& descriptor : descriptors)
        if (descriptor >= 0)
            ::close(std::exchange(descriptor, -1));
    return false;
}

} // namespace vxr::importing
