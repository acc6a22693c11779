#include <apps/import/DecoderJobs.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <memory>

namespace vxr::importing {

namespace {

/// A job must not get this far.
void succeed(const char* deed) { throw Refusal(std::string(deed) + " was allowed."); }

void takeMemory()
{
    constexpr std::size_t step = std::size_t { 64 } << 20;
    for (int i = 0; i < 256; ++i) {
        auto memory = std::make_unique<char[]>(step);
        std::memset(memory.get(), 1, step);
        static_cast<void>(memory.release());
    }
    succeed("16 GB of memory");
}

} // namespace

void misbehave(Misdeed misdeed, JobOutput& output)
{
    switch (misdeed) {
    case Misdeed::Crash:
        *static_cast<volatile int*>(nullptr) = 0;
        break;
    case Misdeed::Loop:
        for (volatile bool goesOn = true; goesOn;) { }
        break;
    case Misdeed::Sleep:
        for (;;)
            ::poll(nullptr, 0, 1000);
    case Misdeed::HugeOutput:
        output.setPayloadSize(std::uint64_t { 1 } << 40);
        break;
    case Misdeed::HugeMemory:
        takeMemory();
        break;
    case Misdeed::Network:
        if (::socket(AF_INET, SOCK_STREAM, 0) >= 0 || ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0)
            succeed("A socket");
        break;
    case Misdeed::Spawn: {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(0);
        if (child > 0)
            succeed("A process");
        char* const arguments[] { const_cast<char*>("true"), nullptr };
        ::execv("/bin/true", arguments);
        break;
    }
    case Misdeed::Write:
        if (::open("/tmp/vxr-misdeed", O_CREAT | O_WRONLY, 0600) >= 0)
            succeed("A file in the temporary folder");
        if (::kill(::getppid(), 0) == 0)
            succeed("A signal to the program");
        break;
    case Misdeed::Lie:
        output.report.bitmap.source = { 100000, 100000, 3, 3, 8, 0, 0, 0, 300000 };
        output.report.bitmap.pixels = output.report.bitmap.source;
        break;
    }
}

} // namespace vxr::importing
