#pragma once

#include <vxr/platform/imaging/ImportProtocol.h>

#include <string>

namespace vxr::importing {

/// Another program that speaks the same protocol and is started when the first job comes for it.
class Successor {
public:
    explicit Successor(std::string path);
    ~Successor();
    Successor(const Successor&) = delete;
    Successor& operator=(const Successor&) = delete;

    /// Hands the request on and the answer back to the host. False when the host has gone.
    bool answer(const Request&, int input, int hostSocket);

private:
    bool start();
    void stop();
    bool waitForReply(int hostSocket, bool& hostIsGone) const;
    bool refuse(const Request&, ImportOutcome, int hostSocket) const;

    std::string mPath;
    int mSocket = -1, mProcess = -1;
};

} // namespace vxr::importing
