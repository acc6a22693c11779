#pragma once

#include <vxr/platform/imaging/ImportProtocol.h>

namespace vxr::importing {

/// The library's end of the socket to a running import program. Starts it when it is first needed, and again
/// after it has gone. The program is no child of this process: the host sees no SIGCHLD and has nobody to
/// wait for, and no descriptor of the host's is inherited.
class ImportConnection {
public:
    explicit ImportConnection(std::string programPath);
    ~ImportConnection();
    ImportConnection(const ImportConnection&) = delete;
    ImportConnection& operator=(const ImportConnection&) = delete;

    struct Answer {
        Reply reply;
        int report = -1, payload = -1; ///< the receiver's to close
    };

    /// Sends the request with the input's descriptor and waits. None, and a sentence in `message`, when there
    /// is no program, or it went away or did not answer in time; then it is stopped.
    std::optional<Answer> ask(Request, int input, std::string& message);

    bool start(std::string& message); ///< true at once when it runs
    void stop();

private:
    bool send(const Request&, int input);
    bool receive(Answer&);
    bool waitForAnswer(int milliseconds);

    std::string mPath;
    int mSocket = -1;
    int mProcess = -1; ///< a descriptor that stands for the process
    std::uint32_t mLastId = 0;
};

} // namespace vxr::importing
